#include "platform/ChildEnvironment.hpp"

#include <algorithm>
#include <cstring>

extern char **environ;

namespace OrvelDialogs::Platform {

void ChildEnvironment::set(const std::string &name, std::optional<std::string> value)
{
    const auto same = std::find_if(changes_.begin(), changes_.end(), [&](const auto &c) { return c.first == name; });
    if (same != changes_.end())
        same->second = std::move(value);
    else
        changes_.emplace_back(name, std::move(value));
}

bool ChildEnvironment::changes(const char *entry) const
{
    return std::any_of(changes_.begin(), changes_.end(), [&](const auto &change) {
        const std::string &name = change.first;
        return std::strncmp(entry, name.c_str(), name.size()) == 0 && entry[name.size()] == '=';
    });
}

std::vector<char *> ChildEnvironment::entries(std::vector<std::string> &storage) const
{
    std::vector<char *> pointers;
    for (char **entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        if (!changes(*entry))
            pointers.push_back(*entry);
    storage.clear();
    storage.reserve(changes_.size());
    for (const auto &[name, value] : changes_)
        if (value)
            storage.push_back(name + "=" + *value);
    for (std::string &entry : storage)
        pointers.push_back(entry.data());
    pointers.push_back(nullptr);
    return pointers;
}

size_t ChildEnvironment::bytes() const
{
    std::vector<std::string> storage;
    const std::vector<char *> pointers = entries(storage);
    size_t total = 0;
    for (const char *entry : pointers)
        total += sizeof(char *) + (entry != nullptr ? std::strlen(entry) + 1 : 0);
    return total;
}

} // namespace OrvelDialogs::Platform
