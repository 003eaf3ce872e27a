#include "NimbuscopeKit/Location/LocationManager.hpp"

#include <cstdio>
#include <utility>

#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {

using platform::CLAuthorizationStatus;
using platform::CLLocation;
using platform::CLLocationManager;

LocationManagerState locationManagerState(CLAuthorizationStatus status) {
    switch (status) {
        case CLAuthorizationStatus::notDetermined:
            return LocationManagerState::undetermined;
        case CLAuthorizationStatus::restricted:
            return LocationManagerState::restricted;
        case CLAuthorizationStatus::denied:
            return LocationManagerState::denied;
        case CLAuthorizationStatus::authorizedAlways:
            return LocationManagerState::availableAlways;
        case CLAuthorizationStatus::authorizedWhenInUse:
            return LocationManagerState::available;
    }
    platform::fatalError("no such authorisation status");
}

std::string_view description(LocationManagerState state) {
    switch (state) {
        case LocationManagerState::available:
            return "available";
        case LocationManagerState::availableAlways:
            return "available always";
        case LocationManagerState::undetermined:
            return "undetermined";
        case LocationManagerState::denied:
            return "denied";
        case LocationManagerState::restricted:
            return "restricted";
        case LocationManagerState::disabled:
            return "disabled";
    }
    platform::fatalError("no such state");
}

LocationManager::LocationManager(std::shared_ptr<PreferencesService> preferencesService,
                                 std::unique_ptr<CLLocationManager> manager)
    : preferencesService_(std::move(preferencesService)), manager_(std::move(manager)) {
    manager_->setAllowsBackgroundLocationUpdates(true);
    manager_->setDesiredAccuracy(platform::kCLLocationAccuracyHundredMeters);
    manager_->setDistanceFilter(platform::kCLLocationAccuracyKilometer);
    manager_->setDelegate(this);
}

LocationManager::~LocationManager() {
    manager_->setDelegate(nullptr);
}

std::optional<CLLocation> LocationManager::last() const {
    const auto kept = preferencesService_->preferences().map.currentLocation;
    return kept ? std::optional(CLLocation{.coordinate = {kept->lat, kept->lon}}) : std::nullopt;
}

void LocationManager::setLast(const std::optional<CLLocation>& location) {
    preferencesService_->modifyPreferences([&](AppPreferences& preferences) {
        auto& kept = preferences.map.currentLocation;
        kept.reset();
        if (location) {
            kept = {.lat = location->coordinate.latitude, .lon = location->coordinate.longitude};
        }
    });
}

void LocationManager::setMonitoringState(MonitoringState state) {
    const auto before = std::exchange(monitoringState_, state);
    if (before == state) {
        return;
    }
    switch (before) {
        case MonitoringState::disabled:
            break;
        case MonitoringState::regular:
            manager_->stopUpdatingLocation();
            break;
        case MonitoringState::significant:
            manager_->stopMonitoringSignificantLocationChanges();
            break;
    }
    switch (state) {
        case MonitoringState::disabled:
            break;
        case MonitoringState::regular:
            manager_->startUpdatingLocation();
            break;
        case MonitoringState::significant:
            manager_->startMonitoringSignificantLocationChanges();
            break;
    }
}

bool LocationManager::request(bool always) {
    switch (state()) {
        case State::undetermined:
        case State::restricted:
            always ? manager_->requestAlwaysAuthorization() : manager_->requestWhenInUseAuthorization();
            return true;
        case State::available:
            if (always) {
                manager_->requestAlwaysAuthorization();
            }
            return always;
        case State::denied:
        case State::availableAlways:
        case State::disabled:
            return false;
    }
    platform::fatalError("no such state");
}

bool LocationManager::request(bool always, AuthorizationStatusCompletion completion) {
    authorizationStatusCompletion_ = std::move(completion);
    return request(always);
}

void LocationManager::addDelegate(std::shared_ptr<LocationManagerDelegate> delegate) {
    delegates_.add(std::move(delegate));
}

void LocationManager::removeDelegate(const LocationManagerDelegate& delegate) {
    delegates_.remove(delegate);
}

void LocationManager::didUpdateLocations(CLLocationManager& /*manager*/,
                                         std::span<const CLLocation> locations) {
    const CLLocation location = locations.back();
    setLast(location);
    delegates_.tell([&](LocationManagerDelegate& delegate) { delegate.didReceiveLocation(location); });
}

void LocationManager::didFailWithError(CLLocationManager& /*manager*/, const platform::NSError& error) {
    std::fprintf(stderr, "Location getting error: %s\n", error.localizedDescription.c_str());
}

void LocationManager::didChangeAuthorization(CLLocationManager& /*manager*/, CLAuthorizationStatus status) {
    const State changed = locationManagerState(status);
    const auto completion = authorizationStatusCompletion_;  // which may request anew
    if (completion) {
        completion(changed);
    }
    delegates_.tell([&](LocationManagerDelegate& delegate) { delegate.didChangeState(changed); });
}

}  // namespace nimbuscope
