#include <gtest/gtest.h>

#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>
#include <cmath>

#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "tests/support/FakeLocationManager.hpp"
#include "tests/support/GeoClueStandIn.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;
using platform::CLLocation;
using platform::CLLocationManager;
using Status = platform::CLAuthorizationStatus;

/// Writes down what it is told: statuses by number, positions in parentheses, failures as "!".
class LocationLog final : public platform::CLLocationManagerDelegate {
  public:
    LocationLog(asio::io_context& loop, CLLocationManager& manager) : loop_(loop) {
        manager.setDelegate(this);
    }
    std::function<void()> whenLocated = [] {};

    /// Runs the loop until something has been told, and returns it.
    std::string next() {
        loop_.restart();
        while (told_.empty() && loop_.run_one_for(20s) > 0) {
        }
        return std::exchange(told_, {});
    }

  private:
    void didUpdateLocations(CLLocationManager&, std::span<const CLLocation> locations) override {
        const auto [latitude, longitude] = locations.back().coordinate;
        told_ += "(" + std::to_string(latitude) + " " + std::to_string(longitude) + ")";
        whenLocated();
    }
    void didFailWithError(CLLocationManager&, const platform::NSError&) override { told_ += "!"; }
    void didChangeAuthorization(CLLocationManager& manager, Status status) override {
        EXPECT_EQ(manager.authorizationStatus(), status);
        told_ += std::to_string(static_cast<int>(status));
    }

    asio::io_context& loop_;
    std::string told_;
};

struct FakeWorld {
    asio::io_context loop;
    std::optional<FakeLocationManager> service{loop};
    CLLocationManager& manager = *service;
    LocationLog log{loop, manager};
};

struct GeoClueWorld {
    platform::GeoClueOptions options;
    asio::io_context loop;
    PrivateBus bus;
    std::optional<GeoClueStandIn> service{loop};
    std::unique_ptr<CLLocationManager> made =
        platform::makeGeoClueLocationManager(loop.get_executor(), options);
    CLLocationManager& manager = *made;
    LocationLog log{loop, manager};
    void start() {
        service->serve(Status::authorizedWhenInUse);
        manager.startUpdatingLocation();
        EXPECT_EQ(log.next(), "4");
    }
};

template <class World>
struct LocationContract : ::testing::Test {};
using Worlds = ::testing::Types<FakeWorld, GeoClueWorld>;
TYPED_TEST_SUITE(LocationContract, Worlds);

TYPED_TEST(LocationContract, isFollowedWhileItComesAndGoesAndTellsOnlyWhatIsMonitored) {
    TypeParam world;
    EXPECT_EQ(world.manager.authorizationStatus(), Status::notDetermined);
    EXPECT_EQ(world.manager.location(), std::nullopt);
    world.service->serve(Status::denied);
    world.manager.requestAlwaysAuthorization();
    EXPECT_EQ(world.log.next(), "2");
    world.service->serve(Status::authorizedWhenInUse);
    world.manager.requestWhenInUseAuthorization();
    EXPECT_EQ(world.log.next(), "4");
    world.service->locate({{1, 1}});
    world.manager.startUpdatingLocation();
    EXPECT_EQ(world.log.next(), "4");
    for (const auto& [status, number] : {std::pair(Status::notDetermined, "0"), {Status::denied, "2"}}) {
        const CLLocation here{{1.5, -2.25}, 20.0, std::nullopt, 0.0, 359.0};
        world.service->locate(here);
        EXPECT_EQ(world.log.next(), "(1.500000 -2.250000)");
        EXPECT_EQ(world.manager.location(), here);
        world.service->serve(status);
        EXPECT_EQ(world.log.next(), number);
        world.service->serve(Status::authorizedWhenInUse);
        EXPECT_EQ(world.log.next(), "4");
    }
    world.manager.stopUpdatingLocation();
    world.service->locate({{2, 2}});
    world.manager.startMonitoringSignificantLocationChanges();
    EXPECT_EQ(world.log.next(), "4");
    world.manager.requestAlwaysAuthorization();
    EXPECT_EQ(world.log.next(), "4") << "asked while it runs";
    world.log.whenLocated = [&] {
        world.manager.stopMonitoringSignificantLocationChanges();
        world.manager.setDelegate(nullptr);
    };
    world.service->locate({{3, 3}});
    EXPECT_EQ(world.log.next(), "(3.000000 3.000000)");
}

TEST(GeoClue, isAskedForWhatTheManagerWantsAndMayReportNoPosition) {
    GeoClueWorld world;
    world.start();
    EXPECT_EQ(world.service->asked, "nimbuscope 8 0");
    const std::tuple<double, double, std::string> cases[]{
        {-1, 0.1, "8 1"}, {10.5, 1e12, "6 4294967295"}, {100.5, 1000, "5 1000"}, {1001, NAN, "4 0"}};
    for (const auto& [accuracy, distance, asked] : cases) {
        world.manager.setDesiredAccuracy(accuracy);
        world.manager.setDistanceFilter(distance);
        EXPECT_EQ(world.log.next(), "4");
        EXPECT_EQ(world.service->asked, "nimbuscope " + asked);
    }
    world.manager.stopUpdatingLocation();
    world.manager.startMonitoringSignificantLocationChanges();
    EXPECT_EQ(world.log.next(), "4");
    EXPECT_EQ(world.service->asked, "nimbuscope 4 1000");

    const std::pair<CLLocation, std::size_t> none[]{{{}, 0}, {{}, 1}, {{{90.5, 0}}, 6}, {{{0, NAN}}, 6}};
    for (const auto& [location, count] : none) {
        world.service->locate(location, count);
        EXPECT_EQ(world.log.next(), "!");
    }
    world.service->locate({{90, -180}});
    EXPECT_EQ(world.log.next(), "(90.000000 -180.000000)");
}

TEST(GeoClue, thatDoesNotAnswerIsUndeterminedAndAskedAgain) {
    GeoClueWorld world{{.callTimeout = 20ms, .authorizationTimeout = 20ms, .retryDelay = 1ms}};
    world.service->serve(Status::authorizedWhenInUse);
    for (const char* method : {"GetClient", "Start"}) {
        world.service->mute = method;
        world.manager.startUpdatingLocation();
        EXPECT_EQ(world.log.next(), "0!") << method;
        world.service->mute.clear();
        EXPECT_EQ(world.log.next(), "4");
        world.manager.stopUpdatingLocation();
    }
}

TEST(GeoClue, losesTheBusAndFindsItAgain) {
    GeoClueWorld world{{.retryDelay = 1ms}};
    for (int time = 0; time < 2; ++time) {
        world.service.emplace(world.loop).serve(Status::authorizedWhenInUse);
        world.manager.startUpdatingLocation();
        EXPECT_EQ(world.log.next(), "4");
        world.bus.stop();
        EXPECT_EQ(world.log.next(), "0");
        world.bus.start();
    }
    world.bus.stop();
    world.manager.stopUpdatingLocation();
    world.manager.startUpdatingLocation();
    EXPECT_EQ(world.log.next(), "0!") << "there is no bus at all";
}

#ifdef NIMBUSCOPE_GEOCLUE
TEST(GeoClueDaemon, tellsWhatAReceiverSaysOverItsSocket) {
    GeoClueWorld world;
    const BusPeer peer(world.loop);  // lets the daemon, once it is there, tell everybody everything
    const auto agent = sdbus::createObject(peer.bus, "/org/freedesktop/GeoClue2/Agent");
    const char* interface = "org.freedesktop.GeoClue2.Agent";
    agent->registerMethod("AuthorizeApp")
        .onInterface(interface)
        .implementedAs(
            [](const std::string& id, std::uint32_t level) { return std::tuple(id == "nimbuscope", level); });
    agent->registerProperty("MaxAccuracyLevel").onInterface(interface).withGetter([] { return 8U; });
    agent->finishRegistration();
    const auto manager =
        sdbus::createProxy(peer.bus, "org.freedesktop.GeoClue2", "/org/freedesktop/GeoClue2/Manager");
    const auto appeared =
        peer.bus.addMatch("member='NameOwnerChanged',arg0='org.freedesktop.GeoClue2'", [&](auto&) {
            manager->callMethodAsync("AddAgent")
                .onInterface("org.freedesktop.GeoClue2.Manager")
                .withArguments("geoclue-demo-agent")
                .uponReplyInvoke([](const sdbus::Error* error) { EXPECT_EQ(error, nullptr); });
        });
    const std::string path = world.bus.directory.path("nmea");
    using Protocol = asio::local::stream_protocol;
    Protocol::acceptor receiver(world.loop, Protocol::endpoint(path));
    Protocol::socket connected(world.loop);
    receiver.async_accept(connected, [&](asio::error_code) {
        asio::write(connected, asio::buffer(std::string_view(
                                   "$GPGGA,120000,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*49\r\n")));
    });
    // Cut off from the network, and from services that it would ask over it.
    const BackgroundProcess daemon(
        {"unshare", "--user", "--map-current-user", "--net", NIMBUSCOPE_GEOCLUE, "--nmea-socket=" + path});
    world.manager.startUpdatingLocation();
    const std::string told = world.log.next();
    EXPECT_EQ(told.starts_with("0") ? world.log.next() : told, "4");  // we may be faster than the daemon
    EXPECT_EQ(world.log.next(), "(48.117300 11.516667)");
    EXPECT_EQ(world.manager.location()->altitude, 545.4);
}
#endif

}  // namespace
}  // namespace nimbuscope::testing
