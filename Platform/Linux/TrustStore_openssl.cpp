#include "Platform/Linux/TrustStore_openssl.hpp"

#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <filesystem>

#include "Platform/Linux/Environment.hpp"

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

/// True where authorities can be found one by one, by the hashes of their names.
bool isHashedDirectory(const char* directory) {
    std::error_code error;
    const auto files = std::filesystem::directory_iterator(directory, error);
    return !error && std::any_of(begin(files), end(files),
                                 [](const auto& file) { return file.path().extension() == ".0"; });
}

/// Reading all of a system's authorities takes a tenth of a second; it is left out where they can be had one
/// by one and nobody asked for it.
void addAuthoritiesOfSystem(X509_STORE& store) {
    X509_LOOKUP_add_dir(X509_STORE_add_lookup(&store, X509_LOOKUP_hash_dir()), nullptr,
                        X509_FILETYPE_DEFAULT);
    if (environment(X509_get_default_cert_file_env()) ||
        !(environment(X509_get_default_cert_dir_env()) || isHashedDirectory(X509_get_default_cert_dir()))) {
        X509_LOOKUP_load_file(X509_STORE_add_lookup(&store, X509_LOOKUP_file()), nullptr,
                              X509_FILETYPE_DEFAULT);
    }
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
    addAuthoritiesOfSystem(*trust.store_);
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
