#include "platform/PropertyListFile.hpp"

#include "platform/Descriptor.hpp"
#include "platform/PlatformException.hpp"
#include "platform/PropertyList.hpp"
#include "platform/PropertyListBounds.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvelDialogs::Platform {
namespace {

// The file's bytes, one more than the bound at most: a larger file is never
// read whole. An open that fails for any reason but a missing file (too many
// open files, no permission) raises, naming that reason.
std::optional<std::string> readBounded(const std::string &path)
{
    UniqueFd fd(retryOnInterrupt([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!fd.valid()) {
        if (errno == ENOENT)
            return std::nullopt;
        raiseSystemError("open " + path, errno);
    }
    std::string bytes(kPropertyListMaximumBytes + 1, '\0');
    size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t n = retryOnInterrupt([&] { return ::read(fd.get(), bytes.data() + filled, bytes.size() - filled); });
        if (n < 0)
            raiseSystemError("read " + path, errno);
        if (n == 0)
            break;
        filled += static_cast<size_t>(n);
    }
    bytes.resize(filled);
    return bytes;
}

} // namespace

std::optional<std::string> stringFromInfoPlist(std::string_view bytes, const std::string &key,
                                              const std::string &name)
{
    if (const auto refusal = infoPlistRefusal(bytes))
        throw PlatformException(name + " is refused: " + *refusal);
    const PropertyList root = propertyListFromBytes(bytes);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT)
        return std::nullopt;
    const auto value = stringValue(plist_dict_get_item(root.get(), key.c_str()));
    if (!value)
        return std::nullopt;
    return std::string(*value);
}

std::optional<std::string> readStringFromPropertyListFile(const std::string &path, const std::string &key)
{
    const auto bytes = readBounded(path);
    if (!bytes)
        return std::nullopt;
    return stringFromInfoPlist(*bytes, key, path);
}

} // namespace OrvelDialogs::Platform
