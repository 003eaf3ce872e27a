#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/URLLoading/URLCache.hpp"
#include "Platform/URLLoading/URLError.hpp"
#include "Platform/URLLoading/URLRequest.hpp"
#include "Platform/URLLoading/URLResponse.hpp"

namespace nimbuscope::platform {

/// How a session loads.
struct URLSessionConfiguration {
    /// The longest idle time-out; a request's own may be shorter.
    std::chrono::milliseconds timeoutIntervalForRequest{60'000};

    /// How long a request may take from its start to the last byte.
    std::chrono::milliseconds timeoutIntervalForResource{300'000};

    /// A transfer slower than this many bytes a second, over `lowSpeedTime`, is given up.
    std::size_t lowSpeedLimit = 64;
    std::chrono::seconds lowSpeedTime{30};

    std::size_t maximumBodySize = std::size_t{64} << 20U;    ///< bytes, content encoding undone
    std::size_t maximumHeaderSize = std::size_t{64} << 10U;  ///< bytes of all header sections of one response

    /// A PEM file of certificate authorities to trust beside those of the system; none when empty.
    std::string additionalAuthorities;

    std::shared_ptr<URLCache> urlCache;  ///< none when null
};

using URLSessionResult = Result<URLSessionResponse, URLError>;
using URLSessionHandler = std::move_only_function<void(URLSessionResult)>;

/// Loads what URLs name, over HTTPS alone. Certificates and host names are verified always. Redirects are not
/// followed: a status 3xx is a response like any other.
class NIMBUSCOPE_EXPORT URLSession {
  public:
    virtual ~URLSession() = default;

    /// Starts a request. `handler` is called exactly once: on a thread of the session's, or before this
    /// returns where the answer is at hand. It must not block or throw, and may start further requests. The
    /// destructor ends requests that are under way with `cancelled`.
    virtual void dataTask(URLRequest request, URLSessionHandler handler) = 0;

    [[nodiscard]] virtual const URLSessionConfiguration& configuration() const = 0;
};

}  // namespace nimbuscope::platform
