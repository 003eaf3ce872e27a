#include "tests/support/HTTPSPeer.hpp"

namespace nimbuscope::testing {

HTTPSPeer::HTTPSPeer(Handler handler, std::size_t connections)
    : server_([this](SSL_CTX& context) {
          identity_.use(context);
          return true;
      }) {
    writeFile(authorityFile(), identity_.authority.pem());
    server_.new_task_queue = [connections] { return new httplib::ThreadPool(connections); };
    server_.set_tcp_nodelay(true);
    server_.set_keep_alive_max_count(1'000'000);
    server_.Post(".*", handler);
    server_.set_pre_routing_handler([handler = std::move(handler)](const auto& request, auto& response) {
        if (request.method == "POST") {
            return httplib::Server::HandlerResponse::Unhandled;  // until the body has been read
        }
        handler(request, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) {
        std::this_thread::yield();
    }
}

HTTPSPeer::~HTTPSPeer() {
    server_.stop();
    thread_.join();
}

}  // namespace nimbuscope::testing
