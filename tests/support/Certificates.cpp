#include "tests/support/Certificates.hpp"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <atomic>

namespace nimbuscope::testing {
namespace {

void addExtension(X509& certificate, int kind, const std::string& value) {
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
    X509_add_ext(&certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

}  // namespace

std::string Certificate::pem() const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_X509(memory.get(), x509.get());
    char* text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(size)};
}

Certificate makeCertificate(const CertificateOptions& options, const Certificate* issuer) {
    static std::atomic<long> serials = 0;
    const long serial = ++serials;
    // Authorities are found by their names.
    const std::string name = options.commonName + (options.isAuthority ? " " + std::to_string(serial) : "");
    const Certificate made{{X509_new(), X509_free}, {EVP_EC_gen("P-256"), EVP_PKEY_free}};
    X509& certificate = *made.x509;
    X509_set_version(&certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(&certificate), serial);
    X509_gmtime_adj(X509_getm_notBefore(&certificate), options.notBefore);
    X509_gmtime_adj(X509_getm_notAfter(&certificate), options.notAfter);
    X509_set_pubkey(&certificate, made.key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(&certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    const Certificate& signer = issuer != nullptr ? *issuer : made;
    X509_set_issuer_name(&certificate, X509_get_subject_name(signer.x509.get()));
    addExtension(certificate, NID_basic_constraints, options.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
    if (!options.alternativeNames.empty()) {
        addExtension(certificate, NID_subject_alt_name, options.alternativeNames);
    }
    X509_sign(&certificate, signer.key.get(), EVP_sha256());
    return made;
}

Identity Identity::make(const CertificateOptions& options) {
    const auto root =
        makeCertificate({.commonName = "Test Root", .alternativeNames = "", .isAuthority = true});
    const auto middle =
        makeCertificate({.commonName = "Test Middle", .alternativeNames = "", .isAuthority = true}, &root);
    return {{makeCertificate(options, &middle), middle}, root};
}

void Identity::use(SSL_CTX& context) const {
    SSL_CTX_use_certificate(&context, chain.front().x509.get());
    SSL_CTX_use_PrivateKey(&context, chain.front().key.get());
    for (std::size_t i = 1; i < chain.size(); ++i) {
        SSL_CTX_add1_chain_cert(&context, chain[i].x509.get());
    }
}

}  // namespace nimbuscope::testing
