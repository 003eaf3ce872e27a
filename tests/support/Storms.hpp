#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Weather made up for tests, measurements and pictures: rasters of palette indices (reflectivity in dBZ +
/// 32, snow another 128 higher, 0 where there is no echo).
namespace nimbuscope::tests {

enum class Storm {
    sparse,     ///< small cells in steps of 4 dBZ; 95 % of the pixels have no echo
    busy,       ///< bands of rain; runs of equal pixels are 6 pixels long in the mean
    worst,      ///< bands of rain under so much noise that no pixel equals its neighbour
    realistic,  ///< cells of all sizes and speckle, snow in the north
};

struct Raster {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint8_t> indices;  ///< rows from the top
};

/// A storm; the same arguments give the same bytes on every machine.
[[nodiscard]] Raster makeStorm(Storm storm, std::size_t width, std::size_t height, std::uint32_t seed);

/// The mean length of the runs of equal indices, over the ends of rows.
[[nodiscard]] double meanRun(const Raster& raster);

}  // namespace nimbuscope::tests
