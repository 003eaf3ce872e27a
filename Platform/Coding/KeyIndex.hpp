#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nimbuscope::platform::detail {

/// Finds the position of a key in a fixed table of N keys with one hash and one comparison. The hash (FNV-1a
/// with a seed) is made free of collisions when the table is compiled.
template <std::size_t N>
class KeyIndex {
  public:
    static constexpr std::size_t notFound = N;

    constexpr explicit KeyIndex(const std::array<std::string_view, N>& keys) : keys_(keys) {
        while (!place()) {
            ++seed_;
        }
    }

    /// The position of `key`, or `notFound`.
    [[nodiscard]] constexpr std::size_t find(std::string_view key) const {
        const std::size_t position = slots_[slot(key)];
        return position < N && keys_[position] == key ? position : notFound;
    }

  private:
    static constexpr std::size_t slotCount = std::bit_ceil(4 * N + 1);

    [[nodiscard]] constexpr std::size_t slot(std::string_view key) const {
        std::uint64_t hash = 0xCBF29CE484222325U + seed_;
        for (const char character : key) {
            hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3U;
        }
        return static_cast<std::size_t>((hash ^ (hash >> 32U)) % slotCount);
    }

    constexpr bool place() {
        slots_.fill(notFound);
        for (std::size_t i = 0; i < N; ++i) {
            std::uint8_t& free = slots_[slot(keys_[i])];
            if (free != notFound) {
                return false;
            }
            free = static_cast<std::uint8_t>(i);
        }
        return true;
    }

    static_assert(N < 255);
    std::array<std::string_view, N> keys_;
    std::array<std::uint8_t, slotCount> slots_{};
    std::uint64_t seed_ = 0;
};

}  // namespace nimbuscope::platform::detail
