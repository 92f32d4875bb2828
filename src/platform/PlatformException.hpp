// The one exception class for what the operating-system layer raises: a
// program that cannot be started, an absent value placed in an argument list,
// a token index out of range, a write to a dead pipe. It carries the call
// stack captured where it was raised; the dialogs catch exactly this class.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace OrvelDialogs::Platform {

class PlatformException : public std::runtime_error {
public:
    explicit PlatformException(const std::string &reason);

    const std::string &reason() const { return reason_; }
    // One frame per line, demangled, innermost first.
    const std::vector<std::string> &callStackSymbols() const { return frames_; }
    // The reason on the first line, then the frames, one per line.
    std::string callStackDescription() const;

private:
    std::string reason_;
    std::vector<std::string> frames_;
};

// Raises the platform exception "<call> failed: <strerror(error)>".
[[noreturn]] void raiseSystemError(const std::string &call, int error);

} // namespace OrvelDialogs::Platform
