#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/URLLoading/URLCache.hpp"

namespace nimbuscope::platform {

/// What a cache holds unless told otherwise, in bytes.
inline constexpr std::size_t defaultCacheCapacity = std::size_t{64} << 20U;

/// A cache in the file `responses.sqlite` of a directory, which may be shared between processes; an empty
/// name makes a cache that keeps nothing. The format is described in docs/formats/response-cache.md.
///
/// Directory (mode 0700) and file (mode 0600) come into being with the first use. A file that is damaged or
/// of another format is deleted and made anew. Losing power may cost what is stored, but never gives a
/// response that the server did not. Which responses were used is written with the next one that is stored,
/// or at the end.
[[nodiscard]] NIMBUSCOPE_EXPORT std::shared_ptr<URLCache> makeSQLiteURLCache(
    std::string directory, std::size_t capacity = defaultCacheCapacity);

}  // namespace nimbuscope::platform
