#pragma once

#include <string>

#include "Platform/Core/NSError.hpp"

namespace nimbuscope::platform {

/// Why a request got no response.
struct URLError {
    enum class Code {
        cancelled,                        ///< the session was given up
        badURL,                           ///< the address, or a header to send, is malformed
        unsupportedURL,                   ///< the scheme is not https
        cannotFindHost,                   ///< the name does not resolve
        cannotConnectToHost,              ///< nobody listens there
        timedOut,                         ///< nothing came for too long, too little, or not all in time
        networkConnectionLost,            ///< the connection ended before the response was whole
        secureConnectionFailed,           ///< no agreement on TLS
        serverCertificateHasBadDate,      ///< a certificate has expired
        serverCertificateNotYetValid,     ///< a certificate is from the future
        serverCertificateHasUnknownRoot,  ///< the chain leads to no authority that is trusted
        serverCertificateUntrusted,       ///< the certificate is rejected for any other reason
        serverCertificateHasWrongName,    ///< the certificate is another host's, or names no host
        badServerResponse,                ///< what came is no HTTP response
        headersExceedMaximum,             ///< the header section is larger than allowed
        dataLengthExceedsMaximum,         ///< the body is, or says it is, larger than allowed
        cannotDecodeContentData,          ///< the body's content encoding is broken
        cannotLoadAuthorities,            ///< the file of additional authorities cannot be read
        unknown,                          ///< anything else; see the cause
    };

    Code code = Code::unknown;

    /// What the transport said, with its own number: of domain "libcurl" where it was libcurl.
    NSError cause;

    /// One sentence, without header values and bodies.
    [[nodiscard]] const std::string& message() const { return cause.localizedDescription; }

    bool operator==(const URLError&) const = default;
};

}  // namespace nimbuscope::platform
