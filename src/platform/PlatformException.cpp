#include "platform/PlatformException.hpp"

#include <cxxabi.h>
#include <execinfo.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace OrvelDialogs::Platform {
namespace {

constexpr int kMaxFrames = 64;

// backtrace_symbols gives "module(mangled+offset) [address]"; show the
// demangled function name in place of the mangled one where there is one.
std::string demangleFrame(const char *symbol)
{
    std::string frame(symbol);
    const auto open = frame.find('(');
    const auto plus = frame.find('+', open == std::string::npos ? 0 : open);
    if (open == std::string::npos || plus == std::string::npos || plus <= open + 1)
        return frame;
    const std::string mangled = frame.substr(open + 1, plus - open - 1);
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status), &std::free);
    if (status != 0 || !demangled)
        return frame;
    return frame.substr(0, open + 1) + demangled.get() + frame.substr(plus);
}

std::vector<std::string> captureCallStack()
{
    void *addresses[kMaxFrames];
    const int count = backtrace(addresses, kMaxFrames);
    std::vector<std::string> frames;
    std::unique_ptr<char *, decltype(&std::free)> symbols(backtrace_symbols(addresses, count), &std::free);
    if (!symbols)
        return frames;
    frames.reserve(static_cast<size_t>(count));
    // Frame 0 is captureCallStack itself.
    for (int i = 1; i < count; ++i)
        frames.push_back(demangleFrame(symbols.get()[i]));
    return frames;
}

} // namespace

PlatformException::PlatformException(const std::string &reason)
    : std::runtime_error(reason), reason_(reason), frames_(captureCallStack())
{
}

std::string PlatformException::callStackDescription() const
{
    std::string description = reason_;
    for (const auto &frame : frames_) {
        description += '\n';
        description += frame;
    }
    return description;
}

void raiseSystemError(const std::string &call, int error)
{
    throw PlatformException(call + " failed: " + std::strerror(error));
}

} // namespace OrvelDialogs::Platform
