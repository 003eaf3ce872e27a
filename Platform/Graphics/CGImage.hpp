#pragma once

#include <cstddef>
#include <cstdint>

#include "Platform/Core/Data.hpp"

namespace nimbuscope::platform {

/// A bitmap and how its bytes are to be read; rows from the top. The image owns its bytes.
struct CGImage {
    /// Bit field of `bitmapInfo`: alpha comes last and colours are premultiplied by it.
    static constexpr std::uint32_t alphaPremultipliedLast = 1;
    /// Bit field of `bitmapInfo`: alpha comes last and colours are as if opaque.
    static constexpr std::uint32_t alphaLast = 3;
    /// Bit field of `bitmapInfo`: components have 16 bits, most significant byte first.
    static constexpr std::uint32_t byteOrder16Big = 3U << 12U;
    /// Bit field of `bitmapInfo`: components lie in 32-bit words, most significant byte first.
    static constexpr std::uint32_t byteOrder32Big = 4U << 12U;

    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bitsPerComponent = 0;
    std::size_t bitsPerPixel = 0;
    std::size_t bytesPerRow = 0;
    std::uint32_t bitmapInfo = 0;
    Data data;

    bool operator==(const CGImage&) const = default;
};

}  // namespace nimbuscope::platform
