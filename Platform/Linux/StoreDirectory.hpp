#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// The directory of the key-value stores: `$NIMBUSCOPE_STORE`, else `nimbuscope` in `$XDG_DATA_HOME` (an
/// absolute path, as the XDG base directories have it), else in `~/.local/share`. Empty when the environment
/// names none.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string defaultStoreDirectory();

/// The directory of what can be had again: `nimbuscope` in `$XDG_CACHE_HOME` (an absolute path), else in
/// `~/.cache`. Empty when the environment names none.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string defaultCacheDirectory();

/// Makes the directory and those above it that are missing, for their owner alone; the error's text, or none.
[[nodiscard]] NIMBUSCOPE_EXPORT std::optional<std::string> makeDirectories(
    const std::filesystem::path& directory);

}  // namespace nimbuscope::platform
