#pragma once

namespace nimbuscope {

/// Which way a legend runs: from left to right or from top to bottom.
enum class GradientDirection { horizontal, vertical };

}  // namespace nimbuscope
