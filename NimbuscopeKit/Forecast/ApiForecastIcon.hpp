#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Locale/Bundle.hpp"

namespace nimbuscope {

/// What the icon codes of forecasts stand for. Codes are compared exactly, with case; any text is a code, and
/// those that nobody knows mean rain.
///
/// Symbols and descriptions know different codes: a thunder symbol goes with "clouds_moon_bolt", a
/// description with "clouds_moon_bolts".
class NIMBUSCOPE_EXPORT ApiForecastIcon {
  public:
    /// The name of the platform's symbol; "cloud" for an unknown code.
    [[nodiscard]] static std::string_view toImageSystemName(std::string_view code);

    /// The weather in words; "Rain" for an unknown code.
    [[nodiscard]] static std::string toDescriptionText(std::string_view code, const platform::Bundle& bundle);

    /// The intensity of precipitation from 0 to 1; 0 for an unknown code.
    [[nodiscard]] static double toLevel(std::string_view code);

    /// The intensity in a word; "Medium" for an unknown code.
    [[nodiscard]] static std::string toLevelDescriptionText(std::string_view code,
                                                            const platform::Bundle& bundle);

    /// True for every code but "sun_min".
    [[nodiscard]] static bool isPrecipitation(std::string_view code) { return !isNoPrecipitation(code); }
    [[nodiscard]] static bool isNoPrecipitation(std::string_view code) { return code == "sun_min"; }

    /// Whether a chart draws the code as precipitation: it has the name of one in it, be it inside a word.
    [[nodiscard]] static bool isBlueLine(std::string_view code);

    /// Whether a chart draws the code as dull weather: neither sun nor precipitation is in it.
    [[nodiscard]] static bool isGrayLine(std::string_view code);

    /// The name of the image: "clouds_sun" gives "CloudsSunIcon", followed by the suffix. Letters beyond
    /// ASCII stay as they are.
    [[nodiscard]] static std::string getAssetName(std::string_view code,
                                                  std::optional<std::string_view> suffix = std::nullopt);
};

}  // namespace nimbuscope
