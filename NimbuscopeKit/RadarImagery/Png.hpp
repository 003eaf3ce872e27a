#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Graphics/CGImage.hpp"
#include "Platform/Graphics/PNG.hpp"

namespace nimbuscope {

/// A map tile that came as a PNG file whose samples are entries of a colour table. The file's own palette
/// does not count. Tiles that carry the kind of precipitation in their blue samples go through
/// `ColorScheme::applyColors` instead. Objects do not change; any thread may use them.
class NIMBUSCOPE_EXPORT Png {
  public:
    /// Decodes a file. One that is no PNG, is damaged or has more than 64 Mi pixels gives an object without
    /// an image.
    explicit Png(std::span<const std::uint8_t> data);

    /// As the constructor, with an error where that finds no image, and with limits of the caller's.
    [[nodiscard]] static platform::Result<Png, platform::PNGError> make(std::span<const std::uint8_t> data,
                                                                        const platform::PNGLimits& limits);

    /// The samples; absent when decoding failed.
    [[nodiscard]] const std::optional<platform::CGImage>& image() const { return image_; }
    [[nodiscard]] bool valid() const { return image_.has_value(); }
    [[nodiscard]] std::int64_t width() const { return image_ ? static_cast<std::int64_t>(image_->width) : 0; }
    [[nodiscard]] std::int64_t height() const {
        return image_ ? static_cast<std::int64_t>(image_->height) : 0;
    }
    /// Bits per pixel; 0 when decoding failed.
    [[nodiscard]] std::int64_t bpp() const {
        return image_ ? static_cast<std::int64_t>(image_->bitsPerPixel) : 0;
    }

    /// The pixels as width × height × 4 bytes RGBA, rows from the top, or from the bottom when `inversed`.
    /// `colors` has four bytes for each of at least 256 entries. The first byte of a pixel, which in wide
    /// samples is the most significant one, is its entry. Absent without an image and when pixels are
    /// narrower than a byte.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> bytes(std::span<const std::uint8_t> colors,
                                                                 bool inversed) const;

    /// As above into `out`, which has the size of the result; allocates nothing. An error, with nothing
    /// written, where the other is absent.
    [[nodiscard]] platform::Result<void, platform::PNGError> bytes(std::span<const std::uint8_t> colors,
                                                                   bool inversed,
                                                                   std::span<std::uint8_t> out) const;

  private:
    explicit Png(platform::CGImage image) : image_(std::move(image)) {}

    std::optional<platform::CGImage> image_;
};

}  // namespace nimbuscope
