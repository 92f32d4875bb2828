// Property lists in memory through libplist: owned nodes, the XML document
// that the GUI application reads, and parsing of whatever format libplist
// recognises (XML or binary).
#pragma once

#include <plist/plist.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace OrvelDialogs::Platform {

struct PropertyListDeleter {
    void operator()(plist_t node) const noexcept { plist_free(node); }
};

// Owns a node and everything below it. Nodes handed to a container
// (plist_array_append_item, plist_dict_set_item) belong to the container, so
// release() them from their owner at that moment.
using PropertyList = std::unique_ptr<void, PropertyListDeleter>;

// The XML property-list document of `root`: UTF-8, the XML declaration, the
// property-list document type, <plist version="1.0">, strings escaped. The
// empty string when libplist produced nothing.
std::string propertyListToXml(plist_t root);

struct XmlBufferDeleter {
    void operator()(char *xml) const noexcept { plist_to_xml_free(xml); }
};
using XmlBuffer = std::unique_ptr<char, XmlBufferDeleter>;
// The same document in libplist's own buffer, which `storage` then owns: a
// document of megabytes that is read once is not copied first.
std::string_view propertyListToXml(plist_t root, XmlBuffer &storage);

// The property list held in `bytes`, in any format libplist reads; null when
// the bytes hold none, are too long for libplist's 32-bit lengths, or are
// refused for their nesting (PropertyListBounds.hpp).
PropertyList propertyListFromBytes(std::string_view bytes);

// A new string node for the UTF-8 `text`. Characters that XML 1.0 cannot
// carry (C0 controls but tab, line feed and carriage return; U+FFFE, U+FFFF)
// become U+FFFD: the document then stays well-formed for every XML reader,
// where refusing it would let one odd text make a whole list unusable.
plist_t newXmlSafeString(std::string_view text);

// The bytes of a string node, or none for a null node or one of another type.
std::optional<std::string_view> stringValue(plist_t node);

} // namespace OrvelDialogs::Platform
