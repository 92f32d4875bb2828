// The file filter text of the file dialogs: "Documents (pdf,doc)|Text (txt)".
#pragma once

#include <string>
#include <vector>

namespace OrvelGui {

// One entry of a filter text: "Documents (pdf,doc)" has the name
// "Documents " and the patterns "pdf" and "doc"; "*" or "*.*" among them
// means every file.
struct FilterEntry {
    std::string name;
    std::vector<std::string> patterns;
    bool allFiles = false;
};
// The entries with a pattern list, in order.
std::vector<FilterEntry> filterEntries(const std::string &filterText);

// The file patterns of a filter text such as "Documents (pdf,doc)|Text (txt)";
// empty when every file fits ("*", no text, or nothing usable).
std::vector<std::string> filterPatterns(const std::string &filterText);
// False when the text holds something but no entry that filterPatterns can
// read (such as "*.pdf", which has no parentheses): every file is then listed,
// and the window should say why.
bool filterUnderstood(const std::string &filterText);
// True when the file name ends in one of the patterns (".pdf", "*.pdf" and
// "pdf" alike, letters compared without case).
bool matchesFilter(const std::string &fileName, const std::vector<std::string> &patterns);

} // namespace OrvelGui
