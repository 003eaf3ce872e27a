#pragma once

#include <functional>
#include <map>
#include <string>

/// The server's side of request signing, written from the scheme alone.
namespace nimbuscope::testing {

/// What a server sees of a request.
struct SeenRequest {
    std::string method;
    std::string target;  ///< path and query as they came
    std::string host;    ///< of the Host header
    std::function<std::string(const std::string&)> header;
};

/// Why the request is not signed with one of these secrets (by access key); empty when it is.
[[nodiscard]] std::string faultOfSignature(const SeenRequest& request,
                                           const std::map<std::string, std::string>& secrets);

}  // namespace nimbuscope::testing
