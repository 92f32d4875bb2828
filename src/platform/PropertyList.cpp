#include "platform/PropertyList.hpp"

#include "platform/PropertyListBounds.hpp"

#include <cstdint>
#include <limits>

namespace OrvelDialogs::Platform {

std::string_view propertyListToXml(plist_t root, XmlBuffer &storage)
{
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(root, &xml, &length);
    storage.reset(xml);
    if (xml == nullptr)
        return {};
    return std::string_view(xml, length);
}

std::string propertyListToXml(plist_t root)
{
    XmlBuffer storage;
    return std::string(propertyListToXml(root, storage));
}

PropertyList propertyListFromBytes(std::string_view bytes)
{
    if (bytes.empty() || bytes.size() > std::numeric_limits<uint32_t>::max())
        return nullptr;
    // libplist reads and frees nested containers recursively: a document
    // nested deep enough would overflow the stack.
    if (nestingRefusal(bytes))
        return nullptr;
    plist_t root = nullptr;
    plist_from_memory(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
    return PropertyList(root);
}

plist_t newXmlSafeString(std::string_view text)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string safe;
    safe.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') {
            safe += kReplacement;
        } else if (text.substr(i, 3) == "\xEF\xBF\xBE" || text.substr(i, 3) == "\xEF\xBF\xBF") {
            safe += kReplacement;
            i += 2;
        } else {
            safe.push_back(text[i]);
        }
    }
    return plist_new_string(safe.c_str());
}

std::optional<std::string_view> stringValue(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING)
        return std::nullopt;
    uint64_t length = 0;
    const char *bytes = plist_get_string_ptr(node, &length);
    if (bytes == nullptr)
        return std::nullopt;
    return std::string_view(bytes, static_cast<size_t>(length));
}

} // namespace OrvelDialogs::Platform
