#include "util/LargeBuffer.hpp"

#include "util/SecretMemory.hpp"

#include <algorithm>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
// Linux 6.1 and later; the C library's headers may not name it yet, and an
// older kernel refuses it harmlessly.
#ifndef MADV_COLLAPSE
#define MADV_COLLAPSE 25
#endif
#endif

namespace OrvelDialogs::LargeBuffer {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;
constexpr size_t kSmallPage = 4096;
// What malloc adds to a request that it maps on its own (its chunk header
// and the string's terminating zero fit in it): room of a whole number of
// huge pages less this is mapped as exactly that many huge pages.
constexpr size_t kAllocatorOverhead = 64;

void adviseHugePages([[maybe_unused]] char *data, [[maybe_unused]] size_t size)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    // Only the 2 MiB units inside the room, give or take malloc's bytes at
    // its ends; the kernel may refuse (huge pages switched off), and then
    // the room works as it is.
    const auto begin = reinterpret_cast<uintptr_t>(data);
    const uintptr_t first = begin & ~(kHugePage - 1);
    // The room is rounded to end just short of a unit's end (see reserve).
    const uintptr_t last = (begin + size + kAllocatorOverhead) & ~(kHugePage - 1);
    if (last <= first)
        return;
    // A unit that starts less than a page before the room is taken too: it
    // holds malloc's header (or, on the heap, at most a page of other
    // blocks, whose contents advice does not change).
    const bool ownsFirstUnit = begin - first < kSmallPage;
    const uintptr_t advised = ownsFirstUnit ? first : first + kHugePage;
    if (last > advised)
        madvise(reinterpret_cast<void *>(advised), last - advised, MADV_HUGEPAGE);
    // malloc has already touched that unit's first small page, which would
    // keep the unit in small pages: have it made one huge page now.
    if (ownsFirstUnit)
        madvise(reinterpret_cast<void *>(first), kHugePage, MADV_COLLAPSE);
#endif
}

} // namespace

void reserve(std::string &text, size_t capacity, size_t growth, bool wipeReleased)
{
    if (capacity <= text.capacity())
        return;
    capacity = std::max(capacity, text.capacity() * growth);
    const bool wipe = wipeReleased || SecretMemory::inScope();
    if (capacity < kLargeBytes && !wipe) {
        text.reserve(capacity);
        return;
    }
    // glibc's malloc maps a request this large on its own, always; smaller
    // ones may come from its heap, which it trims back to the system once
    // more than about twice the largest freed block is free at its top:
    // rounding those up would only make it give the memory back sooner.
    constexpr size_t kAlwaysMapped = size_t{32} << 20;
    if (capacity >= kAlwaysMapped)
        capacity = (capacity + kAllocatorOverhead + kHugePage - 1) / kHugePage * kHugePage - kAllocatorOverhead;
    // Advised before the contents arrive, so that copying them faults in
    // huge pages.
    std::string room;
    room.reserve(capacity);
    if (capacity >= kLargeBytes)
        adviseHugePages(room.data(), room.capacity());
    room.append(text);
    if (wipe)
        SecretMemory::wipe(text);
    text.swap(room);
}

char *extendUninitialized(std::string &text, size_t size)
{
    const size_t old = text.size();
    reserve(text, size);
#if defined(__cpp_lib_string_resize_and_overwrite)
    text.resize_and_overwrite(size, [](char *, size_t n) { return n; });
#else
    text.resize(size);
#endif
    return text.data() + old;
}

} // namespace OrvelDialogs::LargeBuffer
