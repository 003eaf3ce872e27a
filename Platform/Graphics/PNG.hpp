#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Graphics/CGImage.hpp"

namespace nimbuscope::platform {

/// Why an image could not be written as PNG or read from it.
struct PNGError {
    std::string reason;
    std::optional<std::uint64_t> offset{};  ///< how far a file had been read when the fault was met

    /// "byte 33: the reason", or the reason alone.
    [[nodiscard]] std::string message() const {
        return offset ? "byte " + std::to_string(*offset) + ": " + reason : reason;
    }
};

/// What a PNG file may ask for; more is an error before memory is taken for it.
struct PNGLimits {
    std::uint32_t width = std::numeric_limits<std::int32_t>::max();   ///< pixels; all that the format has
    std::uint32_t height = std::numeric_limits<std::int32_t>::max();  ///< pixels
    std::uint64_t pixels = std::uint64_t{1} << 26U;                   ///< 64 Mi
    std::uint32_t chunkSize = 1U << 23U;  ///< bytes of texts and the like, inflated
};

/// An 8-bit RGBA image, alpha not premultiplied; rows from the top.
struct RGBAImage {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Data pixels;  ///< width × height × 4 bytes

    bool operator==(const RGBAImage&) const = default;
};

/// The PNG file of 8-bit RGBA pixels, which it carries as they are. Both sides must be at least 1, and
/// `pixels` must hold width × height × 4 bytes. The same pixels give the same bytes.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<Data, PNGError> encodePNG(std::uint32_t width, std::uint32_t height,
                                                                 std::span<const std::uint8_t> pixels);

/// The pixels of any PNG file as 8-bit RGBA. An image of more than `maximalPixels` pixels is an error before
/// memory is taken for it.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<RGBAImage, PNGError> decodePNG(std::span<const std::uint8_t> file,
                                                                      std::size_t maximalPixels);

/// The samples of a PNG file as it stores them, interlacing undone: rows from the top without padding between
/// them, 16-bit samples most significant byte first. Palettes, gamma and transparent colours are not applied.
/// Samples narrower than a byte are packed, the leftmost in the highest bits, and each row begins with a
/// byte. No more is inflated than the image has, whatever the file holds.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<CGImage, PNGError> decodePNGSamples(std::span<const std::uint8_t> file,
                                                                           const PNGLimits& limits);

}  // namespace nimbuscope::platform
