#pragma once

#include <memory>

#include "Platform/Concurrency/DispatchQueue.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope::platform {

/// A session over libcurl, with one thread on which all requests run and handlers are called, save those of
/// requests that cannot be made: theirs are called at once. HTTP/2 where the server offers it, one stream at
/// a time on a connection, connections kept, TLS 1.2 at least. Requests beyond six to one host wait for a
/// connection.
///
/// A certificate must name its host in a subjectAltName. A body without length and chunks must end with the
/// close of TLS. A status 1xx that announces no other (all but 100, 102 and 103) is the response. The
/// configuration's cache is not used: see CachingURLSession.
///
/// Must not be destroyed by one of its handlers.
class NIMBUSCOPE_EXPORT CurlURLSession : public URLSession {
  public:
    /// The serial queue of the session's thread, which is named "Network". Requests that are made there start
    /// without a change of threads.
    [[nodiscard]] virtual DispatchQueue& queue() = 0;
};

[[nodiscard]] NIMBUSCOPE_EXPORT std::unique_ptr<CurlURLSession> makeCurlURLSession(
    URLSessionConfiguration configuration);

}  // namespace nimbuscope::platform
