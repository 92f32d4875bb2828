// What the fuzz targets share: a broken invariant ends the run as a crash, so
// that libFuzzer keeps the input and a corpus replay fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#define FUZZ_CHECK(condition)                                                                                  \
    do {                                                                                                       \
        if (!(condition)) {                                                                                    \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);                \
            std::abort();                                                                                      \
        }                                                                                                      \
    } while (0)

namespace OrvelFuzz {

// The input as bytes; with size 0 the pointer is not read.
inline std::string bytesOf(const uint8_t *data, size_t size)
{
    return size == 0 ? std::string() : std::string(reinterpret_cast<const char *>(data), size);
}

} // namespace OrvelFuzz
