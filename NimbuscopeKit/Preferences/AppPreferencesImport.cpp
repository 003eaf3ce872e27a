// The older settings, in which every setting had a key of its own in the key-value store.

#include <type_traits>
#include <utility>

#include "NimbuscopeKit/Preferences/AppPreferences.hpp"
#include "NimbuscopeKit/Preferences/Migration.hpp"

namespace nimbuscope {
namespace {

using platform::DefaultsArray;
using platform::DefaultsError;
using platform::DefaultsValue;

// A value of the wrong type or not allowed leaves the setting as it is.

void take(const DefaultsValue& stored, bool& setting) {
    if (const auto* value = stored.as<bool>()) {
        setting = *value;
    }
}

void take(const DefaultsValue& stored, std::int64_t& setting) {
    if (const auto* value = stored.as<std::int64_t>()) {
        setting = *value;
    }
}

void take(const DefaultsValue& stored, std::optional<std::string>& setting) {
    if (const auto* value = stored.as<std::string>()) {
        setting = *value;
    }
}

template <platform::Enumeration E>
void take(const DefaultsValue& stored, E& setting) {
    if (const auto* value = stored.as<std::int64_t>()) {
        setting = platform::fromRawValue<E>(*value).value_or(setting);
    }
}

/// A number of an array. There, a whole number may have been stored as an integer.
std::optional<double> number(const DefaultsValue& stored) {
    if (const auto* integer = stored.as<std::int64_t>()) {
        return static_cast<double>(*integer);
    }
    const auto* real = stored.as<double>();
    return real != nullptr ? std::optional(*real) : std::nullopt;
}

void take(const DefaultsValue& stored, std::optional<MapPreferences::Coordinate>& setting) {
    const auto* array = stored.as<DefaultsArray>();
    if (array != nullptr && array->size() == 2) {
        setting = MapPreferences::Coordinate::from(number((*array)[0]), number((*array)[1]));
    }
}

void take(const DefaultsValue& stored, std::optional<MapPreferences::Rect>& setting) {
    const auto* array = stored.as<DefaultsArray>();
    if (array != nullptr && array->size() == 4) {
        setting = MapPreferences::Rect::from(number((*array)[0]), number((*array)[1]), number((*array)[2]),
                                             number((*array)[3]));
    }
}

/// Which setting an old key holds.
template <class Section, class Setting>
struct Import {
    std::string_view oldKey;
    Section AppPreferences::* section;
    Setting Section::* setting;

    /// Why the store could not be read just now. A value that is damaged, and will be, counts as missing.
    [[nodiscard]] std::optional<DefaultsError> operator()(const platform::NSUserDefaults& userDefaults,
                                                          AppPreferences& preferences) const {
        auto stored = userDefaults.object(oldKey);
        if (stored && *stored) {
            take(**stored, preferences.*section.*setting);
        }
        const bool isLasting = stored || stored.error().code == DefaultsError::Code::damaged;
        return isLasting ? std::nullopt : std::optional(std::move(stored.error()));
    }
};

// The keys are spelt as applications have stored them.
constexpr std::tuple importTable{
    Import{"rrR", &AppPreferences::main, &MainPreferences::isRatingEnabled},
    Import{"nbcNB", &AppPreferences::main, &MainPreferences::ratingVersion},
    Import{"nbcLaunches", &AppPreferences::main, &MainPreferences::launchesCount},
    Import{"nbcAutoplay", &AppPreferences::main, &MainPreferences::isAutoplayEnabled},
    Import{"nbcPushToken", &AppPreferences::notifications, &NotificationsPreferences::pushToken},
    Import{"colorScheme", &AppPreferences::layer, &LayerPreferences::colorScheme},
    Import{"precipitationArrows", &AppPreferences::layer, &LayerPreferences::isPrecipitationDirectionEnabled},
    Import{"currentLocation", &AppPreferences::map, &MapPreferences::currentLocation},
    Import{"currentMapRect", &AppPreferences::map, &MapPreferences::currentRect},
    Import{"userMapType", &AppPreferences::map, &MapPreferences::type},
    Import{"nbcUnits", &AppPreferences::map, &MapPreferences::units},
    Import{"enhancedColors", &AppPreferences::radar, &RadarPreferences::isEnhancedColorsEnabled},
    Import{"nbcSmoothRadar", &AppPreferences::radar, &RadarPreferences::isSmoothRadarEnabled},
    Import{"coverage", &AppPreferences::radar, &RadarPreferences::isCoverageEnabled},
    Import{"nbcDynOpacity", &AppPreferences::radar, &RadarPreferences::isDynamicOpacityEnabled},
    Import{"nbcOpacity", &AppPreferences::radar, &RadarPreferences::overlayOpacity},
    Import{"nbcOverlayMinimalIntencity", &AppPreferences::radar, &RadarPreferences::minimalIntensity},
};

static_assert(AppPreferences{}.version == newestVersion<AppPreferences>);

/// The record, and the last fault that kept a value from being read.
std::pair<AppPreferences, std::optional<DefaultsError>> imported(const platform::NSUserDefaults& userDefaults,
                                                                 const platform::Locale& locale) {
    std::pair<AppPreferences, std::optional<DefaultsError>> result;
    auto& [preferences, fault] = result;
    preferences.map.units = locale.usesMetricSystem() ? UnitsPreference::Metric : UnitsPreference::Imperial;
    const auto take = [&](const auto& row) {
        if (auto found = row(userDefaults, preferences)) {
            fault = std::move(found);
        }
    };
    std::apply([&](const auto&... row) { (take(row), ...); }, importTable);
    return result;
}

}  // namespace

std::optional<MapPreferences::Coordinate> MapPreferences::Coordinate::from(std::optional<double> latitude,
                                                                           std::optional<double> longitude) {
    return latitude && longitude ? std::optional(Coordinate{*latitude, *longitude}) : std::nullopt;
}

std::optional<MapPreferences::Rect> MapPreferences::Rect::from(std::optional<double> x,
                                                               std::optional<double> y,
                                                               std::optional<double> width,
                                                               std::optional<double> height) {
    return x && y && width && height ? std::optional(Rect{*x, *y, *width, *height}) : std::nullopt;
}

AppPreferences AppPreferences::fromUserDefaults(const platform::NSUserDefaults& userDefaults,
                                                const platform::Locale& locale) {
    return imported(userDefaults, locale).first;
}

platform::DefaultsResult<AppPreferences> AppPreferences::checkedFromUserDefaults(
    const platform::NSUserDefaults& userDefaults, const platform::Locale& locale) {
    auto [preferences, fault] = imported(userDefaults, locale);
    if (fault) {
        return std::unexpected(std::move(*fault));
    }
    return std::move(preferences);
}

}  // namespace nimbuscope
