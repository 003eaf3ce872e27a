#include "Platform/Graphics/PNG.hpp"
#include "tests/support/ToolTest.hpp"

namespace nimbuscope::testing {
namespace {

const std::string samples = NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/";

using ForecastCommand = ToolTest;

TEST_F(ForecastCommand, recordsAreReadWrittenBackAndFaultsNamed) {
    struct Case {
        std::string verb, sample, needed, told;
    };
    const Case cases[] = {
        {"forecast show ", "forecast.json", "dew_point", "data.currently.temp.dew_point"},
        {"catalogue show ", "radars.json", "frequency", "images[0].frequency"},
        {"catalogue products ", "radar-products.json", "heigth", "products[0].scans[0].heigth"},
        {"places search ", "places-search.json", "longitude", "data[0].location.longitude"},
    };
    for (const auto& [verb, sample, needed, told] : cases) {
        std::string text = readFile(samples + sample);
        const std::string written = output(verb + "- --json", text);
        EXPECT_EQ(output(verb + "- --json", written), written);
        EXPECT_NE(output(verb + samples + sample), "");
        text.replace(text.find('"' + needed), needed.size() + 1, "\"other");
        EXPECT_EQ(failure(verb + "-", 1, text), "-: " + told + ": missing key");
    }
}

TEST_F(ForecastCommand, showSpeaksInTheUnitsAndTheTimeOfTheReader) {
    const std::string show = "forecast show " + samples + "forecast.json";
    std::string elsewhere = readFile(samples + "forecast.json");
    elsewhere.replace(elsewhere.find("America/Chicago"), 15, "Asia/Kathmandu");
    elsewhere.replace(elsewhere.find("Tornado"), 1, "\\u001b");
    const std::string metric = output(show);
    const std::string imperial = output(show, {}, "en_US.UTF-8");
    const std::string mixed = output(show + " --units mixed");
    const std::string there = output("forecast show -", elsewhere);
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
        {there, "Sat 18 Apr, 00:08  Asia/Kathmandu"},
    };
    for (const auto& [text, part] : expected) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
    }
    EXPECT_EQ(there.find('\x1b'), std::string::npos);
    EXPECT_NE(failure(show + " --units kelvin", 2), "");
}

TEST_F(ForecastCommand, chartsShowWhatTheHoursSayAndFailWithoutHours) {
    const std::string text = readFile(samples + "forecast.json");
    const std::size_t hours = text.find("\"hourly\"");
    const std::size_t first = text.find('[', hours) + 1;
    const std::string absurd = text.substr(0, first) + text.substr(text.find("\n      ]", hours));
    EXPECT_EQ(failure("forecast show - --chart out", 1, absurd), "-: data.hourly.data: no hours to draw");
    const std::string chart = output("forecast show - --chart -", text);
    const auto image = platform::decodePNG(platform::dataOf(chart), 4'000'000);
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
    std::string wild = text;
    wild.replace(wild.find("\"temperature\": ", hours) + 15, 4, "-1e300");
    EXPECT_NE(output("forecast show - --chart c.png", wild), "");
    EXPECT_NE(read("c.png"), "");
}

TEST_F(ForecastCommand, iconsAreToldAsAnObject) {
    EXPECT_EQ(output("forecast icon light_rain --suffix Small --json"),
              R"({"symbol":"cloud.rain","description":"Light Rain","level":0.3,"levelDescription":"Light",)"
              R"("isPrecipitation":true,"isNoPrecipitation":false,"isBlueLine":true,"isGrayLine":false,)"
              R"("asset":"DrizzleIconSmall"})"
              "\n");
    EXPECT_NE(output("forecast icon '' --json"), "");
    EXPECT_NE(failure("forecast icon", 2), "");
}

}  // namespace
}  // namespace nimbuscope::testing
