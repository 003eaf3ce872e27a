#pragma once

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "CommandLine.hpp"
#include "NimbuscopeKit/Networking/Networking.hpp"
#include "NimbuscopeKit/Networking/ServerSync.hpp"
#include "NimbuscopeKit/Networking/UserServiceImpl.hpp"
#include "Platform/Linux/URLSession_curl.hpp"

namespace nimbuscope::tool {

/// The host table in the store that the command line names.
[[nodiscard]] CommandResult<std::unique_ptr<Hosts>> openHosts(const CommandLine& commandLine);

/// The client of the mobile API, put together of the system's services, for commands that wait for its
/// answers.
class ApiClient {
  public:
    /// `caFile` names a PEM file of further certificate authorities to trust; none when empty,
    /// standard input for "-".
    [[nodiscard]] static CommandResult<std::unique_ptr<ApiClient>> open(const CommandLine& commandLine,
                                                                        const std::string& caFile);

    [[nodiscard]] const std::shared_ptr<Networking>& networking() const { return networking_; }
    /// Tracks nothing: its errors reach the caller, and would hide why the server gave no credentials.
    [[nodiscard]] ServerSync serverSync() const { return {userService_, networking_, nullptr}; }

    /// Lets `start` begin a request with the handler that it is given, and returns what that receives.
    template <class T, class Start>
    [[nodiscard]] CommandResult<T> await(const std::string& what, Start start) {
        std::optional<RequestResult<T>> outcome;
        start(RequestHandler<T>([&](RequestResult<T> received) {
            main_.async([&, received = std::move(received)]() mutable {
                outcome = std::move(received);
                main_.stop();
            });
        }));
        main_.run();
        if (!*outcome) {
            return std::unexpected(CommandError{what, reasonOf(outcome->error())});
        }
        if constexpr (std::is_void_v<T>) {
            return {};
        } else {
            return std::move(**outcome);
        }
    }

  private:
    /// Keeps the last error that the client deals with itself.
    class Errors final : public ErrorTrackingService {
      public:
        void track(const platform::NSError& error) override { last = error.localizedDescription; }
        std::string last;
    };

    ApiClient(std::unique_ptr<Hosts> hosts, std::shared_ptr<platform::NSUserDefaults> group,
              const std::string& caFile);

    [[nodiscard]] std::string reasonOf(const RequestError& error) const;

    // In the order in which each needs those before it.
    std::shared_ptr<Errors> errors_ = std::make_shared<Errors>();
    std::unique_ptr<Hosts> hosts_;
    std::shared_ptr<UserServiceImpl> userService_;
    platform::SystemClock clock_;
    platform::MainRunLoop main_;
    std::unique_ptr<platform::CurlURLSession> session_;
    std::shared_ptr<Networking> networking_;
};

}  // namespace nimbuscope::tool
