#include <gtest/gtest.h>

#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>

#include "Platform/Linux/CLLocationManager_geoclue.hpp"
#include "tests/support/GeoClueStandIn.hpp"
#include "tests/support/PrivateBus.hpp"

namespace nimbuscope::testing {
namespace {

constexpr const char* service = "org.freedesktop.GeoClue2";

/// Lets the daemon, once it is there, tell everybody everything.
class Agent : private BusPeer {
  public:
    explicit Agent(asio::io_context& runLoop) : BusPeer(runLoop) {
        const char* interface = "org.freedesktop.GeoClue2.Agent";
        agent_->registerMethod("AuthorizeApp")
            .onInterface(interface)
            .implementedAs([](const std::string& id, std::uint32_t level) {
                return std::tuple(id == "nimbuscope", level);
            });
        agent_->registerProperty("MaxAccuracyLevel").onInterface(interface).withGetter([] { return 8U; });
        agent_->finishRegistration();
        appeared_ = bus.addMatch(
            "type='signal',member='NameOwnerChanged',arg0='org.freedesktop.GeoClue2'", [this](auto&) {
                daemon_->callMethodAsync("AddAgent")
                    .onInterface("org.freedesktop.GeoClue2.Manager")
                    .withArguments("geoclue-demo-agent")
                    .uponReplyInvoke([](const sdbus::Error* error) { EXPECT_EQ(error, nullptr); });
            });
    }

  private:
    std::unique_ptr<sdbus::IObject> agent_ = sdbus::createObject(bus, "/org/freedesktop/GeoClue2/Agent");
    std::unique_ptr<sdbus::IProxy> daemon_ =
        sdbus::createProxy(bus, service, "/org/freedesktop/GeoClue2/Manager");
    sdbus::Slot appeared_;
};

TEST(GeoClueDaemon, tellsWhatAReceiverSaysOverItsSocket) {
    asio::io_context loop;
    PrivateBus bus;
    const Agent agent(loop);
    const std::string path = bus.directory.path("nmea");
    asio::local::stream_protocol::acceptor receiver(loop, asio::local::stream_protocol::endpoint(path));
    asio::local::stream_protocol::socket connected(loop);
    receiver.async_accept(connected, [&](asio::error_code error) {
        EXPECT_FALSE(error);
        asio::write(connected, asio::buffer(std::string_view(
                                   "$GPGGA,120000,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*49\r\n")));
    });
    // Cut off from the network, and from services that it would ask over it.
    const BackgroundProcess daemon(
        {"unshare", "--user", "--map-current-user", "--net", NIMBUSCOPE_GEOCLUE, "--nmea-socket=" + path});

    const auto manager = platform::makeGeoClueLocationManager(loop.get_executor());
    LocationLog log(loop);
    manager->setDelegate(&log);
    manager->startUpdatingLocation();
    std::string told = log.next();
    if (told.starts_with("0")) {
        told = log.next();  // we were faster than the daemon
    }
    EXPECT_EQ(told, "4");
    EXPECT_EQ(log.next(), "(48.117300 11.516667)");
    EXPECT_EQ(manager->location()->altitude, 545.4);
}

}  // namespace
}  // namespace nimbuscope::testing
