// Paths as the terminal's file windows take them.
#pragma once

#include <string>

namespace OrvelGui {

// A typed path made absolute in the working directory, without "." and ".."
// and without a closing "/".
std::string absolutePath(const std::string &typed);
std::string currentFolder();
bool isRegularFile(const std::string &path);
bool isFolder(const std::string &path);
std::string joinPath(const std::string &folder, const std::string &name);

} // namespace OrvelGui
