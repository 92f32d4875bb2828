// The GUI application's command line: "-window", the window name, then the
// dialog's option pairs. A value that is absent (a null or invalid host text)
// cannot stand in it.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs::Launcher {

using OptionalText = std::optional<std::string>;

// One entry as a dialog writes it: a literal, a text, or a text that may be
// absent. It refers to its text until the list is made. One made from an
// rvalue is moved into the list, not copied: a value of many MiB (a document
// to sign) then exists once, not twice.
class ArgumentEntry {
public:
    ArgumentEntry(const char *literal) : literal_(literal) {}
    ArgumentEntry(std::nullopt_t) {}
    ArgumentEntry(const std::string &text) : text_(&text) {}
    ArgumentEntry(std::string &&text) : text_(&text), movable_(&text) {}
    ArgumentEntry(const OptionalText &text) : text_(text ? &*text : nullptr) {}
    ArgumentEntry(OptionalText &&text) : text_(text ? &*text : nullptr), movable_(text ? &*text : nullptr) {}

    bool absent() const { return literal_ == nullptr && text_ == nullptr; }
    // Appends the entry to `list`; one made from an rvalue gives its text up.
    void appendTo(std::vector<std::string> &list) const;

private:
    const char *literal_ = nullptr;
    const std::string *text_ = nullptr;
    std::string *movable_ = nullptr;
};

// The strings in order; raises the platform exception for an absent one.
std::vector<std::string> argumentList(std::initializer_list<ArgumentEntry> entries);

} // namespace OrvelDialogs::Launcher
