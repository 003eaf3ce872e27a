#include "tools/drawing/Canvas.hpp"

#include <algorithm>
#include <cmath>

#include "tools/drawing/BitmapFont.hpp"

namespace nimbuscope::drawing {

Canvas::Canvas(int width, int height) : width_(width), height_(height) {
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    image_ = {.width = static_cast<std::uint32_t>(width),
              .height = static_cast<std::uint32_t>(height),
              .pixels = platform::Data(bytes, 255)};
}

void Canvas::blend(int x, int y, const RGBA& color) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) {
        return;
    }
    const auto pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    for (std::size_t channel = 0; channel < 3; ++channel) {
        std::uint8_t& there = image_.pixels[pixel * 4 + channel];
        there = static_cast<std::uint8_t>((color[channel] * color[3] + there * (255 - color[3]) + 127) / 255);
    }
}

void Canvas::fill(int x, int y, int width, int height, const RGBA& color) {
    for (int row = y; row < y + height; ++row) {
        for (int column = x; column < x + width; ++column) {
            blend(column, row, color);
        }
    }
}

void Canvas::line(Point from, Point to, double thickness, const RGBA& color) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double square = dx * dx + dy * dy;
    const double reach = thickness / 2 + 0.5;
    const auto first = [&](double a, double b) {
        return static_cast<int>(std::floor(std::min(a, b) - reach));
    };
    const auto last = [&](double a, double b) { return static_cast<int>(std::ceil(std::max(a, b) + reach)); };
    for (int y = first(from.y, to.y); y <= last(from.y, to.y); ++y) {
        for (int x = first(from.x, to.x); x <= last(from.x, to.x); ++x) {
            // The distance of the pixel's middle from the line tells how much of the pixel it covers.
            const double px = x + 0.5 - from.x;
            const double py = y + 0.5 - from.y;
            const double along = square > 0 ? std::clamp((px * dx + py * dy) / square, 0.0, 1.0) : 0;
            const double distance = std::hypot(px - along * dx, py - along * dy);
            const double cover = std::clamp(reach - distance, 0.0, 1.0);
            blend(x, y, {color[0], color[1], color[2], static_cast<std::uint8_t>(cover * color[3])});
        }
    }
}

void Canvas::checker(int x, int y, int width, int height) {
    constexpr int side = 6;
    constexpr RGBA dark{226, 226, 226, 255};
    for (int row = 0; row < height; row += side) {
        for (int column = (row / side % 2) * side; column < width; column += 2 * side) {
            fill(x + column, y + row, std::min(side, width - column), std::min(side, height - row), dark);
        }
    }
}

void Canvas::frame(int x, int y, int width, int height, const RGBA& color) {
    fill(x - 1, y - 1, width + 2, 1, color);
    fill(x - 1, y + height, width + 2, 1, color);
    fill(x - 1, y, 1, height, color);
    fill(x + width, y, 1, height, color);
}

void Canvas::draw(int x, int y, const platform::RGBAImage& image) {
    const std::uint8_t* pixel = image.pixels.data();
    for (int row = 0; row < static_cast<int>(image.height); ++row) {
        for (int column = 0; column < static_cast<int>(image.width); ++column, pixel += 4) {
            blend(x + column, y + row, {pixel[0], pixel[1], pixel[2], pixel[3]});
        }
    }
}

void Canvas::text(int x, int y, int scale, std::string_view line, const RGBA& color) {
    for (const char character : line) {
        const Glyph& glyph = glyphOf(character);
        for (int row = 0; row < Glyph::rows; ++row) {
            for (int column = 0; column < glyph.width(); ++column) {
                if (glyph.isSet(column, row)) {
                    fill(x + column * scale, y + row * scale, scale, scale, color);
                }
            }
        }
        x += (glyph.width() + 1) * scale;
    }
}

}  // namespace nimbuscope::drawing
