// The environment a child process starts with: the host's own, as it is at
// the start, with a few variables set or removed for this child alone.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs::Platform {

class ChildEnvironment {
public:
    // Sets `name` to `value` for the child, or with no value keeps the
    // host's variable of that name from it. A later change of the same name
    // replaces an earlier one.
    void set(const std::string &name, std::optional<std::string> value);

    // The "NAME=value" entries and a null pointer at the end, for posix_spawn.
    // They point into the host's environment and into `storage`, which must
    // outlive them.
    std::vector<char *> entries(std::vector<std::string> &storage) const;

    // What the entries take up when the child starts: their bytes with the
    // terminating zeros, and one pointer each.
    size_t bytes() const;

private:
    bool changes(const char *entry) const;

    // Name, then the value or none for a removal.
    std::vector<std::pair<std::string, std::optional<std::string>>> changes_;
};

} // namespace OrvelDialogs::Platform
