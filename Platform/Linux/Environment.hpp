#pragma once

#include <cstdlib>
#include <optional>
#include <string_view>

namespace nimbuscope::platform {

/// The value of an environment variable; absent where it is not set. Nothing here sets any once there are
/// threads.
[[nodiscard]] inline std::optional<std::string_view> environment(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): see above
    return value != nullptr ? std::optional<std::string_view>(value) : std::nullopt;
}

/// The locale that the user chose for `category` ("LC_MESSAGES"), as POSIX has it; empty where none is
/// chosen.
[[nodiscard]] inline std::string_view localeName(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        if (const auto name = environment(variable); name && !name->empty()) {
            return *name;
        }
    }
    return "";
}

}  // namespace nimbuscope::platform
