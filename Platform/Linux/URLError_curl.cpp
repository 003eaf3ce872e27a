#include "Platform/Linux/URLError_curl.hpp"

#include <openssl/x509_vfy.h>

namespace nimbuscope::platform {
namespace {

using Code = URLError::Code;

Code codeOfCertificate(long verifyResult) {
    switch (verifyResult) {
        case X509_V_ERR_UNSPECIFIED:  // libcurl compared the names, before it asked for this
        case X509_V_ERR_HOSTNAME_MISMATCH:
        case X509_V_ERR_IP_ADDRESS_MISMATCH:
            return Code::serverCertificateHasWrongName;
        case X509_V_ERR_CERT_HAS_EXPIRED:
            return Code::serverCertificateHasBadDate;
        case X509_V_ERR_CERT_NOT_YET_VALID:
            return Code::serverCertificateNotYetValid;
        case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
        case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
        case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
            return Code::serverCertificateHasUnknownRoot;
        default:
            return Code::serverCertificateUntrusted;
    }
}

Code codeOf(CURLcode outcome) {
    switch (outcome) {
        case CURLE_URL_MALFORMAT:
            return Code::badURL;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return Code::cannotFindHost;
        case CURLE_COULDNT_CONNECT:
            return Code::cannotConnectToHost;
        case CURLE_OPERATION_TIMEDOUT:
            return Code::timedOut;
        case CURLE_GOT_NOTHING:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return Code::networkConnectionLost;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CIPHER:
            return Code::secureConnectionFailed;
        case CURLE_UNSUPPORTED_PROTOCOL:  // of the response: schemes other than https come not so far
        case CURLE_WEIRD_SERVER_REPLY:
            return Code::badServerResponse;
        case CURLE_FILESIZE_EXCEEDED:
            return Code::dataLengthExceedsMaximum;
        case CURLE_BAD_CONTENT_ENCODING:
            return Code::cannotDecodeContentData;
        default:
            return Code::unknown;
    }
}

}  // namespace

URLError errorOf(CURLcode outcome, CURL* handle, const char* errorText) {
    Code code = codeOf(outcome);
    if (outcome == CURLE_PEER_FAILED_VERIFICATION) {
        long verifyResult = X509_V_ERR_UNSPECIFIED;
        curl_easy_getinfo(handle, CURLINFO_SSL_VERIFYRESULT, &verifyResult);
        code = codeOfCertificate(verifyResult);
    }
    const char* text = *errorText != '\0' ? errorText : curl_easy_strerror(outcome);
    return {code, {"libcurl", static_cast<int>(outcome), text}};
}

}  // namespace nimbuscope::platform
