// memset_s is C11's Annex K, which macOS offers only when asked for first.
#define __STDC_WANT_LIB_EXT1__ 1
#include <string.h>

#include "util/SecretMemory.hpp"

namespace OrvelDialogs::SecretMemory {
namespace {

// The library runs on one thread at a time; scopes do not overlap, but a
// count keeps a nested one harmless.
unsigned openScopes = 0;

} // namespace

void wipe(void *bytes, size_t size)
{
    if (size == 0)
        return;
#if defined(__APPLE__)
    memset_s(bytes, size, 0, size);
#else
    explicit_bzero(bytes, size);
#endif
}

void wipe(std::string &text)
{
    wipe(text.data(), text.size());
    text.clear();
}

void wipeAll(std::string &text)
{
    text.resize(text.capacity());
    wipe(text);
}

Scope::Scope()
{
    ++openScopes;
}

Scope::~Scope()
{
    --openScopes;
}

bool inScope()
{
    return openScopes > 0;
}

} // namespace OrvelDialogs::SecretMemory
