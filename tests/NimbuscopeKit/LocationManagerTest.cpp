#include "NimbuscopeKit/Location/LocationManager.hpp"

#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Concurrency/RunLoop.hpp"
#include "tests/support/FakeLocationManager.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/GeoClueStandIn.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

namespace nimbuscope::testing {
namespace {

using platform::CLLocation;
using State = LocationManager::State;
using Status = platform::CLAuthorizationStatus;

struct Delegate final : LocationManagerDelegate {
    std::string told;
    void didReceiveLocation(const CLLocation& at) override { told += std::to_string(at.coordinate.latitude); }
    void didChangeState(State state) override { told += std::string(description(state)) + "; "; }
};

struct LocationManagerTest : ::testing::Test {
    asio::io_context loop;
    InMemoryUserDefaults standard;
    std::shared_ptr<PreferencesService> preferences = std::make_shared<PreferencesServiceImpl>(
        standard, std::make_shared<InMemoryUserDefaults>(), nullptr, std::make_shared<FixedLocale>(true));
    FakeLocationManager* fake = new FakeLocationManager(loop);  // the manager's
    LocationManager manager{preferences, std::unique_ptr<platform::CLLocationManager>(fake)};

    std::string calls() { return std::exchange(fake->calls, {}); }
};

TEST_F(LocationManagerTest, setsThePlatformUpAndStopsOneKindBeforeItStartsAnother) {
    EXPECT_TRUE(manager.allowsBackgroundLocationUpdates());
    EXPECT_EQ(calls(), "accuracy 100; filter 1000; ");
    using enum LocationManager::MonitoringState;
    const std::pair<LocationManager::MonitoringState, const char*> steps[]{
        {significant, "start changes; "},
        {significant, ""},
        {regular, "stop changes; start; "},
        {significant, "stop; start changes; "},
        {disabled, "stop changes; "}};
    for (const auto& [state, expected] : steps) {
        manager.setMonitoringState(state);
        EXPECT_EQ(calls(), expected);
        EXPECT_EQ(manager.monitoringState(), state);
        EXPECT_EQ(manager.isRequestingLocation(), state != disabled);
    }
}

TEST_F(LocationManagerTest, asksWhereAnAnswerCouldImproveOnTheStatus) {
    const std::array<std::string, 2> cases[]{{"undetermined", "ask; ask always; "},
                                             {"restricted", "ask; ask always; "},
                                             {"denied", ""},
                                             {"available always", ""},
                                             {"available", "ask always; "}};
    for (int status = 0; const auto& [state, asked] : cases) {
        fake->serve(static_cast<Status>(status));
        fake->requestWhenInUseAuthorization();
        loop.restart();
        loop.run();
        calls();
        EXPECT_EQ(description(manager.state()), state);
        EXPECT_EQ(isAnyOfAvailable(manager.state()), status++ >= 3);
        EXPECT_EQ(manager.request(false), asked.starts_with("ask;"));
        EXPECT_EQ(manager.request(true), !asked.empty());
        EXPECT_EQ(calls(), asked);
    }
    EXPECT_DEATH(static_cast<void>(locationManagerState(static_cast<Status>(5))), "Fatal error: ");
}

TEST_F(LocationManagerTest, handsEventsOnAndKeepsTheLastPositionAndNothingElse) {
    const auto delegate = std::make_shared<Delegate>();
    const auto removed = std::make_shared<Delegate>();
    for (const auto& added : {delegate, removed, delegate}) {
        manager.addDelegate(added);
    }
    manager.removeDelegate(*removed);
    fake->serve(Status::authorizedWhenInUse);
    manager.setMonitoringState(LocationManager::MonitoringState::regular);
    manager.request(false, [&](State state) {
        delegate->told += std::string(description(state)) + "! ";
        manager.request(false, nullptr);
    });
    fake->locate({.coordinate = {7, -8}, .altitude = 1});
    loop.run();
    EXPECT_EQ(delegate->told, "available! available; available; available; available; 7.0000007.000000");
    EXPECT_EQ(removed->told, "");
    ::testing::internal::CaptureStderr();
    fake->fail();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Location getting error: told to fail\n");
    EXPECT_EQ(manager.last(), (CLLocation{.coordinate = {7, -8}}));
    EXPECT_EQ(manager.currentlocation()->altitude, 1);
    EXPECT_EQ(preferences->preferences().map.currentLocation->lon, -8);
    EXPECT_TRUE(manager.isRequestingLocation());
    manager.setLast(std::nullopt);
    EXPECT_EQ(manager.last(), std::nullopt);
}

TEST(LocationManagerMain, worksOnTheMainRunLoopAndTheStoreOfTheUser) {
    const PrivateBus bus;
    ::setenv("NIMBUSCOPE_STORE", bus.directory.path("store").c_str(), 1);
    LocationManager::main().request(true, [](auto) { platform::MainRunLoop::main().stop(); });
    platform::MainRunLoop::main().run();
    LocationManager::main().setLast(CLLocation{.coordinate = {1, 2}});
    EXPECT_EQ(LocationManager::main().last()->coordinate.longitude, 2);
}

}  // namespace
}  // namespace nimbuscope::testing
