// PNG tiles: what is decoded keeps to the limits, and its colours are those of the naive loop.

#include <algorithm>
#include <vector>

#include "NimbuscopeKit/RadarImagery/Png.hpp"
#include "Target.hpp"

using namespace nimbuscope;
using fuzz::require;

namespace {

std::vector<std::uint8_t> coloredNaively(const platform::CGImage& image,
                                         const std::vector<std::uint8_t>& colors, bool inversed) {
    std::vector<std::uint8_t> out(image.width * image.height * 4);
    for (std::size_t i = 0; i < image.width * image.height; ++i) {
        const std::size_t row = inversed ? image.height - 1 - i / image.width : i / image.width;
        const std::size_t index = image.data[i * (image.bitsPerPixel / 8)];
        std::copy_n(&colors[index * 4], 4, &out[(row * image.width + i % image.width) * 4]);
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t maximalPixels = 1U << 16U;
    const auto png = Png::make({data, size}, {.pixels = maximalPixels});
    if (!png) {
        require(!png.error().offset || *png.error().offset <= size, "the place is in the file");
        return 0;
    }
    const platform::CGImage& image = *png->image();
    require(image.width * image.height <= maximalPixels, "the limit holds");
    require(image.data.size() == image.bytesPerRow * image.height, "there is a row for each row");
    std::vector<std::uint8_t> colors(1024);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        colors[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    }
    for (const bool inversed : {false, true}) {
        const auto colored = png->bytes(colors, inversed);
        require(colored.has_value() == (image.bitsPerPixel >= 8), "only whole bytes have colours");
        require(!colored || *colored == coloredNaively(image, colors, inversed), "the colours are right");
    }
    return 0;
}
