#pragma once

#include <source_location>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// Prints "Fatal error: MESSAGE: FILE:LINE" to standard error and aborts the process, in every build type.
/// For states that the caller promised would not occur; what the outside world can cause is a Result instead.
[[noreturn]] NIMBUSCOPE_EXPORT void fatalError(std::string_view message,
                                               std::source_location where = std::source_location::current());

/// Stops the process as `fatalError` does unless `condition` holds.
inline void precondition(bool condition, std::string_view message,
                         std::source_location where = std::source_location::current()) {
    if (!condition) [[unlikely]] {
        fatalError(message, where);
    }
}

}  // namespace nimbuscope::platform
