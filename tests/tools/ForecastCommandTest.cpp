#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "Platform/Graphics/PNG.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

const std::string samples = NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/";

Outcome call(const std::string& arguments, const std::string& input = {}, const std::string& locale = "C") {
    return run(
        {"/bin/sh", "-c", "exec " NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope " + arguments},
        input, {{"LC_ALL", locale}});
}

TEST(ForecastCommand, recordsAreReadWrittenBackAndFaultsNamed) {
    struct Case {
        std::string verb, sample, needed, told;
    };
    const Case cases[] = {
        {"forecast show", "forecast.json", "dew_point", "data.currently.temp.dew_point"},
        {"catalogue show", "radars.json", "frequency", "images[0].frequency"},
        {"catalogue products", "radar-products.json", "heigth", "products[0].scans[0].heigth"},
        {"places search", "places-search.json", "longitude", "data[0].location.longitude"},
    };
    for (const auto& [verb, sample, needed, told] : cases) {
        std::string text = readFile(samples + sample);
        const Outcome written = call(verb + " - --json", text);
        EXPECT_EQ(written.exitCode, 0) << written.errors;
        EXPECT_EQ(call(verb + " - --json", written.output).output, written.output);
        EXPECT_EQ(call(verb + ' ' + samples + sample).exitCode, 0);
        text.replace(text.find('"' + needed), needed.size() + 1, "\"other");
        const Outcome refused = call(verb + " -", text);
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(refused.errors, "nimbuscope: -: " + told + ": missing key\n");
    }
}

TEST(ForecastCommand, showSpeaksInTheUnitsAndTheTimeOfTheReader) {
    const std::string show = "forecast show " + samples + "forecast.json";
    const std::string metric = call(show).output;
    const std::string imperial = call(show, {}, "en_US.UTF-8").output;
    const std::string mixed = call(show + " --units mixed").output;
    const std::pair<std::string, std::string> expected[] = {
        {metric, "Fri 17 Apr, 13:23  America/Chicago"},
        {metric, "Cloudy, 22 °C, feels like 22 °C"},
        {metric, "14 km/h from SSW"},
        {metric, "Light Rain: in 12 m"},
        {metric, "9 km to the WSW, moving ENE"},
        {imperial, "Cloudy, 72 °F, feels like 72 °F"},
        {imperial, "9 mph from SSW"},
        {mixed, "visibility 10 mi"},
        {mixed, "22 °C"},
        {mixed, "0.09 inch/hr"},
    };
    for (const auto& [text, part] : expected) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
    }
    std::string elsewhere = readFile(samples + "forecast.json");
    elsewhere.replace(elsewhere.find("America/Chicago"), 15, "Asia/Kathmandu");
    elsewhere.replace(elsewhere.find("Tornado"), 1, "\\u001b");
    const std::string there = call("forecast show -", elsewhere).output;
    EXPECT_NE(there.find("Sat 18 Apr, 00:08  Asia/Kathmandu"), std::string::npos) << there;
    EXPECT_EQ(there.find('\x1b'), std::string::npos);
    EXPECT_EQ(call(show + " --units kelvin").exitCode, 2);
}

TEST(ForecastCommand, chartsShowWhatTheHoursSayAndFailWithoutHours) {
    const TemporaryDirectory directory;
    const std::string text = readFile(samples + "forecast.json");
    const std::size_t hours = text.find("\"hourly\"");
    const std::size_t first = text.find('[', hours) + 1;
    const std::string absurd = text.substr(0, first) + text.substr(text.find("\n      ]", hours));
    const std::string chart = "forecast show - --chart " + directory.path("c.png");
    EXPECT_EQ(call(chart, absurd).errors, "nimbuscope: -: data.hourly.data: no hours to draw\n");
    EXPECT_FALSE(std::filesystem::exists(directory.path("c.png")));
    EXPECT_NE(call(chart, text).output, "");
    const auto image = platform::decodePNG(platform::dataOf(readFile(directory.path("c.png"))), 4'000'000);
    ASSERT_TRUE(image);
    const auto count = [&](std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
        int pixels = 0;
        for (std::size_t i = 0; i < image->pixels.size(); i += 4) {
            pixels += static_cast<int>(image->pixels[i] == red && image->pixels[i + 1] == green &&
                                       image->pixels[i + 2] == blue);
        }
        return pixels;
    };
    EXPECT_GT(count(28, 110, 214), 5000) << "hours of rain";
    EXPECT_GT(count(120, 128, 138), 5000) << "hours of clouds and night";
    EXPECT_GT(count(232, 158, 20), 5000) << "hours of sun";
    EXPECT_GT(count(172, 208, 246), 10000) << "bars";
    EXPECT_EQ(call("forecast show - --chart -", text).output, readFile(directory.path("c.png")));
    std::string wild = text;
    wild.replace(wild.find("\"temperature\": ", hours) + 15, 4, "-1e300");
    EXPECT_EQ(call(chart, wild).exitCode, 0);
}

TEST(ForecastCommand, iconsAreToldAsAnObject) {
    EXPECT_EQ(call("forecast icon light_rain --suffix Small --json").output,
              R"({"symbol":"cloud.rain","description":"Light Rain","level":0.3,"levelDescription":"Light",)"
              R"("isPrecipitation":true,"isNoPrecipitation":false,"isBlueLine":true,"isGrayLine":false,)"
              R"("asset":"DrizzleIconSmall"})"
              "\n");
    EXPECT_EQ(call("forecast icon '' --json").exitCode, 0);
    EXPECT_EQ(call("forecast icon").exitCode, 2);
}

}  // namespace
}  // namespace nimbuscope::testing
