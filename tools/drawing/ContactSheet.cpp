#include "tools/drawing/ContactSheet.hpp"

#include <algorithm>

#include "tools/drawing/Canvas.hpp"
#include "tools/drawing/Style.hpp"

namespace nimbuscope::drawing {
namespace {

using platform::RGBAImage;

constexpr RGBA land{236, 238, 233, 255};
constexpr int titleHeight = Glyph::capHeight * titleScale + 14;

int widthOf(const RGBAImage& image) {
    return static_cast<int>(image.width);
}

int heightOf(const RGBAImage& image) {
    return static_cast<int>(image.height);
}

struct Extent {
    int width = 0;
    int height = 0;
};

/// The room that images below each other need, with `gap` after each.
Extent stacked(const std::vector<RGBAImage>& images, int gap) {
    Extent extent;
    for (const RGBAImage& image : images) {
        extent.width = std::max(extent.width, widthOf(image));
        extent.height += heightOf(image) + gap;
    }
    return extent;
}

void drawColumn(Canvas& canvas, int x, int width, const SheetColumn& column) {
    int y = margin;
    canvas.text(x, y, titleScale, column.title, ink);
    y += titleHeight;
    for (const RGBAImage& tile : column.tiles) {
        canvas.fill(x, y, widthOf(tile), heightOf(tile), land);
        canvas.draw(x, y, tile);
        canvas.frame(x, y, widthOf(tile), heightOf(tile), frameInk);
        y += heightOf(tile) + margin;
    }
    for (const RGBAImage& legend : column.legends) {
        canvas.draw(x + (width - widthOf(legend)) / 2, y, legend);
        y += heightOf(legend);
    }
}

}  // namespace

RGBAImage drawSheet(const std::vector<SheetColumn>& columns) {
    Extent column;
    for (const SheetColumn& each : columns) {
        const Extent tiles = stacked(each.tiles, margin);
        const Extent legends = stacked(each.legends, 0);
        const int titleWidth = widthOf(each.title) * titleScale;
        column.width = std::max({column.width, tiles.width, legends.width, titleWidth});
        column.height = std::max(column.height, titleHeight + tiles.height + legends.height);
    }
    Canvas canvas(margin + static_cast<int>(columns.size()) * (column.width + margin),
                  2 * margin + column.height);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        drawColumn(canvas, margin + static_cast<int>(i) * (column.width + margin), column.width, columns[i]);
    }
    return canvas.image();
}

}  // namespace nimbuscope::drawing
