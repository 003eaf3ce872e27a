#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// The same image in the usual format, and the usual ways to read it.
namespace nimbuscope::benchmarks {

/// A square image of palette indices as an 8-bit indexed PNG file, compressed as libpng does by default.
[[nodiscard]] std::vector<std::uint8_t> indexedPNG(const std::vector<std::uint8_t>& indices,
                                                   std::uint32_t side);

/// Reads the raw indices of an indexed PNG of side² pixels into `indices`; false when that fails.
[[nodiscard]] bool readWithLibpng(const std::vector<std::uint8_t>& file, std::uint32_t side,
                                  std::uint8_t* indices);
[[nodiscard]] bool readWithLibspng(const std::vector<std::uint8_t>& file, std::uint32_t side,
                                   std::uint8_t* indices);

}  // namespace nimbuscope::benchmarks
