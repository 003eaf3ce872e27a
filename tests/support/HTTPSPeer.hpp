#pragma once

#include <httplib.h>

#include <functional>
#include <string>
#include <thread>

#include "tests/support/Certificates.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {

/// An HTTPS server on a free port of the loopback interface, for GET, HEAD and POST.
///
/// Sessions that talk to it should end before it does: it waits for the connections they keep.
class HTTPSPeer {
  public:
    /// Answers a request, whose `target` is path and query as they came. Called on several threads at once.
    using Handler = std::function<void(const httplib::Request&, httplib::Response&)>;

    /// Serves up to `connections` clients at once.
    explicit HTTPSPeer(Handler handler, std::size_t connections = 8);
    ~HTTPSPeer();
    HTTPSPeer(const HTTPSPeer&) = delete;
    HTTPSPeer& operator=(const HTTPSPeer&) = delete;

    [[nodiscard]] std::string host() const { return "localhost:" + std::to_string(port_); }
    [[nodiscard]] std::string url(const std::string& target = "/") const {
        return "https://" + host() + target;
    }

    /// The PEM file of the authority that vouches for it.
    [[nodiscard]] std::string authorityFile() const { return directory_.path("authority.pem"); }

  private:
    TemporaryDirectory directory_;
    Identity identity_ = Identity::make();
    httplib::SSLServer server_;
    int port_ = 0;
    std::thread thread_;
};

}  // namespace nimbuscope::testing
