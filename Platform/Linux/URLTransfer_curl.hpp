#pragma once

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/ContentDecoder_zlib.hpp"
#include "Platform/Linux/TrustStore_openssl.hpp"
#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope::platform {

struct CurlEasyCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyCleanup>;

/// One request on its way through libcurl. Its address is known to libcurl and must not change.
class URLTransfer {
  public:
    using Instant = std::chrono::steady_clock::time_point;

    /// What libcurl sends for a request, checked.
    struct Prepared {
        URLRequest request;
        std::string url;     ///< normalised to ASCII and without fragment
        std::string server;  ///< host and port
        bool isRepeated = false;
    };

    /// Fails with `badURL` or `unsupportedURL`.
    [[nodiscard]] static Result<Prepared, URLError> prepare(URLRequest request);

    /// Sets `handle`, new or used, up for transfers in a session.
    static void makeReady(CURL* handle, const URLSessionConfiguration& configuration);

    /// Sets `handle`, which was made ready, up to send `prepared`. `configuration` and `trust` must live as
    /// long.
    URLTransfer(CurlEasy handle, Prepared prepared, URLSessionHandler handler,
                const URLSessionConfiguration& configuration, const TrustStore& trust);
    URLTransfer(const URLTransfer&) = delete;
    URLTransfer& operator=(const URLTransfer&) = delete;

    [[nodiscard]] CURL* handle() const { return handle_.get(); }

    /// When to give it up if nothing happens before.
    [[nodiscard]] Instant deadline() const;

    /// Its deadline will not come before this, whatever happens from `now` on.
    [[nodiscard]] Instant earliestDeadline(Instant now) const;

    /// Takes the outcome that libcurl reports; to be called once, after the handle left its multi handle.
    [[nodiscard]] URLSessionResult result(CURLcode outcome);

    /// True when the server cannot have begun to answer, and asking it again, once, does no harm.
    [[nodiscard]] bool shouldRepeat(CURLcode outcome) const;

    /// The parts to go on with when the transfer has ended.
    [[nodiscard]] Prepared takePrepared() { return std::move(prepared_); }
    [[nodiscard]] URLSessionHandler takeHandler() { return std::move(handler_); }
    [[nodiscard]] CurlEasy takeHandle() { return std::move(handle_); }

  private:
    static std::size_t onHeader(char* line, std::size_t, std::size_t size, void* transfer);
    static std::size_t onBody(char* bytes, std::size_t, std::size_t size, void* transfer);
    static int onProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);
    static int onConnected(void* transfer, char*, char*, int, int);
    static CURLcode onTLS(CURL*, void* context, void* transfer);

    void setUpRequest();
    void setUpHeaderLines();
    [[nodiscard]] bool takeHeader(std::string_view line);
    [[nodiscard]] bool endHeaders();
    [[nodiscard]] bool takeBody(std::string_view bytes);
    void expectCloseOfTLS();
    [[nodiscard]] bool hasBody() const;
    [[nodiscard]] std::optional<URLError> faultOfWholeResponse() const;
    [[nodiscard]] bool refuse(URLError::Code code, CURLcode number, std::string reason);

    CurlEasy handle_;
    Prepared prepared_;
    URLSessionHandler handler_;
    const TrustStore& trust_;
    std::string headerText_;  // lines that end with NUL
    std::vector<curl_slist> headerLines_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};

    std::size_t maximumHeaderSize_;
    std::size_t maximumBodySize_;
    std::chrono::milliseconds idleInterval_;
    Instant totalDeadline_;
    std::optional<Instant> lastActivity_;  // absent until the request goes out
    curl_off_t sent_ = 0;

    HTTPURLResponse response_;
    std::optional<ContentDecoder> decoder_;  // from the end of the header on
    std::size_t headerSize_ = 0;
    bool isVersion1_ = false;
    bool isHeaderComplete_ = false;
    bool isEndedByStatus_ = false;     // by a status 1xx that is the response
    bool endsWithConnection_ = false;  // the body has neither length nor chunks
    bool isConnectionClosed_ = false;  // by TLS's own close
    std::optional<URLError> refusal_;  // why a callback stopped the transfer
};

}  // namespace nimbuscope::platform
