#pragma once

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/OwnedColors.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The colours of temperature maps. The table has 256 entries.
class NIMBUSCOPE_EXPORT TemperatureColorScheme final : public ColorScheme {
  public:
    /// Stops the process when memory is short.
    TemperatureColorScheme();

    [[nodiscard]] std::span<std::uint8_t> colors() const override { return colors_.bytes(); }

  private:
    OwnedColors colors_;
};

}  // namespace nimbuscope
