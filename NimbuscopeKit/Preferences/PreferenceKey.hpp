#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <variant>
#include <vector>

#include "NimbuscopeKit/Preferences/AppPreferences.hpp"
#include "Platform/Coding/CodingError.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// The cases of `PreferenceKey`, each with the new value of the setting that it names:
/// `preference::units{UnitsPreference::Metric}`. Names of cases are not always those of the settings.
namespace preference {

namespace detail {

/// A text as a template argument.
template <std::size_t size>
struct Name {
    char characters[size];
    constexpr Name(const char (&text)[size]) { std::ranges::copy(text, characters); }
    [[nodiscard]] constexpr std::string_view view() const { return {characters, size - 1}; }
};

template <class Section, class Setting>
Setting settingOf(Setting Section::*);

/// A setting that may be absent can be set, not cleared.
template <class Setting>
struct Payload {
    using Type = Setting;
};
template <class Value>
struct Payload<std::optional<Value>> {
    using Type = Value;
};

}  // namespace detail

template <detail::Name caseName, auto section, auto setting>
struct Case {
    using Payload = typename detail::Payload<decltype(detail::settingOf(setting))>::Type;
    static constexpr std::string_view name = caseName.view();

    Payload value;

    void applyTo(AppPreferences& preferences) const { preferences.*section.*setting = value; }
};

template <detail::Name name, auto setting>
using MainCase = Case<name, &AppPreferences::main, setting>;
template <detail::Name name, auto setting>
using LayerCase = Case<name, &AppPreferences::layer, setting>;
template <detail::Name name, auto setting>
using MapCase = Case<name, &AppPreferences::map, setting>;
template <detail::Name name, auto setting>
using RadarCase = Case<name, &AppPreferences::radar, setting>;

using isRatingEnabled = MainCase<"isRatingEnabled", &MainPreferences::isRatingEnabled>;
using ratingVersion = MainCase<"ratingVersion", &MainPreferences::ratingVersion>;
using launchesCount = MainCase<"launchesCount", &MainPreferences::launchesCount>;
using isAutoplayEnabled = MainCase<"isAutoplayEnabled", &MainPreferences::isAutoplayEnabled>;
using pushToken = Case<"pushToken", &AppPreferences::notifications, &NotificationsPreferences::pushToken>;
using colorScheme = LayerCase<"colorScheme", &LayerPreferences::colorScheme>;
using overlayType = LayerCase<"overlayType", &LayerPreferences::overlayType>;
using isPrecipitationDirectionEnabled =
    LayerCase<"isPrecipitationDirectionEnabled", &LayerPreferences::isPrecipitationDirectionEnabled>;
using isStormsEnabled = LayerCase<"isStormsEnabled", &LayerPreferences::isStormsEnabled>;
using isAlertsEnabled = LayerCase<"isAlertsEnabled", &LayerPreferences::isAlertsEnabled>;
using isRecentLayersEnabled = LayerCase<"isRecentLayersEnabled", &LayerPreferences::isRecentLayersEnabled>;
using isOpenMapOnLaunchEnabled =
    MainCase<"isOpenMapOnLaunchEnabled", &MainPreferences::isOpenMapOnLaunchEnabled>;
using isSendStartupPushEnabled =
    MainCase<"isSendStartupPushEnabled", &MainPreferences::isNeedSendStartupPush>;
using isShowAIInsightsEnabled = MainCase<"isShowAIInsightsEnabled", &MainPreferences::isShowAIInsights>;
using isHapticEnabled = MainCase<"isHapticEnabled", &MainPreferences::isHapticEnabled>;
using currentLocation = MapCase<"currentLocation", &MapPreferences::currentLocation>;
using currentMapRect = MapCase<"currentMapRect", &MapPreferences::currentRect>;
using mapType = MapCase<"mapType", &MapPreferences::type>;
using units = MapCase<"units", &MapPreferences::units>;
using legend = MapCase<"legend", &MapPreferences::legend>;
using isEnhancedColorEnabled =
    RadarCase<"isEnhancedColorEnabled", &RadarPreferences::isEnhancedColorsEnabled>;
using isSmoothRadarEnabled = RadarCase<"isSmoothRadarEnabled", &RadarPreferences::isSmoothRadarEnabled>;
using isCovarageEnabled = RadarCase<"isCovarageEnabled", &RadarPreferences::isCoverageEnabled>;
using isDynamicOpacityEnabled =
    RadarCase<"isDynamicOpacityEnabled", &RadarPreferences::isDynamicOpacityEnabled>;
using overlayOpacity = RadarCase<"overlayOpacity", &RadarPreferences::overlayOpacity>;
using minimalIntensity = RadarCase<"minimalIntensity", &RadarPreferences::minimalIntensity>;

}  // namespace preference

/// One setting with its new value.
using PreferenceKey = std::variant<
    preference::isRatingEnabled, preference::ratingVersion, preference::launchesCount,
    preference::isAutoplayEnabled, preference::pushToken, preference::colorScheme, preference::overlayType,
    preference::isPrecipitationDirectionEnabled, preference::isStormsEnabled, preference::isAlertsEnabled,
    preference::isRecentLayersEnabled, preference::isOpenMapOnLaunchEnabled,
    preference::isSendStartupPushEnabled, preference::isShowAIInsightsEnabled, preference::isHapticEnabled,
    preference::currentLocation, preference::currentMapRect, preference::mapType, preference::units,
    preference::legend, preference::isEnhancedColorEnabled, preference::isSmoothRadarEnabled,
    preference::isCovarageEnabled, preference::isDynamicOpacityEnabled, preference::overlayOpacity,
    preference::minimalIntensity>;

/// The names of all cases, in order.
[[nodiscard]] NIMBUSCOPE_EXPORT std::vector<std::string_view> preferenceKeyNames();

/// The case of this name with a value written as text: texts as they are, all else as JSON, enumerations by
/// their raw values. Fails, saying where, for a name that no case has and for a value that the case cannot
/// carry.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::Result<PreferenceKey, platform::DecodingError> preferenceKey(
    std::string_view name, std::string_view value);

}  // namespace nimbuscope
