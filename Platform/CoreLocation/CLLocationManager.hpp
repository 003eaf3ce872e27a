#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSError.hpp"
#include "Platform/CoreLocation/CLLocation.hpp"

namespace nimbuscope::platform {

/// How far off a position may be, in metres.
using CLLocationAccuracy = double;
inline constexpr CLLocationAccuracy kCLLocationAccuracyBest = -1;
inline constexpr CLLocationAccuracy kCLLocationAccuracyNearestTenMeters = 10;
inline constexpr CLLocationAccuracy kCLLocationAccuracyHundredMeters = 100;
inline constexpr CLLocationAccuracy kCLLocationAccuracyKilometer = 1000;
inline constexpr CLLocationAccuracy kCLLocationAccuracyThreeKilometers = 3000;

/// In metres.
using CLLocationDistance = double;
/// Every movement is reported.
inline constexpr CLLocationDistance kCLDistanceFilterNone = -1;

/// Whether this process may learn where the device is.
enum class CLAuthorizationStatus : std::int32_t {
    notDetermined = 0,  ///< the user was not asked, or nobody is there to ask
    restricted = 1,
    denied = 2,
    authorizedAlways = 3,
    authorizedWhenInUse = 4,
};
constexpr auto caseTable(CLAuthorizationStatus) {
    using enum CLAuthorizationStatus;
    return std::array{notDetermined, restricted, denied, authorizedAlways, authorizedWhenInUse};
}

/// The domain and the codes of the errors that a location manager reports.
inline constexpr std::string_view kCLErrorDomain = "kCLErrorDomain";
enum class CLErrorCode : std::uint8_t {
    locationUnknown = 0,  ///< the service reported a position that is none
    network = 2,          ///< the service is not to be reached, does not answer or failed
};

class CLLocationManager;

/// Learns where the device is. Called on the run loop of the manager, never from within a call to it; may
/// call the manager, and may take itself off.
class NIMBUSCOPE_EXPORT CLLocationManagerDelegate {
  public:
    virtual ~CLLocationManagerDelegate() = default;

    /// New positions, oldest first, at least one.
    virtual void didUpdateLocations(CLLocationManager& manager, std::span<const CLLocation> locations) = 0;

    /// The service is in trouble. Monitoring goes on, and positions come again when it recovers; it is told
    /// once for each trouble. A refusal is no failure but a status.
    virtual void didFailWithError(CLLocationManager& manager, const NSError& error) = 0;

    /// The answer to a request or a start, also where it is the status that was, and every change of it.
    virtual void didChangeAuthorization(CLLocationManager& manager, CLAuthorizationStatus status) = 0;
};

/// The operating system's location service as one process sees it. Used from the thread of its run loop
/// alone; no call waits for the service. A service that vanishes and returns is a normal state: the status is
/// `notDetermined` meanwhile, and what was being monitored goes on by itself.
class NIMBUSCOPE_EXPORT CLLocationManager {
  public:
    virtual ~CLLocationManager() = default;

    /// What the service said last; `notDetermined` before it was asked.
    [[nodiscard]] virtual CLAuthorizationStatus authorizationStatus() const = 0;
    [[nodiscard]] virtual bool significantLocationChangeMonitoringAvailable() const = 0;

    /// The latest position that was reported, if any.
    [[nodiscard]] virtual std::optional<CLLocation> location() const = 0;

    /// Who is told; nobody for null. Not owned: it outlives the manager or is taken off.
    virtual void setDelegate(CLLocationManagerDelegate* delegate) = 0;

    /// What regular updates ask for, at once where they run: how exact they are, and how far the device must
    /// have moved since the last one.
    virtual void setDesiredAccuracy(CLLocationAccuracy accuracy) = 0;
    virtual void setDistanceFilter(CLLocationDistance distance) = 0;

    [[nodiscard]] virtual bool allowsBackgroundLocationUpdates() const = 0;
    virtual void setAllowsBackgroundLocationUpdates(bool isAllowed) = 0;

    /// Asks the user, through the service; the delegate is told the answer.
    virtual void requestWhenInUseAuthorization() = 0;
    virtual void requestAlwaysAuthorization() = 0;

    /// After a stop no position is reported, not even one that was on its way. Starting what runs and
    /// stopping what does not do nothing. Where both kinds run, updates are the regular ones.
    virtual void startUpdatingLocation() = 0;
    virtual void stopUpdatingLocation() = 0;
    virtual void startMonitoringSignificantLocationChanges() = 0;
    virtual void stopMonitoringSignificantLocationChanges() = 0;
};

}  // namespace nimbuscope::platform
