// A host's buffer on the heap, of exactly `size` bytes and filled with 'x', so
// that under AddressSanitizer a one-byte overrun fails.
#pragma once

#include <algorithm>
#include <memory>
#include <string>

namespace OrvelTest {

struct HostBuffer {
    explicit HostBuffer(unsigned int size) : size(size), bytes(new char[size])
    {
        std::fill(bytes.get(), bytes.get() + size, 'x');
    }
    std::string text() const { return std::string(bytes.get()); }
    bool all(char c) const { return std::all_of(bytes.get(), bytes.get() + size, [c](char b) { return b == c; }); }
    bool allZero() const { return all(0); }
    bool untouched() const { return all('x'); }
    bool clearedExceptLast() const
    {
        return std::all_of(bytes.get(), bytes.get() + size - 1, [](char c) { return c == 0; }) && bytes[size - 1] == 'x';
    }
    // "untouched", "cleared" (all zero but the last byte), "zero", or the text.
    std::string describe() const
    {
        return untouched() ? "untouched" : clearedExceptLast() ? "cleared" : allZero() ? "zero" : text();
    }
    unsigned int size;
    std::unique_ptr<char[]> bytes;
};

} // namespace OrvelTest
