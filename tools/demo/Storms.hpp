#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"

/// The one place where weather is made up, for tests, measurements and pictures: rasters of palette indices
/// (reflectivity in dBZ + 32, snow another 128 higher, 0 where there is no echo).
namespace nimbuscope::demo {

enum class Storm {
    sparse,     ///< small cells in steps of 4 dBZ; 95 % of the pixels have no echo
    busy,       ///< bands of rain; runs of equal pixels are 6 pixels long in the mean
    worst,      ///< bands of rain under so much noise that no pixel equals its neighbour
    realistic,  ///< cells of all sizes and speckle, snow in the north
    squall,     ///< a line of cells with steady rain behind it, snow in the north; good to look at
};

/// The names that `make_storm` knows the kinds by.
constexpr auto caseTable(Storm) {
    using enum Storm;
    using platform::TextCase;
    return std::array{TextCase{sparse, "sparse"}, TextCase{busy, "busy"}, TextCase{worst, "worst"},
                      TextCase{realistic, "realistic"}, TextCase{squall, "squall"}};
}

struct Raster {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint8_t> indices;  ///< rows from the top
};

/// A storm; the same arguments give the same bytes on every machine.
[[nodiscard]] Raster makeStorm(Storm storm, std::size_t width, std::size_t height, std::uint32_t seed);

/// The mean length of the runs of equal indices, over the ends of rows.
[[nodiscard]] double meanRun(const Raster& raster);

}  // namespace nimbuscope::demo
