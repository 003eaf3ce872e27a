#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Core/Result.hpp"
#include "Platform/CoreLocation/CLLocationManager.hpp"
#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "Platform/Linux/SDBusRunLoop.hpp"

namespace nimbuscope::platform {

/// What is asked of GeoClue, in its own terms.
struct GeoClueRequest {
    std::uint32_t accuracyLevel = 0;
    std::uint32_t distanceThreshold = 0;  ///< metres

    bool operator==(const GeoClueRequest&) const = default;
};

/// Learns what GeoClue says. Called on the run loop; may call the service.
class GeoClueObserver {
  public:
    virtual ~GeoClueObserver() = default;
    /// The status is known: first after each `follow`, then when it changes.
    virtual void answered(CLAuthorizationStatus status) = 0;
    virtual void located(const CLLocation& location) = 0;
    virtual void failed(const NSError& error) = 0;
};

/// The conversation with GeoClue: it is asked for a client, which is told what is wanted and started; each
/// new position is fetched. Calls to the service are asynchronous, each with a time-out; connecting and
/// subscribing are answered by the bus itself.
///
/// What is under way is a round. A round ends when it is not answered, when the service or the bus vanishes
/// and when nothing is wanted any more; what arrives for a round that has ended is dropped. The next round
/// begins when the service appears or after a delay.
class GeoClueService : public std::enable_shared_from_this<GeoClueService> {
  public:
    using Properties = std::map<std::string, sdbus::Variant>;

    GeoClueService(const asio::any_io_executor& runLoop, GeoClueOptions options, GeoClueObserver& observer);

    /// Follows `request` from now on, in place of what was followed before.
    void follow(const GeoClueRequest& request);

    /// Nothing is wanted any more.
    void release();

    /// The observer is told nothing from now on.
    void forgetObserver() { observer_ = nullptr; }

  private:
    template <class T>
    using Reply = Result<T, sdbus::Error>;

    /// How long a subscription counts.
    enum class Until : std::uint8_t { busIsLost, roundEnds };

    [[nodiscard]] Reply<void> connect();
    void disconnect();
    template <class... Values, class Handler>
    void subscribe(const std::string& match, Until end, Handler handler);
    template <class T, class Done, class... Arguments>
    void call(sdbus::IProxy& object, const char* interface, const char* method,
              std::chrono::milliseconds timeout, Done done, const Arguments&... arguments);

    void beginRound();
    void endRound();
    void useClient(const sdbus::ObjectPath& path);
    void start();
    void clientChanged(const Properties& changed);
    void fetchLocation();
    void answer(CLAuthorizationStatus status);
    void unanswered(const sdbus::Error& error);
    void tell(CLErrorCode code, const std::string& what);
    void retryLater();
    void serviceVanished();
    void serviceAppeared();

    asio::any_io_executor runLoop_;
    GeoClueOptions options_;
    GeoClueObserver* observer_;
    std::optional<GeoClueRequest> request_;
    std::optional<CLAuthorizationStatus> answered_;
    bool isTroubleKnown_ = false;
    asio::steady_timer retryTimer_;
    std::uint64_t round_ = 0;
    bool isUnderWay_ = false;

    // In this order: proxies and subscriptions go before their connection.
    std::shared_ptr<SDBusRunLoop> bus_;
    std::vector<sdbus::Slot> serviceSubscriptions_;
    std::unique_ptr<sdbus::IProxy> manager_;
    std::vector<sdbus::Slot> clientSubscriptions_;
    std::unique_ptr<sdbus::IProxy> client_;
    bool isRunning_ = false;  ///< the client has started
    std::optional<sdbus::ObjectPath> locationPath_;
    std::unique_ptr<sdbus::IProxy> location_;
};

}  // namespace nimbuscope::platform
