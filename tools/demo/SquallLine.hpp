#pragma once

#include "tools/demo/Storms.hpp"

namespace nimbuscope::demo {

/// `Storm::squall`, drawn from noise instead of cells: it looks the same at every size.
[[nodiscard]] Raster makeSquallLine(std::size_t width, std::size_t height, std::uint32_t seed);

}  // namespace nimbuscope::demo
