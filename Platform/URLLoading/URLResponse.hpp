#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Core/Data.hpp"
#include "Platform/URLLoading/HTTPHeaders.hpp"

namespace nimbuscope::platform {

/// The head of an HTTP response.
struct HTTPURLResponse {
    std::string url;  ///< of the request
    std::int64_t statusCode = 0;
    HTTPHeaders headers;

    bool operator==(const HTTPURLResponse&) const = default;
};

/// A response that came whole.
struct URLSessionResponse {
    HTTPURLResponse response;

    /// The body, its content encoding undone. Absent where the protocol has none (status 204, 304 and 1xx,
    /// method HEAD); elsewhere present, and perhaps empty.
    std::optional<Data> data;

    bool operator==(const URLSessionResponse&) const = default;
};

}  // namespace nimbuscope::platform
