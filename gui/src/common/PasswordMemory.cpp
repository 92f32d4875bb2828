// memset_s is C11's Annex K, which macOS offers only when asked for first.
#define __STDC_WANT_LIB_EXT1__ 1
#include <string.h>

#include "common/PasswordMemory.hpp"

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

void wipeSecret(void *bytes, std::size_t size)
{
    if (size == 0)
        return;
#if defined(__APPLE__)
    memset_s(bytes, size, 0, size);
#else
    explicit_bzero(bytes, size);
#endif
}

void wipeSecret(std::string &text)
{
    text.resize(text.capacity());
    wipeSecret(text.data(), text.size());
    text.clear();
}

} // namespace OrvelGui
