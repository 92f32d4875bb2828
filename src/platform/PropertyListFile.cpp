#include "platform/PropertyListFile.hpp"

#include "platform/Descriptor.hpp"
#include "platform/PlatformException.hpp"
#include "platform/PropertyList.hpp"
#include "platform/PropertyListBounds.hpp"

#include <algorithm>

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
    // Room for what the file holds now, and one byte more to see its end;
    // it grows (up to the bound) if the file grows meanwhile. Every dialog
    // reads its bundle's Info.plist, a few hundred bytes.
    constexpr size_t kLimit = kPropertyListMaximumBytes + 1;
    struct stat info {};
    const bool sized = ::fstat(fd.get(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size >= 0;
    std::string bytes(sized ? std::min<size_t>(static_cast<size_t>(info.st_size) + 1, kLimit) : 4096, '\0');
    size_t filled = 0;
    for (;;) {
        if (filled == bytes.size()) {
            if (bytes.size() == kLimit)
                break;
            bytes.resize(std::min(bytes.size() * 2, kLimit));
        }
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
