#include "NimbuscopeKit/Location/LocationManager.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "tests/support/FailingLocationManager.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

namespace nimbuscope::testing {
namespace {

using platform::CLLocation;
using State = LocationManager::State;
using Status = platform::CLAuthorizationStatus;

struct Delegate final : LocationManagerDelegate {
    std::function<void(std::string)> told;
    explicit Delegate(std::function<void(std::string)> action) : told(std::move(action)) {}
    void didReceiveLocation(const CLLocation& location) override {
        told(std::to_string(static_cast<int>(location.coordinate.latitude)));
    }
    void didChangeState(State state) override { told(std::string(description(state))); }
};

struct LocationManagerTest : ::testing::Test {
    asio::io_context loop;
    InMemoryUserDefaults standard;
    std::shared_ptr<PreferencesService> preferences = std::make_shared<PreferencesServiceImpl>(
        standard, std::make_shared<InMemoryUserDefaults>(), nullptr, std::make_shared<FixedLocale>(true));
    FailingLocationManager* fake = new FailingLocationManager(loop);  // the manager's
    LocationManager manager{preferences, std::unique_ptr<platform::CLLocationManager>(fake)};
    std::string told;
    std::shared_ptr<Delegate> log = std::make_shared<Delegate>([this](auto text) { told += text + "; "; });

    std::string calls() { return std::exchange(fake->calls, {}); }
    void run() {
        loop.restart();
        loop.run();
    }
};

TEST_F(LocationManagerTest, setsThePlatformUpAndStopsOneKindBeforeItStartsAnother) {
    EXPECT_TRUE(manager.allowsBackgroundLocationUpdates());
    EXPECT_EQ(calls(), "accuracy 100; filter 1000; ");
    using enum LocationManager::MonitoringState;
    const std::pair<LocationManager::MonitoringState, const char*> steps[]{
        {disabled, ""},
        {significant, "start changes; "},
        {significant, ""},
        {regular, "stop changes; start; "},
        {significant, "stop; start changes; "},
        {disabled, "stop changes; "},
        {regular, "start; "},
        {disabled, "stop; "},
    };
    for (const auto& [state, expected] : steps) {
        manager.setMonitoringState(state);
        EXPECT_EQ(calls(), expected);
        EXPECT_EQ(manager.monitoringState(), state);
        EXPECT_EQ(manager.isRequestingLocation(), state != disabled);
    }
}

TEST_F(LocationManagerTest, asksWhereAnAnswerCouldImproveOnTheStatus) {
    const struct {
        int status;
        const char* state;
        std::string whenInUse;
        std::string always;
    } cases[]{{0, "undetermined", "ask; ", "ask always; "},
              {1, "restricted", "ask; ", "ask always; "},
              {2, "denied", "", ""},
              {3, "available always", "", ""},
              {4, "available", "", "ask always; "}};
    manager.addDelegate(log);
    for (const auto& [status, state, whenInUse, always] : cases) {
        fake->serve(static_cast<Status>(status));
        fake->requestWhenInUseAuthorization();
        run();
        EXPECT_EQ(std::exchange(told, {}), std::string(state) + "; ");
        EXPECT_EQ(isAnyOfAvailable(manager.state()), status >= 3);
        calls();
        EXPECT_EQ(manager.request(false), !whenInUse.empty());
        EXPECT_EQ(calls(), whenInUse);
        EXPECT_EQ(manager.request(true), !always.empty());
        EXPECT_EQ(calls(), always);
        run();
        told.clear();
    }
    for (const int status : {-1, 5}) {
        EXPECT_DEATH(static_cast<void>(locationManagerState(static_cast<Status>(status))), "Fatal error: ");
    }
}

TEST_F(LocationManagerTest, handsEventsOnInOrderAndKeepsTheLastPositionAndNothingElse) {
    std::shared_ptr<Delegate> leaving;
    leaving = std::make_shared<Delegate>([&](auto) { manager.removeDelegate(*leaving); });
    for (const auto& delegate : {log, leaving, log}) {
        manager.addDelegate(delegate);
    }
    EXPECT_EQ(manager.last(), std::nullopt);
    fake->serve(Status::authorizedWhenInUse);
    manager.setMonitoringState(LocationManager::MonitoringState::regular);
    EXPECT_TRUE(manager.request(false, [&](State state) {
        told += std::string(description(state)) + "! ";
        manager.request(false, nullptr);
    }));
    fake->locate({.coordinate = {7, -8}, .horizontalAccuracy = 5, .altitude = 1});
    run();
    EXPECT_EQ(told, "available! available; available; available; available; 7; 7; ");
    EXPECT_EQ(manager.last(), (CLLocation{.coordinate = {7, -8}}));
    EXPECT_EQ(manager.currentlocation()->altitude, 1);
    EXPECT_EQ(preferences->preferences().map.currentLocation->lon, -8);

    fake->fails = true;
    manager.setMonitoringState(LocationManager::MonitoringState::significant);
    ::testing::internal::CaptureStderr();
    run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Location getting error: told to fail\n");
    EXPECT_EQ(manager.last(), (CLLocation{.coordinate = {7, -8}}));
    EXPECT_TRUE(manager.isRequestingLocation());
    manager.setLast(std::nullopt);
    EXPECT_EQ(manager.last(), std::nullopt);
}

}  // namespace
}  // namespace nimbuscope::testing
