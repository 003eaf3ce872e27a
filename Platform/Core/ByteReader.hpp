#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace nimbuscope::platform {

/// Reads big-endian integers at any offset of a run of bytes, never past its end. Offsets and lengths are
/// 64-bit, so that sums of 32-bit fields of a file cannot wrap. Borrows the bytes.
class ByteReader {
  public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint64_t size() const { return bytes_.size(); }

    /// Whether the `length` bytes from `offset` on lie within the bytes.
    [[nodiscard]] bool holds(std::uint64_t offset, std::uint64_t length) const {
        return offset <= bytes_.size() && length <= bytes_.size() - offset;
    }

    /// The unsigned integer in the `width` bytes (1 to 4) at `offset`; none where they pass the end.
    [[nodiscard]] std::optional<std::uint32_t> integer(std::uint64_t offset, unsigned width) const {
        if (!holds(offset, width)) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (const std::uint8_t byte : bytes_.subspan(offset, width)) {
            value = value << 8U | byte;
        }
        return value;
    }

    /// The `length` bytes at `offset`; none where they pass the end.
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> slice(std::uint64_t offset,
                                                                     std::uint64_t length) const {
        if (!holds(offset, length)) {
            return std::nullopt;
        }
        return bytes_.subspan(offset, length);
    }

  private:
    std::span<const std::uint8_t> bytes_;
};

}  // namespace nimbuscope::platform
