#include "tests/support/ApiPeer.hpp"

#include <utility>

#include "tests/support/SignatureVerifier.hpp"

namespace nimbuscope::testing {

std::string ApiPeer::settings() const {
    return R"({"code":0,"message":"","data":{"rating":true,"hosts":{"api":[")" + host() +
           R"("]},"forecast":{"hourly":{"items":1},"daily":{"items":1}}}})";
}

void ApiPeer::misbehave(const std::string& target, int status, const std::string& body) {
    const std::lock_guard lock(mutex_);
    faults_[target] = {status, body};
}

void ApiPeer::behave() {
    const std::lock_guard lock(mutex_);
    faults_.clear();
}

void ApiPeer::forget() {
    const std::lock_guard lock(mutex_);
    secrets_.clear();
}

std::map<std::string, std::string> ApiPeer::secrets() const {
    const std::lock_guard lock(mutex_);
    return secrets_;
}

std::string ApiPeer::takeLog() {
    const std::lock_guard lock(mutex_);
    return std::exchange(log_, {});
}

void ApiPeer::answer(const httplib::Request& request, httplib::Response& response) {
    const std::lock_guard lock(mutex_);
    const auto reply = [&](int status, const std::string& body) {
        response.status = status;
        response.set_content(body, "application/json");
        response.set_header("Cache-Control", "max-age=600");
    };
    log_ += request.method + ' ' + request.target + ' ' + request.body + '\n';
    for (const auto& [target, fault] : faults_) {
        if (request.target.starts_with(target)) {
            return reply(fault.first, fault.second);
        }
    }
    if (request.target == "/mobile/authorization") {
        const std::string key = "key-" + std::to_string(++given_);
        const std::string& secret = secrets_[key] = "s3cret/of-" + std::to_string(given_);
        return reply(
            200, R"({"code":0,"message":"OK","data":{"key":")" + key + R"(","secret":")" + secret + "\"}}");
    }
    const std::string fault =
        faultOfSignature({request.method, request.target, request.get_header_value("Host"),
                          [&](const auto& name) { return request.get_header_value(name.c_str()); }},
                         secrets_);
    if (!fault.empty()) {
        log_ += "refused: " + fault + '\n';
        return reply(401, R"({"code":401,"message":"who are you?"})");
    }
    reply(200, request.target.starts_with("/mobile/maps/") ? timeline : R"({"code":0,"message":"OK"})");
}

}  // namespace nimbuscope::testing
