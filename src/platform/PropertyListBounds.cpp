#include "platform/PropertyListBounds.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace OrvelDialogs::Platform {
namespace {

const std::string kTooDeep = "nested deeper than " + std::to_string(kPropertyListMaximumNesting) + " levels";

// The deepest element nesting of an XML document. Comments, CDATA sections,
// processing instructions and the document type hold no elements; a stray
// closing tag never takes the count below zero, so it cannot hide depth.
size_t xmlNesting(std::string_view xml)
{
    size_t depth = 0;
    size_t deepest = 0;
    size_t at = 0;
    auto skipPast = [&](std::string_view end) {
        const size_t found = xml.find(end, at);
        at = found == std::string_view::npos ? xml.size() : found + end.size();
    };
    while ((at = xml.find('<', at)) != std::string_view::npos) {
        const std::string_view rest = xml.substr(at);
        if (rest.starts_with("<!--")) {
            skipPast("-->");
        } else if (rest.starts_with("<![CDATA[")) {
            skipPast("]]>");
        } else if (rest.starts_with("<?")) {
            skipPast("?>");
        } else if (rest.starts_with("<!")) {
            // A document type may hold an internal subset in brackets.
            const size_t close = xml.find('>', at);
            const size_t bracket = xml.find('[', at);
            if (bracket != std::string_view::npos && bracket < close)
                skipPast("]>");
            else
                skipPast(">");
        } else {
            // The end of the tag, past quoted attribute values.
            char quote = 0;
            size_t end = at + 1;
            for (; end < xml.size(); ++end) {
                const char c = xml[end];
                if (quote != 0) {
                    if (c == quote)
                        quote = 0;
                } else if (c == '"' || c == '\'') {
                    quote = c;
                } else if (c == '>') {
                    break;
                }
            }
            if (rest.starts_with("</")) {
                if (depth > 0)
                    --depth;
            } else if (end >= xml.size() || xml[end - 1] != '/') {
                deepest = std::max(deepest, ++depth);
            }
            at = end;
        }
    }
    return deepest;
}

// A binary property list ("bplist00"): a trailer in the last 32 bytes names
// the offset table, whose entries locate the objects; containers (arrays 0xA,
// sets 0xC, dictionaries 0xD) hold references, which are object numbers.
class BinaryPropertyList {
public:
    explicit BinaryPropertyList(std::string_view bytes) : bytes_(bytes) {}

    std::optional<std::string> refusal()
    {
        if (bytes_.size() < 8 + 32)
            return std::nullopt; // libplist refuses it on its own
        const size_t trailer = bytes_.size() - 32;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        const uint64_t objects = number(trailer + 8, 8);
        const uint64_t top = number(trailer + 16, 8);
        tableStart_ = number(trailer + 24, 8);
        if (offsetSize_ == 0 || offsetSize_ > 8 || referenceSize_ == 0 || referenceSize_ > 8 || top >= objects ||
            tableStart_ > trailer || objects > (trailer - tableStart_) / offsetSize_)
            return "not a well-formed binary property list";
        objectCount_ = static_cast<size_t>(objects);
        return walkFrom(static_cast<size_t>(top));
    }

private:
    enum : unsigned char { kUnseen = 0, kOnPath = 0xFF };

    unsigned byteAt(size_t at) const { return static_cast<unsigned char>(bytes_[at]); }
    uint64_t number(size_t at, size_t size) const
    {
        uint64_t value = 0;
        for (size_t i = 0; i < size; ++i)
            value = value << 8 | byteAt(at + i);
        return value;
    }

    // Where the references of object `index` lie, and how many there are;
    // none for an object that is no container or lies outside the data.
    std::pair<size_t, size_t> references(size_t index) const
    {
        const uint64_t offset = number(static_cast<size_t>(tableStart_) + index * offsetSize_, offsetSize_);
        if (offset >= tableStart_)
            return {0, 0};
        size_t at = static_cast<size_t>(offset);
        const unsigned marker = byteAt(at++);
        const unsigned type = marker >> 4;
        if (type != 0xA && type != 0xC && type != 0xD)
            return {0, 0};
        uint64_t count = marker & 0xF;
        if (count == 0xF) {
            // The count follows as an integer object: 0x1n and 2^n bytes.
            if (at >= tableStart_ || byteAt(at) >> 4 != 0x1 || (byteAt(at) & 0xF) > 3)
                return {0, 0};
            const size_t size = size_t{1} << (byteAt(at) & 0xF);
            if (at + 1 + size > tableStart_)
                return {0, 0};
            count = number(at + 1, size);
            at += 1 + size;
        }
        if (type == 0xD)
            count *= 2;
        // Only references inside the data count; libplist refuses the rest.
        const uint64_t room = (tableStart_ - at) / referenceSize_;
        return {at, static_cast<size_t>(std::min(count, room))};
    }

    // Depth-first with the depth below each finished object kept, so that
    // an object referred to from many places is walked once.
    std::optional<std::string> walkFrom(size_t top)
    {
        std::vector<unsigned char> below(objectCount_, kUnseen);
        struct Frame {
            size_t object, next, count, at;
            unsigned char deepestChild;
        };
        std::vector<Frame> path;
        auto enter = [&](size_t object) -> std::optional<std::string> {
            if (below[object] == kOnPath)
                return std::string("a container that holds itself");
            if (below[object] != kUnseen) {
                if (path.size() + below[object] > kPropertyListMaximumNesting)
                    return kTooDeep;
                path.back().deepestChild = std::max(path.back().deepestChild, below[object]);
                return std::nullopt;
            }
            if (path.size() + 1 > kPropertyListMaximumNesting)
                return kTooDeep;
            const auto [at, count] = references(object);
            below[object] = kOnPath;
            path.push_back({object, 0, count, at, 0});
            return std::nullopt;
        };
        if (auto refused = enter(top))
            return refused;
        while (!path.empty()) {
            Frame &frame = path.back();
            if (frame.next == frame.count) {
                const auto depth = static_cast<unsigned char>(frame.deepestChild + 1);
                below[frame.object] = depth;
                path.pop_back();
                if (!path.empty())
                    path.back().deepestChild = std::max(path.back().deepestChild, depth);
                continue;
            }
            const uint64_t child = number(frame.at + frame.next * referenceSize_, referenceSize_);
            ++frame.next;
            if (child >= objectCount_)
                continue;
            if (auto refused = enter(static_cast<size_t>(child)))
                return refused;
        }
        return std::nullopt;
    }

    std::string_view bytes_;
    size_t offsetSize_ = 0;
    size_t referenceSize_ = 0;
    uint64_t tableStart_ = 0;
    size_t objectCount_ = 0;
};

} // namespace

std::optional<std::string> infoPlistRefusal(std::string_view bytes)
{
    if (bytes.size() > kPropertyListMaximumBytes)
        return "larger than " + std::to_string(kPropertyListMaximumBytes) + " bytes";
    return nestingRefusal(bytes);
}

std::optional<std::string> nestingRefusal(std::string_view bytes)
{
    if (bytes.starts_with("bplist"))
        return BinaryPropertyList(bytes).refusal();
    if (xmlNesting(bytes) > kPropertyListMaximumNesting)
        return kTooDeep;
    return std::nullopt;
}

} // namespace OrvelDialogs::Platform
