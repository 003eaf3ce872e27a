#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/Certificates.hpp"

namespace nimbuscope::testing {

/// The server's end of one TLS connection, to misbehave on. Calls block until the client does its part.
class RawConnection {
  public:
    RawConnection(SSL& ssl, int socket) : ssl_(ssl), socket_(socket) {}

    /// Reads a request up to its empty line; empty when the client leaves.
    [[nodiscard]] std::string readHead();

    /// False when the client has gone.
    bool send(std::string_view bytes);

    /// Waits up to so many milliseconds, for ever when negative, and tells whether the client has gone.
    bool hasGone(int milliseconds);

    void closeTLS() { SSL_shutdown(&ssl_); }

    /// Lets the connection end with a reset instead of an orderly close.
    void reset();

  private:
    SSL& ssl_;
    int socket_;
};

/// A TLS server on a free port of the loopback interface whose connections run a script, one at a time, and
/// then end without TLS's close.
class RawPeer {
  public:
    using Script = std::function<void(RawConnection&)>;

    RawPeer(const Identity& identity, Script script, const std::function<void(SSL_CTX&)>& bend = {});
    ~RawPeer();
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    [[nodiscard]] std::string url() const { return "https://localhost:" + std::to_string(port_) + "/"; }

  private:
    void serve();

    std::shared_ptr<SSL_CTX> context_;
    Script script_;
    int listener_;
    int port_ = 0;
    std::atomic<int> client_ = -1;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

}  // namespace nimbuscope::testing
