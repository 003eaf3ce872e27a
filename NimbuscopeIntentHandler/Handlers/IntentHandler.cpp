#include "NimbuscopeIntentHandler/Handlers/IntentHandler.hpp"

#include <string>

#include "NimbuscopeIntentHandler/Handlers/LocationOptions.hpp"
#include "NimbuscopeIntentHandler/Handlers/ShortcutIntentHandler.hpp"
#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"

namespace nimbuscope {
namespace {

template <class Intent>
bool isA(const platform::INIntent& intent) {
    return dynamic_cast<const Intent*>(&intent) != nullptr;
}

std::shared_ptr<MapColorScheme> schemeOption(ColorSchemePreference scheme, const platform::Bundle& bundle) {
    const std::int64_t number = platform::rawValue(scheme);
    auto option = std::make_shared<MapColorScheme>(std::to_string(number), title(scheme, bundle));
    option->id = number;
    return option;
}

}  // namespace

std::shared_ptr<platform::NSObject> IntentHandler::handler(const platform::INIntent& intent) {
    if (isA<WeatherForecastIntent>(intent)) {
        return std::make_shared<WeatherForecastIntentHandler>(services_);
    }
    if (isA<CurrentWeatherIntent>(intent)) {
        return std::make_shared<CurrentWeatherIntentHandler>(services_);
    }
    if (isA<RadarMapIntent>(intent)) {
        return std::make_shared<RadarMapIntentHandler>(services_);
    }
    if (isA<SatelliteMapIntent>(intent)) {
        return std::make_shared<SatelliteMapIntentHandler>(services_);
    }
    return shared_from_this();
}

void IntentHandler::provideLocationOptionsCollection(
    const WeatherRadarMapIntent& /*intent*/,
    platform::CompletionHandler<std::shared_ptr<ForecastLocationCollection>> completion) {
    completion(locationOptions<ForecastLocation>(services_.storage().places()));
}

std::shared_ptr<ForecastLocation> IntentHandler::defaultLocation(const WeatherRadarMapIntent& /*intent*/) {
    // The current place, where there is one, is the first.
    const auto places = services_.storage().places();
    return places.empty() ? nullptr : locationOption<ForecastLocation>(places.front());
}

void IntentHandler::provideMapColorSchemeOptionsCollection(
    const WeatherRadarMapIntent& /*intent*/,
    platform::CompletionHandler<std::shared_ptr<MapColorSchemeCollection>> completion) {
    std::vector<std::shared_ptr<MapColorScheme>> options;
    for (const ColorSchemePreference scheme : platform::allCases<ColorSchemePreference>()) {
        options.push_back(schemeOption(scheme, services_.bundle));
    }
    completion(std::make_shared<MapColorSchemeCollection>(std::move(options)));
}

std::shared_ptr<MapColorScheme> IntentHandler::defaultMapColorScheme(
    const WeatherRadarMapIntent& /*intent*/) {
    return schemeOption(ColorSchemePreference::universalBlue, services_.bundle);
}

}  // namespace nimbuscope
