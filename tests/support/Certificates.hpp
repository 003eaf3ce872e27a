#pragma once

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <atomic>
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
    [[nodiscard]] std::string pem() const {
        return written([this](BIO* to) { PEM_write_bio_X509(to, x509.get()); });
    }

    /// The private key, as PEM.
    [[nodiscard]] std::string keyPEM() const {
        return written([this](BIO* to) {
            PEM_write_bio_PrivateKey(to, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
        });
    }

  private:
    template <class Write>
    static std::string written(const Write& write) {
        const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
        write(memory.get());
        char* text = nullptr;
        const long size = BIO_get_mem_data(memory.get(), &text);
        return {text, static_cast<std::size_t>(size)};
    }
};

struct CertificateOptions {
    std::string commonName = "localhost";
    std::string alternativeNames = "DNS:localhost,IP:127.0.0.1";  ///< no such extension when empty
    long notBefore = -3600;                                       ///< seconds from now
    long notAfter = 3600;
    bool isAuthority = false;
};

/// A certificate issued by `issuer`, or by itself.
[[nodiscard]] inline Certificate makeCertificate(const CertificateOptions& options,
                                                 const Certificate* issuer = nullptr) {
    static std::atomic<long> serials = 0;
    const long serial = ++serials;
    // Authorities are found by their names.
    const std::string name = options.commonName + (options.isAuthority ? " " + std::to_string(serial) : "");
    const Certificate made{{X509_new(), X509_free}, {EVP_EC_gen("P-256"), EVP_PKEY_free}};
    X509* const certificate = made.x509.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate), options.notBefore);
    X509_gmtime_adj(X509_getm_notAfter(certificate), options.notAfter);
    X509_set_pubkey(certificate, made.key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    const Certificate& signer = issuer != nullptr ? *issuer : made;
    X509_set_issuer_name(certificate, X509_get_subject_name(signer.x509.get()));
    const auto extend = [&](int kind, const char* value) {
        X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value);
        X509_add_ext(certificate, extension, -1);
        X509_EXTENSION_free(extension);
    };
    extend(NID_basic_constraints, options.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
    if (!options.alternativeNames.empty()) {
        extend(NID_subject_alt_name, options.alternativeNames.c_str());
    }
    X509_sign(certificate, signer.key.get(), EVP_sha256());
    return made;
}

/// What a server shows, the host's certificate first, and the authority that clients should trust.
struct Identity {
    std::vector<Certificate> chain;
    Certificate authority;

    /// A certificate for localhost and 127.0.0.1, issued by an authority of the run's own through an
    /// intermediate one.
    [[nodiscard]] static Identity make() {
        const CertificateOptions options{.alternativeNames = "", .isAuthority = true};
        const auto root = makeCertificate(options);
        const auto middle = makeCertificate(options, &root);
        return {{makeCertificate({}, &middle), middle}, root};
    }

    /// Lets a server show this identity.
    void use(SSL_CTX& context) const {
        SSL_CTX_use_certificate(&context, chain.front().x509.get());
        SSL_CTX_use_PrivateKey(&context, chain.front().key.get());
        for (std::size_t i = 1; i < chain.size(); ++i) {
            SSL_CTX_add1_chain_cert(&context, chain[i].x509.get());
        }
    }
};

}  // namespace nimbuscope::testing
