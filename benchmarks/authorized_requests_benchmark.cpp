// Requests to the mobile API in sequence over a kept connection, signed and decoded, against libcurl used by
// hand with five fixed header fields. Times are per request.

#include <curl/curl.h>

#include <future>

#include "NimbuscopeKit/Networking/Networking.hpp"
#include "NimbuscopeKit/Networking/UserServiceImpl.hpp"
#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/Security_openssl.hpp"
#include "Platform/Linux/URLSession_curl.hpp"
#include "support/CurlPeers.hpp"
#include "support/Ratios.hpp"
#include "tests/support/HTTPSPeer.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

constexpr int rounds = 121;
constexpr int inSequence = 100;
constexpr const char* path = "maps/?step=600&nowcast_interval=600&interval=7200";

/// The transport over real queues and a real session, with credentials at hand.
class Client {
  public:
    explicit Client(const testing::HTTPSPeer& server)
        : session_(platform::makeCurlURLSession({.additionalAuthorities = server.authorityFile()})) {
        const auto updated = hosts_->updateHostsBySettings({.hosts = {{"api", {server.host()}}}});
        Authorization authorization(store_, "device");
        authorization.key = "AKEXAMPLE";
        authorization.secret = "s3cret";
        networking_ =
            Networking::make({*session_, session_->queue(), main_, clock_, *hosts_, user_}, authorization);
        platform::precondition(updated.has_value(), "a store in memory does not fail");
    }

    void load(int count) {
        std::promise<void> done;
        loadNext(count, done);
        done.get_future().wait();
    }

  private:
    void loadNext(int count, std::promise<void>& done) {
        networking_->authorizedRequest<std::int64_t>(
            path, "GET", {}, std::nullopt, [this, count, &done](const RequestResult<std::int64_t>& result) {
                if (!result) {
                    std::fprintf(stderr, "request: %s\n", description(result.error()).c_str());
                    std::exit(1);
                }
                count > 1 ? loadNext(count - 1, done) : done.set_value();
            });
    }

    std::shared_ptr<testing::InMemoryUserDefaults> store_ = std::make_shared<testing::InMemoryUserDefaults>();
    std::unique_ptr<Hosts> hosts_ = Hosts::open(store_, std::make_shared<platform::OpenSSLRandom>()).value();
    UserServiceImpl user_{{}, nullptr, nullptr, {}};
    platform::SystemClock clock_;
    platform::MainRunLoop main_;
    std::unique_ptr<platform::CurlURLSession> session_;
    std::shared_ptr<Networking> networking_;
};

}  // namespace

int main() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    testing::HTTPSPeer server([](const httplib::Request&, httplib::Response& response) {
        // The server would compress what it calls JSON, for one of the two.
        response.set_content(R"({"code":0,"message":"OK","data":7})", "application/octet-stream");
    });
    BareHandle bare(server.url(std::string("/mobile/") + path), server.authorityFile());
    Client client(server);
    const bool isKept = compare("authorized requests in sequence",
                                {{"Networking", [&] { client.load(inSequence); }, inSequence},
                                 {"bare handle", [&] { bare.load(inSequence); }, inSequence}},
                                {{1, 1.3}}, rounds);
    return isKept ? 0 : 1;
}
