#pragma once

#include <map>
#include <mutex>
#include <string>

#include "tests/support/HTTPSPeer.hpp"

namespace nimbuscope::testing {

/// The mobile API on the loopback interface: gives out credentials, serves the timeline and takes the sync,
/// to those alone whose signatures it can verify.
class ApiPeer {
  public:
    static constexpr const char* timeline =
        R"({"code":0,"message":"OK","data":{"radar":{"past":[{"time":1700000000,"path":"/r/1"}]}}})";

    ApiPeer() : peer_([this](const auto& request, auto& response) { answer(request, response); }) {}

    [[nodiscard]] std::string host() const { return peer_.host(); }
    [[nodiscard]] std::string authorityFile() const { return peer_.authorityFile(); }

    /// A settings document that names this server as the API's.
    [[nodiscard]] std::string settings() const;

    /// What it answers in place of the usual to a target that begins like this: a status and a body.
    void misbehave(const std::string& target, int status, const std::string& body);
    void behave();

    /// Forgets the credentials that it gave out.
    void forget();

    /// The secrets that it gave out, by access key, and what it was sent: target and body, or why a signature
    /// was refused.
    [[nodiscard]] std::map<std::string, std::string> secrets() const;
    [[nodiscard]] std::string takeLog();

  private:
    void answer(const httplib::Request& request, httplib::Response& response);

    mutable std::mutex mutex_;
    std::map<std::string, std::string> secrets_;
    std::map<std::string, std::pair<int, std::string>> faults_;
    std::string log_;
    int given_ = 0;
    HTTPSPeer peer_;
};

}  // namespace nimbuscope::testing
