#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>

#include "Platform/Core/Result.hpp"
#include "Platform/URLLoading/URLError.hpp"

namespace nimbuscope::platform {

/// The certificate authorities that a session trusts. Safe from any thread once made.
class TrustStore {
  public:
    /// Those of the system, and of the PEM file `additionalAuthorities` unless its name is empty. Fails with
    /// `cannotLoadAuthorities` where that file holds none.
    [[nodiscard]] static Result<TrustStore, URLError> load(const std::string& additionalAuthorities);

    /// Lets connections of `context` trust these authorities and nobody else, refuse certificates that name
    /// no host in a subjectAltName, and take a connection cut without TLS's close for the error that it is.
    void use(SSL_CTX& context) const;

  private:
    std::shared_ptr<X509_STORE> store_;
};

}  // namespace nimbuscope::platform
