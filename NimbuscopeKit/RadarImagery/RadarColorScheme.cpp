#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"

#include <limits>

#include "NimbuscopeKit/RadarImagery/SatelliteColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/TemperatureColorScheme.hpp"
#include "Platform/Core/Fatal.hpp"
#include "colorschemes/colorschemes.h"

namespace nimbuscope {
namespace {

using platform::Result;

constexpr std::uint32_t numbering = 2;
constexpr std::uint32_t satelliteScheme = 100;
constexpr std::uint32_t temperatureScheme = 101;
constexpr std::int64_t entryOfZeroDBZ = 32;
constexpr std::int64_t maximalIndex = 255;

template <class T>
T valueOrStop(Result<T, ColorSchemeError> result) {
    if (!result) {
        platform::fatalError(result.error().reason);
    }
    return std::move(*result);
}

}  // namespace

Result<OwnedColors, ColorSchemeError> OwnedColors::make(std::uint32_t scheme, bool isSmooth, bool withSnow,
                                                        std::uint32_t minimalIndex) {
    alloc_color_schemes();
    StaticColorScheme table;
    const int isFound = get_static_color_scheme(scheme, numbering, &table, isSmooth ? 1 : 0);
    std::uint8_t* bytes =
        get_color_scheme_bytes(scheme, numbering, isSmooth ? 1 : 0, withSnow ? 1 : 0, minimalIndex);
    if (isFound == 0 || bytes == nullptr) {
        return std::unexpected(
            ColorSchemeError{"there is no colour table for scheme " + std::to_string(scheme)});
    }
    return OwnedColors(bytes, table.size);
}

OwnedColors OwnedColors::makeOrStop(std::uint32_t scheme, bool isSmooth, bool withSnow,
                                    std::uint32_t minimalIndex) {
    return valueOrStop(make(scheme, isSmooth, withSnow, minimalIndex));
}

Result<RadarColorScheme, ColorSchemeError> RadarColorScheme::make(std::int64_t radar, bool snow,
                                                                  bool enhanced, std::int64_t minimalDbz) {
    if (radar < 0 || radar > std::numeric_limits<std::uint32_t>::max()) {
        return std::unexpected(ColorSchemeError{"expected a scheme number from 0 to 4294967295, found " +
                                                std::to_string(radar)});
    }
    if (minimalDbz < -entryOfZeroDBZ || minimalDbz > maximalIndex - entryOfZeroDBZ) {
        return std::unexpected(
            ColorSchemeError{"expected a minimal dBZ from -32 to 223, found " + std::to_string(minimalDbz)});
    }
    auto colors = OwnedColors::make(static_cast<std::uint32_t>(radar), enhanced, snow,
                                    static_cast<std::uint32_t>(minimalDbz + entryOfZeroDBZ));
    if (!colors) {
        return std::unexpected(colors.error());
    }
    return RadarColorScheme(std::move(*colors));
}

RadarColorScheme::RadarColorScheme(std::int64_t radar, bool snow, bool enhanced, std::int64_t minimalDbz)
    : RadarColorScheme(valueOrStop(make(radar, snow, enhanced, minimalDbz))) {}

SatelliteColorScheme::SatelliteColorScheme()
    : colors_(OwnedColors::makeOrStop(satelliteScheme, true, true, 0)) {}

TemperatureColorScheme::TemperatureColorScheme()
    : colors_(OwnedColors::makeOrStop(temperatureScheme, true, true, 0)) {}

}  // namespace nimbuscope
