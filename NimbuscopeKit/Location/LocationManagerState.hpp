#pragma once

#include <cstdint>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/CoreLocation/CLLocationManager.hpp"

namespace nimbuscope {

/// Whether the system may know where the device is.
enum class LocationManagerState : std::uint8_t {
    available,
    availableAlways,
    undetermined,
    denied,
    restricted,
    disabled,  ///< location services are off as a whole; no status of the platform means it
};

/// What the platform's status means. A status that is none of the platform's stops the process; those read
/// from outside are checked with `fromRawValue`.
[[nodiscard]] NIMBUSCOPE_EXPORT LocationManagerState
locationManagerState(platform::CLAuthorizationStatus status);

/// The state in words: "available always".
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view description(LocationManagerState state);

[[nodiscard]] constexpr bool isAnyOfAvailable(LocationManagerState state) {
    return state == LocationManagerState::available || state == LocationManagerState::availableAlways;
}

}  // namespace nimbuscope
