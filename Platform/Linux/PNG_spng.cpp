#include <spng.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <memory>
#include <new>

#include "Platform/Graphics/PNG.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::size_t channels = 4;
constexpr std::size_t maximalInflation = 1032;  // bytes that one byte of a deflate stream can stand for
constexpr std::uint32_t maximalSide = std::numeric_limits<std::int32_t>::max();  // of the PNG format

using Context = std::unique_ptr<spng_ctx, decltype(&spng_ctx_free)>;
using Buffer = std::unique_ptr<void, decltype(&std::free)>;

Context contextWith(int flags) {
    Context context(spng_ctx_new(flags), &spng_ctx_free);
    if (!context) {
        throw std::bad_alloc();
    }
    return context;
}

/// What the library says of a code; a lack of memory is no fault of the file.
std::string reasonOf(int code) {
    if (code == SPNG_EMEM) {
        throw std::bad_alloc();
    }
    return code == SPNG_IO_EOF ? "the file ends too early" : spng_strerror(code);
}

/// The first of the codes, each that of a step that does nothing after one that failed, that is a fault.
int firstFault(std::initializer_list<int> codes) {
    const auto* const fault = std::ranges::find_if(codes, [](int code) { return code != 0; });
    return fault != codes.end() ? *fault : 0;
}

std::size_t channelsOf(std::uint8_t colorType) {
    switch (colorType) {
        case SPNG_COLOR_TYPE_TRUECOLOR:
            return 3;
        case SPNG_COLOR_TYPE_GRAYSCALE_ALPHA:
            return 2;
        case SPNG_COLOR_TYPE_TRUECOLOR_ALPHA:
            return channels;
        default:
            return 1;
    }
}

/// Reads one file and knows how far it got. Stays where it was made: the library holds a pointer to it.
class Reader {
  public:
    explicit Reader(std::span<const std::uint8_t> file) : file_(file) {}
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    [[nodiscard]] const spng_ihdr& header() const { return header_; }

    [[nodiscard]] Result<void, PNGError> open(const PNGLimits& limits) {
        // Texts and other chunks that are kept are of no use here; one chunk's limit does for all of them.
        if (const int code =
                firstFault({spng_set_chunk_limits(context_.get(), limits.chunkSize, limits.chunkSize),
                            spng_set_png_stream(context_.get(), &Reader::readMore, this),
                            spng_get_ihdr(context_.get(), &header_)});
            code != 0) {
            return failure(code);
        }
        if (header_.width > limits.width || header_.height > limits.height) {
            return refusal(sizeText() + " exceeds " + std::to_string(limits.width) + " x " +
                           std::to_string(limits.height));
        }
        if (std::uint64_t{header_.width} * header_.height > limits.pixels) {
            return refusal(sizeText() + " has more than " + std::to_string(limits.pixels) + " pixels");
        }
        return {};
    }

    /// The whole image; the file is read to its end, so that one that was cut is an error.
    [[nodiscard]] Result<Data, PNGError> decode(int format, int flags) {
        std::size_t size = 0;
        int code = spng_decoded_image_size(context_.get(), format, &size);
        if (code != 0) {
            return failure(code);
        }
        if (const std::size_t raw = rawSize(); raw / maximalInflation > file_.size()) {
            return refusal(sizeText() + " cannot fit a file of " + std::to_string(file_.size()) + " bytes");
        }
        Data pixels(size);
        code = spng_decode_image(context_.get(), pixels.data(), size, format, flags);
        code = code != 0 ? code : spng_decode_chunks(context_.get());
        if (code != 0) {
            return failure(code);
        }
        return pixels;
    }

  private:
    /// The bytes of the image as the file stores it; too many to count is the most that there can be.
    [[nodiscard]] std::size_t rawSize() const {
        std::size_t size = 0;
        return spng_decoded_image_size(context_.get(), SPNG_FMT_RAW, &size) == 0
                   ? size
                   : std::numeric_limits<std::size_t>::max();
    }

    static int readMore(spng_ctx* /*context*/, void* user, void* destination, std::size_t length) {
        auto& self = *static_cast<Reader*>(user);
        const auto rest = self.file_.subspan(self.position_);
        const std::size_t available = std::min(length, rest.size());
        std::copy_n(rest.begin(), available, static_cast<std::uint8_t*>(destination));
        self.position_ += available;
        return available < length ? SPNG_IO_EOF : 0;
    }

    [[nodiscard]] std::string sizeText() const {
        return "an image of " + std::to_string(header_.width) + " x " + std::to_string(header_.height);
    }

    [[nodiscard]] std::unexpected<PNGError> failure(int code) const { return refusal(reasonOf(code)); }

    [[nodiscard]] std::unexpected<PNGError> refusal(std::string reason) const {
        return std::unexpected(PNGError{.reason = std::move(reason), .offset = position_});
    }

    std::span<const std::uint8_t> file_;
    std::size_t position_ = 0;
    Context context_ = contextWith(0);
    spng_ihdr header_{};
};

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
    const Context context = contextWith(SPNG_CTX_ENCODER);
    spng_ihdr header{};
    header.width = width;
    header.height = height;
    header.bit_depth = 8;
    header.color_type = SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    std::size_t size = 0;
    // Without PNG's filters coloured radar tiles get half as large, in half the time.
    int code = firstFault(
        {spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1),
         spng_set_option(context.get(), SPNG_FILTER_CHOICE, SPNG_DISABLE_FILTERING),
         spng_set_ihdr(context.get(), &header),
         spng_encode_image(context.get(), pixels.data(), pixels.size(), SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE)});
    const Buffer file(code == 0 ? spng_get_png_buffer(context.get(), &size, &code) : nullptr, &std::free);
    if (!file) {
        return std::unexpected(PNGError{reasonOf(code)});
    }
    const auto* bytes = static_cast<const std::uint8_t*>(file.get());
    return Data(bytes, bytes + size);
}

Result<RGBAImage, PNGError> decodePNG(std::span<const std::uint8_t> file, std::size_t maximalPixels) {
    Reader reader(file);
    if (auto opened = reader.open({.pixels = maximalPixels}); !opened) {
        return std::unexpected(opened.error());
    }
    auto pixels = reader.decode(SPNG_FMT_RGBA8, SPNG_DECODE_TRNS);
    if (!pixels) {
        return std::unexpected(pixels.error());
    }
    return RGBAImage{
        .width = reader.header().width, .height = reader.header().height, .pixels = std::move(*pixels)};
}

Result<CGImage, PNGError> decodePNGSamples(std::span<const std::uint8_t> file, const PNGLimits& limits) {
    Reader reader(file);
    if (auto opened = reader.open(limits); !opened) {
        return std::unexpected(opened.error());
    }
    auto samples = reader.decode(SPNG_FMT_RAW, 0);
    if (!samples) {
        return std::unexpected(samples.error());
    }
    const spng_ihdr& header = reader.header();
    const bool hasAlpha = header.color_type == SPNG_COLOR_TYPE_GRAYSCALE_ALPHA ||
                          header.color_type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    return CGImage{.width = header.width,
                   .height = header.height,
                   .bitsPerComponent = header.bit_depth,
                   .bitsPerPixel = header.bit_depth * channelsOf(header.color_type),
                   .bytesPerRow = samples->size() / header.height,
                   .bitmapInfo = (hasAlpha ? CGImage::alphaLast : 0) |
                                 (header.bit_depth == 16 ? CGImage::byteOrder16Big : 0),
                   .data = std::move(*samples)};
}

}  // namespace nimbuscope::platform
