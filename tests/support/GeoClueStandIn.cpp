#include "tests/support/GeoClueStandIn.hpp"

#include <limits>

namespace nimbuscope::testing {
namespace {

constexpr const char* service = "org.freedesktop.GeoClue2";
const std::string clientPath = "/org/freedesktop/GeoClue2/Client/1";
const std::string clientInterface = "org.freedesktop.GeoClue2.Client";

}  // namespace

GeoClueStandIn::GeoClueStandIn(asio::io_context& runLoop)
    : BusPeer(runLoop),
      manager_(sdbus::createObject(bus, "/org/freedesktop/GeoClue2/Manager")),
      client_(sdbus::createObject(bus, clientPath)) {
    manager_->registerMethod("GetClient")
        .onInterface("org.freedesktop.GeoClue2.Manager")
        .implementedAs([this](sdbus::Result<sdbus::ObjectPath>&& answer) {
            mute == "GetClient" ? unansweredPaths_.push_back(std::move(answer))
                                : answer.returnResults(clientPath);
        });
    manager_->finishRegistration();
    addClient();
}

void GeoClueStandIn::addClient() {
    client_->registerMethod("Start").onInterface(clientInterface).implementedAs([this](Answer&& answer) {
        asked = desktopId_ + " " + std::to_string(level_) + " " + std::to_string(threshold_);
        isActive_ = status_ == Status::authorizedWhenInUse;
        if (mute == "Start") {
            unanswered_.push_back(std::move(answer));
        } else if (isActive_) {
            answer.returnResults();
            whenStarted();
        } else {
            answer.returnError(sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "no"));
        }
    });
    client_->registerMethod("Stop").onInterface(clientInterface).implementedAs([this] { isActive_ = false; });
    const auto add = [this](const char* name, auto& value) {
        client_->registerProperty(name)
            .onInterface(clientInterface)
            .withGetter([&value] { return value; })
            .withSetter([&value](const std::remove_reference_t<decltype(value)>& set) { value = set; });
    };
    add("Active", isActive_);
    add("DesktopId", desktopId_);
    add("RequestedAccuracyLevel", level_);
    add("DistanceThreshold", threshold_);
    client_->registerSignal("LocationUpdated")
        .onInterface(clientInterface)
        .withParameters<sdbus::ObjectPath, sdbus::ObjectPath>();
    client_->finishRegistration();
}

void GeoClueStandIn::serve(Status status) {
    const auto before = std::exchange(status_, status);
    if (status == Status::notDetermined) {
        bus.releaseName(service);
        isActive_ = false;
    } else if (before == Status::notDetermined) {
        bus.requestName(service);
    } else {
        isActive_ = status == Status::authorizedWhenInUse;
        client_->emitPropertiesChangedSignal(clientInterface, {"Active"});
    }
    loop->wake();
}

void GeoClueStandIn::locate(const platform::CLLocation& location) {
    locate({{"Latitude", location.coordinate.latitude},
            {"Longitude", location.coordinate.longitude},
            {"Accuracy", location.horizontalAccuracy.value_or(0)},
            {"Altitude", location.altitude.value_or(std::numeric_limits<double>::lowest())},
            {"Speed", location.speed.value_or(-1)},
            {"Heading", location.course.value_or(-1)}});
}

void GeoClueStandIn::locate(const std::map<std::string, double>& properties) {
    const std::string path =
        "/org/freedesktop/GeoClue2/Client/1/Location/" + std::to_string(locations_.size());
    auto& location = *locations_.emplace_back(sdbus::createObject(bus, path));
    for (const auto& [name, value] : properties) {
        location.registerProperty(name).onInterface("org.freedesktop.GeoClue2.Location").withGetter([value] {
            return value;
        });
    }
    location.finishRegistration();
    if (isActive_) {
        client_->emitSignal("LocationUpdated")
            .onInterface(clientInterface)
            .withArguments(sdbus::ObjectPath("/"), sdbus::ObjectPath(path));
    }
    loop->wake();
}

}  // namespace nimbuscope::testing
