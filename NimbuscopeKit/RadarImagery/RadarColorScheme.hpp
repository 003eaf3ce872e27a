#pragma once

#include <cstdint>

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/OwnedColors.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The colours of radar maps.
class NIMBUSCOPE_EXPORT RadarColorScheme final : public ColorScheme {
  public:
    static constexpr std::int64_t weakestDbz = -32;  ///< that a pixel can hold

    /// The scheme of a number of numbering 2, which for users' choices is the raw value of
    /// `ColorSchemePreference`; an unknown number gives the palette of raw values. `snow` keeps snow,
    /// freezing rain and ice pellets apart, otherwise they are drawn as rain; `enhanced` gives gradients,
    /// otherwise bands of 5 dBZ; values below `minimalDbz` are transparent. Stops the process when `radar` is
    /// not in 0 … 4294967295 or `minimalDbz` not in -32 … 223, and when memory is short.
    RadarColorScheme(std::int64_t radar, bool snow, bool enhanced, std::int64_t minimalDbz);

    /// As the constructor, with an error where that stops the process.
    [[nodiscard]] static platform::Result<RadarColorScheme, ColorSchemeError> make(std::int64_t radar,
                                                                                   bool snow, bool enhanced,
                                                                                   std::int64_t minimalDbz);

    [[nodiscard]] std::span<std::uint8_t> colors() const override { return colors_.bytes(); }

  private:
    explicit RadarColorScheme(OwnedColors colors) : colors_(std::move(colors)) {}

    OwnedColors colors_;
};

}  // namespace nimbuscope
