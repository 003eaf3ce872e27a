#pragma once

#include <cstdint>
#include <string_view>

#include "Platform/Graphics/PNG.hpp"
#include "colorschemes/text/ColorTable.hpp"

namespace nimbuscope::drawing {

struct Point {
    double x = 0;
    double y = 0;
};

/// A white picture to draw on; what lies outside of it is cut off. Coordinates are pixels from the top left.
class Canvas {
  public:
    Canvas(int width, int height);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    /// Lays a colour over a rectangle; its alpha mixes it with what is there.
    void fill(int x, int y, int width, int height, const RGBA& color);

    /// A straight line with round ends and smooth edges.
    void line(Point from, Point to, double thickness, const RGBA& color);

    /// The pattern of light squares that stands for transparency.
    void checker(int x, int y, int width, int height);

    /// A frame of one pixel around a rectangle, outside of it.
    void frame(int x, int y, int width, int height, const RGBA& color);

    /// Lays a picture over what is there, pixel by pixel as `fill` does.
    void draw(int x, int y, const platform::RGBAImage& image);

    /// A line of text whose capitals reach from y down to its baseline, 7 × `scale` pixels below.
    void text(int x, int y, int scale, std::string_view line, const RGBA& color);

    [[nodiscard]] const platform::RGBAImage& image() const { return image_; }

  private:
    void blend(int x, int y, const RGBA& color);

    int width_;
    int height_;
    platform::RGBAImage image_;
};

}  // namespace nimbuscope::drawing
