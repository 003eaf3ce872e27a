#pragma once

#include <chrono>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Security/CommonCrypto.hpp"
#include "Platform/URLLoading/URLError.hpp"
#include "Platform/URLLoading/URLRequest.hpp"

/// Signatures that prove to the mobile API who asks: NB-HMAC-SHA256, a chain of keys derived from the secret,
/// the day and the scope "eu-west-1/mobile/nb_request". Signed are the method, the URL's path and query and
/// the host; never the body. The scheme is described in docs/request-signing.md.
namespace nimbuscope {

/// A signature as it is sent.
struct NIMBUSCOPE_EXPORT RequestSignature {
    std::string algorithm;      ///< "NB-HMAC-SHA256"
    std::string credential;     ///< access key, "/", day and scope
    std::string date;           ///< when it was signed: 20240307T091502Z
    std::string signedHeaders;  ///< names, sorted, joined with ","
    std::string signature;      ///< 64 lower-case hexadecimal digits

    /// The five header fields of a request that carry it.
    [[nodiscard]] platform::HTTPHeaders headers() &&;
};

/// What stands for a request in its signature: method, path, query, host and a word for the body, in lines.
/// The path is decoded and encoded again; the query's parameters are decoded and sorted by name. Fails for a
/// URL without such a form.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::Result<std::string, platform::URLError> canonicalRequest(
    std::string_view method, std::string_view url);

/// Signs requests. One thread at a time: it keeps its working memory, and the key that it derived last, which
/// serves all requests of a day.
class NIMBUSCOPE_EXPORT RequestSigner {
  public:
    using Instant = std::chrono::sys_time<std::chrono::milliseconds>;  ///< whose range is all years

    RequestSigner();
    ~RequestSigner();

    /// The signature of `request` at `now` with the access key and the secret. Signs the host, whatever
    /// further names of headers are listed. Fails for a URL that cannot be signed.
    [[nodiscard]] platform::Result<RequestSignature, platform::URLError> sign(
        const platform::URLRequest& request, std::span<const std::string_view> signedHeaders,
        std::string_view key, std::string_view secret, Instant now);

  private:
    [[nodiscard]] const platform::SHA256Digest& signingKey(std::string_view secret, std::string_view day);

    platform::SHA256 sha256_;
    std::string secret_;  // what the key at hand was derived from
    std::string day_;     // empty while there is none
    platform::SHA256Digest key_{};
};

}  // namespace nimbuscope
