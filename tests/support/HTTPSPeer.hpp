#pragma once

#include <httplib.h>

#include <functional>
#include <future>
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
    explicit HTTPSPeer(const Handler& handler, std::size_t connections = 8)
        : server_([this](SSL_CTX& context) { return identity_.use(context), true; }) {
        writeFile(authorityFile(), identity_.authority.pem());
        std::promise<void> isReady;
        server_.new_task_queue = [&isReady, connections] {
            auto* const pool = new httplib::ThreadPool(connections);
            isReady.set_value();
            return pool;
        };
        server_.set_tcp_nodelay(true);
        server_.set_keep_alive_max_count(1'000'000);
        server_.Post(".*", handler);
        server_.set_pre_routing_handler([handler](const auto& request, auto& response) {
            using enum httplib::Server::HandlerResponse;
            const bool hasBodyToRead = request.method == "POST";
            return hasBodyToRead ? Unhandled : (handler(request, response), Handled);
        });
        port_ = server_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        isReady.get_future().wait();
    }
    ~HTTPSPeer() {
        server_.stop();
        thread_.join();
    }
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
