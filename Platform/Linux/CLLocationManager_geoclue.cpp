#include "Platform/Linux/CLLocationManager_geoclue.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Linux/GeoClueService.hpp"

namespace nimbuscope::platform {
namespace {

/// GeoClue's levels of accuracy.
enum class AccuracyLevel : std::uint32_t { city = 4, neighborhood = 5, street = 6, exact = 8 };

/// Each level with the accuracy, in metres, that is fine enough to need it.
AccuracyLevel levelOf(CLLocationAccuracy accuracy) {
    if (accuracy <= kCLLocationAccuracyNearestTenMeters) {
        return AccuracyLevel::exact;
    }
    if (accuracy <= kCLLocationAccuracyHundredMeters) {
        return AccuracyLevel::street;
    }
    return accuracy <= kCLLocationAccuracyKilometer ? AccuracyLevel::neighborhood : AccuracyLevel::city;
}

/// Whole metres, at least as many as asked for; 0 reports every movement.
std::uint32_t thresholdOf(CLLocationDistance distance) {
    constexpr CLLocationDistance farthest = 4294967295;
    return distance > 0 ? static_cast<std::uint32_t>(std::ceil(std::min(distance, farthest))) : 0;
}

constexpr GeoClueRequest significantChanges = {static_cast<std::uint32_t>(AccuracyLevel::city), 1000};

class GeoClueLocationManager final : public CLLocationManager, public GeoClueObserver {
  public:
    GeoClueLocationManager(const asio::any_io_executor& runLoop, GeoClueOptions options)
        : service_(std::make_shared<GeoClueService>(runLoop, std::move(options), *this)) {}
    ~GeoClueLocationManager() override {
        service_->forgetObserver();
        service_->release();
    }
    GeoClueLocationManager(const GeoClueLocationManager&) = delete;
    GeoClueLocationManager& operator=(const GeoClueLocationManager&) = delete;

    [[nodiscard]] CLAuthorizationStatus authorizationStatus() const override { return status_; }
    [[nodiscard]] bool significantLocationChangeMonitoringAvailable() const override { return true; }
    [[nodiscard]] std::optional<CLLocation> location() const override { return location_; }
    void setDelegate(CLLocationManagerDelegate* delegate) override { delegate_ = delegate; }

    void setDesiredAccuracy(CLLocationAccuracy accuracy) override { change(desiredAccuracy_, accuracy); }
    void setDistanceFilter(CLLocationDistance distance) override { change(distanceFilter_, distance); }
    [[nodiscard]] bool allowsBackgroundLocationUpdates() const override { return allowsBackground_; }
    void setAllowsBackgroundLocationUpdates(bool isAllowed) override { allowsBackground_ = isAllowed; }

    void requestWhenInUseAuthorization() override { ask(); }
    void requestAlwaysAuthorization() override { ask(); }
    void startUpdatingLocation() override { change(isUpdating_, true); }
    void stopUpdatingLocation() override { change(isUpdating_, false); }
    void startMonitoringSignificantLocationChanges() override { change(isMonitoringChanges_, true); }
    void stopMonitoringSignificantLocationChanges() override { change(isMonitoringChanges_, false); }

  private:
    template <class T>
    void change(T& setting, T value) {
        setting = value;
        apply();
    }

    /// Begins anew even where the service runs: it answers when it starts.
    void ask() {
        followed_.reset();
        change(isAsking_, true);
    }

    [[nodiscard]] std::optional<GeoClueRequest> wanted() const {
        if (isUpdating_ || (isAsking_ && !isMonitoringChanges_)) {
            return GeoClueRequest{static_cast<std::uint32_t>(levelOf(desiredAccuracy_)),
                                  thresholdOf(distanceFilter_)};
        }
        return isMonitoringChanges_ ? std::optional(significantChanges) : std::nullopt;
    }

    /// Has the service do what is wanted now, if that is not what it does already.
    void apply() {
        const auto request = wanted();
        if (std::exchange(followed_, request) == request) {
            return;
        }
        if (request) {
            service_->follow(*request);
        } else {
            service_->release();
        }
    }

    void answered(CLAuthorizationStatus status) override {
        status_ = status;
        change(isAsking_, false);
        if (delegate_ != nullptr) {
            delegate_->didChangeAuthorization(*this, status);
        }
    }
    void located(const CLLocation& location) override {
        location_ = location;
        if (delegate_ != nullptr && (isUpdating_ || isMonitoringChanges_)) {
            delegate_->didUpdateLocations(*this, {&location, 1});
        }
    }
    void failed(const NSError& error) override {
        if (delegate_ != nullptr) {
            delegate_->didFailWithError(*this, error);
        }
    }

    std::shared_ptr<GeoClueService> service_;
    CLLocationManagerDelegate* delegate_ = nullptr;
    CLAuthorizationStatus status_ = CLAuthorizationStatus::notDetermined;
    std::optional<CLLocation> location_;
    CLLocationAccuracy desiredAccuracy_ = kCLLocationAccuracyBest;
    CLLocationDistance distanceFilter_ = kCLDistanceFilterNone;
    bool allowsBackground_ = false;
    bool isAsking_ = false;
    bool isUpdating_ = false;
    bool isMonitoringChanges_ = false;
    std::optional<GeoClueRequest> followed_;
};

}  // namespace

std::unique_ptr<CLLocationManager> makeGeoClueLocationManager(const asio::any_io_executor& runLoop,
                                                              GeoClueOptions options) {
    return std::make_unique<GeoClueLocationManager>(runLoop, std::move(options));
}

}  // namespace nimbuscope::platform
