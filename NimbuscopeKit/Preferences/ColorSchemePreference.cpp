#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"

#include <algorithm>

#include "Platform/Core/Fatal.hpp"
#include "Platform/Locale/TextKey.hpp"

namespace nimbuscope {
namespace {

using enum ColorSchemePreference;
using platform::textKey;

struct Title {
    ColorSchemePreference scheme;
    std::string_view english;
};

constexpr std::array titles{
    Title{original, textKey("Original")},
    Title{highContrast, textKey("High Contrast")},
    Title{orange, textKey("Orange")},
    Title{universalBlue, textKey("Universal Blue")},
    Title{blackWhite, textKey("Black and White")},
    Title{tessaly, textKey("Tessaly")},
    Title{tessalyModified, textKey("Modified Tessaly")},
    Title{white, textKey("White")},
    Title{theWeatherChannel, textKey("The Weather Channel")},
    Title{darkSky, textKey("Dark Sky")},
    Title{storm, textKey("Storm")},
    Title{noaaRadarPro, textKey("NOAA Radar Pro")},
    Title{radarScopeSuperReflectivity, textKey("RadarScope Super Reflectivity")},
    Title{radarScopeClassic, textKey("RadarScope Classic")},
    Title{Meteored, textKey("Meteored")},
    Title{nexred, textKey("NEXRAD")},
    Title{rainbow, textKey("RAINBOW")},
    Title{gimet2010, textKey("GIMET-2010")},
    Title{titan, textKey("TITAN")},
    Title{ncmae, textKey("NCM.AE")},
};

}  // namespace

std::string title(ColorSchemePreference scheme, const platform::Bundle& bundle) {
    const auto* const found = std::ranges::find(titles, scheme, &Title::scheme);
    platform::precondition(found != titles.end(), "no such colour scheme");
    return bundle.localizedString(found->english);
}

}  // namespace nimbuscope
