#include "Platform/Linux/GeoClueService.hpp"

#include <asio/post.hpp>
#include <cmath>
#include <exception>
#include <tuple>
#include <utility>

namespace nimbuscope::platform {
namespace {

constexpr const char* serviceName = "org.freedesktop.GeoClue2";
constexpr const char* managerPath = "/org/freedesktop/GeoClue2/Manager";
constexpr const char* managerInterface = "org.freedesktop.GeoClue2.Manager";
constexpr const char* clientInterface = "org.freedesktop.GeoClue2.Client";
constexpr const char* locationInterface = "org.freedesktop.GeoClue2.Location";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* ownerChangedMatch =
    "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='org.freedesktop.GeoClue2'";
constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";

using Properties = GeoClueService::Properties;

std::optional<double> number(const Properties& properties, const char* name) {
    const auto found = properties.find(name);
    if (found == properties.end() || !found->second.containsValueOfType<double>()) {
        return std::nullopt;
    }
    const auto value = found->second.get<double>();
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// A number for which GeoClue says less than `least` where it knows none.
std::optional<double> numberFrom(double least, const Properties& properties, const char* name) {
    const auto value = number(properties, name);
    return value && *value >= least ? value : std::nullopt;
}

/// None where the latitude and the longitude are no position.
std::optional<CLLocation> locationOf(const Properties& properties) {
    const auto latitude = number(properties, "Latitude");
    const auto longitude = number(properties, "Longitude");
    if (!latitude || !longitude || std::abs(*latitude) > 90 || std::abs(*longitude) > 180) {
        return std::nullopt;
    }
    constexpr double deepest = -1e6;  // unknown altitudes are the least number there is
    return CLLocation{.coordinate = {*latitude, *longitude},
                      .horizontalAccuracy = numberFrom(0, properties, "Accuracy"),
                      .altitude = numberFrom(deepest, properties, "Altitude"),
                      .speed = numberFrom(0, properties, "Speed"),
                      .course = numberFrom(0, properties, "Heading")};
}

std::string matchOf(const std::string& path, const char* interface, const char* member) {
    return std::string("type='signal',sender='") + serviceName + "',path='" + path + "',interface='" +
           interface + "',member='" + member + "'";
}

}  // namespace

GeoClueService::GeoClueService(const asio::any_io_executor& runLoop, GeoClueOptions options,
                               GeoClueObserver& observer)
    : runLoop_(runLoop), options_(std::move(options)), observer_(&observer), retryTimer_(runLoop) {}

void GeoClueService::follow(const GeoClueRequest& request) {
    release();
    request_ = request;
    answered_.reset();
    isTroubleKnown_ = false;
    beginRound();
}

void GeoClueService::release() {
    if (client_) {
        call<void>(*client_, clientInterface, "Stop", options_.callTimeout, [](const auto&) {});
    }
    request_.reset();
    endRound();
}

/// Nothing is left under way; the replies to what was are dropped.
void GeoClueService::endRound() {
    ++round_;
    retryTimer_.cancel();
    location_.reset();
    locationPath_.reset();
    clientSubscriptions_.clear();
    client_.reset();
    isRunning_ = false;
    isUnderWay_ = false;
}

void GeoClueService::beginRound() {
    endRound();
    isUnderWay_ = true;
    const auto connected = bus_ ? Reply<void>() : connect();
    if (!connected) {
        asio::post(runLoop_, [weak = weak_from_this(), round = round_, error = connected.error()] {
            const auto self = weak.lock();
            if (self && self->round_ == round) {
                self->unanswered(error);
            }
        });
        return;
    }
    call<sdbus::ObjectPath>(
        *manager_, managerInterface, "GetClient", options_.callTimeout,
        [this](const Reply<sdbus::ObjectPath>& path) { path ? useClient(*path) : unanswered(path.error()); });
}

GeoClueService::Reply<void> GeoClueService::connect() {
    try {
        bus_ = std::make_shared<SDBusRunLoop>(runLoop_, sdbus::createSystemBusConnection(),
                                              [weak = weak_from_this()] {
                                                  if (const auto self = weak.lock()) {
                                                      self->disconnect();
                                                      self->serviceVanished();
                                                  }
                                              });
        manager_ = sdbus::createProxy(bus_->connection(), serviceName, managerPath);
        using Text = std::string;
        subscribe<Text, Text, Text>(ownerChangedMatch, Until::busIsLost,
                                    [this](const Text&, const Text& before, const Text& after) {
                                        if (!before.empty()) {
                                            serviceVanished();
                                        }
                                        if (!after.empty()) {
                                            serviceAppeared();
                                        }
                                    });
        return {};
    } catch (const std::exception& error) {  // no bus, or no descriptor left to watch it with
        disconnect();
        return std::unexpected(sdbus::Error("org.freedesktop.DBus.Error.Failed", error.what()));
    }
}

void GeoClueService::disconnect() {
    endRound();
    serviceSubscriptions_.clear();
    manager_.reset();
    bus_.reset();
}

/// Calls `handler` with the values that the signal carries, on the run loop, outside of the bus, so that it
/// may drop what it came through. A signal that does not carry them is none.
template <class... Values, class Handler>
void GeoClueService::subscribe(const std::string& match, Until end, Handler handler) {
    const auto received = [weak = weak_from_this(), end, handler](sdbus::Message& message) {
        const auto self = weak.lock();
        std::tuple<Values...> values;
        try {
            std::apply([&](auto&... value) { static_cast<void>((message >> ... >> value)); }, values);
        } catch (const sdbus::Error&) {
            return;
        }
        if (self) {
            asio::post(self->runLoop_, [weak, end, handler, values, round = self->round_, bus = self->bus_] {
                const auto again = weak.lock();
                if (again && again->bus_ == bus && (end == Until::busIsLost || again->round_ == round)) {
                    std::apply(handler, values);
                }
            });
        }
    };
    auto& subscriptions = end == Until::roundEnds ? clientSubscriptions_ : serviceSubscriptions_;
    subscriptions.push_back(bus_->connection().addMatch(match, received));
    bus_->wake();
}

/// Calls a method and hands `done` a Result<T, sdbus::Error> on the run loop, outside of the bus; not when
/// the round has ended meanwhile.
template <class T, class Done, class... Arguments>
void GeoClueService::call(sdbus::IProxy& object, const char* interface, const char* method,
                          std::chrono::milliseconds timeout, Done done, const Arguments&... arguments) {
    const auto finish = [weak = weak_from_this(), round = round_, done](const Reply<T>& reply) {
        const auto self = weak.lock();
        if (self) {
            asio::post(self->runLoop_, [weak, round, done, reply] {
                const auto again = weak.lock();
                if (again && again->round_ == round) {
                    done(reply);
                }
            });
        }
    };
    try {
        auto message = object.createMethodCall(interface, method);
        static_cast<void>((message << ... << arguments));
        object.callMethod(
            message,
            [finish](sdbus::MethodReply& reply, const sdbus::Error* error) {
                if (error != nullptr) {
                    finish(std::unexpected(*error));
                    return;
                }
                try {
                    if constexpr (std::is_void_v<T>) {
                        finish({});
                    } else {
                        T value;
                        reply >> value;
                        finish(value);
                    }
                } catch (const sdbus::Error& malformed) {
                    finish(std::unexpected(malformed));
                }
            },
            std::chrono::microseconds(timeout));
        bus_->wake();
    } catch (const sdbus::Error& error) {
        finish(std::unexpected(error));
    }
}

void GeoClueService::useClient(const sdbus::ObjectPath& path) {
    client_ = sdbus::createProxy(bus_->connection(), serviceName, path);
    try {
        subscribe<sdbus::ObjectPath, sdbus::ObjectPath>(
            matchOf(path, clientInterface, "LocationUpdated"), Until::roundEnds,
            [this](const sdbus::ObjectPath&, const sdbus::ObjectPath& latest) {
                locationPath_ = latest;
                fetchLocation();
            });
        subscribe<std::string, Properties>(
            matchOf(path, propertiesInterface, "PropertiesChanged"), Until::roundEnds,
            [this](const std::string&, const Properties& changed) { clientChanged(changed); });
    } catch (const sdbus::Error& error) {
        unanswered(error);
        return;
    }
    const auto set = [this](const char* name, const auto& value) {
        call<void>(
            *client_, propertiesInterface, "Set", options_.callTimeout,
            [this](const Reply<void>& done) {
                if (!done) {
                    unanswered(done.error());
                }
            },
            clientInterface, name, sdbus::Variant(value));
    };
    set("DesktopId", options_.desktopId);
    set("RequestedAccuracyLevel", request_->accuracyLevel);
    set("DistanceThreshold", request_->distanceThreshold);
    start();
}

void GeoClueService::start() {
    call<void>(*client_, clientInterface, "Start", options_.authorizationTimeout,
               [this](const Reply<void>& started) {
                   if (started) {
                       isRunning_ = true;
                       isTroubleKnown_ = false;
                       fetchLocation();
                       answer(CLAuthorizationStatus::authorizedWhenInUse);
                   } else {
                       unanswered(started.error());
                   }
               });
}

/// The user may switch the application's permission off and on while it runs.
void GeoClueService::clientChanged(const Properties& changed) {
    const auto active = changed.find("Active");
    if (isRunning_ && active != changed.end() && active->second.containsValueOfType<bool>()) {
        answer(active->second.get<bool>() ? CLAuthorizationStatus::authorizedWhenInUse
                                          : CLAuthorizationStatus::denied);
    }
}

/// A newer position takes the place of one that is still on its way.
void GeoClueService::fetchLocation() {
    if (!isRunning_ || !locationPath_) {
        return;
    }
    location_ = sdbus::createProxy(bus_->connection(), serviceName, *std::exchange(locationPath_, {}));
    call<Properties>(
        *location_, propertiesInterface, "GetAll", options_.callTimeout,
        [this](const Reply<Properties>& properties) {
            const auto location = properties ? locationOf(*properties) : std::nullopt;
            if (!properties) {
                tell(CLErrorCode::network, properties.error().getMessage());
            } else if (!location) {
                tell(CLErrorCode::locationUnknown, "the service reported a position that is none");
            } else if (observer_ != nullptr) {
                observer_->located(*location);
            }
        },
        locationInterface);
}

void GeoClueService::answer(CLAuthorizationStatus status) {
    if (std::exchange(answered_, status) != status && observer_ != nullptr) {
        observer_->answered(status);
    }
}

void GeoClueService::unanswered(const sdbus::Error& error) {
    endRound();
    if (error.getName() == accessDenied) {
        answer(CLAuthorizationStatus::denied);
        return;
    }
    retryLater();
    answer(CLAuthorizationStatus::notDetermined);
    if (!std::exchange(isTroubleKnown_, true)) {
        tell(CLErrorCode::network, error.getMessage());
    }
}

void GeoClueService::tell(CLErrorCode code, const std::string& what) {
    if (observer_ != nullptr) {
        observer_->failed({std::string(kCLErrorDomain), static_cast<int>(code), what});
    }
}

void GeoClueService::retryLater() {
    retryTimer_.expires_after(options_.retryDelay);
    retryTimer_.async_wait([weak = weak_from_this(), round = round_](const asio::error_code& error) {
        const auto self = weak.lock();
        if (self && !error && self->round_ == round) {
            self->beginRound();
        }
    });
}

/// A service that has gone is called back after the delay, not at once: it may have failed at our call.
void GeoClueService::serviceVanished() {
    endRound();
    isTroubleKnown_ = true;  // from the status
    if (request_) {
        retryLater();
    }
    if (request_ || answered_) {
        answer(CLAuthorizationStatus::notDetermined);
    }
}

void GeoClueService::serviceAppeared() {
    if (request_ && !isUnderWay_) {
        beginRound();
    }
}

}  // namespace nimbuscope::platform
