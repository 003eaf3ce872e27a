#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>

#include "Platform/Linux/URLSession_curl.hpp"
#include "Platform/URLLoading/CachingURLSession.hpp"
#include "tests/support/HTTPSPeer.hpp"
#include "tests/support/InMemoryURLCache.hpp"
#include "tests/support/Loading.hpp"
#include "tests/support/RawPeer.hpp"

namespace nimbuscope::testing {
namespace {

using platform::URLSessionResult;
using Code = platform::URLError::Code;
using enum platform::URLError::Code;
using namespace std::chrono_literals;

/// An error's code, a status, or the body of a status 200.
using Outcome = std::variant<Code, int, std::string>;

Outcome outcomeOf(const URLSessionResult& result) {
    if (!result) {
        EXPECT_NE(result.error().message(), "");
        return result.error().code;
    }
    const int status = static_cast<int>(result->response.statusCode);
    return status == 200 ? Outcome(std::string(platform::textOf(*result->data))) : status;
}

struct Case {
    std::string name;
    std::string bytes;                         ///< what the peer answers
    std::function<void(RawConnection&)> then;  ///< before it cuts the connection
    Outcome expected;
};

const std::string ok = "HTTP/1.1 200 OK\r\nCache-Control: max-age=60\r\n";
const std::string none = "Content-Length: 0\r\n";

std::string sized(const std::string& length, const std::string& body = "abc") {
    return ok + "Content-Length: " + length + "\r\n\r\n" + body;
}

std::string status(const std::string& line, const std::string& fields = none) {
    return "HTTP/1.1 " + line + "\r\nCache-Control: max-age=60\r\n" + fields + "\r\n";
}

std::string repeated(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string deflated(const std::string& plain) {
    uLongf size = compressBound(plain.size());
    std::string bytes(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(bytes.data()), &size,  //
               reinterpret_cast<const Bytef*>(plain.data()), plain.size());
    return bytes.substr(0, size);
}

class MisbehavingPeer : public ::testing::Test {
  protected:
    /// Authorities of the system take long to read where the environment names their file.
    static void SetUpTestSuite() { ::unsetenv("SSL_CERT_FILE"); }

    static std::ptrdiff_t threads() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
    }

    /// True once no more threads are left: the system lists a joined one until it has cleared it away.
    static bool areLeft(std::ptrdiff_t count) {
        for (int i = 0; i < 1000 && threads() != count; ++i) {
            std::this_thread::sleep_for(5ms);
        }
        return threads() == count;
    }

    /// Loads from a peer in a session of its own, and then what is good.
    void expect(const Case& each, const Identity& identity, const std::function<void(SSL_CTX&)>& bend = {}) {
        SCOPED_TRACE(each.name);
        const auto before = threads();
        const int served = served_;
        const bool isHasty = each.expected == Outcome(timedOut);
        const auto cache = std::make_shared<InMemoryURLCache>();
        {
            const RawPeer peer(
                identity,
                [&](RawConnection& connection) {
                    if (!connection.readHead().empty()) {
                        connection.send(each.bytes);
                        each.then(connection);
                    }
                },
                bend);
            writeFile(directory_.path("pem"), identity_.authority.pem() + readFile(good_.authorityFile()));
            platform::URLSessionConfiguration settings{
                .timeoutIntervalForResource = isHasty ? 3s : 10s,
                .maximumBodySize = std::size_t{1} << 20U,
                .additionalAuthorities = directory_.path("pem"),
                .urlCache = cache,
            };
            platform::CachingURLSession session(platform::makeCurlURLSession(settings),
                                                std::make_shared<platform::SystemClock>());
            const auto result = load(session, {.url = peer.url(), .timeoutInterval = isHasty ? 200ms : 10s});
            EXPECT_TRUE(outcomeOf(result) == each.expected)
                << (result ? std::to_string(result->response.statusCode) : result.error().message());
            EXPECT_TRUE(cache->isEmpty() || each.expected.index() == 2);
            EXPECT_EQ(outcomeOf(load(session, {.url = good_.url()})), Outcome("good"));
        }
        EXPECT_EQ(served_, served + 1) << "something else was asked for";
        EXPECT_TRUE(areLeft(before)) << threads() << " threads instead of " << before;
    }

    TemporaryDirectory directory_;
    Identity identity_ = Identity::make();
    std::atomic<int> served_ = 0;
    HTTPSPeer good_{[this](const httplib::Request&, httplib::Response& response) {
        ++served_;
        response.set_content("good", "text/plain");
    }};
};

TEST_F(MisbehavingPeer, endsEveryRequestInItsError) {
    const auto cut = [](RawConnection&) {};
    const auto close = [](RawConnection& connection) { connection.closeTLS(); };
    const auto reset = [](RawConnection& connection) { connection.reset(); };
    const auto hold = [](RawConnection& connection) { connection.hasGone(-1); };
    const auto trickle = [](RawConnection& connection) {
        while (!connection.hasGone(10) && connection.send("x")) {
        }
    };
    const auto flood = [](RawConnection& connection) {
        while (connection.send("1000\r\n" + std::string(0x1000, 'x') + "\r\n")) {
        }
    };
    const std::string json = R"({"code":0})";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string gzip = ok + "Content-Encoding: gzip\r\n";
    const std::string zlib = ok + "Content-Encoding: deflate\r\n\r\n";
    const std::string hint = "HTTP/1.1 103 Early Hints\r\n\r\n";
    const std::string plain = none + "Location: http://localhost/\r\n";
    const Case cases[] = {
        {"no answer", "", hold, timedOut},
        {"a header that stops", "HTTP/1.1 200 OK\r\nA:", hold, timedOut},
        {"a slow header", "HTTP/1.1 200 OK\r\nA: ", trickle, timedOut},
        {"a body that stops", sized("9"), hold, timedOut},
        {"a slow body", sized("9999"), trickle, timedOut},
        {"an endless body", ok + "\r\n", trickle, timedOut},
        {"a close instead of an answer", "", close, networkConnectionLost},
        {"a cut instead of an answer", "", cut, networkConnectionLost},
        {"a close in the header", ok, close, networkConnectionLost},
        {"a reset in the header", ok, reset, networkConnectionLost},
        {"a reset in the body", sized("9"), reset, networkConnectionLost},
        {"a body too short", sized("9"), close, networkConnectionLost},
        {"whole JSON that is too short", sized("11", json), close, networkConnectionLost},
        {"a body too long", sized("3", "abcdef"), close, "abc"},
        {"a cut chunk", chunked + "9\r\nabc", close, networkConnectionLost},
        {"no last chunk", chunked + "3\r\nabc\r\n", close, networkConnectionLost},
        {"a chunk without size", chunked + "what\r\nabc\r\n0\r\n\r\n", hold, networkConnectionLost},
        {"a chunk of vast size", chunked + "fffffffffffffffff\r\nabc", hold, networkConnectionLost},
        {"a cut body without length", ok + "\r\n" + json, cut, networkConnectionLost},
        {"a closed body without length", ok + "\r\n" + json, close, json},
        {"two lengths", ok + "Content-Length: 4\r\n" + sized("3").substr(ok.size()), close,
         badServerResponse},
        {"a length below zero", sized("-3"), close, badServerResponse},
        {"a length beyond numbers", sized("99999999999999999999"), close, dataLengthExceedsMaximum},
        {"a length of 100 MB", sized("104857600"), hold, dataLengthExceedsMaximum},
        {"100 MB without length", ok + "\r\n", flood, dataLengthExceedsMaximum},
        {"100 MB of chunks", chunked, flood, dataLengthExceedsMaximum},
        {"endless headers", ok + repeated(20'000, "A: abcdef\r\n"), hold, headersExceedMaximum},
        {"an endless header", ok + "A: " + std::string(200'000, 'x'), hold, headersExceedMaximum},
        {"endless announcements", repeated(10'000, hint), hold, headersExceedMaximum},
        {"an announced answer", hint + sized("3"), hold, "abc"},
        {"an announcement alone", "HTTP/1.1 100 Continue\r\n\r\n", hold, timedOut},
        {"another protocol", status("101 Switching Protocols", ""), hold, 101},
        {"status 199", status("199 Odd"), hold, 199},
        {"status 204", status("204 No Content", ""), hold, 204},
        {"status 299", status("299 Odd"), hold, 299},
        {"status 300", status("300 Multiple Choices"), hold, 300},
        {"another host", status("302 Found", none + "Location: " + good_.url() + "\r\n"), hold, 302},
        {"plain http", status("301 Moved Permanently", plain), hold, 301},
        {"status 401", status("401 Unauthorized"), hold, 401},
        {"status 429", status("429 Too Many Requests"), hold, 429},
        {"status 500", status("500 Internal Server Error"), hold, 500},
        {"another language", "SSH-2.0-x\r\n", hold, badServerResponse},
        {"no status", "HTTP/1.1 abc\r\n\r\n", hold, badServerResponse},
        {"a status of two digits", "HTTP/1.1 20 OK\r\n\r\n", hold, badServerResponse},
        {"another version", "HTTP/7.7 200 OK\r\n\r\n", hold, badServerResponse},
        {"a header that is none", ok + "nonsense\r\n" + none + "\r\n", hold, badServerResponse},
        {"a header of blanks", ok + " \r\n" + none + "\r\n", hold, badServerResponse},
        {"a NUL in a header", ok + std::string("A: \0\r\n\r\n", 8), hold, badServerResponse},
        {"a deflated body", zlib + deflated("abc"), close, "abc"},
        {"a bomb", zlib + deflated(std::string(std::size_t{16} << 20U, 'x')), hold, dataLengthExceedsMaximum},
        {"no gzip", gzip + "\r\nabc", hold, cannotDecodeContentData},
        {"a cut body", zlib + deflated(json).substr(0, 12), close, cannotDecodeContentData},
        {"an unknown coding", ok + "Content-Encoding: odd\r\n\r\nabc", hold, cannotDecodeContentData},
    };
    for (const Case& each : cases) {
        expect(each, identity_);
    }
}

TEST_F(MisbehavingPeer, isNotTrustedWithoutAWholeChainToAnAuthority) {
    const auto hold = [](RawConnection& connection) { connection.hasGone(-1); };
    const auto bent = [&](const CertificateOptions& options) {
        return Identity{{makeCertificate(options, &identity_.chain[1]), identity_.chain[1]}, {}};
    };
    const auto old = [](SSL_CTX& context) {
        SSL_CTX_set_security_level(&context, 0);
        SSL_CTX_set_max_proto_version(&context, TLS1_1_VERSION);
    };
    expect({"good", sized("3"), hold, "abc"}, identity_);
    expect({"TLS 1.1 only", "", hold, secureConnectionFailed}, identity_, old);
    const std::tuple<const char*, Identity, Code> cases[] = {
        {"expired", bent({.notBefore = -7200, .notAfter = -1800}), serverCertificateHasBadDate},
        {"not yet valid", bent({.notBefore = 1800}), serverCertificateNotYetValid},
        {"another host's", bent({.alternativeNames = "DNS:a.example"}), serverCertificateHasWrongName},
        {"without names", bent({.alternativeNames = ""}), serverCertificateHasWrongName},
        {"without hosts", bent({.alternativeNames = "email:a@a.example"}), serverCertificateHasWrongName},
        {"self-signed", {{makeCertificate({})}, {}}, serverCertificateUntrusted},
        {"an unknown authority", Identity::make(), serverCertificateHasUnknownRoot},
        {"no intermediate", {{identity_.chain[0]}, {}}, serverCertificateHasUnknownRoot},
    };
    for (const auto& [name, identity, code] : cases) {
        expect({name, "", hold, code}, identity);
    }
}

}  // namespace
}  // namespace nimbuscope::testing
