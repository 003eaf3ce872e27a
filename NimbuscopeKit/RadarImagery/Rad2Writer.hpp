#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// Why a Rad2 file cannot be made.
struct Rad2WriterError {
    std::string reason;
};

/// Makes Rad2 files, the format that `Rad2File` reads.
class NIMBUSCOPE_EXPORT Rad2Writer {
  public:
    /// What goes into a file. Borrows the bytes.
    struct Contents {
        std::uint64_t width = 0;  ///< both sides in pixels, at most 65,535
        std::uint64_t height = 0;
        std::span<const std::uint8_t> indices;  ///< a palette index per pixel, rows from the top
        std::optional<std::span<const std::uint8_t>> arrows;  ///< payload of an `arrows` block
        bool isSizeExplicit = false;  ///< writes width and height even where a size class says them
    };

    /// The smallest file that decodes to these indices: the shortest form of the size, neighbouring pixels of
    /// one index joined over the ends of rows, and for each run the shortest form of its count. Every pixel
    /// is covered, index 0 included. The arrows come first, so that a cut file never passes for a whole one.
    /// An error when a side or a payload is too large for its field or when the indices do not fit the size.
    [[nodiscard]] static platform::Result<platform::Data, Rad2WriterError> write(const Contents& contents);
};

}  // namespace nimbuscope
