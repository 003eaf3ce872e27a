#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "CommandLine.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Platform/Graphics/PNG.hpp"

namespace nimbuscope::tool {

/// Whether a file says that it is a PNG.
[[nodiscard]] bool isPNG(std::span<const std::uint8_t> file);

/// An image of four bytes a pixel, red, green, blue and alpha, as which a file's samples are taken.
[[nodiscard]] CommandResult<platform::RGBAImage> readRGBA(const std::string& name,
                                                          std::span<const std::uint8_t> file,
                                                          std::uint64_t maximalPixels);

/// How tiles become pictures. Does not change; any thread may use it.
struct TileRendering {
    RadarColorScheme scheme;
    bool isInversed = false;                     ///< rows from the bottom
    std::optional<platform::RGBAImage> overlay;  ///< replaces pixels where its alpha is not 0; upright always
    std::uint64_t maximalPixels = 0;

    /// Colours a Rad2 file, a PNG of indices, or a PNG of 8-bit RGBA whose red is the value and whose blue
    /// the kind of precipitation. Errors name the file as `name`.
    [[nodiscard]] CommandResult<platform::RGBAImage> render(const std::string& name,
                                                            std::span<const std::uint8_t> file) const;
};

}  // namespace nimbuscope::tool
