#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/URLLoading/URLCache.hpp"
#include "Platform/URLLoading/URLRequest.hpp"

/// What a private cache may do with requests and responses (RFC 9111). It stores complete answers with status
/// 200 to GET, one for each URL, serves nothing stale, and makes up no lifetimes of its own.
namespace nimbuscope::platform {

/// True for a request that the cache may answer and whose answer it may store: GET, without proof of who
/// asks, and neither for a range nor with conditions of the caller's own nor marked no-store.
[[nodiscard]] NIMBUSCOPE_EXPORT bool isCacheable(const URLRequest& request);

/// True for a response to a cacheable request that may be stored and can ever be used again.
[[nodiscard]] NIMBUSCOPE_EXPORT bool isCacheable(const HTTPURLResponse& response);

/// True for a method that changes what the URL names, so that what is stored under it is no longer true.
[[nodiscard]] NIMBUSCOPE_EXPORT bool isUnsafe(std::string_view method);

/// The fields of `request` that `response` varies by. A field that is absent counts as empty.
[[nodiscard]] NIMBUSCOPE_EXPORT HTTPHeaders varyingHeaders(const URLRequest& request,
                                                           const HTTPURLResponse& response);

/// True when `cached` answers `request` without asking the server.
[[nodiscard]] NIMBUSCOPE_EXPORT bool isFresh(const CachedURLResponse& cached, const URLRequest& request,
                                             std::chrono::system_clock::time_point now);

/// Asks the server whether `cached` is still what it has. False when there is nothing to ask by.
NIMBUSCOPE_EXPORT bool addValidators(URLRequest& request, const CachedURLResponse& cached);

/// Takes over what the server says about `cached` in an answer "304 Not Modified".
NIMBUSCOPE_EXPORT void update(CachedURLResponse& cached, const HTTPURLResponse& notModified);

/// An HTTP date in any of its three forms (RFC 9110).
[[nodiscard]] NIMBUSCOPE_EXPORT std::optional<std::chrono::sys_seconds> parseHTTPDate(std::string_view text);

}  // namespace nimbuscope::platform
