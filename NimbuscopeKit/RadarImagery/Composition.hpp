#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// Why a layer cannot be laid over an image.
struct CompositionError {
    std::string reason;
};

/// Lays RGBA pixels over others: where the alpha of `overlay` is not 0, all four bytes replace those of
/// `pixels`; nothing is blended. An error, with nothing written, when the two differ in size or when that is
/// not a multiple of four.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::Result<void, CompositionError> layOver(
    std::span<std::uint8_t> pixels, std::span<const std::uint8_t> overlay);

}  // namespace nimbuscope
