#include "Platform/Linux/TrustStore_openssl.hpp"

#include <openssl/err.h>
#include <openssl/x509v3.h>

namespace nimbuscope::platform {
namespace {

/// Without such a name, libcurl would compare the host with the subject's common name.
bool namesHost(const X509& certificate) {
    const std::unique_ptr<GENERAL_NAMES, decltype(&GENERAL_NAMES_free)> names(
        static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(&certificate, NID_subject_alt_name, nullptr, nullptr)),
        GENERAL_NAMES_free);
    for (int i = 0; names != nullptr && i < sk_GENERAL_NAME_num(names.get()); ++i) {
        const int kind = sk_GENERAL_NAME_value(names.get(), i)->type;
        if (kind == GEN_DNS || kind == GEN_IPADD) {
            return true;
        }
    }
    return false;
}

int verify(int isVerified, X509_STORE_CTX* context) {
    if (isVerified == 1 && X509_STORE_CTX_get_error_depth(context) == 0 &&
        !namesHost(*X509_STORE_CTX_get_current_cert(context))) {
        X509_STORE_CTX_set_error(context, X509_V_ERR_HOSTNAME_MISMATCH);
        return 0;
    }
    return isVerified;
}

}  // namespace

Result<TrustStore, URLError> TrustStore::load(const std::string& additionalAuthorities) {
    TrustStore trust;
    trust.store_ = {X509_STORE_new(), X509_STORE_free};
    X509_STORE_set_default_paths(trust.store_.get());
    if (!additionalAuthorities.empty() &&
        X509_STORE_load_file(trust.store_.get(), additionalAuthorities.c_str()) != 1) {
        const unsigned long code = ERR_peek_last_error();
        const char* reason = ERR_reason_error_string(code);
        URLError error{URLError::Code::cannotLoadAuthorities,
                       {"openssl", ERR_GET_REASON(code),
                        additionalAuthorities + ": no certificate authorities: " +
                            (reason != nullptr ? reason : "the file cannot be read")}};
        ERR_clear_error();
        return std::unexpected(std::move(error));
    }
    ERR_clear_error();
    return trust;
}

void TrustStore::use(SSL_CTX& context) const {
    SSL_CTX_set1_cert_store(&context, store_.get());
    SSL_CTX_set_verify(&context, SSL_VERIFY_PEER, verify);
}

}  // namespace nimbuscope::platform
