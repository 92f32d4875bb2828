#include "platform/PropertyListFile.hpp"

#include "platform/PropertyList.hpp"

#include <fstream>
#include <iterator>

namespace OrvelDialogs::Platform {

std::optional<std::string> readStringFromPropertyListFile(const std::string &path, const std::string &key)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const PropertyList root = propertyListFromBytes(bytes);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT)
        return std::nullopt;
    const auto value = stringValue(plist_dict_get_item(root.get(), key.c_str()));
    if (!value)
        return std::nullopt;
    return std::string(*value);
}

} // namespace OrvelDialogs::Platform
