#include "Platform/Linux/URLTransfer_curl.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

#include "Platform/Core/Fatal.hpp"
#include "Platform/Linux/URLError_curl.hpp"
#include "Platform/URLLoading/CharacterSet.hpp"
#include "Platform/URLLoading/URLComponents.hpp"

namespace nimbuscope::platform {
namespace {

using Code = URLError::Code;

template <class Value>
void setOption(CURL* handle, CURLoption option, Value value) {
    const CURLcode set = curl_easy_setopt(handle, option, value);
    precondition(set == CURLE_OK, "libcurl lacks an option that the session needs");
}

// RFC 9110, tchar.
constexpr CharacterSet isTokenCharacter(isAlphanumeric, "!#$%&'*+-.^_`|~");

bool isToken(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, isTokenCharacter);
}

bool isFieldValue(std::string_view text) {
    return std::ranges::none_of(
        text, [](char character) { return character == '\r' || character == '\n' || character == '\0'; });
}

/// True for what goes through libcurl as a POST, whatever the name of its method.
bool isPost(const URLRequest& request) {
    return request.httpBody || request.httpMethod == "POST";
}

std::unexpected<URLError> refused(Code code, std::string reason) {
    return std::unexpected(URLError{code, {"nimbuscope.url", 2, std::move(reason)}});
}

}  // namespace

Result<URLTransfer::Prepared, URLError> URLTransfer::prepare(URLRequest request) {
    auto components = URLComponents::parse(request.url);
    if (!components) {
        return std::unexpected(std::move(components.error()));
    }
    if (components->scheme != "https") {
        return refused(Code::unsupportedURL, "the URL's scheme is " + components->scheme + ", not https");
    }
    if (components->user) {
        return refused(Code::badURL, "the URL carries user information");
    }
    if (!isToken(request.httpMethod)) {
        return refused(Code::badURL, "the request's method is no token");
    }
    for (const auto& [name, value] : request.headers.fields()) {
        if (!isToken(name) || !isFieldValue(value)) {
            return refused(Code::badURL, "a header field of the request is malformed");
        }
    }
    components->fragment.reset();
    std::string server = components->host + ':' + std::to_string(components->port.value_or(443));
    return Prepared{std::move(request), components->string(), std::move(server), false};
}

URLTransfer::URLTransfer(CurlEasy handle, Prepared prepared, URLSessionHandler handler,
                         const URLSessionConfiguration& configuration, const TrustStore& trust)
    : handle_(std::move(handle)),
      prepared_(std::move(prepared)),
      handler_(std::move(handler)),
      trust_(trust),
      maximumHeaderSize_(configuration.maximumHeaderSize),
      maximumBodySize_(configuration.maximumBodySize),
      idleInterval_(std::min(prepared_.request.timeoutInterval, configuration.timeoutIntervalForRequest)),
      totalDeadline_(std::chrono::steady_clock::now() + configuration.timeoutIntervalForResource) {
    CURL* const curl = handle_.get();
    setOption(curl, CURLOPT_ERRORBUFFER, errorText_.data());
    for (const CURLoption data : {CURLOPT_SSL_CTX_DATA, CURLOPT_HEADERDATA, CURLOPT_WRITEDATA,
                                  CURLOPT_PREREQDATA, CURLOPT_XFERINFODATA}) {
        setOption(curl, data, this);
    }
    setOption(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(idleInterval_.count()));
    setUpRequest();
    setUpHeaderLines();
    response_.url = prepared_.request.url;
}

void URLTransfer::makeReady(CURL* curl, const URLSessionConfiguration& configuration) {
    curl_easy_reset(curl);
    setOption(curl, CURLOPT_NOSIGNAL, 1L);
    setOption(curl, CURLOPT_PROTOCOLS_STR, "https");
    setOption(curl, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_2TLS});
    setOption(curl, CURLOPT_PATH_AS_IS, 1L);
    setOption(curl, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    setOption(curl, CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    setOption(curl, CURLOPT_CAINFO, nullptr);
    setOption(curl, CURLOPT_CAPATH, nullptr);
    setOption(curl, CURLOPT_SSL_CTX_FUNCTION, onTLS);
    setOption(curl, CURLOPT_HEADERFUNCTION, onHeader);
    setOption(curl, CURLOPT_WRITEFUNCTION, onBody);
    setOption(curl, CURLOPT_PREREQFUNCTION, onConnected);
    setOption(curl, CURLOPT_XFERINFOFUNCTION, onProgress);
    setOption(curl, CURLOPT_LOW_SPEED_LIMIT, static_cast<long>(configuration.lowSpeedLimit));
    setOption(curl, CURLOPT_LOW_SPEED_TIME, static_cast<long>(configuration.lowSpeedTime.count()));
    setOption(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(configuration.maximumBodySize));
}

void URLTransfer::setUpRequest() {
    CURL* const curl = handle_.get();
    const URLRequest& request = prepared_.request;
    setOption(curl, CURLOPT_URL, prepared_.url.c_str());
    if (isPost(request)) {
        const bool hasBody = request.httpBody.has_value();
        setOption(curl, CURLOPT_POST, 1L);
        setOption(curl, CURLOPT_POSTFIELDSIZE_LARGE,
                  static_cast<curl_off_t>(hasBody ? request.httpBody->size() : 0));
        setOption(curl, CURLOPT_POSTFIELDS,
                  hasBody ? reinterpret_cast<const char*>(request.httpBody->data()) : "");
        setOption(curl, CURLOPT_NOPROGRESS, 0L);
    }
    if (request.httpMethod == "HEAD") {
        setOption(curl, CURLOPT_NOBODY, 1L);
    } else if (request.httpMethod != (isPost(request) ? "POST" : "GET")) {
        setOption(curl, CURLOPT_CUSTOMREQUEST, request.httpMethod.c_str());
    }
}

/// libcurl's list of lines, in one piece of memory.
void URLTransfer::setUpHeaderLines() {
    constexpr std::size_t usual = 512;
    headerText_.reserve(usual);
    const auto append = [this](std::string_view name, std::string_view mark, std::string_view value) {
        ((headerText_ += name) += mark) += value;
        headerText_ += '\0';
    };
    const HTTPHeaders& headers = prepared_.request.headers;
    for (const auto& [name, value] : headers.fields()) {
        append(name, value.empty() ? ";" : ": ", value);  // "name:" would remove libcurl's own
    }
    if (!headers.contains("Accept-Encoding")) {
        append("Accept-Encoding", ": ", ContentDecoder::acceptedEncodings);
    }
    if (isPost(prepared_.request)) {
        for (const char* name : {"Content-Type", "Expect"}) {  // which libcurl adds unasked
            if (!headers.contains(name)) {
                append(name, ":", "");
            }
        }
    }
    headerLines_.reserve(headers.fields().size() + 3);
    for (std::size_t i = 0; i < headerText_.size(); i = headerText_.find('\0', i) + 1) {
        headerLines_.push_back({&headerText_[i], nullptr});
    }
    for (std::size_t i = 1; i < headerLines_.size(); ++i) {
        headerLines_[i - 1].next = &headerLines_[i];
    }
    setOption(handle_.get(), CURLOPT_HTTPHEADER, headerLines_.data());
}

URLTransfer::Instant URLTransfer::deadline() const {
    return lastActivity_ ? std::min(totalDeadline_, *lastActivity_ + idleInterval_) : totalDeadline_;
}

URLTransfer::Instant URLTransfer::earliestDeadline(Instant now) const {
    return std::min(totalDeadline_, lastActivity_.value_or(now) + idleInterval_);
}

URLSessionResult URLTransfer::result(CURLcode outcome) {
    if (isEndedByStatus_) {
        return URLSessionResponse{std::move(response_), std::nullopt};
    }
    if (outcome == CURLE_OUT_OF_MEMORY && !isHeaderComplete_) {  // its word for a header line far too long
        static_cast<void>(refuse(Code::headersExceedMaximum, outcome, curl_easy_strerror(outcome)));
    }
    if (!refusal_) {
        refusal_ =
            outcome == CURLE_OK ? faultOfWholeResponse() : errorOf(outcome, handle_.get(), errorText_.data());
    }
    if (refusal_) {
        return std::unexpected(std::move(*refusal_));
    }
    auto body = hasBody() ? std::optional(std::move(decoder_->body())) : std::nullopt;
    return URLSessionResponse{std::move(response_), std::move(body)};
}

bool URLTransfer::shouldRepeat(CURLcode outcome) const {
    // A server may close a connection at the moment when the next request goes out (RFC 9112).
    const std::string& method = prepared_.request.httpMethod;
    return outcome == CURLE_SEND_ERROR && headerSize_ == 0 && !prepared_.isRepeated &&
           (method == "GET" || method == "HEAD");
}

bool URLTransfer::hasBody() const {
    return response_.statusCode != 204 && response_.statusCode != 304 &&
           prepared_.request.httpMethod != "HEAD";
}

/// What libcurl does not mind in a response that it takes for whole.
std::optional<URLError> URLTransfer::faultOfWholeResponse() const {
    const auto lost = [](const char* reason) {
        return URLError{Code::networkConnectionLost, {"libcurl", CURLE_PARTIAL_FILE, reason}};
    };
    if (!isHeaderComplete_) {
        return lost("the connection ended in the response's header");
    }
    if (endsWithConnection_ && !isConnectionClosed_) {
        return lost("the connection was cut in a body without length");
    }
    if (!decoder_->isComplete()) {
        return URLError{Code::cannotDecodeContentData,
                        {"libcurl", CURLE_BAD_CONTENT_ENCODING, "the body's content encoding is cut"}};
    }
    return std::nullopt;
}

/// Stops the transfer; `number` is libcurl's for such a fault.
bool URLTransfer::refuse(URLError::Code code, CURLcode number, std::string reason) {
    refusal_ = URLError{code, {"libcurl", static_cast<int>(number), std::move(reason)}};
    return false;
}

std::size_t URLTransfer::onHeader(char* line, std::size_t, std::size_t size, void* transfer) {
    auto& self = *static_cast<URLTransfer*>(transfer);
    self.lastActivity_ = std::chrono::steady_clock::now();
    return self.takeHeader({line, size}) ? size : 0;
}

std::size_t URLTransfer::onBody(char* bytes, std::size_t, std::size_t size, void* transfer) {
    auto& self = *static_cast<URLTransfer*>(transfer);
    self.lastActivity_ = std::chrono::steady_clock::now();
    return self.takeBody({bytes, size}) ? size : 0;
}

int URLTransfer::onProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
    auto& self = *static_cast<URLTransfer*>(transfer);
    if (sent != self.sent_) {
        self.sent_ = sent;
        self.lastActivity_ = std::chrono::steady_clock::now();
    }
    return 0;
}

int URLTransfer::onConnected(void* transfer, char*, char*, int, int) {
    static_cast<URLTransfer*>(transfer)->lastActivity_ = std::chrono::steady_clock::now();
    return CURL_PREREQFUNC_OK;
}

CURLcode URLTransfer::onTLS(CURL*, void* context, void* transfer) {
    static_cast<URLTransfer*>(transfer)->trust_.use(*static_cast<SSL_CTX*>(context));
    return CURLE_OK;
}

bool URLTransfer::takeHeader(std::string_view line) {
    headerSize_ += line.size();
    if (headerSize_ > maximumHeaderSize_) {
        return refuse(
            Code::headersExceedMaximum, CURLE_OUT_OF_MEMORY,
            "the response's headers are longer than " + std::to_string(maximumHeaderSize_) + " bytes");
    }
    if (line.starts_with("HTTP/")) {
        const std::size_t space = std::min(line.find(' '), line.size() - 1);
        response_.statusCode = 0;
        std::from_chars(line.data() + space + 1, line.data() + line.size(), response_.statusCode);
        response_.headers = {};
        isVersion1_ = line.starts_with("HTTP/1");
        isHeaderComplete_ = false;
        return true;
    }
    if (isHeaderComplete_) {
        return true;  // a trailer
    }
    if (line.starts_with('\r') || line.starts_with('\n')) {  // by which libcurl knows the end
        return endHeaders();
    }
    const std::size_t colon = line.find(':');
    const std::string_view name = line.substr(0, colon);
    if (colon == std::string_view::npos || !isToken(name)) {
        return refuse(Code::badServerResponse, CURLE_WEIRD_SERVER_REPLY,
                      "the response has a malformed header line");
    }
    response_.headers.add(std::string(name), std::string(trimmed(line.substr(colon + 1))));
    return true;
}

bool URLTransfer::endHeaders() {
    isHeaderComplete_ = true;
    const auto status = response_.statusCode;
    if (status >= 100 && status < 200 && status != 100 && status != 102 && status != 103) {
        isEndedByStatus_ = true;
        return false;
    }
    const HTTPHeaders& headers = response_.headers;
    std::optional<std::string_view> length;
    for (const auto& [name, value] : headers.fields()) {
        if (equalsIgnoringCase(name, "Content-Length") &&
            std::exchange(length, value).value_or(value) != value) {
            return refuse(Code::badServerResponse, CURLE_WEIRD_SERVER_REPLY,
                          "the response claims two lengths");
        }
    }
    decoder_ = ContentDecoder::make(hasBody() ? headers.value("Content-Encoding").value_or("") : "",
                                    maximumBodySize_);
    if (!decoder_) {
        return refuse(Code::cannotDecodeContentData, CURLE_BAD_CONTENT_ENCODING,
                      "the body's content encoding is not known");
    }
    const auto coding = headers.value("Transfer-Encoding");
    const bool isChunked =
        coding && coding->size() >= 7 &&
        equalsIgnoringCase(std::string_view(*coding).substr(coding->size() - 7), "chunked");
    if (isVersion1_ && status >= 200 && hasBody() && !length && !isChunked) {
        expectCloseOfTLS();
    }
    return true;
}

/// libcurl takes the end of the connection for the end of a body without length, whoever cut it.
void URLTransfer::expectCloseOfTLS() {
    static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    const curl_tlssessioninfo* session = nullptr;
    curl_easy_getinfo(handle_.get(), CURLINFO_TLS_SSL_PTR, &session);
    precondition(session != nullptr && session->backend == CURLSSLBACKEND_OPENSSL,
                 "libcurl does not use OpenSSL");
    endsWithConnection_ = true;
    // The connection serves no other transfer after this one.
    auto* const ssl = static_cast<SSL*>(session->internals);
    SSL_set_ex_data(ssl, index, this);
    SSL_set_info_callback(ssl, [](const SSL* closing, int where, int alert) {
        constexpr int description = 0xFF;
        if (where == SSL_CB_READ_ALERT && (alert & description) == SSL_AD_CLOSE_NOTIFY) {
            static_cast<URLTransfer*>(SSL_get_ex_data(closing, index))->isConnectionClosed_ = true;
        }
    });
}

bool URLTransfer::takeBody(std::string_view bytes) {
    switch (decoder_->take(bytes)) {
        case ContentDecoder::Outcome::good:
            return true;
        case ContentDecoder::Outcome::tooLarge:
            return refuse(
                Code::dataLengthExceedsMaximum, CURLE_FILESIZE_EXCEEDED,
                "the response's body is longer than " + std::to_string(maximumBodySize_) + " bytes");
        case ContentDecoder::Outcome::damaged:
            break;
    }
    return refuse(Code::cannotDecodeContentData, CURLE_BAD_CONTENT_ENCODING,
                  "the body is not of its content encoding");
}

}  // namespace nimbuscope::platform
