#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "NimbuscopeKit/Location/LocationManagerState.hpp"
#include "NimbuscopeKit/Preferences/PreferencesService.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/ObserverList.hpp"
#include "Platform/CoreLocation/CLLocationManager.hpp"

namespace nimbuscope {

/// Distances in metres for the application's use.
inline constexpr double kLocationManagerMonitoringDistance = 300.0;
inline constexpr double kLocationManagerIgnoreChanges = 15.0;

/// Receives location events. May add and remove delegates, and use the location manager, while it is told.
class NIMBUSCOPE_EXPORT LocationManagerDelegate {
  public:
    virtual ~LocationManagerDelegate() = default;
    virtual void didReceiveLocation(const platform::CLLocation& location) = 0;
    virtual void didChangeState(LocationManagerState state) = 0;
};

/// The platform's location service for the rest of the system: it asks the user for permission, switches
/// between the kinds of monitoring, keeps the last position and hands events on to its delegates. Used from
/// the thread of the platform manager's run loop.
class NIMBUSCOPE_EXPORT LocationManager final : private platform::CLLocationManagerDelegate {
  public:
    using State = LocationManagerState;
    enum class MonitoringState : std::uint8_t { disabled, regular, significant };
    using AuthorizationStatusCompletion = std::function<void(State state)>;

    /// Sets the platform manager up: updates in the background, a hundred metres of accuracy, a kilometre
    /// between two positions.
    LocationManager(std::shared_ptr<PreferencesService> preferencesService,
                    std::unique_ptr<platform::CLLocationManager> manager);
    ~LocationManager() override;
    LocationManager(const LocationManager&) = delete;
    LocationManager& operator=(const LocationManager&) = delete;

    /// The process's one instance over the user's stores, made with the first call; it works on the main run
    /// loop. Stops the process when there are no such stores to open.
    [[nodiscard]] static LocationManager& main();

    /// What the platform says now.
    [[nodiscard]] State state() const { return locationManagerState(manager_->authorizationStatus()); }
    [[nodiscard]] bool significantLocationChangeAvailable() const {
        return manager_->significantLocationChangeMonitoringAvailable();
    }

    /// The last known position, kept in the preferences as the map's current location: its latitude and
    /// longitude and nothing else. Setting none forgets it.
    [[nodiscard]] std::optional<platform::CLLocation> last() const;
    void setLast(const std::optional<platform::CLLocation>& location);

    /// The platform's latest position, if it has one.
    [[nodiscard]] std::optional<platform::CLLocation> currentlocation() const { return manager_->location(); }

    [[nodiscard]] bool allowsBackgroundLocationUpdates() const {
        return manager_->allowsBackgroundLocationUpdates();
    }
    void setAllowsBackgroundLocationUpdates(bool isAllowed) {
        manager_->setAllowsBackgroundLocationUpdates(isAllowed);
    }

    /// Which positions are monitored. A change stops the old kind before it starts the new one; setting what
    /// is does nothing.
    [[nodiscard]] MonitoringState monitoringState() const { return monitoringState_; }
    void setMonitoringState(MonitoringState state);

    /// Whether positions are monitored.
    [[nodiscard]] bool isRequestingLocation() const { return monitoringState_ != MonitoringState::disabled; }

    /// Asks the user for permission, `always` or while in use, where an answer could improve on the status,
    /// and tells whether it asked.
    bool request(bool always);

    /// The same; `completion`, in place of an earlier one, is called with each change of the authorisation
    /// that the platform reports from now on.
    bool request(bool always, AuthorizationStatusCompletion completion);

    /// Delegates are told in the order in which they were added.
    void addDelegate(std::shared_ptr<LocationManagerDelegate> delegate);
    void removeDelegate(const LocationManagerDelegate& delegate);

  private:
    void didUpdateLocations(platform::CLLocationManager& manager,
                            std::span<const platform::CLLocation> locations) override;
    void didFailWithError(platform::CLLocationManager& manager, const platform::NSError& error) override;
    void didChangeAuthorization(platform::CLLocationManager& manager,
                                platform::CLAuthorizationStatus status) override;

    std::shared_ptr<PreferencesService> preferencesService_;
    AuthorizationStatusCompletion authorizationStatusCompletion_;
    platform::ObserverList<LocationManagerDelegate> delegates_;
    std::unique_ptr<platform::CLLocationManager> manager_;
    MonitoringState monitoringState_ = MonitoringState::disabled;
};

}  // namespace nimbuscope
