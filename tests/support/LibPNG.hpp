#pragma once

#include <cstdint>
#include <string>

#include "Platform/Core/Data.hpp"

/// PNG files of every kind, written by an independent library at its lowest level.
namespace nimbuscope::testing {

struct PNGFile {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    int depth = 8;      ///< bits per sample
    int colorType = 0;  ///< 0 grey, 2 RGB, 3 indexed, 4 grey and alpha, 6 RGBA
    bool isInterlaced = false;
    bool hasTransparency = false;  ///< a palette's alpha values, or a transparent colour
    bool hasGamma = false;
    std::size_t textSize = 0;  ///< characters of a comment, stored compressed
    platform::Data samples;    ///< rows as PNG stores them, each beginning with a byte

    /// The bytes of one row.
    [[nodiscard]] std::size_t rowSize() const;
};

/// The bytes of the file. Indexed files get a palette of 2^depth colours.
[[nodiscard]] platform::Data writePNGFile(const PNGFile& file);

/// A grey or, for `colorType` 3, indexed image of 8-bit indices.
[[nodiscard]] platform::Data writeIndices(std::uint32_t width, std::uint32_t height,
                                          const platform::Data& indices, int colorType = 0);

}  // namespace nimbuscope::testing
