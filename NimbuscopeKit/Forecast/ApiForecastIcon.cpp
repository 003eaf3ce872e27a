#include "NimbuscopeKit/Forecast/ApiForecastIcon.hpp"

#include <algorithm>
#include <array>

#include "Platform/Locale/TextKey.hpp"

namespace nimbuscope {
namespace {

using platform::textKey;

template <class Value>
struct Entry {
    std::string_view code;
    Value value;
};

/// The value of a code in a table, or what stands for all others.
template <class Value, std::size_t N>
Value find(const std::array<Entry<Value>, N>& table, std::string_view code, Value other) {
    const auto* const found = std::ranges::find(table, code, &Entry<Value>::code);
    return found != table.end() ? found->value : other;
}

constexpr auto symbols = std::to_array<Entry<std::string_view>>({
    {"clouds", "cloud"},
    {"clouds_bolt_rain", "cloud.bolt.rain"},
    {"clouds_moon", "cloud.moon"},
    {"clouds_moon_bolt", "cloud.moon.bolt"},
    {"clouds_moon_rain", "cloud.moon.rain"},
    {"clouds_sun", "cloud.sun"},
    {"clouds_sun_bolts", "cloud.sun.bolt"},
    {"clouds_sun_rain", "cloud.sun.rain"},
    {"drizzle", "cloud.drizzle"},
    {"fog", "cloud.fog"},
    {"full_moon", "moon.circle"},
    {"hail", "cloud.hail"},
    {"heavy_rain", "cloud.heavyrain"},
    {"light_rain", "cloud.rain"},
    {"night", "moon.stars"},
    {"rain", "cloud.rain"},
    {"sleet", "cloud.sleet"},
    {"smoke", "smoke"},
    {"snow", "snow"},
    {"sun_max", "sun.max"},
    {"sunrise", "sunrise"},
    {"sunset", "sunset"},
    {"wind", "wind"},
    {"wind_snow", "wind.snow"},
});

constexpr auto descriptions = std::to_array<Entry<std::string_view>>({
    {"drizzle", textKey("Drizzle")},
    {"light_rain", textKey("Light Rain")},
    {"heavy_rain", textKey("Heavy Rain")},
    {"hail", textKey("Hail")},
    {"clouds", textKey("Cloudy")},
    {"clouds_bolt_rain", textKey("Storm")},
    {"clouds_moon", textKey("Partly cloudy")},
    {"clouds_sun", textKey("Partly cloudy")},
    {"rain", textKey("Rain")},
    {"clouds_moon_bolts", textKey("Rain")},
    {"clouds_sun_bolts", textKey("Rain")},
    {"clouds_sun_rain", textKey("Moderate rain")},
    {"clouds_moon_rain", textKey("Moderate rain")},
    {"fog", textKey("Fog")},
    {"full_moon", textKey("Clear")},
    {"night", textKey("Clear")},
    {"sleet", textKey("Sleet")},
    {"smoke", textKey("Smoke")},
    {"snow", textKey("Snow")},
    {"sun_min", textKey("Sunny")},
    {"sun_max", textKey("Sunny")},
    {"wind", textKey("Windy")},
    {"wind_snow", textKey("Snowstorm")},
});

struct Level {
    double value;
    std::string_view word;
};

constexpr Level unknownLevel{0, textKey("Medium")};
constexpr auto levels = std::to_array<Entry<Level>>({
    {"drizzle", {0.1, textKey("Light")}},
    {"light_rain", {0.3, textKey("Light")}},
    {"rain", {0.45, textKey("Medium")}},
    {"heavy_rain", {0.6, textKey("Medium")}},
    {"hail", {0.75, textKey("Hard")}},
    {"snow", {0.9, textKey("Hard")}},
});

constexpr auto blueNames =
    std::to_array<std::string_view>({"snow", "rain", "drizzle", "hail", "sleet", "bolt"});

constexpr auto assetCodes =
    std::to_array<Entry<std::string_view>>({{"light_rain", "drizzle"}, {"medium_rain", "rain"}});

// Those of the standard library depend on the locale of the process.
constexpr char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char raised(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string_view ApiForecastIcon::toImageSystemName(std::string_view code) {
    return find(symbols, code, std::string_view("cloud"));
}

std::string ApiForecastIcon::toDescriptionText(std::string_view code, const platform::Bundle& bundle) {
    return bundle.localizedString(find(descriptions, code, textKey("Rain")));
}

double ApiForecastIcon::toLevel(std::string_view code) {
    return find(levels, code, unknownLevel).value;
}

std::string ApiForecastIcon::toLevelDescriptionText(std::string_view code, const platform::Bundle& bundle) {
    return bundle.localizedString(find(levels, code, unknownLevel).word);
}

bool ApiForecastIcon::isBlueLine(std::string_view code) {
    return std::ranges::any_of(blueNames, [&](std::string_view name) { return code.contains(name); });
}

bool ApiForecastIcon::isGrayLine(std::string_view code) {
    return !code.contains("sun") && !isBlueLine(code);
}

std::string ApiForecastIcon::getAssetName(std::string_view code, std::optional<std::string_view> suffix) {
    std::string name;
    bool isFirst = true;
    for (const char c : find(assetCodes, code, code)) {
        if (c != '_') {
            name += isFirst ? raised(c) : lowered(c);
        }
        isFirst = c == '_';
    }
    name += "Icon";
    return name.append(suffix.value_or(""));
}

}  // namespace nimbuscope
