// The guard of every ORV_ function. A C host cannot catch an exception, and
// one that left an extern "C" function would end the host in std::terminate:
// each is caught here, logged when memory allows, and gives 7.
#pragma once

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include <exception>
#include <new>
#include <string>

namespace OrvelDialogs::State {

inline constexpr long kCallFailed = 7;

// The exception entry; without memory for it the result alone tells.
inline void logCallFailure(const char *what) noexcept
{
    try {
        logMsg(std::string("Exception occured:\n") + what);
    } catch (...) {
    }
}

template <typename Call>
long callFromC(Call call) noexcept
{
    try {
        return call();
    } catch (const std::bad_alloc &) {
        logCallFailure("out of memory (std::bad_alloc)");
    } catch (const std::exception &exception) {
        logCallFailure(exception.what());
    } catch (...) {
        logCallFailure("an exception of an unknown type");
    }
    return kCallFailed;
}

} // namespace OrvelDialogs::State
