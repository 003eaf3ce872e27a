#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <asio/io_context.hpp>
#include <limits>

#include "Platform/CoreLocation/CLLocationManager.hpp"
#include "Platform/Linux/SDBusRunLoop.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {

/// A D-Bus of the test's own, which this process and those that it runs take for the system's.
struct PrivateBus {
    PrivateBus() { start(); }
    void start() {
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        daemon.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address=1",
                                                "--address=" + address});
        static_cast<void>(daemon->readLine());  // it is ready
    }
    void stop() { daemon.reset(); }

    TemporaryDirectory directory;
    std::string address = "unix:path=" + directory.path("bus");
    std::optional<BackgroundProcess> daemon;
};

/// A peer on the bus that works on the test's run loop.
struct BusPeer {
    explicit BusPeer(asio::io_context& runLoop)
        : loop(std::make_shared<platform::SDBusRunLoop>(runLoop.get_executor(),
                                                        sdbus::createSystemBusConnection(), [] {})) {
        loop->wake();
    }
    std::shared_ptr<platform::SDBusRunLoop> loop;
    sdbus::IConnection& bus = loop->connection();
};

/// A location service as GeoClue is one on the bus, without an agent and without hardware.
class GeoClueStandIn : private BusPeer {
  public:
    using Status = platform::CLAuthorizationStatus;
    explicit GeoClueStandIn(asio::io_context& runLoop) : BusPeer(runLoop) {
        manager_->registerMethod("GetClient")
            .onInterface("org.freedesktop.GeoClue2.Manager")
            .implementedAs([this](sdbus::Result<sdbus::ObjectPath>&& answer) {
                if (mute != "GetClient") {
                    answer.returnResults(clientPath);
                }
            });
        manager_->finishRegistration();
        client_->registerMethod("Start").onInterface(client).implementedAs(
            [this](sdbus::Result<>&& answer) { start(answer); });
        client_->registerMethod("Stop").onInterface(client).implementedAs([this] { isActive_ = false; });
        addProperty("Active", isActive_);
        addProperty("DesktopId", desktopId_);
        addProperty("RequestedAccuracyLevel", level_);
        addProperty("DistanceThreshold", threshold_);
        client_->finishRegistration();
    }

    void serve(Status status) {
        const auto before = std::exchange(status_, status);
        if (status == Status::notDetermined) {
            bus.releaseName(service);
            isActive_ = false;
        } else if (before == Status::notDetermined) {
            bus.requestName(service);
        } else {
            isActive_ = status == Status::authorizedWhenInUse;
            client_->emitPropertiesChangedSignal(client, {"Active"});
        }
        loop->wake();
    }

    /// Reports so many of the properties of a position.
    void locate(const platform::CLLocation& location, std::size_t count = 6) {
        const std::pair<const char*, double> properties[]{
            {"Latitude", location.coordinate.latitude},
            {"Longitude", location.coordinate.longitude},
            {"Accuracy", location.horizontalAccuracy.value_or(0)},
            {"Altitude", location.altitude.value_or(std::numeric_limits<double>::lowest())},
            {"Speed", location.speed.value_or(-1)},
            {"Heading", location.course.value_or(-1)}};
        const std::string path = clientPath + "/Location/" + std::to_string(locations_.size());
        auto& object = *locations_.emplace_back(sdbus::createObject(bus, path));
        for (const auto& [name, value] : std::span(properties).first(count)) {
            object.registerProperty(name)
                .onInterface("org.freedesktop.GeoClue2.Location")
                .withGetter([value] { return value; });
        }
        object.finishRegistration();
        if (isActive_) {
            client_->emitSignal("LocationUpdated")
                .onInterface(client)
                .withArguments(sdbus::ObjectPath("/"), sdbus::ObjectPath(path));
        }
        loop->wake();
    }

    std::string asked;  ///< of the last start: desktop id, accuracy level, distance threshold
    std::string mute;   ///< the method that is not answered
    std::function<void()> whenStarted = [] {};

  private:
    static constexpr const char* service = "org.freedesktop.GeoClue2";
    static constexpr const char* client = "org.freedesktop.GeoClue2.Client";
    inline static const std::string clientPath = "/org/freedesktop/GeoClue2/Client/1";

    template <class T>
    void addProperty(const char* name, T& value) {
        client_->registerProperty(name)
            .onInterface(client)
            .withGetter([&value] { return value; })
            .withSetter([&value](const T& set) { value = set; });
    }
    void start(sdbus::Result<>& answer) {
        asked = desktopId_ + " " + std::to_string(level_) + " " + std::to_string(threshold_);
        isActive_ = status_ == Status::authorizedWhenInUse;
        if (!isActive_) {
            answer.returnError(sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "no"));
        } else if (mute != "Start") {
            answer.returnResults();
            whenStarted();
        }
    }

    Status status_ = Status::notDetermined;
    bool isActive_ = false;
    std::string desktopId_;
    std::uint32_t level_ = 0;
    std::uint32_t threshold_ = 0;
    std::vector<std::unique_ptr<sdbus::IObject>> locations_;
    std::unique_ptr<sdbus::IObject> manager_ = sdbus::createObject(bus, "/org/freedesktop/GeoClue2/Manager");
    std::unique_ptr<sdbus::IObject> client_ = sdbus::createObject(bus, clientPath);
};

}  // namespace nimbuscope::testing
