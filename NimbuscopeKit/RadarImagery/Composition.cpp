#include "NimbuscopeKit/RadarImagery/Composition.hpp"

#include <cstring>

namespace nimbuscope {

platform::Result<void, CompositionError> layOver(std::span<std::uint8_t> pixels,
                                                 std::span<const std::uint8_t> overlay) {
    constexpr std::size_t pixelSize = 4;
    constexpr std::size_t alphaOffset = 3;
    if (pixels.size() != overlay.size() || pixels.size() % pixelSize != 0) {
        return std::unexpected(CompositionError{.reason = "an overlay of " + std::to_string(overlay.size()) +
                                                          " bytes does not fit an image of " +
                                                          std::to_string(pixels.size())});
    }
    for (std::size_t i = 0; i < pixels.size(); i += pixelSize) {
        if (overlay[i + alphaOffset] != 0) {
            std::memcpy(&pixels[i], &overlay[i], pixelSize);
        }
    }
    return {};
}

}  // namespace nimbuscope
