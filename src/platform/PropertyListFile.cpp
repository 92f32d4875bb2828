#include "platform/PropertyListFile.hpp"

#include <plist/plist.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <memory>

namespace OrvelDialogs::Platform {

std::optional<std::string> readStringFromPropertyListFile(const std::string &path, const std::string &key)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (bytes.empty() || bytes.size() > std::numeric_limits<uint32_t>::max())
        return std::nullopt;

    plist_t root = nullptr;
    plist_from_memory(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
    std::unique_ptr<void, decltype(&plist_free)> owner(root, &plist_free);
    if (root == nullptr || plist_get_node_type(root) != PLIST_DICT)
        return std::nullopt;
    plist_t value = plist_dict_get_item(root, key.c_str());
    if (value == nullptr || plist_get_node_type(value) != PLIST_STRING)
        return std::nullopt;
    uint64_t length = 0;
    const char *text = plist_get_string_ptr(value, &length);
    if (text == nullptr)
        return std::nullopt;
    return std::string(text, static_cast<size_t>(length));
}

} // namespace OrvelDialogs::Platform
