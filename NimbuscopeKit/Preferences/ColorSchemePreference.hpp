#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Locale/Bundle.hpp"

namespace nimbuscope {

/// The user's choice of the radar's colours. The raw value is the scheme number of the palette library; the
/// numbers in between (9, 10, 18 to 20, 24 to 30) are never assigned.
enum class ColorSchemePreference : std::int64_t {
    original = 1,
    highContrast = 2,
    orange = 3,
    universalBlue = 4,
    blackWhite = 5,
    tessaly = 6,
    tessalyModified = 7,
    white = 8,
    theWeatherChannel = 11,
    darkSky = 12,
    storm = 13,
    noaaRadarPro = 14,
    radarScopeSuperReflectivity = 15,
    radarScopeClassic = 16,
    Meteored = 17,
    nexred = 21,
    rainbow = 22,
    gimet2010 = 23,
    titan = 31,
    ncmae = 32,
};

/// The order is that in which users are offered the schemes.
constexpr auto caseTable(ColorSchemePreference) {
    using enum ColorSchemePreference;
    return std::array{original,
                      highContrast,
                      orange,
                      universalBlue,
                      blackWhite,
                      tessaly,
                      tessalyModified,
                      white,
                      theWeatherChannel,
                      darkSky,
                      storm,
                      noaaRadarPro,
                      radarScopeSuperReflectivity,
                      radarScopeClassic,
                      Meteored,
                      nexred,
                      rainbow,
                      gimet2010,
                      titan,
                      ncmae};
}

/// The scheme's name in the user's language; the English name is the key of the translation.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string title(ColorSchemePreference scheme,
                                                  const platform::Bundle& bundle);

}  // namespace nimbuscope
