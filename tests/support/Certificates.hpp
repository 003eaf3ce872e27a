#pragma once

#include <openssl/x509.h>

#include <memory>
#include <string>
#include <vector>

/// Certificates made for one test run.
namespace nimbuscope::testing {

/// A certificate with its private key.
struct Certificate {
    std::shared_ptr<X509> x509;
    std::shared_ptr<EVP_PKEY> key;

    /// The certificate alone, as PEM.
    [[nodiscard]] std::string pem() const;
};

struct CertificateOptions {
    std::string commonName = "localhost";
    std::string alternativeNames = "DNS:localhost,IP:127.0.0.1";  ///< no such extension when empty
    long notBefore = -3600;                                       ///< seconds from now
    long notAfter = 3600;
    bool isAuthority = false;
};

/// A certificate issued by `issuer`, or by itself.
[[nodiscard]] Certificate makeCertificate(const CertificateOptions& options,
                                          const Certificate* issuer = nullptr);

/// What a server shows, the host's certificate first, and the authority that clients should trust.
struct Identity {
    std::vector<Certificate> chain;
    Certificate authority;

    /// A certificate for localhost and 127.0.0.1, issued by an authority of the run's own through an
    /// intermediate one; `options` bends the host's.
    [[nodiscard]] static Identity make(const CertificateOptions& options = {});

    /// Lets a server show this identity.
    void use(SSL_CTX& context) const;
};

}  // namespace nimbuscope::testing
