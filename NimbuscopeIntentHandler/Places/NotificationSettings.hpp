#pragma once

#include <array>
#include <cstdint>
#include <tuple>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Fields.hpp"

/// What a saved place notifies its user of. Every key is required.
namespace nimbuscope {

/// The weakest precipitation that counts; the raw value is its reflectivity in dBZ.
enum class Intensity : std::int8_t { any = 0, light = 25, moderate = 35, heavy = 45, hail = 55 };

constexpr auto caseTable(Intensity) {
    using enum Intensity;
    return std::array{any, light, moderate, heavy, hail};
}

/// Notice of rain before it comes.
struct NotificationSettingsRainDuration {
    enum class Accuracy : std::int8_t { high = 1, medium = 2 };

    bool isEnabled = true;
    Accuracy accuracy = Accuracy::high;
    Intensity intensity = Intensity::light;

    static constexpr auto fields =
        std::tuple{platform::key("isEnabled", &NotificationSettingsRainDuration::isEnabled),
                   platform::key("accuracy", &NotificationSettingsRainDuration::accuracy),
                   platform::key("intensity", &NotificationSettingsRainDuration::intensity)};
    bool operator==(const NotificationSettingsRainDuration&) const = default;
};

constexpr auto caseTable(NotificationSettingsRainDuration::Accuracy) {
    using enum NotificationSettingsRainDuration::Accuracy;
    return std::array{high, medium};
}

/// Notice of precipitation within a radius of the place.
struct NotificationSettingsInRadius {
    enum class Radius : std::int32_t {  // metres
        fiveKm = 5000,
        tenKm = 10000,
        twentyKm = 20000,
        thirtyKm = 30000,
        fiftyKm = 50000,
    };

    bool isEnabled = true;
    bool showRadiusOnMap = true;
    Radius radius = Radius::thirtyKm;
    Intensity intensity = Intensity::hail;  // deliberately not that of the rain's duration

    static constexpr auto fields =
        std::tuple{platform::key("isEnabled", &NotificationSettingsInRadius::isEnabled),
                   platform::key("showRadiusOnMap", &NotificationSettingsInRadius::showRadiusOnMap),
                   platform::key("radius", &NotificationSettingsInRadius::radius),
                   platform::key("intensity", &NotificationSettingsInRadius::intensity)};
    bool operator==(const NotificationSettingsInRadius&) const = default;
};

constexpr auto caseTable(NotificationSettingsInRadius::Radius) {
    using enum NotificationSettingsInRadius::Radius;
    return std::array{fiveKm, tenKm, twentyKm, thirtyKm, fiftyKm};
}

/// Notice of severe weather.
struct NotificationSettingsSevereWeather {
    enum class Severity : std::int8_t { minor, moderate, severe };

    bool isEnabled = true;
    Severity severity = Severity::minor;

    static constexpr auto fields =
        std::tuple{platform::key("isEnabled", &NotificationSettingsSevereWeather::isEnabled),
                   platform::key("severity", &NotificationSettingsSevereWeather::severity)};
    bool operator==(const NotificationSettingsSevereWeather&) const = default;
};

constexpr auto caseTable(NotificationSettingsSevereWeather::Severity) {
    using enum NotificationSettingsSevereWeather::Severity;
    return std::array{platform::TextCase{minor, "Minor"}, platform::TextCase{moderate, "Moderate"},
                      platform::TextCase{severe, "Severe"}};
}

/// Notice of tropical storms.
struct NotificationSettingsTropicalStorms {
    enum class TrackingArea : std::int8_t { worldwide, nearMyLocations };

    bool isEnabled = true;
    TrackingArea trackingArea = TrackingArea::worldwide;

    static constexpr auto fields =
        std::tuple{platform::key("isEnabled", &NotificationSettingsTropicalStorms::isEnabled),
                   platform::key("trackingArea", &NotificationSettingsTropicalStorms::trackingArea)};
    bool operator==(const NotificationSettingsTropicalStorms&) const = default;
};

constexpr auto caseTable(NotificationSettingsTropicalStorms::TrackingArea) {
    using enum NotificationSettingsTropicalStorms::TrackingArea;
    return std::array{platform::TextCase{worldwide, "global"}, platform::TextCase{nearMyLocations, "near"}};
}

/// A choice that the application's settings show as a list with a check mark.
template <class T>
concept SettingsCheckListItem = platform::Enumeration<T>;
static_assert(SettingsCheckListItem<NotificationSettingsRainDuration::Accuracy>);
static_assert(SettingsCheckListItem<NotificationSettingsSevereWeather::Severity>);
static_assert(SettingsCheckListItem<NotificationSettingsTropicalStorms::TrackingArea>);

/// When to be silent, in seconds after local midnight.
struct NotificationSettingsSilenceTime {
    bool isEnabled = false;
    std::int64_t start = 23 * 3600;
    std::int64_t end = 7 * 3600;

    static constexpr auto fields =
        std::tuple{platform::key("isEnabled", &NotificationSettingsSilenceTime::isEnabled),
                   platform::key("start", &NotificationSettingsSilenceTime::start),
                   platform::key("end", &NotificationSettingsSilenceTime::end)};
    bool operator==(const NotificationSettingsSilenceTime&) const = default;
};

/// All notification settings of a place; made without arguments, the ones that a new place starts with.
struct LocationNotificationSettings {
    bool isCustom = false;
    NotificationSettingsRainDuration rainDuration;
    NotificationSettingsInRadius inRadius;
    NotificationSettingsSevereWeather severeWeather;
    NotificationSettingsTropicalStorms tropicalStorms;
    NotificationSettingsSilenceTime silenceTime;

    static constexpr auto fields =
        std::tuple{platform::key("isCustom", &LocationNotificationSettings::isCustom),
                   platform::key("rainDuration", &LocationNotificationSettings::rainDuration),
                   platform::key("inRadius", &LocationNotificationSettings::inRadius),
                   platform::key("severeWeather", &LocationNotificationSettings::severeWeather),
                   platform::key("tropicalStorms", &LocationNotificationSettings::tropicalStorms),
                   platform::key("silenceTime", &LocationNotificationSettings::silenceTime)};
    bool operator==(const LocationNotificationSettings&) const = default;
};

/// What the application's settings show and change, of one place or of all.
template <class T>
concept NotificationSettings = platform::Record<T> && requires(T settings) {
    settings.rainDuration;
    settings.inRadius;
    settings.severeWeather;
    settings.tropicalStorms;
    settings.silenceTime;
};
static_assert(NotificationSettings<LocationNotificationSettings>);

}  // namespace nimbuscope
