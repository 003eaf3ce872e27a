#include "PNGPeers.hpp"

#include <png.h>
#include <spng.h>

#include <array>
#include <cstring>
#include <span>

namespace nimbuscope::benchmarks {
namespace {

void append(png_structp png, png_bytep bytes, std::size_t size) {
    auto& file = *static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + size);
}

void take(png_structp png, png_bytep bytes, std::size_t size) {
    auto& rest = *static_cast<std::span<const std::uint8_t>*>(png_get_io_ptr(png));
    if (size > rest.size()) {
        png_error(png, "the file is cut");
    }
    std::memcpy(bytes, rest.data(), size);
    rest = rest.subspan(size);
}

}  // namespace

std::vector<std::uint8_t> indexedPNG(const std::vector<std::uint8_t>& indices, std::uint32_t side) {
    std::vector<std::uint8_t> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::array<png_color, 256> palette{};
    png_set_write_fn(png, &file, &append, nullptr);
    png_set_IHDR(png, info, side, side, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    png_write_info(png, info);
    for (std::uint32_t row = 0; row < side; ++row) {
        png_write_row(png, indices.data() + std::size_t{row} * side);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

bool readWithLibpng(const std::vector<std::uint8_t>& file, std::uint32_t side, std::uint8_t* indices) {
    std::span<const std::uint8_t> rest(file);
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &rest, &take);
    png_read_info(png, info);
    const bool fits = png_get_image_width(png, info) == side && png_get_image_height(png, info) == side &&
                      png_get_rowbytes(png, info) == side;
    for (std::uint32_t row = 0; fits && row < side; ++row) {
        png_read_row(png, indices + std::size_t{row} * side, nullptr);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return fits;
}

bool readWithLibspng(const std::vector<std::uint8_t>& file, std::uint32_t side, std::uint8_t* indices) {
    spng_ctx* context = spng_ctx_new(0);
    const bool isRead = spng_set_png_buffer(context, file.data(), file.size()) == 0 &&
                        spng_decode_image(context, indices, std::size_t{side} * side, SPNG_FMT_RAW, 0) == 0;
    spng_ctx_free(context);
    return isRead;
}

}  // namespace nimbuscope::benchmarks
