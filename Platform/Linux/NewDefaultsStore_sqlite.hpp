#pragma once

#include <cstdint>
#include <string>

#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/Linux/SQLite.hpp"

namespace nimbuscope::platform {

/// What marks the file of a key-value store, see docs/formats/defaults-store.md.
inline constexpr std::int64_t defaultsApplicationId = 0x4E42'5344;  // "NBSD"
inline constexpr std::int64_t defaultsFormatVersion = 1;

/// A fault of SQLite as one of the store in the file `path`.
[[nodiscard]] DefaultsError defaultsError(const std::string& path, const SQLiteError& cause);

/// Makes an empty store. It appears under `path` complete: nobody ever sees a part of one, and of two
/// processes that make it at once, one wins, which neither takes for an error.
[[nodiscard]] DefaultsResult<void> createDefaultsStore(const std::string& path, int busyTimeout);

}  // namespace nimbuscope::platform
