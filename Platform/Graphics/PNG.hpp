#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

/// Why an image could not be written as PNG or read from it.
struct PNGError {
    std::string reason;
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
[[nodiscard]] Result<Data, PNGError> encodePNG(std::uint32_t width, std::uint32_t height,
                                               std::span<const std::uint8_t> pixels);

/// The pixels of any PNG file as 8-bit RGBA. An image of more than `maximalPixels` pixels is an error before
/// memory is taken for it.
[[nodiscard]] Result<RGBAImage, PNGError> decodePNG(std::span<const std::uint8_t> file,
                                                    std::size_t maximalPixels);

}  // namespace nimbuscope::platform
