#pragma once

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
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
    [[nodiscard]] std::string readHead() {
        std::string head;
        for (char next = 0; !head.ends_with("\r\n\r\n"); head += next) {
            if (SSL_read(&ssl_, &next, 1) <= 0) {
                return {};
            }
        }
        return head;
    }

    /// False when the client has gone.
    bool send(std::string_view bytes) {
        return SSL_write(&ssl_, bytes.data(), static_cast<int>(bytes.size())) > 0;
    }

    /// Waits up to so many milliseconds, for ever when negative, and tells whether the client has gone.
    bool hasGone(int milliseconds) {
        pollfd readable{socket_, POLLIN, 0};
        return ::poll(&readable, 1, milliseconds) != 0;
    }

    void closeTLS() { SSL_shutdown(&ssl_); }

    /// Lets the connection end with a reset instead of an orderly close.
    void reset() { set(SOL_SOCKET, SO_LINGER, linger{1, 0}); }

    template <class Value>
    void set(int level, int option, Value value) {
        ::setsockopt(socket_, level, option, &value, sizeof value);
    }

  private:
    SSL& ssl_;
    int socket_;
};

/// A TLS server on a free port of the loopback interface whose connections run a script, one at a time, and
/// then end without TLS's close.
class RawPeer {
  public:
    using Script = std::function<void(RawConnection&)>;

    RawPeer(const Identity& identity, Script script, const std::function<void(SSL_CTX&)>& bend = {})
        : script_(std::move(script)) {
        std::signal(SIGPIPE, SIG_IGN);
        identity.use(*context_);
        if (bend) {
            bend(*context_);
        }
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        ::listen(listener_, 64);
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~RawPeer() {
        isStopping_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        ::shutdown(client_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    [[nodiscard]] std::string url() const { return "https://localhost:" + std::to_string(port_) + "/"; }

  private:
    void serve() {
        while (!isStopping_) {
            client_ = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            const std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(context_.get()), SSL_free);
            SSL_set_fd(ssl.get(), client_);
            RawConnection connection(*ssl, client_);
            connection.set(IPPROTO_TCP, TCP_NODELAY, 1);
            if (client_ >= 0 && SSL_accept(ssl.get()) == 1) {
                script_(connection);
            }
            ::close(client_.exchange(-1));
        }
    }

    std::shared_ptr<SSL_CTX> context_{SSL_CTX_new(TLS_server_method()), SSL_CTX_free};
    Script script_;
    int listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int port_ = 0;
    std::atomic<int> client_ = -1;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

}  // namespace nimbuscope::testing
