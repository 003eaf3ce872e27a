#include <spng.h>

#include <cstdlib>
#include <limits>
#include <memory>

#include "Platform/Graphics/PNG.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::size_t channels = 4;
constexpr std::uint32_t maximalSide = std::numeric_limits<std::int32_t>::max();  // of the PNG format

using Context = std::unique_ptr<spng_ctx, decltype(&spng_ctx_free)>;
using Buffer = std::unique_ptr<void, decltype(&std::free)>;

std::unexpected<PNGError> fault(int code) {
    return std::unexpected(PNGError{spng_strerror(code)});
}

}  // namespace

Result<Data, PNGError> encodePNG(std::uint32_t width, std::uint32_t height,
                                 std::span<const std::uint8_t> pixels) {
    if (width == 0 || height == 0 || width > maximalSide || height > maximalSide) {
        return std::unexpected(PNGError{"a PNG has from 1 to 2147483647 pixels a side, not " +
                                        std::to_string(width) + " x " + std::to_string(height)});
    }
    const std::uint64_t count = std::uint64_t{width} * height;  // below 2^62: times 4 it still fits
    if (pixels.size() != count * channels) {
        return std::unexpected(PNGError{"expected " + std::to_string(count * channels) +
                                        " bytes of pixels, found " + std::to_string(pixels.size())});
    }
    const Context context(spng_ctx_new(SPNG_CTX_ENCODER), &spng_ctx_free);
    if (!context) {
        return fault(SPNG_EMEM);
    }
    spng_ihdr header{};
    header.width = width;
    header.height = height;
    header.bit_depth = 8;
    header.color_type = SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    int code = spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1);
    code = code != 0 ? code : spng_set_ihdr(context.get(), &header);
    code = code != 0 ? code
                     : spng_encode_image(context.get(), pixels.data(), pixels.size(), SPNG_FMT_PNG,
                                         SPNG_ENCODE_FINALIZE);
    if (code != 0) {
        return fault(code);
    }
    std::size_t size = 0;
    const Buffer file(spng_get_png_buffer(context.get(), &size, &code), &std::free);
    if (!file) {
        return fault(code);
    }
    const auto* bytes = static_cast<const std::uint8_t*>(file.get());
    return Data(bytes, bytes + size);
}

Result<RGBAImage, PNGError> decodePNG(std::span<const std::uint8_t> file, std::size_t maximalPixels) {
    const Context context(spng_ctx_new(0), &spng_ctx_free);
    if (!context) {
        return fault(SPNG_EMEM);
    }
    spng_ihdr header{};
    int code = spng_set_png_buffer(context.get(), file.data(), file.size());
    code = code != 0 ? code : spng_get_ihdr(context.get(), &header);
    if (code != 0) {
        return fault(code);
    }
    if (std::uint64_t{header.width} * header.height > maximalPixels) {
        return std::unexpected(
            PNGError{"the image has more than " + std::to_string(maximalPixels) + " pixels"});
    }
    std::size_t size = 0;
    code = spng_decoded_image_size(context.get(), SPNG_FMT_RGBA8, &size);
    if (code != 0) {
        return fault(code);
    }
    RGBAImage image{.width = header.width, .height = header.height, .pixels = Data(size)};
    code = spng_decode_image(context.get(), image.pixels.data(), size, SPNG_FMT_RGBA8, SPNG_DECODE_TRNS);
    code =
        code != 0 ? code : spng_decode_chunks(context.get());  // to the end: a file that was cut is an error
    if (code != 0) {
        return fault(code);
    }
    return image;
}

}  // namespace nimbuscope::platform
