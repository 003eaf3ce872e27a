#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Platform/Core/Result.hpp"

namespace nimbuscope::tool {

/// A binary portable graymap (PGM, "P5") of one byte per sample. Borrows the bytes of the file.
struct GrayMap {
    std::uint32_t width = 0;                ///< at least 1
    std::uint32_t height = 0;               ///< at least 1
    std::span<const std::uint8_t> samples;  ///< rows from the top
};

/// What is wrong with a graymap, and where in the file.
struct GrayMapError {
    std::uint64_t offset = 0;
    std::string reason;

    [[nodiscard]] std::string message() const { return "byte " + std::to_string(offset) + ": " + reason; }
};

/// Whether a file says that it is a binary graymap.
[[nodiscard]] bool isGrayMap(std::span<const std::uint8_t> file);

/// Reads a file that holds one graymap, with comments in its header. An error for samples of two bytes or
/// above the file's maximum, and when the file has fewer or more samples than its size says.
[[nodiscard]] platform::Result<GrayMap, GrayMapError> parseGrayMap(std::span<const std::uint8_t> file);

}  // namespace nimbuscope::tool
