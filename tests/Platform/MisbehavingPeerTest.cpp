#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <future>

#include "Platform/Linux/URLSession_curl.hpp"
#include "Platform/URLLoading/CachingURLSession.hpp"
#include "tests/support/HTTPSPeer.hpp"
#include "tests/support/InMemoryURLCache.hpp"
#include "tests/support/RawPeer.hpp"

namespace nimbuscope::testing {
namespace {

using platform::URLSessionResult;
using Code = platform::URLError::Code;
using namespace std::chrono_literals;

URLSessionResult load(platform::URLSession& session, const platform::URLRequest& request) {
    std::promise<URLSessionResult> promise;
    session.dataTask(request, [&](URLSessionResult result) { promise.set_value(std::move(result)); });
    return promise.get_future().get();
}

std::ptrdiff_t threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// How a peer goes on after it sent what it had to send.
enum class Then { cut, close, reset, hold, trickle, flood };

/// A code, a status, or the body of a status 200.
using Outcome = std::variant<Code, int, std::string>;

struct Case {
    std::string name;
    std::string bytes;
    Then then = Then::cut;
    Outcome expected;
    std::function<void(SSL_CTX&)> bend = {};
};

const std::string ok = "HTTP/1.1 200 OK\r\nCache-Control: max-age=60\r\n";

std::string status(const std::string& line, const std::string& fields = "Content-Length: 0\r\n") {
    return "HTTP/1.1 " + line + "\r\nCache-Control: max-age=60\r\n" + fields + "\r\n";
}

/// So many zeros, deflated.
std::string zeros(std::size_t count) {
    const std::string plain(count, '\0');
    std::string deflated(compressBound(count), '\0');
    uLongf size = deflated.size();
    ::compress(reinterpret_cast<Bytef*>(deflated.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
               count);
    return deflated.substr(0, size);
}

void misbehave(const Case& each, RawConnection& connection) {
    if (connection.readHead().empty()) {
        return;
    }
    connection.send(each.bytes);
    const std::string piece = "1000\r\n" + std::string(0x1000, 'x') + "\r\n";
    switch (each.then) {
        case Then::cut:
            return;
        case Then::close:
            return connection.closeTLS();
        case Then::reset:
            return connection.reset();
        case Then::hold:
            connection.hasGone(-1);
            return;
        case Then::trickle:
            while (!connection.hasGone(10) && connection.send("x")) {
            }
            return;
        case Then::flood:
            while (connection.send(piece)) {
            }
            return;
    }
}

class MisbehavingPeer : public ::testing::Test {
  protected:
    /// Those of the system take long to read where the environment names their file.
    static void SetUpTestSuite() { ::unsetenv("SSL_CERT_FILE"); }

    [[nodiscard]] platform::URLSessionConfiguration configuration(bool isHasty) const {
        platform::URLSessionConfiguration settings;
        settings.timeoutIntervalForResource = isHasty ? 1s : 10s;
        settings.maximumBodySize = std::size_t{1} << 20U;
        settings.additionalAuthorities = directory_.path("authorities.pem");
        settings.urlCache = cache_;
        return settings;
    }

    /// Loads `url` in a session of its own, which afterwards loads what is good.
    void expect(const std::string& name, const std::string& url, const Outcome& expected) {
        SCOPED_TRACE(name);
        writeFile(directory_.path("authorities.pem"),
                  identity_.authority.pem() + readFile(good_.authorityFile()));
        const auto before = threads();
        const int served = served_;
        const bool isHasty = expected == Outcome(Code::timedOut);
        {
            platform::CachingURLSession session(platform::makeCurlURLSession(configuration(isHasty)),
                                                std::make_shared<platform::SystemClock>());
            const auto start = std::chrono::steady_clock::now();
            const auto result = load(session, {.url = url, .timeoutInterval = isHasty ? 200ms : 10s});
            EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
            check(result, expected);
            EXPECT_TRUE(cache_->isEmpty() || std::holds_alternative<std::string>(expected));
            const auto next = load(session, {.url = good_.url()});
            ASSERT_TRUE(next) << next.error().message();
            EXPECT_EQ(platform::textOf(*next->data), "good");
        }
        EXPECT_EQ(served_, served + 1) << "something else was asked for";
        EXPECT_EQ(threads(), before);
        cache_->removeAllCachedResponses();
    }

    static void check(const URLSessionResult& result, const Outcome& expected) {
        const std::string said = result ? std::to_string(result->response.statusCode)
                                        : std::to_string(static_cast<int>(result.error().code)) + " " +
                                              std::to_string(result.error().cause.code) + " " +
                                              result.error().message();
        if (const auto* code = std::get_if<Code>(&expected)) {
            ASSERT_FALSE(result) << said;
            EXPECT_EQ(result.error().code, *code) << said;
            EXPECT_FALSE(result.error().message().empty());
            EXPECT_NE(result.error().cause.code, 0);
        } else if (const auto* number = std::get_if<int>(&expected)) {
            ASSERT_TRUE(result) << said;
            EXPECT_EQ(result->response.statusCode, *number);
        } else {
            ASSERT_TRUE(result) << said;
            EXPECT_EQ(platform::textOf(*result->data), std::get<std::string>(expected));
        }
    }

    void run(const Case& each, const Identity& identity) {
        const RawPeer peer(
            identity, [&](RawConnection& connection) { misbehave(each, connection); }, each.bend);
        expect(each.name, peer.url(), each.expected);
    }

    TemporaryDirectory directory_;
    std::shared_ptr<InMemoryURLCache> cache_ = std::make_shared<InMemoryURLCache>();
    Identity identity_ = Identity::make();
    std::atomic<int> served_ = 0;
    HTTPSPeer good_{[this](const httplib::Request&, httplib::Response& response) {
        ++served_;
        response.set_content("good", "text/plain");
    }};
};

TEST_F(MisbehavingPeer, endsEveryRequestInItsError) {
    const std::string json = R"({"code":0})";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string gzip = ok + "Content-Encoding: gzip\r\n";
    const std::string other = "Content-Length: 0\r\nLocation: " + good_.url() + "\r\n";
    std::string longLines;
    for (int i = 0; i < 2000; ++i) {
        longLines += "A: " + std::string(100, 'x') + "\r\n";
    }
    std::string announcements;
    for (int i = 0; i < 10'000; ++i) {
        announcements += "HTTP/1.1 103 Early Hints\r\n\r\n";
    }
    const Case cases[] = {
        {"no answer", "", Then::hold, Code::timedOut},
        {"a header that stops", "HTTP/1.1 200 OK\r\nA:", Then::hold, Code::timedOut},
        {"a slow header", "HTTP/1.1 200 OK\r\nA: ", Then::trickle, Code::timedOut},
        {"a body that stops", ok + "Content-Length: 9\r\n\r\nabc", Then::hold, Code::timedOut},
        {"a slow body", ok + "Content-Length: 9999\r\n\r\n", Then::trickle, Code::timedOut},
        {"an endless body", ok + "\r\n", Then::trickle, Code::timedOut},
        {"a close instead of an answer", "", Then::close, Code::networkConnectionLost},
        {"a cut instead of an answer", "", Then::cut, Code::networkConnectionLost},
        {"a close in the header", ok, Then::close, Code::networkConnectionLost},
        {"a reset in the header", ok, Then::reset, Code::networkConnectionLost},
        {"a reset in the body", ok + "Content-Length: 9\r\n\r\nabc", Then::reset,
         Code::networkConnectionLost},
        {"a body too short", ok + "Content-Length: 9\r\n\r\nabc", Then::close, Code::networkConnectionLost},
        {"a body too short that is whole JSON", ok + "Content-Length: 11\r\n\r\n" + json, Then::close,
         Code::networkConnectionLost},
        {"a body too long", ok + "Content-Length: 3\r\n\r\nabcdef", Then::close, "abc"},
        {"a cut chunk", chunked + "9\r\nabc", Then::close, Code::networkConnectionLost},
        {"no last chunk", chunked + "3\r\nabc\r\n", Then::close, Code::networkConnectionLost},
        {"a chunk without size", chunked + "what\r\nabc\r\n0\r\n\r\n", Then::hold,
         Code::networkConnectionLost},
        {"a chunk of vast size", chunked + "fffffffffffffffff\r\nabc", Then::hold,
         Code::networkConnectionLost},
        {"a cut body without length", ok + "\r\n" + json, Then::cut, Code::networkConnectionLost},
        {"a closed body without length", ok + "\r\n" + json, Then::close, json},
        {"two lengths", ok + "Content-Length: 3\r\nContent-Length: 4\r\n\r\nabcd", Then::close,
         Code::badServerResponse},
        {"a length below zero", ok + "Content-Length: -3\r\n\r\nabc", Then::close, Code::badServerResponse},
        {"a length beyond numbers", ok + "Content-Length: 99999999999999999999\r\n\r\nabc", Then::close,
         Code::dataLengthExceedsMaximum},
        {"a length of 100 MB", ok + "Content-Length: 104857600\r\n\r\n", Then::hold,
         Code::dataLengthExceedsMaximum},
        {"100 MB without length", ok + "\r\n", Then::flood, Code::dataLengthExceedsMaximum},
        {"100 MB of chunks", chunked, Then::flood, Code::dataLengthExceedsMaximum},
        {"endless headers", ok + longLines, Then::hold, Code::headersExceedMaximum},
        {"an endless header", ok + "A: " + std::string(200'000, 'x'), Then::hold, Code::headersExceedMaximum},
        {"endless announcements", announcements, Then::hold, Code::headersExceedMaximum},
        {"an announced answer", "HTTP/1.1 103 Early Hints\r\n\r\n" + ok + "Content-Length: 3\r\n\r\nabc",
         Then::hold, "abc"},
        {"an announcement alone", "HTTP/1.1 100 Continue\r\n\r\n", Then::hold, Code::timedOut},
        {"another protocol", status("101 Switching Protocols", ""), Then::hold, 101},
        {"status 199", status("199 Odd"), Then::hold, 199},
        {"status 204", status("204 No Content", ""), Then::hold, 204},
        {"status 299", status("299 Odd"), Then::hold, 299},
        {"status 300", status("300 Multiple Choices"), Then::hold, 300},
        {"a redirect to another host", status("302 Found", other), Then::hold, 302},
        {"a redirect to plain http",
         status("301 Moved", "Content-Length: 0\r\nLocation: http://localhost/\r\n"), Then::hold, 301},
        {"status 401", status("401 Unauthorized"), Then::hold, 401},
        {"status 429", status("429 Too Many Requests"), Then::hold, 429},
        {"status 500", status("500 Internal Server Error"), Then::hold, 500},
        {"another language", "SSH-2.0-x\r\n", Then::hold, Code::badServerResponse},
        {"no status", "HTTP/1.1 abc\r\n\r\n", Then::hold, Code::badServerResponse},
        {"a status of two digits", "HTTP/1.1 20 OK\r\n\r\n", Then::hold, Code::badServerResponse},
        {"another version", "HTTP/7.7 200 OK\r\n\r\n", Then::hold, Code::badServerResponse},
        {"a header that is none", ok + "nonsense\r\nContent-Length: 0\r\n\r\n", Then::hold,
         Code::badServerResponse},
        {"a NUL in a header", ok + std::string("A: \0\r\n\r\n", 8), Then::hold, Code::badServerResponse},
        {"a bomb", ok + "Content-Encoding: deflate\r\n\r\n" + zeros(std::size_t{16} << 20U), Then::hold,
         Code::dataLengthExceedsMaximum},
        {"no gzip", gzip + "Content-Length: 3\r\n\r\nabc", Then::hold, Code::cannotDecodeContentData},
        {"a cut gzip",
         gzip + "Content-Length: 12\r\n\r\n" + std::string("\x1F\x8B\x08\0\0\0\0\0\0\3\x4B\x4C", 12),
         Then::hold, Code::cannotDecodeContentData},
        {"an unknown coding", ok + "Content-Encoding: odd\r\nContent-Length: 3\r\n\r\nabc", Then::hold,
         Code::cannotDecodeContentData},
    };
    for (const Case& each : cases) {
        run(each, identity_);
    }
}

TEST_F(MisbehavingPeer, isNotTrustedWithoutAWholeChainToAnAuthority) {
    const Case good{"good", ok + "Content-Length: 3\r\n\r\nabc", Then::hold, "abc"};
    const auto bent = [&](const CertificateOptions& options) {
        Identity identity = identity_;
        identity.chain.front() = makeCertificate(options, &identity.chain[1]);
        return identity;
    };
    Identity alone = identity_;
    alone.chain.pop_back();
    const std::pair<Identity, Case> cases[] = {
        {identity_, good},
        {bent({.notBefore = -7200, .notAfter = -60}), {"expired", "", {}, Code::serverCertificateHasBadDate}},
        {bent({.notBefore = 600}), {"not yet valid", "", {}, Code::serverCertificateNotYetValid}},
        {bent({.commonName = "a.example", .alternativeNames = "DNS:a.example,IP:127.0.0.2"}),
         {"another host's", "", {}, Code::serverCertificateHasWrongName}},
        {bent({.alternativeNames = ""}), {"without names", "", {}, Code::serverCertificateHasWrongName}},
        {bent({.alternativeNames = "email:a@a.example"}),
         {"without names of hosts", "", {}, Code::serverCertificateHasWrongName}},
        {{{makeCertificate({})}, {}}, {"self-signed", "", {}, Code::serverCertificateUntrusted}},
        {Identity::make(), {"of an unknown authority", "", {}, Code::serverCertificateHasUnknownRoot}},
        {alone, {"without the intermediate", "", {}, Code::serverCertificateHasUnknownRoot}},
        {identity_,
         {"TLS 1.1 only",
          "",
          {},
          Code::secureConnectionFailed,
          [](SSL_CTX& context) {
              SSL_CTX_set_security_level(&context, 0);
              SSL_CTX_set_max_proto_version(&context, TLS1_1_VERSION);
          }}},
    };
    for (const auto& [identity, each] : cases) {
        run(each, identity);
    }
}

}  // namespace
}  // namespace nimbuscope::testing
