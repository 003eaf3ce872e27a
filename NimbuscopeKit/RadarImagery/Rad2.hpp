#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Graphics/CGImage.hpp"

namespace nimbuscope {

/// A radar tile in the Rad2 format. What its bytes lack stops the process; whoever reads files that may be
/// damaged takes `Rad2File`, which returns errors. Objects do not change; any thread may use them.
class NIMBUSCOPE_EXPORT Rad2 {
  public:
    static constexpr std::int64_t imageBpp = 4;  ///< bytes of a decoded pixel
    static constexpr std::array<std::uint8_t, 4> fileBegin{'R', 'A', 'D', '2'};
    // NOLINTBEGIN(readability-identifier-naming): the format's own names
    static constexpr std::int64_t RAD2_STATIC_HEADER_BYTES = Rad2File::staticHeaderSize;
    static constexpr std::int64_t DATA_BLOCK_CRC32_SIZE = Rad2File::blockTrailerSize;
    static constexpr std::uint8_t RAD2_BLOCK_LAST = Rad2File::lastBlock;
    // NOLINTEND(readability-identifier-naming)

    /// Reads the header and finds the `rad2` block. A file that does not begin with "RAD2" or has no such
    /// block is not `valid()`. Stops the process when a header entry or the header of a block passes the end.
    explicit Rad2(platform::Data data);

    /// The whole file; empty when it does not begin with "RAD2".
    [[nodiscard]] const platform::Data& source() const { return source_; }
    [[nodiscard]] bool valid() const { return dataBlock_.has_value(); }
    /// Nothing to draw: not valid, or no run.
    [[nodiscard]] bool transparent() const { return !dataBlock_ || dataBlock_->size == 0; }
    [[nodiscard]] std::int64_t size() const { return size_; }  ///< the longer side
    [[nodiscard]] std::int64_t width() const { return width_; }
    [[nodiscard]] std::int64_t height() const { return height_; }
    [[nodiscard]] std::int64_t bpp() const { return bpp_; }                      ///< of the header; not used
    [[nodiscard]] std::int64_t dataHeaderPos() const { return dataHeaderPos_; }  ///< of the first block
    [[nodiscard]] const std::optional<Rad2DataBlock>& dataBlock() const { return dataBlock_; }

    /// A copy of the payload of the first block of a type; absent when there is none. Stops the process when
    /// the block passes the end of the file.
    [[nodiscard]] std::optional<platform::Data> bytes(DataBlockType type) const;

    /// The image as width × height × 4 bytes of RGBA, rows from the top, or from the bottom when `inversed`;
    /// empty when the file is not valid. `colors` are at least 256 entries of four bytes. `alpha` has no
    /// effect. Stops the process when the table is too short or when a run passes the end of the file or the
    /// last pixel.
    [[nodiscard]] platform::Data bytes(std::span<const std::uint8_t> colors, bool inversed,
                                       double alpha = 1) const;

    /// RGBA bytes as an image, with the pixels of `overlay` that are not fully transparent in place of its
    /// own. Absent when the bytes are fewer than width × height × 4. Stops the process when the overlay has
    /// another size than bytes that are not empty.
    [[nodiscard]] static std::optional<platform::CGImage> cgImage(
        std::int64_t width, std::int64_t height, platform::Data bytes,
        std::optional<std::span<const std::uint8_t>> withOverlay);

  private:
    [[nodiscard]] Rad2File file() const;

    platform::Data source_;
    std::int64_t size_ = 256;
    std::int64_t width_ = 256;
    std::int64_t height_ = 256;
    std::int64_t bpp_ = 1;
    std::int64_t dataHeaderPos_ = 0;
    std::optional<Rad2DataBlock> dataBlock_;
};

}  // namespace nimbuscope
