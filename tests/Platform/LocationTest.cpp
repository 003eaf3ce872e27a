#include <gtest/gtest.h>

#include <cmath>

#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "tests/support/FakeLocationManager.hpp"
#include "tests/support/GeoClueStandIn.hpp"
#include "tests/support/LocationContract.hpp"
#include "tests/support/PrivateBus.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;

struct FakeFixture {
    asio::io_context loop;
    FakeLocationManager fake{loop};
    platform::CLLocationManager& manager() { return fake; }
    void serve(Status status) { fake.serve(status); }
    void locate(const platform::CLLocation& location) { fake.locate(location); }
};

struct GeoClueFixture {
    asio::io_context loop;
    PrivateBus bus;
    platform::GeoClueOptions options;
    std::optional<GeoClueStandIn> standIn{loop};
    std::unique_ptr<platform::CLLocationManager> made;
    platform::CLLocationManager& manager() {
        made = platform::makeGeoClueLocationManager(loop.get_executor(), options);
        return *made;
    }
    void serve(Status status) { standIn->serve(status); }
    void locate(const platform::CLLocation& location) { standIn->locate(location); }
};

using Services = ::testing::Types<FakeFixture, GeoClueFixture>;
INSTANTIATE_TYPED_TEST_SUITE_P(Services, LocationContract, Services);

struct GeoClue : ::testing::Test, GeoClueFixture {
    LocationLog log{loop};
    void start(platform::CLLocationManager& started) {
        started.setDelegate(&log);
        started.startUpdatingLocation();
    }
    GeoClue() { options = {.callTimeout = 20ms, .authorizationTimeout = 20ms, .retryDelay = 1ms}; }
};

TEST_F(GeoClue, isAskedForWhatTheManagerWantsWheneverThatChanges) {
    serve(Status::authorizedWhenInUse);
    start(manager());
    const auto expect = [&](const std::string& asked) {
        EXPECT_EQ(log.next(), "4");
        EXPECT_EQ(standIn->asked, "nimbuscope " + asked);
    };
    expect("8 0");
    const struct {
        double accuracy;
        double distance;
        std::string asked;
    } cases[]{{-1, 0.1, "8 1"}, {10.5, 1e12, "6 4294967295"}, {100.5, 1000, "5 1000"}, {1001, NAN, "4 0"}};
    for (const auto& [accuracy, distance, asked] : cases) {
        made->setDesiredAccuracy(accuracy);
        made->setDistanceFilter(distance);
        expect(asked);
    }
    made->setDesiredAccuracy(10);
    made->stopUpdatingLocation();
    made->startMonitoringSignificantLocationChanges();
    expect("4 1000");
}

TEST_F(GeoClue, thatDoesNotAnswerIsUndeterminedAndAskedAgain) {
    serve(Status::authorizedWhenInUse);
    for (const char* method : {"GetClient", "Start"}) {
        standIn->mute = method;
        start(manager());
        EXPECT_EQ(log.next(), "0!") << method;
        standIn->mute.clear();
        EXPECT_EQ(log.next(), "4");
    }
}

TEST_F(GeoClue, thatReportsNoPositionFailsAndGoesOn) {
    serve(Status::authorizedWhenInUse);
    start(manager());
    EXPECT_EQ(log.next(), "4");
    const std::map<std::string, double> none[]{
        {}, {{"Latitude", 1}}, {{"Latitude", 90.5}, {"Longitude", 0}}, {{"Latitude", 0}, {"Longitude", NAN}}};
    for (const auto& properties : none) {
        standIn->locate(properties);
        EXPECT_EQ(log.next(), "!");
    }
    locate({{90, -180}});
    EXPECT_EQ(log.next(), "(90.000000 -180.000000)");
}

TEST_F(GeoClue, losesTheBusAndFindsItAgain) {
    serve(Status::authorizedWhenInUse);
    start(manager());
    EXPECT_EQ(log.next(), "4");
    bus.stop();
    EXPECT_EQ(log.next(), "0");
    bus.start();
    standIn.emplace(loop).serve(Status::authorizedWhenInUse);
    EXPECT_EQ(log.next(), "4");
    bus.stop();
    start(manager());
    EXPECT_EQ(log.next(), "0!") << "there is no bus at all";
}

}  // namespace
}  // namespace nimbuscope::testing
