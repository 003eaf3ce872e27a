#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope {

/// The rule that a Rad2 file breaks, and where.
struct NIMBUSCOPE_EXPORT Rad2Error {
    std::uint64_t offset;  ///< of the header entry, block or run that is at fault, from the start of the file
    std::string reason;

    /// "byte 12: the run passes the last pixel"
    [[nodiscard]] std::string message() const;
};

/// The types of data blocks. Only the high nibble of a block's type byte counts; others than these occur.
enum class DataBlockType : std::uint8_t {
    rad2 = 48,    ///< one palette index per pixel, run-length coded
    arrows = 80,  ///< directions of precipitation, handed out as they are
};
constexpr auto caseTable(DataBlockType) {
    return std::array{DataBlockType::rad2, DataBlockType::arrows};
}

/// Where the payload of a data block lies in the file.
struct Rad2DataBlock {
    std::int64_t pos = 0;   ///< offset of the first byte
    std::int64_t size = 0;  ///< in bytes

    bool operator==(const Rad2DataBlock&) const = default;
};

/// A data block of any type.
struct Rad2Block {
    std::uint8_t type = 0;  ///< the high nibble of the type byte; the low one is 0
    Rad2DataBlock payload;

    bool operator==(const Rad2Block&) const = default;
};

/// A Rad2 file, a compact raster of palette indices, read with every byte checked: what is broken comes back
/// as an error, and only what is asked for is read. Borrows the bytes of the file, which must outlive it.
class NIMBUSCOPE_EXPORT Rad2File {
  public:
    static constexpr std::string_view magic = "RAD2";
    static constexpr std::int64_t staticHeaderSize = 5;  ///< before the first header entry
    static constexpr std::int64_t blockTrailerSize = 3;  ///< behind a block's length; never examined
    static constexpr std::uint8_t lastBlock = 1;         ///< bit of a block's type byte
    static constexpr std::size_t pixelSize = 4;          ///< bytes of a decoded pixel
    static constexpr std::size_t tableSize = 256 * 4;    ///< bytes of the colour table that indices reach

    /// Whether a file says that it is a Rad2 file.
    [[nodiscard]] static bool hasMagic(std::span<const std::uint8_t> file);

    /// Reads the header and looks for the `rad2` block; a file that has none is not an error. Neither its
    /// payload nor anything behind it is looked at.
    [[nodiscard]] static platform::Result<Rad2File, Rad2Error> parse(std::span<const std::uint8_t> file);

    [[nodiscard]] std::int64_t width() const { return header_.width; }
    [[nodiscard]] std::int64_t height() const { return header_.height; }
    [[nodiscard]] std::int64_t size() const { return header_.size; }  ///< the longer side
    /// Bytes per pixel that the file claims; decoding does not use it.
    [[nodiscard]] std::int64_t bpp() const { return header_.bpp; }
    /// Offset of the first data block.
    [[nodiscard]] std::int64_t dataHeaderPos() const { return header_.dataHeaderPos; }
    /// The first `rad2` block; its payload need not lie within the file.
    [[nodiscard]] const std::optional<Rad2DataBlock>& rad2Block() const { return rad2Block_; }
    [[nodiscard]] std::uint64_t pixelCount() const {
        return static_cast<std::uint64_t>(header_.width) * static_cast<std::uint64_t>(header_.height);
    }

    /// All blocks up to the last one. An error when one does not lie within the file whole; behind the `rad2`
    /// block such a one is left out, with all that follow, as nothing there is needed to draw the image.
    [[nodiscard]] platform::Result<std::vector<Rad2Block>, Rad2Error> blocks() const;

    /// The payload of the first block of a type, none where there is no such block. An error when the search
    /// or the payload passes the end of the file.
    [[nodiscard]] platform::Result<std::optional<std::span<const std::uint8_t>>, Rad2Error> payload(
        DataBlockType type) const;

    /// Colours the image through a table of RGBA entries into `out`, which must hold width × height × 4
    /// bytes; rows from the top, or from the bottom when `inversed`. Pixels that no run reaches become
    /// (0, 0, 0, 0). Allocates nothing. An error when the file has no `rad2` block, when `colors` holds fewer
    /// than 256 entries, or when a run passes the end of the file or the last pixel; `out` is then undefined.
    [[nodiscard]] platform::Result<void, Rad2Error> decode(std::span<const std::uint8_t> colors,
                                                           bool inversed, std::span<std::uint8_t> out) const;

    /// As above into new bytes. An image of more than `maximalPixels` pixels is an error before memory is
    /// taken for it.
    [[nodiscard]] platform::Result<platform::Data, Rad2Error> decode(std::span<const std::uint8_t> colors,
                                                                     bool inversed,
                                                                     std::uint64_t maximalPixels) const;

    /// The palette indices, one byte per pixel, rows from the top; 0 where no run reaches. Otherwise as
    /// `decode`.
    [[nodiscard]] platform::Result<platform::Data, Rad2Error> decodeIndices(
        std::uint64_t maximalPixels) const;

  private:
    struct Header {
        std::int64_t width = 256;
        std::int64_t height = 256;
        std::int64_t size = 256;
        std::int64_t bpp = 1;
        std::int64_t dataHeaderPos = 0;
    };

    explicit Rad2File(std::span<const std::uint8_t> file) : file_(file) {}

    [[nodiscard]] platform::Result<void, Rad2Error> readHeader();
    [[nodiscard]] platform::Result<void, Rad2Error> readGeometry(std::uint64_t entry);
    [[nodiscard]] platform::Result<std::optional<Rad2DataBlock>, Rad2Error> find(DataBlockType type) const;
    [[nodiscard]] platform::Result<void, Rad2Error> checkImage(std::uint64_t maximalPixels) const;

    std::span<const std::uint8_t> file_;
    Header header_;
    std::optional<Rad2DataBlock> rad2Block_;
};

}  // namespace nimbuscope
