#include "tests/support/RawPeer.hpp"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace nimbuscope::testing {

std::string RawConnection::readHead() {
    std::string head;
    std::array<char, 4096> chunk;
    while (head.find("\r\n\r\n") == std::string::npos) {
        const int count = SSL_read(&ssl_, chunk.data(), chunk.size());
        if (count <= 0) {
            return {};
        }
        head.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return head;
}

bool RawConnection::send(std::string_view bytes) {
    return SSL_write(&ssl_, bytes.data(), static_cast<int>(bytes.size())) > 0;
}

bool RawConnection::hasGone(int milliseconds) {
    pollfd readable{socket_, POLLIN, 0};
    return ::poll(&readable, 1, milliseconds) != 0;
}

void RawConnection::reset() {
    const linger none{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

RawPeer::RawPeer(const Identity& identity, Script script, const std::function<void(SSL_CTX&)>& bend)
    : context_(SSL_CTX_new(TLS_server_method()), SSL_CTX_free),
      script_(std::move(script)),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
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

RawPeer::~RawPeer() {
    isStopping_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    ::shutdown(client_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
}

void RawPeer::serve() {
    while (!isStopping_) {
        const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            continue;
        }
        client_ = client;
        const int isOn = 1;
        ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &isOn, sizeof isOn);
        const std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(context_.get()), SSL_free);
        SSL_set_fd(ssl.get(), client);
        if (SSL_accept(ssl.get()) == 1) {
            RawConnection connection(*ssl, client);
            script_(connection);
        }
        client_ = -1;
        ::close(client);
    }
}

}  // namespace nimbuscope::testing
