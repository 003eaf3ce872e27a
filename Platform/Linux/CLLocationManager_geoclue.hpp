#pragma once

#include <asio/any_io_executor.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/CoreLocation/CLLocationManager.hpp"

namespace nimbuscope::platform {

struct GeoClueOptions {
    /// The application's name towards the service and the user: that of its desktop file, without ".desktop".
    std::string desktopId = "nimbuscope";
    /// How long the service may take to answer.
    std::chrono::milliseconds callTimeout = std::chrono::seconds(10);
    /// How long it may take to start: it may have to ask the user.
    std::chrono::milliseconds authorizationTimeout = std::chrono::minutes(2);
    /// When to try again what was not answered, unless the service appears before.
    std::chrono::milliseconds retryDelay = std::chrono::seconds(10);
};

/// GeoClue 2 on the system bus. Everything happens on `runLoop`, which one thread runs. The bus is connected
/// to with the first start or request.
///
/// The service knows one kind of permission, that while in use: a request for more gets just this. It asks
/// the user when positions are first wanted, so a request starts it for the moment. No bus, no service or
/// nobody to ask are `notDetermined`. Background updates need no permission. Significant changes are those of
/// a kilometre, known to the accuracy of a city.
[[nodiscard]] NIMBUSCOPE_EXPORT std::unique_ptr<CLLocationManager> makeGeoClueLocationManager(
    const asio::any_io_executor& runLoop, GeoClueOptions options = {});

}  // namespace nimbuscope::platform
