#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "NimbuscopeIntentHandler/Intents/Intents.hpp"
#include "Platform/Intents/INIntentResponse.hpp"

/// The answers to intents that were handled: one class per class of intents.
namespace nimbuscope {

/// What became of an intent. All classes of responses share these codes.
enum class IntentResponseCode : std::int64_t {
    unspecified = 0,
    ready = 1,
    continueInApp = 2,
    inProgress = 3,
    success = 4,
    failure = 5,
    failureRequiringAppLaunch = 6,
};

constexpr auto caseTable(IntentResponseCode) {
    using enum IntentResponseCode;
    return std::array{
        unspecified, ready, continueInApp, inProgress, success, failure, failureRequiringAppLaunch};
}

using ConfigurationIntentResponseCode = IntentResponseCode;
using WeatherRadarMapIntentResponseCode = IntentResponseCode;
using RadarMapIntentResponseCode = IntentResponseCode;
using SatelliteMapIntentResponseCode = IntentResponseCode;
using WeatherForecastIntentResponseCode = IntentResponseCode;
using CurrentWeatherIntentResponseCode = IntentResponseCode;

/// The response to an intent; Self names its class in `name`. Fresh: code 0 and no user activity.
template <class Self>
class CodedIntentResponse : public platform::INIntentResponse {
  public:
    IntentResponseCode code = IntentResponseCode::unspecified;

    CodedIntentResponse() = default;
    CodedIntentResponse(IntentResponseCode responseCode, std::optional<platform::NSUserActivity> activity)
        : code(responseCode) {
        userActivity = std::move(activity);
    }

    [[nodiscard]] std::string_view className() const override { return Self::name; }
    [[nodiscard]] std::int64_t rawCode() const override { return platform::rawValue(code); }
};

class ConfigurationIntentResponse final : public CodedIntentResponse<ConfigurationIntentResponse> {
  public:
    static constexpr std::string_view name = "ConfigurationIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;
};

class WeatherRadarMapIntentResponse final : public CodedIntentResponse<WeatherRadarMapIntentResponse> {
  public:
    static constexpr std::string_view name = "WeatherRadarMapIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;
};

class RadarMapIntentResponse final : public CodedIntentResponse<RadarMapIntentResponse> {
  public:
    static constexpr std::string_view name = "RadarMapIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;
};

class SatelliteMapIntentResponse final : public CodedIntentResponse<SatelliteMapIntentResponse> {
  public:
    static constexpr std::string_view name = "SatelliteMapIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;
};

class WeatherForecastIntentResponse final : public CodedIntentResponse<WeatherForecastIntentResponse> {
  public:
    static constexpr std::string_view name = "WeatherForecastIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;
};

class CurrentWeatherIntentResponse final : public CodedIntentResponse<CurrentWeatherIntentResponse> {
  public:
    static constexpr std::string_view name = "CurrentWeatherIntentResponse";
    using CodedIntentResponse::CodedIntentResponse;

    std::optional<std::string> temperature;  ///< as shown, with its unit
    std::optional<std::string> feelsLike;    ///< as shown, with its unit

    /// A response of code `success` that tells the temperatures.
    [[nodiscard]] static std::shared_ptr<CurrentWeatherIntentResponse> success(std::string temperature,
                                                                               std::string feelsLike) {
        auto response =
            std::make_shared<CurrentWeatherIntentResponse>(IntentResponseCode::success, std::nullopt);
        response->temperature = std::move(temperature);
        response->feelsLike = std::move(feelsLike);
        return response;
    }
};

}  // namespace nimbuscope
