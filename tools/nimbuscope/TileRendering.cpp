#include "TileRendering.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "NimbuscopeKit/RadarImagery/Composition.hpp"
#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"

namespace nimbuscope::tool {
namespace {

using platform::RGBAImage;

constexpr std::size_t pixelSize = 4;

std::unexpected<CommandError> fault(const std::string& name, std::string why) {
    return std::unexpected(CommandError{name, std::move(why)});
}

bool isRGBA(const platform::CGImage& image) {
    return image.bitsPerPixel == 8 * pixelSize && image.bitsPerComponent == 8;
}

RGBAImage imageOfSize(std::int64_t width, std::int64_t height, platform::Data pixels) {
    return {.width = static_cast<std::uint32_t>(width),
            .height = static_cast<std::uint32_t>(height),
            .pixels = std::move(pixels)};
}

void turnUpsideDown(RGBAImage& image) {
    const std::size_t rowSize = image.width * pixelSize;
    for (std::size_t top = 0, bottom = image.pixels.size(); top + rowSize < bottom; top += rowSize) {
        bottom -= rowSize;
        std::swap_ranges(&image.pixels[top], &image.pixels[top] + rowSize, &image.pixels[bottom]);
    }
}

CommandResult<RGBAImage> renderRad2(const TileRendering& rendering, const std::string& name,
                                    std::span<const std::uint8_t> bytes) {
    const auto file = Rad2File::parse(bytes);
    if (!file) {
        return fault(name, file.error().message());
    }
    auto pixels = file->decode(rendering.scheme.colors(), rendering.isInversed, rendering.maximalPixels);
    if (!pixels) {
        return fault(name, pixels.error().message());
    }
    return imageOfSize(file->width(), file->height(), std::move(*pixels));
}

CommandResult<RGBAImage> renderPNG(const TileRendering& rendering, const std::string& name,
                                   std::span<const std::uint8_t> bytes) {
    const auto png = Png::make(bytes, {.pixels = rendering.maximalPixels});
    if (!png) {
        return fault(name, png.error().message());
    }
    const std::size_t size = png->image()->width * png->image()->height * pixelSize;
    RGBAImage image = imageOfSize(png->width(), png->height(), platform::Data(size));
    if (isRGBA(*png->image())) {
        const auto done = rendering.scheme.applyColors(std::span<const std::uint8_t>(png->image()->data),
                                                       std::span<std::uint8_t>(image.pixels));
        if (!done) {
            return fault(name, done.error().reason);
        }
        if (rendering.isInversed) {
            turnUpsideDown(image);
        }
        return image;
    }
    const auto done = png->bytes(rendering.scheme.colors(), rendering.isInversed, image.pixels);
    return done ? CommandResult<RGBAImage>(std::move(image)) : fault(name, done.error().message());
}

}  // namespace

bool isPNG(std::span<const std::uint8_t> file) {
    constexpr std::uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    return file.size() >= std::size(signature) &&
           std::ranges::equal(file.first(std::size(signature)), signature);
}

CommandResult<RGBAImage> readRGBA(const std::string& name, std::span<const std::uint8_t> file,
                                  std::uint64_t maximalPixels) {
    auto image = platform::decodePNGSamples(file, {.pixels = maximalPixels});
    if (!image) {
        return fault(name, image.error().message());
    }
    if (!isRGBA(*image)) {
        return fault(name,
                     fmt::format("expected a PNG of 8-bit RGBA, found {} bits per pixel in samples of {}",
                                 image->bitsPerPixel, image->bitsPerComponent));
    }
    return RGBAImage{.width = static_cast<std::uint32_t>(image->width),
                     .height = static_cast<std::uint32_t>(image->height),
                     .pixels = std::move(image->data)};
}

CommandResult<RGBAImage> TileRendering::render(const std::string& name,
                                               std::span<const std::uint8_t> file) const {
    if (!Rad2File::hasMagic(file) && !isPNG(file)) {
        return fault(name, "byte 0: expected a Rad2 or a PNG file");
    }
    auto image = Rad2File::hasMagic(file) ? renderRad2(*this, name, file) : renderPNG(*this, name, file);
    if (!image || !overlay) {
        return image;
    }
    if (image->width != overlay->width || image->height != overlay->height) {
        return fault(name, fmt::format("the overlay has {} x {} pixels, the tile {} x {}", overlay->width,
                                       overlay->height, image->width, image->height));
    }
    const auto done = layOver(image->pixels, overlay->pixels);
    return done ? std::move(image) : fault(name, done.error().reason);
}

}  // namespace nimbuscope::tool
