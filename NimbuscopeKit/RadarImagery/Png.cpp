#include "NimbuscopeKit/RadarImagery/Png.hpp"

#include <algorithm>

#include "NimbuscopeKit/RadarImagery/Recoloring.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

using platform::PNGError;
using platform::Result;

constexpr std::size_t entrySize = 4;
constexpr std::size_t indexedEntries = 256;  // by the 8 bits that are looked at

/// Colours pixels that lie `step` bytes apart.
void colorEach(std::span<const std::uint8_t> colors, std::span<const std::uint8_t> samples, std::size_t step,
               std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i * step < samples.size(); ++i) {
        std::copy_n(&colors[samples[i * step] * entrySize], entrySize, &out[i * entrySize]);
    }
}

}  // namespace

Png::Png(std::span<const std::uint8_t> data) {
    if (auto image = platform::decodePNGSamples(data, {})) {
        image_ = std::move(*image);
    }
}

Result<Png, PNGError> Png::make(std::span<const std::uint8_t> data, const platform::PNGLimits& limits) {
    auto image = platform::decodePNGSamples(data, limits);
    if (!image) {
        return std::unexpected(image.error());
    }
    return Png(std::move(*image));
}

Result<void, PNGError> Png::bytes(std::span<const std::uint8_t> colors, bool inversed,
                                  std::span<std::uint8_t> out) const {
    platform::precondition(colors.size() >= indexedEntries * entrySize,
                           "A tile's colour table has at least 256 entries");
    if (!image_) {
        return std::unexpected(PNGError{"there is no image"});
    }
    const std::size_t step = image_->bitsPerPixel / 8;
    if (step == 0) {
        return std::unexpected(
            PNGError{"expected pixels of at least 8 bits, found " + std::to_string(image_->bitsPerPixel)});
    }
    const std::span<const std::uint8_t> samples = image_->data;
    const std::size_t rowSize = image_->width * entrySize;
    platform::precondition(
        samples.size() == image_->width * image_->height * step && out.size() == rowSize * image_->height,
        "The samples and the colours must fit the size of the image");
    const Recoloring recoloring(colors);
    const std::size_t stride = inversed ? image_->width * step : samples.size();
    for (std::size_t begin = 0, end = out.size(); begin < samples.size(); begin += stride, end -= rowSize) {
        const auto source = samples.subspan(begin, stride);
        const auto target = inversed ? out.subspan(end - rowSize, rowSize) : out;
        if (step == 1) {
            recoloring.applyToIndices(source, target);
        } else {
            colorEach(colors, source, step, target);
        }
    }
    return {};
}

std::optional<std::vector<std::uint8_t>> Png::bytes(std::span<const std::uint8_t> colors,
                                                    bool inversed) const {
    std::vector<std::uint8_t> colored(image_ ? image_->width * image_->height * entrySize : 0);
    const auto done = bytes(colors, inversed, colored);
    return done ? std::optional(std::move(colored)) : std::nullopt;
}

}  // namespace nimbuscope
