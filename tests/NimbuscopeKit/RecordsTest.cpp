// The records that mirror the API, each tested on what its sample says.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <numbers>
#include <regex>
#include <set>

#include "NimbuscopeKit/Forecast/ApiForecast.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiPlacesSearch.hpp"
#include "NimbuscopeKit/RadarCatalogue/RadarDatabase.hpp"
#include "NimbuscopeKit/RadarCatalogue/RadarProducts.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using JSON = nlohmann::ordered_json;
using Paths = std::set<std::string>;

/// Reads and writes the sample; then takes each key out of it in turn, puts a value of no fitting kind there,
/// and looks at what the decoder says. `optionals` are paths without the places of elements.
template <class T>
void testRecord(const std::string& sample, const Paths& optionals) {
    const std::string text = readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/" + sample);
    const auto decoded = platform::JSONDecoder().decode<T>(text);
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(JSON::parse(platform::JSONEncoder().encode(*decoded).value()).dump(),
              JSON::parse(text, [](int, JSON::parse_event_t, JSON& json) {
                  // The encoder writes the shortest text of a number.
                  if (json.is_number_float() && std::trunc(json.get<double>()) == json.get<double>()) {
                      json = json.get<std::int64_t>();
                  }
                  return true;
              }).dump());
    JSON document = JSON::parse(text);
    const auto error = [&] {
        const auto mutated = platform::JSONDecoder().decode<T>(document.dump());
        return mutated ? "" : mutated.error().message();
    };
    Paths absent;
    const std::function<void(JSON&, const std::string&)> visit = [&](JSON& json, const std::string& path) {
        constexpr std::size_t enough = 3;  // elements of a list
        for (std::size_t i = 0; json.is_array() && i < std::min(json.size(), enough); ++i) {
            visit(json[i], path + '[' + std::to_string(i) + ']');
        }
        const JSON whole = json.is_object() ? json : JSON::object();
        for (const auto& [key, value] : whole.items()) {
            const std::string place = (path.empty() ? "" : path + '.') + key;
            const std::string rule = std::regex_replace(place, std::regex(R"(\[\d+\])"), "");
            json.erase(key);
            EXPECT_EQ(error(), optionals.contains(rule) ? "" : place + ": missing key") << place;
            absent.insert(rule);
            json[key] = value.is_boolean() ? JSON(1) : JSON(false);
            EXPECT_TRUE(error().starts_with(place + ": expected ")) << place << ' ' << error();
            json = whole;
            visit(json[key], place);
        }
    };
    visit(document, "");
    EXPECT_TRUE(std::ranges::includes(absent, optionals)) << "an optional key that the sample has nowhere";
}

TEST(Records, failWithoutARequiredKeyAndPassWithoutAnOptionalOne) {
    testRecord<ApiForecast>("forecast.json", {"data.timezone", "data.aqi", "data.currently.sun.uvi",
                                              "data.hourly.data.sun.uvi", "data.alerts.starts",
                                              "data.alerts.ends", "data.nearest.precipitation.data.position",
                                              "data.nearest.precipitation.data.movement"});
    testRecord<Database>("radars.json", {"radars.state", "radars.image_id", "images.provider_id"});
    testRecord<RadarProducts>("radar-products.json", {});
    testRecord<ApiPlacesSearch>("places-search.json", {"data.country"});
}

TEST(ApiPlacesSearchItem, equalityIsByNameAndExactLocation) {
    const ApiPlacesSearchItem item{"A", "S", "C", {1, 2}};
    EXPECT_EQ(item, (ApiPlacesSearchItem{"A", "other", std::nullopt, {1, 2}}));
    EXPECT_NE(item, (ApiPlacesSearchItem{"A", "S", "C", {1, 2.000001}}));
}

TEST(Coordinate, movesAlongItsMeridianAndToThePlatformAndBack) {
    EXPECT_NEAR((Coordinate{60, 7}.sliderShifted(-10, 1e6, std::numbers::pi).latitude), 59.9640674, 1e-7);
    const Coordinate still = Coordinate{-33.8688, 151.2093}.sliderShifted(0, 1e9, 2);
    EXPECT_NEAR(still.latitude, -33.8688, 1e-12);
    EXPECT_EQ(Coordinate::fromCLLocation(still.clLocation()), still);
}

}  // namespace
}  // namespace nimbuscope::testing
