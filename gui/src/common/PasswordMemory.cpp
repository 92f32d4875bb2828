#include "common/PasswordMemory.hpp"

#include "util/SecretMemory.hpp"

#include <sys/resource.h>
#if defined(__linux__)
#include <sys/prctl.h>
#endif

#include <cerrno>
#include <cstring>

namespace OrvelGui {

bool keepOutOfCoreDumps(std::string &why)
{
    const rlimit none{0, 0};
    if (::setrlimit(RLIMIT_CORE, &none) != 0) {
        why = std::string("setrlimit(RLIMIT_CORE): ") + std::strerror(errno);
        return false;
    }
#if defined(__linux__)
    if (::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) != 0) {
        why = std::string("prctl(PR_SET_DUMPABLE): ") + std::strerror(errno);
        return false;
    }
#endif
    return true;
}

// The library's own wiping, behind names the desktop module can resolve from
// the executable.
void wipeSecret(void *bytes, std::size_t size)
{
    OrvelDialogs::SecretMemory::wipe(bytes, size);
}

void wipeSecret(std::string &text)
{
    OrvelDialogs::SecretMemory::wipeAll(text);
}

} // namespace OrvelGui
