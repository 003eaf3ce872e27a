#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/URLLoading/HTTPHeaders.hpp"
#include "Platform/URLLoading/URLResponse.hpp"

namespace nimbuscope::platform {

/// A stored response with what is needed to tell whether it still answers a request.
struct CachedURLResponse {
    HTTPURLResponse response;
    Data data;
    HTTPHeaders varyingHeaders;  ///< the fields of the request that the response's Vary names
    std::chrono::sys_seconds requestTime;
    std::chrono::sys_seconds responseTime;

    bool operator==(const CachedURLResponse&) const = default;
};

/// Keeps responses by URL, one for each, and gives up those that were not asked for the longest when they
/// need more than its capacity. It does not judge them: see CachingURLSession.
///
/// It never fails: what cannot be read or stored is not there. Any thread may call.
class NIMBUSCOPE_EXPORT URLCache {
  public:
    virtual ~URLCache() = default;

    [[nodiscard]] virtual std::optional<CachedURLResponse> cachedResponse(std::string_view url) = 0;

    /// Stores `response` under its URL in place of any other. One larger than the cache is not stored.
    virtual void storeCachedResponse(const CachedURLResponse& response) = 0;

    virtual void removeCachedResponse(std::string_view url) = 0;
    virtual void removeAllCachedResponses() = 0;
};

}  // namespace nimbuscope::platform
