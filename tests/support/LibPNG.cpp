#include "tests/support/LibPNG.hpp"

#include <png.h>

#include <algorithm>
#include <vector>

namespace nimbuscope::testing {
namespace {

void append(png_structp png, png_bytep bytes, png_size_t count) {
    auto& out = *static_cast<platform::Data*>(png_get_io_ptr(png));
    out.insert(out.end(), bytes, bytes + count);
}

void writeExtras(png_structp png, png_infop info, const PNGFile& file) {
    const std::size_t colors = std::size_t{1} << static_cast<unsigned>(std::min(file.depth, 8));
    if (file.colorType == PNG_COLOR_TYPE_PALETTE) {
        std::vector<png_color> palette(colors);
        for (std::size_t i = 0; i < colors; ++i) {
            const auto shade = static_cast<png_byte>(255 - i);
            palette[i] = {shade, static_cast<png_byte>(i), shade};
        }
        png_set_PLTE(png, info, palette.data(), static_cast<int>(colors));
    }
    if (file.hasTransparency && (file.colorType & PNG_COLOR_MASK_ALPHA) == 0) {
        std::vector<png_byte> alphas(colors, 7);
        png_color_16 color{0, 1, 1, 1, 1};
        const bool isPalette = file.colorType == PNG_COLOR_TYPE_PALETTE;
        png_set_tRNS(png, info, isPalette ? alphas.data() : nullptr, isPalette ? static_cast<int>(colors) : 0,
                     isPalette ? nullptr : &color);
    }
    if (file.hasGamma) {
        png_set_gAMA(png, info, 1.0);
    }
    if (file.textSize > 0) {
        std::string key = "Comment";
        std::string text(file.textSize, 'x');
        png_text entry{.compression = PNG_TEXT_COMPRESSION_zTXt, .key = key.data(), .text = text.data()};
        entry.text_length = text.size();
        png_set_text(png, info, &entry, 1);
    }
}

}  // namespace

std::size_t PNGFile::rowSize() const {
    const std::size_t channels = colorType == 2 ? 3 : colorType == 6 ? 4 : colorType == 4 ? 2 : 1;
    return (width * channels * static_cast<std::size_t>(depth) + 7) / 8;
}

platform::Data writePNGFile(const PNGFile& file) {
    platform::Data out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, append, nullptr);
    png_set_IHDR(png, info, file.width, file.height, file.depth, file.colorType,
                 file.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png, 0, PNG_ALL_FILTERS);
    writeExtras(png, info, file);
    std::vector<png_bytep> rows(file.height);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = const_cast<png_bytep>(&file.samples[y * file.rowSize()]);
    }
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

platform::Data writeIndices(std::uint32_t width, std::uint32_t height, const platform::Data& indices,
                            int colorType) {
    return writePNGFile({.width = width, .height = height, .colorType = colorType, .samples = indices});
}

}  // namespace nimbuscope::testing
