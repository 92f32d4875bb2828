// Memory that held a secret (the PKCS#12 password of a reply, Base64 or
// decoded) is overwritten before it is freed or kept for the next reply, so
// that the host's process keeps no copy of it beyond what the host asked for.
#pragma once

#include <cstddef>
#include <string>

namespace OrvelDialogs::SecretMemory {

// Overwrites `size` bytes with zeros; the compiler may not drop it.
void wipe(void *bytes, size_t size);
// Overwrites the bytes the string holds and empties it: for room whose spare
// part never held a secret (the reply's, the log's).
void wipe(std::string &text);
// Overwrites every byte the string owns, its spare room too (what a value cut
// short or a deleted character left there), and empties it.
void wipeAll(std::string &text);

// While one lives, the dialog that runs holds a secret in its reply: room that
// held part of the reply is wiped before it is released, also where it grows.
class Scope {
public:
    Scope();
    ~Scope();
    Scope(const Scope &) = delete;
    Scope &operator=(const Scope &) = delete;
};
bool inScope();

// Wipes a string when it goes out of scope, on every way out.
class WipedOnExit {
public:
    explicit WipedOnExit(std::string &text) : text_(text) {}
    ~WipedOnExit() { wipeAll(text_); }
    WipedOnExit(const WipedOnExit &) = delete;
    WipedOnExit &operator=(const WipedOnExit &) = delete;

private:
    std::string &text_;
};

} // namespace OrvelDialogs::SecretMemory
