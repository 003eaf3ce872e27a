#pragma once

#include <string>
#include <vector>

#include "NimbuscopeKit/RadarImagery/ColorScheme.hpp"
#include "Platform/Graphics/CAGradientLayer.hpp"
#include "tools/drawing/Axis.hpp"
#include "tools/drawing/Canvas.hpp"

namespace nimbuscope::drawing {

/// A strip of colours, evenly spaced along the axis.
struct ChartRow {
    std::string label;
    std::vector<RGBA> colors;
};

struct Chart {
    std::string title;
    std::string subtitle;
    std::vector<ChartRow> rows;
    Axis axis;
};

/// A picture of colour tables: strips below each other, labelled, on a checker pattern where they are
/// transparent.
[[nodiscard]] platform::RGBAImage drawChart(const Chart& chart);

/// The legend that a map shows: the gradient from its start to its end, with the title and the values beside
/// it.
[[nodiscard]] platform::RGBAImage drawLegend(const platform::CAGradientLayer& layer,
                                             GradientDirection direction, const std::string& title,
                                             const Axis& axis);

/// The chart of a scheme's table. `title` names the scheme, `subtitle` how it was made.
[[nodiscard]] Chart schemeChart(const ColorScheme& scheme, std::string title, std::string subtitle);

/// The values of the entries that a type's legend shows: dBZ, or positions in the table for clouds.
[[nodiscard]] Axis legendAxis(ColorSchemeType type);

}  // namespace nimbuscope::drawing
