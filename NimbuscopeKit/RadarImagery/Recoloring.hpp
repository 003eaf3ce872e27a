#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The inner loops of `ColorScheme::applyColors` and `Png::bytes`: replace the pixels of a tile by entries of
/// a colour table.
class NIMBUSCOPE_EXPORT Recoloring {
  public:
    static constexpr std::size_t reachableEntries = 512;  ///< that a pixel can ask for

    /// The table, and behind it a transparent entry for pixels that have none.
    using Table = std::array<std::uint32_t, reachableEntries + 1>;

    /// Colours `count` pixels.
    using Function = void (*)(const Table& table, const std::uint8_t* pixels, std::uint8_t* out,
                              std::size_t count);

    /// One way to do it; all give the same result.
    struct Variant {
        std::string_view name;
        Function recolor;       ///< RGBA pixels
        Function colorIndices;  ///< pixels of one byte, the entry
        bool isSupported;       ///< by the processor
    };

    /// The variants of this build, the fastest first. The last one works on every processor.
    [[nodiscard]] static std::span<const Variant> variants();

    /// The highest entry that a tile needs; 0 for a tile without pixels.
    [[nodiscard]] static std::size_t highestEntry(std::span<const std::uint8_t> pixels);

    /// Entries beyond `colors` (four bytes each, at most 512) count as transparent.
    explicit Recoloring(std::span<const std::uint8_t> colors);

    /// Colours `pixels` into `out`, which has the same size, a multiple of four. Allocates nothing.
    void apply(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> out) const;

    /// Colours `indices` into `out`, which has four times the size: each becomes the entry that it names.
    /// Allocates nothing.
    void applyToIndices(std::span<const std::uint8_t> indices, std::span<std::uint8_t> out) const;

  private:
    Table table_{};
};

}  // namespace nimbuscope
