#include <gtest/gtest.h>

#include <atomic>

#include "NimbuscopeIntentHandler/Handlers/IntentHandler.hpp"
#include "NimbuscopeIntentHandler/Handlers/ShortcutIntentHandler.hpp"
#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

namespace nimbuscope {
namespace {

class EnglishBundle final : public platform::Bundle {
  public:
    [[nodiscard]] std::string localizedString(std::string_view key) const override {
        return std::string(key);
    }
};

class IntentHandlerTest : public ::testing::Test {
  protected:
    /// The outcome that an operation hands to its completion handler, which must be called once.
    template <class T, class Start>
    T outcomeOf(Start start) {
        std::atomic<int> calls{0};
        std::optional<T> value;
        platform::TaskPool tasks(2);
        start(IntentServices{[this]() -> SharedStorage& { return storage_; }, bundle_, tasks},
              [&](platform::Result<T, platform::NSError> outcome) {
                  ++calls;
                  value = std::move(*outcome);
              });
        tasks.join();
        EXPECT_EQ(calls, 1);
        return std::move(*value);
    }

    testing::InMemorySuites suites_;
    SharedStorage storage_{suites_};
    EnglishBundle bundle_;
    platform::TaskPool tasks_{1};
    std::shared_ptr<IntentHandler> principal_ = std::make_shared<IntentHandler>(
        IntentServices{[this]() -> SharedStorage& { return storage_; }, bundle_, tasks_});
};

TEST_F(IntentHandlerTest, dispatchesShortcutsToFreshHandlersAndAllElseToItself) {
    const RadarMapIntent radar;
    const auto first = principal_->handler(radar);
    const auto second = principal_->handler(radar);
    EXPECT_EQ(first->className(), "RadarMapIntentHandler");
    EXPECT_NE(first, second);
    EXPECT_EQ(principal_->handler(SatelliteMapIntent())->className(), "SatelliteMapIntentHandler");
    EXPECT_EQ(principal_->handler(WeatherForecastIntent())->className(), "WeatherForecastIntentHandler");
    EXPECT_EQ(principal_->handler(CurrentWeatherIntent())->className(), "CurrentWeatherIntentHandler");
    EXPECT_EQ(principal_->handler(ConfigurationIntent()), principal_);
    EXPECT_EQ(principal_->handler(WeatherRadarMapIntent()), principal_);
}

TEST_F(IntentHandlerTest, theDefaultLocationIsTheCurrentPlaceElseTheFirstElseNone) {
    SavedPlaces places(storage_.groupStorage());
    const WeatherRadarMapIntent intent;
    EXPECT_EQ(principal_->defaultLocation(intent), nullptr);
    ASSERT_TRUE(places.replace({{.id = "a", .name = "A"}, {.id = "c", .name = "C"}}));
    EXPECT_EQ(principal_->defaultLocation(intent)->identifier(), "a");
    ASSERT_TRUE(places.replace({{.id = "a", .name = "A"}, {.id = "b", .name = "B", .current = true}}));
    EXPECT_EQ(principal_->defaultLocation(intent)->identifier(), "b");
    EXPECT_EQ(principal_->defaultLocation(intent)->displayString(), "B");
}

TEST_F(IntentHandlerTest, offersEveryPlaceToShortcuts) {
    ASSERT_TRUE(
        SavedPlaces(storage_.groupStorage())
            .replace({{.id = "a", .name = "A"}, {.id = "b", .name = "B", .current = true}, {.id = "a"}}));
    const auto options = outcomeOf<std::shared_ptr<LocationCollection>>([](auto services, auto completion) {
        RadarMapIntentHandler(services).provideLocationOptionsCollection(std::make_shared<RadarMapIntent>(),
                                                                         completion);
    });
    ASSERT_EQ(options->allItems().size(), 3U);
    EXPECT_EQ(options->allItems()[0]->identifier(), "b");
    EXPECT_EQ(options->allItems()[1]->displayString(), "A");
    EXPECT_EQ(options->allItems()[2]->displayString(), "New Favorite");
}

TEST_F(IntentHandlerTest, resolvesToTheVeryObjectThatWasSent) {
    const auto resolve = [&](const std::shared_ptr<Location>& location) {
        return outcomeOf<LocationResolutionResult>([&](auto services, auto completion) {
            const auto intent = std::make_shared<SatelliteMapIntent>();
            intent->setLocation(location);
            SatelliteMapIntentHandler(services).resolveLocation(intent, completion);
        });
    };
    const auto unknown = std::make_shared<Location>(std::nullopt, "gone");
    EXPECT_EQ(resolve(unknown).objects().front(), unknown);
    EXPECT_EQ(resolve(nullptr).resolution(), platform::INResolution::needsValue);
}

}  // namespace
}  // namespace nimbuscope
