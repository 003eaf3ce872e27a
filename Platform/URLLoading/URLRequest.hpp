#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "Platform/Core/Data.hpp"
#include "Platform/URLLoading/HTTPHeaders.hpp"

namespace nimbuscope::platform {

/// What a request takes from the session's cache.
enum class URLRequestCachePolicy {
    useProtocolCachePolicy,       ///< as HTTP has it (RFC 9111)
    reloadIgnoringLocalCacheData  ///< nothing; the response may still be stored
};

/// A request for an absolute https URL.
struct URLRequest {
    std::string url;
    std::string httpMethod = "GET";
    HTTPHeaders headers;  ///< sent as they are, beside those that the protocol needs
    std::optional<Data> httpBody;

    /// How long nothing may come or go.
    std::chrono::milliseconds timeoutInterval{60'000};

    URLRequestCachePolicy cachePolicy = URLRequestCachePolicy::useProtocolCachePolicy;

    /// The headers prove who asks: no answer is taken from the cache or stored there, as if the request had
    /// an Authorization field.
    bool isAuthorized = false;
};

}  // namespace nimbuscope::platform
