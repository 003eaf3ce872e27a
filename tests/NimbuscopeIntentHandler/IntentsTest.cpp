#include "NimbuscopeIntentHandler/Intents/Intents.hpp"

#include <gtest/gtest.h>

namespace nimbuscope {
namespace {

TEST(Intents, surviveArchivingWithEveryParameterAndRefuseOtherClasses) {
    const std::string bytes =
        R"({"class":"WeatherRadarMapIntent","parameters":{)"
        R"("location":{"class":"ForecastLocation","identifier":null,"display":"X"},"mapType":2,"zoom":7.5,)"
        R"("mapColorScheme":{"class":"MapColorScheme","identifier":"4","display":"D","id":4},)"
        R"("enhancedColors":true,"smoothRadar":false,"minIntensity":3,"snow":true,"arrows":false,)"
        R"("mapLayer":1}})";
    const auto intent = platform::unarchived<WeatherRadarMapIntent>(bytes).value();
    EXPECT_EQ(archived(*intent), bytes);
    EXPECT_EQ(intent->mapColorScheme()->id, 4);
    EXPECT_EQ(intent->mapType(), MapType::satellite);
    EXPECT_FALSE(platform::unarchived<RadarMapIntent>(bytes));
    EXPECT_EQ(platform::unarchived<Location>(archived(*intent->mapColorScheme()).value()).error().message(),
              R"(class: expected "Location", found "MapColorScheme")");
    intent->setLocation(nullptr);
    EXPECT_EQ(archived(*intent)->find("location"), std::string::npos);
}

TEST(Intents, resolutionsOfUntypedObjectsStopTheProcess) {
    using Result = LocationResolutionResult;
    const std::shared_ptr<platform::INObject> untyped = std::make_shared<Location>("a", "A");
    EXPECT_DEATH(static_cast<void>(Result::success(untyped)), "Fatal error");
    EXPECT_DEATH(static_cast<void>(Result::disambiguation(std::vector{untyped})), "Fatal error");
    EXPECT_DEATH(static_cast<void>(Result::confirmationRequired(untyped)), "Fatal error");
}

}  // namespace
}  // namespace nimbuscope
