#pragma once

#include <string>
#include <vector>

#include "Platform/Graphics/PNG.hpp"

namespace nimbuscope::drawing {

/// One way to draw the tiles of a contact sheet.
struct SheetColumn {
    std::string title;
    std::vector<platform::RGBAImage> tiles;    ///< as many as every other column has
    std::vector<platform::RGBAImage> legends;  ///< to be shown below the tiles
};

/// A picture of the same tiles drawn in several ways: a column for each way, a row for each tile.
[[nodiscard]] platform::RGBAImage drawSheet(const std::vector<SheetColumn>& columns);

}  // namespace nimbuscope::drawing
