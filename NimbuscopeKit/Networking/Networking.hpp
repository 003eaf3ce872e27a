#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "NimbuscopeKit/Networking/Authorization.hpp"
#include "NimbuscopeKit/Networking/Hosts.hpp"
#include "NimbuscopeKit/Networking/RequestError.hpp"
#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "NimbuscopeKit/Networking/UserService.hpp"
#include "NimbuscopeKit/Preferences/ErrorTrackingService.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiResponse.hpp"
#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Concurrency/Clock.hpp"
#include "Platform/Concurrency/RunLoop.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSObject.hpp"
#include "Platform/URLLoading/URLSession.hpp"

namespace nimbuscope {

/// The HTTP transport: plain requests for any URL, and requests to the mobile API, which it signs.
///
/// Requests may be made on any thread; timers are scheduled and unscheduled on the main thread. Callbacks are
/// called on the queue, and must not throw. A request whose Networking is gone is not called back.
class NIMBUSCOPE_EXPORT Networking final : public platform::NSObject,
                                           public std::enable_shared_from_this<Networking> {
  public:
    using NetworkError = nimbuscope::NetworkError;
    using StatusCodeError = nimbuscope::StatusCodeError;

    /// A header field that a caller may choose.
    struct Header {
        enum class ContentType { applicaitonJson };
        ContentType contentType;
    };

    /// What it works with. All of them outlive it; the error tracking may be null.
    struct Services {
        platform::URLSession& session;
        platform::DispatchQueue& queue;  ///< labelled "Network": requests are prepared there
        platform::RunLoop& main;         ///< requests wait there, timers fire there
        const platform::Clock& clock;
        Hosts& hosts;              ///< used on the queue alone
        UserService& userService;  ///< used on `main`
        ErrorTrackingService* errorTracking = nullptr;
    };

    /// The process's one instance, over the user's stores and cache, made with the first call. Stops the
    /// process when there are no such stores to open.
    [[nodiscard]] static const std::shared_ptr<Networking>& default_();

    [[nodiscard]] static std::shared_ptr<Networking> make(Services services, Authorization authorization);

    [[nodiscard]] std::string_view className() const override { return "Networking"; }

    /// Loads the body that a URL names.
    void request(std::string url, RequestHandler<platform::Data> callback);

    /// As `request`, while the application is in the background.
    void backgroundRequest(std::string url, RequestHandler<platform::Data> callback);

    /// Sends a request, signed, to `path` of the API, which may have a query, and decodes the payload of the
    /// reply, or the whole reply where T is an `ApiEnvelope`. The body is sent with POST alone. Where there
    /// are no credentials yet, they are obtained first, once for all who wait; when that fails, all who wait
    /// get `APIError::authorizationError` and the error tracking learns the cause.
    ///
    /// After a reply with status 401 or 403 the credentials that it refused are given up, so that the next
    /// request obtains new ones.
    template <class T>
    void authorizedRequest(std::string path, std::string method, const std::vector<Header>& headers,
                           std::optional<platform::Data> body, RequestHandler<T> callback) {
        authorizedData(std::move(path), std::move(method), headers, std::move(body),
                       [this, callback = std::move(callback)](RequestResult<platform::Data> reply) mutable {
                           callback(decoded<T>(std::move(reply)));
                       });
    }

    /// Calls back once there are credentials, or with the reason why there are none.
    void obtainCredentials(RequestHandler<void> callback);

    /// Gives up the credentials, stored and at hand.
    void resetCredentials(RequestHandler<void> callback);

    /// Repeats a request at an interval in seconds, from 0 to 10^9, give or take a tenth of it, and also at
    /// once where `fireImmediately` is true. Main thread.
    void scheduledRequest(const std::string& url, double timeInterval, bool fireImmediately,
                          RepeatedHandler<platform::Data> callback);

    /// As `scheduledRequest`, for a GET of the API. Takes the place of the one that was scheduled for `path`.
    template <class T>
    void scheduledAuthorizedRequest(const std::string& path, double timeInterval, bool fireImmediately,
                                    RepeatedHandler<T> callback) {
        auto timer = repeatingTimer(timeInterval, [path, callback](Networking& networking) {
            networking.authorizedRequest<T>(path, "GET", {}, std::nullopt, callback);
        });
        unscheduleAuthorizedRequest(path);
        authorizedTimers_.emplace(path, timer);
        start(std::move(timer), fireImmediately);
    }

    /// Ends what is scheduled. Main thread.
    void unscheduleAuthorizedRequest(const std::string& path);
    void unscheduleAllAuthorizedRequests();
    void unscheduleAllRequests();

    /// Removes every response that the session has cached.
    void clearCache();

  private:
    using DataHandler = RequestHandler<platform::Data>;
    using Timer = std::shared_ptr<platform::Timer>;

    explicit Networking(Services services, Authorization authorization)
        : services_(services), authorization_(std::move(authorization)) {}

    template <class T>
    [[nodiscard]] RequestResult<T> decoded(RequestResult<platform::Data> reply) {
        if (!reply) {
            return std::unexpected(std::move(reply.error()));
        }
        const auto decodedAs = [&]<class Whole>() { return decoder_.decode<Whole>(*reply); };
        if constexpr (ApiEnvelope<T>) {
            auto whole = decodedAs.template operator()<T>();
            return whole ? RequestResult<T>(std::move(*whole)) : std::unexpected(std::move(whole.error()));
        } else {
            auto whole = decodedAs.template operator()<ApiResponse<T>>();
            return whole ? RequestResult<T>(std::move(whole->data))
                         : std::unexpected(std::move(whole.error()));
        }
    }

    void authorizedData(std::string path, std::string method, const std::vector<Header>& headers,
                        std::optional<platform::Data> body, DataHandler callback);
    [[nodiscard]] std::string apiBaseURL() const;
    template <class Work>
    void onQueue(Work work);

    // On the queue:
    void load(platform::URLRequest request, DataHandler callback);
    template <class Ready>
    void withCredentials(Ready ready);
    void awaitCredentials(RequestHandler<void> ready);
    void waitForExchange(std::uint64_t number, RequestHandler<void> ready);
    void requestCredentials(RequestHandler<void> ready);
    void finishExchange(RequestResult<platform::Data> reply, RequestHandler<void> ready);
    void sendSigned(platform::URLRequest request, DataHandler callback);
    [[nodiscard]] RequestResult<void> giveUpCredentials();

    // On the main thread:
    [[nodiscard]] platform::Data clientDescription() const;
    [[nodiscard]] Timer repeatingTimer(double timeInterval, std::function<void(Networking&)> request);
    void start(Timer timer, bool fireImmediately);

    Services services_;

    // On the queue alone:
    Authorization authorization_;
    RequestSigner signer_;
    platform::JSONDecoder decoder_;
    bool authRequest_ = false;          // an exchange of credentials is under way
    std::uint64_t exchange_ = 0;        // number of the latest
    std::uint64_t failedExchange_ = 0;  // number of the latest that failed

    // On the main thread alone:
    std::map<std::string, Timer> authorizedTimers_;
    std::vector<Timer> timers_;
};

constexpr auto caseTable(Networking::Header::ContentType) {
    using enum Networking::Header::ContentType;
    return std::array{platform::TextCase{applicaitonJson, "application/json"}};
}

}  // namespace nimbuscope
