#include <gtest/gtest.h>

#include "NimbuscopeIntentHandler/Intents/IntentResponses.hpp"
#include "NimbuscopeIntentHandler/Intents/Intents.hpp"

namespace nimbuscope {
namespace {

TEST(Intents, rawValuesOutOfRangeYieldNoCase) {
    using platform::fromRawValue;
    EXPECT_EQ(fromRawValue<MapType>(3), MapType::hybrid);
    EXPECT_EQ(fromRawValue<MapType>(4), std::nullopt);
    EXPECT_EQ(fromRawValue<PercipitationIntensity>(4), PercipitationIntensity::hail);
    EXPECT_EQ(fromRawValue<PercipitationIntensity>(5), std::nullopt);
    EXPECT_EQ(fromRawValue<MapLayer>(3), std::nullopt);
    EXPECT_EQ(fromRawValue<MapLayer>(-1), std::nullopt);
    EXPECT_EQ(fromRawValue<RadarMapIntentResponseCode>(7), std::nullopt);
}

TEST(Intents, survivesArchivingWithEveryParameter) {
    WeatherRadarMapIntent intent;
    auto scheme = std::make_shared<MapColorScheme>("4", "Universal Blue", "blue");
    scheme->id = 4;
    intent.setLocation(std::make_shared<ForecastLocation>(std::nullopt, "Somewhere"));
    intent.setMapColorScheme(scheme);
    intent.setMapType(MapType::satellite);
    intent.setZoom(7.5);
    intent.setEnhancedColors(true);
    intent.setSmoothRadar(false);
    intent.setMinIntensity(PercipitationIntensity::heavy);
    intent.setSnow(true);
    intent.setArrows(false);
    intent.setMapLayer(MapLayer::radar);
    const auto bytes = archived(intent);
    ASSERT_TRUE(bytes);
    const auto again = platform::unarchived<WeatherRadarMapIntent>(*bytes);
    ASSERT_TRUE(again) << again.error().message();
    EXPECT_EQ(archived(**again), bytes);
    EXPECT_EQ((*again)->mapColorScheme()->id, 4);
    EXPECT_EQ((*again)->location()->identifier(), std::nullopt);
    EXPECT_EQ((*again)->mapType(), MapType::satellite);
    EXPECT_FALSE(platform::unarchived<RadarMapIntent>(*bytes));

    intent.setZoom(std::nullopt);
    intent.setLocation(nullptr);
    EXPECT_EQ(intent.zoom(), std::nullopt);
    EXPECT_EQ(archived(intent)->find("location"), std::string::npos);
}

TEST(Intents, objectsSurviveArchivingAndOtherClassesAreRefused) {
    MapColorScheme scheme("22", "RAINBOW");
    scheme.id = 22;
    const auto bytes = archived(scheme);
    EXPECT_EQ(bytes, R"({"class":"MapColorScheme","identifier":"22","display":"RAINBOW","id":22})");
    EXPECT_EQ(platform::unarchived<MapColorScheme>(*bytes).value()->id, 22);
    EXPECT_EQ(platform::unarchived<Location>(*bytes).error().message(),
              R"(class: expected "Location", found "MapColorScheme")");
}

TEST(Intents, freshResponsesAreUnspecifiedAndSuccessKeepsItsTexts) {
    const RadarMapIntentResponse fresh;
    EXPECT_EQ(fresh.rawCode(), 0);
    EXPECT_FALSE(fresh.userActivity);
    const auto success = CurrentWeatherIntentResponse::success("21 °C", "19 °C");
    EXPECT_EQ(success->rawCode(), 4);
    EXPECT_EQ(success->temperature, "21 °C");
    EXPECT_EQ(success->feelsLike, "19 °C");
}

TEST(Intents, resolutionsCarryTheVeryValuesAndUntypedOnesStopTheProcess) {
    using platform::INResolution;
    const auto place = std::make_shared<Location>("a", "A");
    EXPECT_EQ(LocationResolutionResult::success(place).objects().front(), place);
    EXPECT_EQ(LocationResolutionResult::disambiguation(std::vector{place, place}).objects().size(), 2U);
    EXPECT_TRUE(
        LocationResolutionResult::confirmationRequired(std::shared_ptr<Location>()).objects().empty());
    EXPECT_EQ(LocationResolutionResult::needsValue().resolution(), INResolution::needsValue);
    const auto intensity =
        PercipitationIntensityResolutionResult::confirmationRequired(PercipitationIntensity::heavy);
    EXPECT_EQ(intensity.value(), 3);
    EXPECT_EQ(intensity.resolution(), INResolution::confirmationRequired);

    const std::shared_ptr<platform::INObject> untyped = place;
    EXPECT_DEATH(static_cast<void>(LocationResolutionResult::success(untyped)), "Fatal error");
    EXPECT_DEATH(static_cast<void>(LocationResolutionResult::disambiguation(std::vector{untyped})),
                 "Fatal error");
    EXPECT_DEATH(static_cast<void>(LocationResolutionResult::confirmationRequired(untyped)), "Fatal error");
}

}  // namespace
}  // namespace nimbuscope
