#pragma once

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"
#include "NimbuscopeKit/RadarImagery/OwnedColors.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The colours of satellite maps: transparent where the sky is clear, grey to white clouds. The table has 256
/// entries.
class NIMBUSCOPE_EXPORT SatelliteColorScheme final : public ColorScheme {
  public:
    /// Stops the process when memory is short.
    SatelliteColorScheme();

    [[nodiscard]] std::span<std::uint8_t> colors() const override { return colors_.bytes(); }

  private:
    OwnedColors colors_;
};

}  // namespace nimbuscope
