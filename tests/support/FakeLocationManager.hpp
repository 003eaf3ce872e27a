#pragma once

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <functional>
#include <string>

#include "Platform/CoreLocation/CLLocationManager.hpp"

namespace nimbuscope::testing {

/// A location service in memory: `serve`, `locate` and `fail` are what its world does, `calls` what is asked
/// of it. It passes the contract suite that the real one passes, and outlives the work that it hands to its
/// loop.
class FakeLocationManager final : public platform::CLLocationManager {
  public:
    using Status = platform::CLAuthorizationStatus;
    explicit FakeLocationManager(asio::io_context& loop) : loop_(loop) {}

    void serve(Status status) {
        served_ = status;
        if (isMonitoring()) {
            answer();
        }
    }
    void locate(const platform::CLLocation& location) {
        asio::post(loop_, [this, location, isWanted = isMonitoring()] {
            if (isWanted && isMonitoring() && served_ == Status::authorizedWhenInUse) {
                location_ = location;
                delegate_->didUpdateLocations(*this, {&location, 1});
            }
        });
    }
    void fail() { delegate_->didFailWithError(*this, {"test", 1, "told to fail"}); }
    std::string calls;

    [[nodiscard]] Status authorizationStatus() const override { return status_; }
    [[nodiscard]] bool significantLocationChangeMonitoringAvailable() const override { return true; }
    [[nodiscard]] std::optional<platform::CLLocation> location() const override { return location_; }
    void setDelegate(platform::CLLocationManagerDelegate* delegate) override { delegate_ = delegate; }
    void setDesiredAccuracy(double accuracy) override { note("accuracy " + std::to_string(int(accuracy))); }
    void setDistanceFilter(double distance) override { note("filter " + std::to_string(int(distance))); }
    [[nodiscard]] bool allowsBackgroundLocationUpdates() const override { return allowsBackground_; }
    void setAllowsBackgroundLocationUpdates(bool isAllowed) override { allowsBackground_ = isAllowed; }
    void requestWhenInUseAuthorization() override { ask("ask"); }
    void requestAlwaysAuthorization() override { ask("ask always"); }
    void startUpdatingLocation() override { ask("start", isUpdating_ = true); }
    void stopUpdatingLocation() override { note("stop", isUpdating_ = false); }
    void startMonitoringSignificantLocationChanges() override { ask("start changes", isMonitored_ = true); }
    void stopMonitoringSignificantLocationChanges() override { note("stop changes", isMonitored_ = false); }

  private:
    [[nodiscard]] bool isMonitoring() const { return delegate_ != nullptr && (isUpdating_ || isMonitored_); }
    void note(const std::string& call, bool /*state*/ = false) { calls += call + "; "; }
    void ask(const std::string& call, bool /*state*/ = false) {
        note(call);
        answer();
    }
    void answer() {
        asio::post(loop_, [this] {
            if (delegate_ != nullptr) {
                status_ = served_;
                delegate_->didChangeAuthorization(*this, status_);
            }
        });
    }

    asio::io_context& loop_;
    platform::CLLocationManagerDelegate* delegate_ = nullptr;
    Status served_ = Status::notDetermined;
    Status status_ = Status::notDetermined;
    std::optional<platform::CLLocation> location_;
    bool allowsBackground_ = false;
    bool isUpdating_ = false;
    bool isMonitored_ = false;
};

}  // namespace nimbuscope::testing
