#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"
#include "NimbuscopeKit/Preferences/MapPreferenceTypes.hpp"
#include "NimbuscopeKit/Preferences/OverlayTypePreference.hpp"
#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Coding/Fields.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/Locale/Locale.hpp"

/// Every setting of the user. Initial values are those of a new installation.
namespace nimbuscope {

class Migration;

/// How the application behaves as a whole.
struct MainPreferences {
    bool isRatingEnabled = true;               ///< the user may still be asked for a rating
    std::optional<std::string> ratingVersion;  ///< the version for which a rating was asked
    std::int64_t launchesCount = 1;
    bool isAutoplayEnabled = false;  ///< the radar animation starts by itself
    bool isOpenMapOnLaunchEnabled = true;
    bool isShowAIInsights = true;
    bool isHapticEnabled = true;
    bool isNeedSendStartupPush = true;

    static constexpr auto fields =
        std::tuple{platform::key("isRatingEnabled", &MainPreferences::isRatingEnabled),
                   platform::key("ratingVersion", &MainPreferences::ratingVersion),
                   platform::key("launchesCount", &MainPreferences::launchesCount),
                   platform::key("isAutoplayEnabled", &MainPreferences::isAutoplayEnabled),
                   platform::key("isOpenMapOnLaunchEnabled", &MainPreferences::isOpenMapOnLaunchEnabled),
                   platform::key("isShowAIInsights", &MainPreferences::isShowAIInsights),
                   platform::key("isHapticEnabled", &MainPreferences::isHapticEnabled),
                   platform::key("isNeedSendStartupPush", &MainPreferences::isNeedSendStartupPush)};
    bool operator==(const MainPreferences&) const = default;
};

struct NotificationsPreferences {
    std::optional<std::string> pushToken;  ///< the device's token as last registered

    static constexpr auto fields =
        std::tuple{platform::key("pushToken", &NotificationsPreferences::pushToken)};
    bool operator==(const NotificationsPreferences&) const = default;
};

/// What lies over the map.
struct LayerPreferences {
    ColorSchemePreference colorScheme = ColorSchemePreference::universalBlue;
    OverlayTypePreference overlayType = OverlayTypePreference::radar;
    bool isPrecipitationDirectionEnabled = true;  ///< arrows of the precipitation's movement
    bool isStormsEnabled = false;                 ///< storm tracks
    bool isAlertsEnabled = false;                 ///< weather alerts
    bool isRecentLayersEnabled = false;

    static constexpr auto fields = std::tuple{
        platform::key("colorScheme", &LayerPreferences::colorScheme),
        platform::key("overlayType", &LayerPreferences::overlayType),
        platform::key("isPrecipitationDirectionEnabled", &LayerPreferences::isPrecipitationDirectionEnabled),
        platform::key("isStormsEnabled", &LayerPreferences::isStormsEnabled),
        platform::key("isAlertsEnabled", &LayerPreferences::isAlertsEnabled),
        platform::key("isRecentLayersEnabled", &LayerPreferences::isRecentLayersEnabled)};
    bool operator==(const LayerPreferences&) const = default;
};

/// The map under the overlays.
struct NIMBUSCOPE_EXPORT MapPreferences {
    /// A position in degrees; its keys are not those of the shared coordinate record.
    struct Coordinate {
        double lat;
        double lon;

        /// None unless both are there.
        [[nodiscard]] static std::optional<Coordinate> from(std::optional<double> latitude,
                                                            std::optional<double> longitude);

        static constexpr auto fields =
            std::tuple{platform::key("lat", &Coordinate::lat), platform::key("lon", &Coordinate::lon)};
        bool operator==(const Coordinate&) const = default;
    };

    /// A rectangle in the map view's projected coordinates.
    struct Rect {
        double x;
        double y;
        double width;
        double height;

        /// None unless all four are there.
        [[nodiscard]] static std::optional<Rect> from(std::optional<double> x, std::optional<double> y,
                                                      std::optional<double> width,
                                                      std::optional<double> height);

        static constexpr auto fields =
            std::tuple{platform::key("x", &Rect::x), platform::key("y", &Rect::y),
                       platform::key("width", &Rect::width), platform::key("height", &Rect::height)};
        bool operator==(const Rect&) const = default;
    };

    struct LegendPreference {
        bool isLegendEnabled;
        LegendTooltipTypePreference tooltipType;

        static constexpr auto fields =
            std::tuple{platform::key("isLegendEnabled", &LegendPreference::isLegendEnabled),
                       platform::key("tooltipType", &LegendPreference::tooltipType)};
        bool operator==(const LegendPreference&) const = default;
    };

    std::optional<Coordinate> currentLocation;  ///< the last centre
    std::optional<Rect> currentRect;            ///< what was last visible
    MapTypePreference type = MapTypePreference::Standard;
    UnitsPreference units = UnitsPreference::Metric;  ///< on a new installation those of the user's locale
    LegendPreference legend{true, LegendTooltipTypePreference::intensity};

    static constexpr auto fields = std::tuple{
        platform::key("currentLocation", &MapPreferences::currentLocation),
        platform::key("currentRect", &MapPreferences::currentRect),
        platform::key("type", &MapPreferences::type), platform::key("units", &MapPreferences::units),
        platform::key("legend", &MapPreferences::legend)};
    bool operator==(const MapPreferences&) const = default;
};

/// How the radar is drawn.
struct RadarPreferences {
    bool isEnhancedColorsEnabled = true;
    bool isSmoothRadarEnabled = true;
    bool isCoverageEnabled = false;  ///< the outline of what the radars see
    bool isDynamicOpacityEnabled = true;
    std::int64_t overlayOpacity = 80;  ///< per cent
    IntensityPreference minimalIntensity = IntensityPreference::Drizzle;

    static constexpr auto fields =
        std::tuple{platform::key("isEnhancedColorsEnabled", &RadarPreferences::isEnhancedColorsEnabled),
                   platform::key("isSmoothRadarEnabled", &RadarPreferences::isSmoothRadarEnabled),
                   platform::key("isCoverageEnabled", &RadarPreferences::isCoverageEnabled),
                   platform::key("isDynamicOpacityEnabled", &RadarPreferences::isDynamicOpacityEnabled),
                   platform::key("overlayOpacity", &RadarPreferences::overlayOpacity),
                   platform::key("minimalIntensity", &RadarPreferences::minimalIntensity)};
    bool operator==(const RadarPreferences&) const = default;
};

/// The record of all settings, stored as one JSON object.
struct NIMBUSCOPE_EXPORT AppPreferences {
    /// Version of the record's schema. `Migration.hpp` leads from each to the next.
    enum class Version : std::int64_t { v1 = 1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12 };
    friend constexpr auto caseTable(Version) {
        using enum Version;
        return std::array{v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12};
    }

    Version version = Version::v12;
    MainPreferences main;
    NotificationsPreferences notifications;
    LayerPreferences layer;
    MapPreferences map;
    RadarPreferences radar;

    /// The record built from the older settings, each of which has a key of its own in `userDefaults`. A key
    /// that is missing, or whose value is of another type or not allowed, leaves the setting as on a new
    /// installation, with the units of `locale`. Types are exact: 1 is no boolean, 22.0 no integer; but the
    /// numbers of a position or rectangle may be integers.
    [[nodiscard]] static AppPreferences fromUserDefaults(const platform::NSUserDefaults& userDefaults,
                                                         const platform::Locale& locale);

    /// As above, with an error where the store cannot be read just now: for a record that is to be kept.
    [[nodiscard]] static platform::DefaultsResult<AppPreferences> checkedFromUserDefaults(
        const platform::NSUserDefaults& userDefaults, const platform::Locale& locale);

    /// What leads from the version before `to` to that version.
    [[nodiscard]] static Migration migrate(Version to);

    static constexpr auto fields = std::tuple{platform::key("version", &AppPreferences::version),
                                              platform::key("main", &AppPreferences::main),
                                              platform::key("notifications", &AppPreferences::notifications),
                                              platform::key("layer", &AppPreferences::layer),
                                              platform::key("map", &AppPreferences::map),
                                              platform::key("radar", &AppPreferences::radar)};
    bool operator==(const AppPreferences&) const = default;
};

}  // namespace nimbuscope
