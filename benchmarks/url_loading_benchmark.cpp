// Loading many at once against libcurl used by hand, and an answer of the response cache against the same
// answer from a server on the loopback interface. Times are per request.

#include <curl/curl.h>

#include <atomic>
#include <future>
#include <memory>

#include "Platform/Linux/URLCache_sqlite.hpp"
#include "Platform/Linux/URLSession_curl.hpp"
#include "Platform/URLLoading/CachingURLSession.hpp"
#include "support/CurlPeers.hpp"
#include "support/Ratios.hpp"
#include "tests/support/HTTPSPeer.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

constexpr int inParallel = 200;

/// A request as an authorized one looks like.
platform::URLRequest requestFor(const std::string& url) {
    platform::URLRequest request{.url = url};
    for (const char* name :
         {"X-Nb-Algorithm", "X-Nb-Credential", "X-Nb-Date", "X-Nb-SignedHeaders", "X-Nb-Signature"}) {
        request.headers.add(name, std::string(40, 'x'));
    }
    return request;
}

/// Loads `count` times at once and waits for all; stops the program when one fails.
void load(platform::URLSession& session, const platform::URLRequest& request, int count) {
    std::atomic<int> left = count;
    std::promise<void> done;  // whose wait, unlike a latch's, does not spin
    for (int i = 0; i < count; ++i) {
        session.dataTask(request, [&](const platform::URLSessionResult& result) {
            if (!result) {
                std::fprintf(stderr, "session: %s\n", result.error().message().c_str());
                std::exit(1);
            }
            if (--left == 0) {
                done.set_value();
            }
        });
    }
    done.get_future().wait();
}

}  // namespace

int main() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const testing::TemporaryDirectory directory;
    const std::string body(4096, 'x');
    testing::HTTPSPeer server(
        [&body](const httplib::Request&, httplib::Response& response) {
            response.set_header("Cache-Control", "max-age=3600");
            response.set_content(body, "application/octet-stream");
        },
        2 * inParallel + 16);

    platform::URLSessionConfiguration configuration{.additionalAuthorities = server.authorityFile()};
    configuration.urlCache = platform::makeSQLiteURLCache(directory.path());
    const std::shared_ptr<platform::URLSession> session = platform::makeCurlURLSession(configuration);
    platform::CachingURLSession caching(session, std::make_shared<platform::SystemClock>());
    const auto request = requestFor(server.url());
    BareMulti bareMulti(inParallel, server.url(), server.authorityFile());

    const bool isKept[] = {compare("200 requests in parallel",
                                   {{"session", [&] { load(*session, request, inParallel); }, inParallel},
                                    {"bare multi", [&] { bareMulti.load(); }, inParallel}},
                                   {{1, 1.3}}, 15),
                           compare("an answer kept",
                                   {{"cache", [&] { load(caching, request, 1); }},
                                    {"server", [&] { load(*session, request, 1); }}},
                                   {{1, 1.0 / 10}})};
    return std::ranges::all_of(isKept, std::identity()) ? 0 : 1;
}
