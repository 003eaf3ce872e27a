#pragma once

#include <gtest/gtest.h>

#include <asio/io_context.hpp>
#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "Platform/CoreLocation/CLLocationManager.hpp"

/// What every location service does, real or fake. A fixture has a `manager()` on its `loop`, and the two
/// things that the world does: `serve` a status (none: there is no service) and `locate` the device.
namespace nimbuscope::testing {

using Status = platform::CLAuthorizationStatus;

/// Writes down what it is told: statuses by number, positions in parentheses, failures as "!".
class LocationLog final : public platform::CLLocationManagerDelegate {
  public:
    explicit LocationLog(asio::io_context& loop) : loop_(loop) {}
    std::function<void()> whenLocated = [] {};

    /// Runs the loop until something has been told, and returns it.
    std::string next() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        loop_.restart();
        while (told_.empty() && loop_.run_one_until(deadline) > 0) {
        }
        return std::exchange(told_, {});
    }

  private:
    void didUpdateLocations(platform::CLLocationManager&,
                            std::span<const platform::CLLocation> locations) override {
        const auto [latitude, longitude] = locations.back().coordinate;
        told_ += "(" + std::to_string(latitude) + " " + std::to_string(longitude) + ")";
        whenLocated();
    }
    void didFailWithError(platform::CLLocationManager&, const platform::NSError&) override { told_ += "!"; }
    void didChangeAuthorization(platform::CLLocationManager& manager, Status status) override {
        EXPECT_EQ(manager.authorizationStatus(), status);
        told_ += std::to_string(static_cast<int>(status));
    }

    asio::io_context& loop_;
    std::string told_;
};

template <class Fixture>
class LocationContract : public ::testing::Test {
  protected:
    LocationContract() { manager.setDelegate(&log); }
    Fixture world;
    platform::CLLocationManager& manager = world.manager();
    LocationLog log{world.loop};
};

TYPED_TEST_SUITE_P(LocationContract);

TYPED_TEST_P(LocationContract, aServiceIsFollowedWhileItComesAndGoesAndChangesItsMind) {
    EXPECT_EQ(this->manager.authorizationStatus(), Status::notDetermined);
    EXPECT_EQ(this->manager.location(), std::nullopt);
    this->world.serve(Status::authorizedWhenInUse);
    this->manager.startUpdatingLocation();
    EXPECT_EQ(this->log.next(), "4");
    for (const auto status : {Status::notDetermined, Status::denied}) {
        const platform::CLLocation here{{1.5, -2.25}, 20.0, std::nullopt, 0.0, 359.0};
        this->world.locate(here);
        EXPECT_EQ(this->log.next(), "(1.500000 -2.250000)");
        EXPECT_EQ(this->manager.location(), here);
        this->world.serve(status);
        EXPECT_EQ(this->log.next(), std::to_string(static_cast<int>(status)));
        this->world.serve(Status::authorizedWhenInUse);
        EXPECT_EQ(this->log.next(), "4");
    }
}

TYPED_TEST_P(LocationContract, onlyWhatIsMonitoredIsToldAndEachRequestIsAnswered) {
    this->world.serve(Status::denied);
    this->manager.requestAlwaysAuthorization();
    EXPECT_EQ(this->log.next(), "2");
    this->world.serve(Status::authorizedWhenInUse);
    this->manager.requestWhenInUseAuthorization();
    EXPECT_EQ(this->log.next(), "4");
    this->world.locate({{1, 1}});
    this->manager.startUpdatingLocation();
    EXPECT_EQ(this->log.next(), "4");
    this->manager.stopUpdatingLocation();
    this->world.locate({{2, 2}});
    this->manager.startMonitoringSignificantLocationChanges();
    EXPECT_EQ(this->log.next(), "4");
    this->manager.requestAlwaysAuthorization();
    EXPECT_EQ(this->log.next(), "4") << "asked while it runs";
    this->log.whenLocated = [&] {
        this->manager.stopMonitoringSignificantLocationChanges();
        this->manager.setDelegate(nullptr);
    };
    this->world.locate({{3, 3}});
    EXPECT_EQ(this->log.next(), "(3.000000 3.000000)");
}

REGISTER_TYPED_TEST_SUITE_P(LocationContract, aServiceIsFollowedWhileItComesAndGoesAndChangesItsMind,
                            onlyWhatIsMonitoredIsToldAndEachRequestIsAnswered);

}  // namespace nimbuscope::testing
