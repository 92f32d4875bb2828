#include "platform/SealedFile.hpp"

#include "platform/PlatformException.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace OrvelDialogs::Platform {
namespace {

void writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = retryOnInterrupt([&] { return ::write(fd, bytes.data(), bytes.size()); });
        if (written < 0)
            raiseSystemError("write to a value file", errno);
        bytes.remove_prefix(static_cast<size_t>(written));
    }
}

// Where the stand-in files go: $TMPDIR when it is set, else /tmp.
std::string temporaryFolder()
{
    const char *folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

UniqueFd openUnlinkedFile()
{
    const std::string folder = temporaryFolder();
#ifdef O_TMPFILE
    // O_EXCL: the file can never be linked into the folder later.
    UniqueFd fd(retryOnInterrupt(
        [&] { return ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR); }));
    if (fd.valid())
        return fd;
    // A file system without O_TMPFILE: a named file, unlinked at once.
#endif
    std::string path = folder + "/orvel-value-XXXXXX";
    UniqueFd named(::mkstemp(path.data()));
    if (!named.valid())
        raiseSystemError("mkstemp " + path, errno);
    ::unlink(path.c_str());
    if (::fcntl(named.get(), F_SETFD, FD_CLOEXEC) != 0)
        raiseSystemError("fcntl(F_SETFD)", errno);
    return named;
}

UniqueFd rewound(UniqueFd fd)
{
    if (::lseek(fd.get(), 0, SEEK_SET) != 0)
        raiseSystemError("lseek on a value file", errno);
    return fd;
}

} // namespace

UniqueFd unlinkedFileHolding(std::string_view bytes)
{
    UniqueFd fd = openUnlinkedFile();
    writeAll(fd.get(), bytes);
    return rewound(std::move(fd));
}

UniqueFd sealedFileHolding(std::string_view bytes)
{
#if defined(MFD_ALLOW_SEALING) && defined(F_ADD_SEALS)
    UniqueFd fd(::memfd_create("orvel-dialog-value", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!fd.valid()) {
        // Kernels before memory files (ENOSYS) or before their seals
        // (EINVAL); anything else is a real failure.
        if (errno != ENOSYS && errno != EINVAL)
            raiseSystemError("memfd_create", errno);
        return unlinkedFileHolding(bytes);
    }
    writeAll(fd.get(), bytes);
    if (::fcntl(fd.get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        raiseSystemError("fcntl(F_ADD_SEALS)", errno);
    return rewound(std::move(fd));
#else
    return unlinkedFileHolding(bytes);
#endif
}

} // namespace OrvelDialogs::Platform
