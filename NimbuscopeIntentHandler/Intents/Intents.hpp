#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "NimbuscopeIntentHandler/Intents/IntentEnumerations.hpp"
#include "NimbuscopeIntentHandler/Intents/IntentObjects.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INIntent.hpp"

/// The requests that the system sends. Every parameter may be absent.
namespace nimbuscope {

/// An intent whose only parameter is a location, an object of class Object. Self names its class in `name`.
template <class Self, class Object>
class LocationIntent : public platform::INIntent {
  public:
    [[nodiscard]] std::string_view className() const override { return Self::name; }
    [[nodiscard]] std::span<const platform::INParameter> parameterTable() const override { return table; }

    [[nodiscard]] std::shared_ptr<Object> location() const { return object<Object>("location"); }
    void setLocation(std::shared_ptr<Object> location) { setObject("location", std::move(location)); }

  private:
    static constexpr std::array table{
        platform::INParameter{"location", &platform::decodeObjectParameter<Object>}};
};

/// Shows the radar map of a place.
class RadarMapIntent final : public LocationIntent<RadarMapIntent, Location> {
  public:
    static constexpr std::string_view name = "RadarMapIntent";
};

/// Shows the satellite map of a place.
class SatelliteMapIntent final : public LocationIntent<SatelliteMapIntent, Location> {
  public:
    static constexpr std::string_view name = "SatelliteMapIntent";
};

/// Shows the forecast for a place.
class WeatherForecastIntent final : public LocationIntent<WeatherForecastIntent, Location> {
  public:
    static constexpr std::string_view name = "WeatherForecastIntent";
};

/// Shows the current conditions at a place.
class CurrentWeatherIntent final : public LocationIntent<CurrentWeatherIntent, Location> {
  public:
    static constexpr std::string_view name = "CurrentWeatherIntent";
};

/// Configures a forecast widget.
class ConfigurationIntent final : public LocationIntent<ConfigurationIntent, ForecastLocation> {
  public:
    static constexpr std::string_view name = "ConfigurationIntent";
};

/// Configures a radar widget.
class NIMBUSCOPE_EXPORT WeatherRadarMapIntent final : public platform::INIntent {
  public:
    static constexpr std::string_view name = "WeatherRadarMapIntent";

    [[nodiscard]] std::string_view className() const override { return name; }
    [[nodiscard]] std::span<const platform::INParameter> parameterTable() const override { return table; }

    [[nodiscard]] std::shared_ptr<ForecastLocation> location() const {
        return object<ForecastLocation>("location");
    }
    void setLocation(std::shared_ptr<ForecastLocation> value) { setObject("location", std::move(value)); }

    [[nodiscard]] std::optional<MapType> mapType() const { return enumeration<MapType>("mapType"); }
    void setMapType(std::optional<MapType> value) { setEnumeration("mapType", value); }

    [[nodiscard]] std::optional<double> zoom() const { return scalar<double>("zoom"); }
    void setZoom(std::optional<double> value) { setScalar("zoom", value); }

    [[nodiscard]] std::shared_ptr<MapColorScheme> mapColorScheme() const {
        return object<MapColorScheme>("mapColorScheme");
    }
    void setMapColorScheme(std::shared_ptr<MapColorScheme> value) {
        setObject("mapColorScheme", std::move(value));
    }

    [[nodiscard]] std::optional<bool> enhancedColors() const { return scalar<bool>("enhancedColors"); }
    void setEnhancedColors(std::optional<bool> value) { setScalar("enhancedColors", value); }

    [[nodiscard]] std::optional<bool> smoothRadar() const { return scalar<bool>("smoothRadar"); }
    void setSmoothRadar(std::optional<bool> value) { setScalar("smoothRadar", value); }

    [[nodiscard]] std::optional<PercipitationIntensity> minIntensity() const {
        return enumeration<PercipitationIntensity>("minIntensity");
    }
    void setMinIntensity(std::optional<PercipitationIntensity> value) {
        setEnumeration("minIntensity", value);
    }

    [[nodiscard]] std::optional<bool> snow() const { return scalar<bool>("snow"); }
    void setSnow(std::optional<bool> value) { setScalar("snow", value); }

    [[nodiscard]] std::optional<bool> arrows() const { return scalar<bool>("arrows"); }
    void setArrows(std::optional<bool> value) { setScalar("arrows", value); }

    [[nodiscard]] std::optional<MapLayer> mapLayer() const { return enumeration<MapLayer>("mapLayer"); }
    void setMapLayer(std::optional<MapLayer> value) { setEnumeration("mapLayer", value); }

  private:
    static constexpr std::array table{
        platform::INParameter{"location", &platform::decodeObjectParameter<ForecastLocation>},
        platform::INParameter{"mapType", &platform::decodeEnumerationParameter<MapType>},
        platform::INParameter{"zoom", &platform::decodeScalarParameter<double>},
        platform::INParameter{"mapColorScheme", &platform::decodeObjectParameter<MapColorScheme>},
        platform::INParameter{"enhancedColors", &platform::decodeScalarParameter<bool>},
        platform::INParameter{"smoothRadar", &platform::decodeScalarParameter<bool>},
        platform::INParameter{"minIntensity", &platform::decodeEnumerationParameter<PercipitationIntensity>},
        platform::INParameter{"snow", &platform::decodeScalarParameter<bool>},
        platform::INParameter{"arrows", &platform::decodeScalarParameter<bool>},
        platform::INParameter{"mapLayer", &platform::decodeEnumerationParameter<MapLayer>},
    };
};

}  // namespace nimbuscope
