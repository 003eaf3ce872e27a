#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"

#include <algorithm>

#include "NimbuscopeKit/RadarImagery/Rad2Runs.hpp"
#include "Platform/Core/ByteReader.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

using platform::ByteReader;
using platform::Data;
using platform::Result;

constexpr std::uint64_t blockHeaderSize = 1 + 4 + Rad2File::blockTrailerSize;
constexpr const char* blockTooLong = "a data block passes the end of the file";

std::unexpected<Rad2Error> error(std::uint64_t offset, std::string reason) {
    return std::unexpected(Rad2Error{.offset = offset, .reason = std::move(reason)});
}

/// The block that starts at an offset.
struct BlockHeader {
    std::uint8_t typeByte;
    Rad2DataBlock payload;

    [[nodiscard]] std::uint8_t type() const { return typeByte & 0xF0U; }
    [[nodiscard]] bool isLast() const { return (typeByte & Rad2File::lastBlock) != 0; }
    [[nodiscard]] std::uint64_t end() const { return static_cast<std::uint64_t>(payload.pos + payload.size); }
};

Result<BlockHeader, Rad2Error> blockAt(const ByteReader& file, std::uint64_t offset) {
    const auto type = file.integer(offset, 1);
    const auto length = file.integer(offset + 1, 4);
    if (!type || !length) {
        return error(offset, "the header of a data block passes the end of the file");
    }
    return BlockHeader{
        .typeByte = static_cast<std::uint8_t>(*type),
        .payload = {.pos = static_cast<std::int64_t>(offset + blockHeaderSize), .size = *length}};
}

Result<void, Rad2Error> resultOf(Rad2Runs::Outcome outcome) {
    switch (outcome.status) {
        case Rad2Runs::Status::pastFile:
            return error(outcome.offset, "a run passes the end of the file");
        case Rad2Runs::Status::pastPixels:
            return error(outcome.offset, "a run passes the last pixel");
        case Rad2Runs::Status::done:
            break;
    }
    return {};
}

Rad2Runs::Source sourceOf(std::span<const std::uint8_t> file, const Rad2DataBlock& block) {
    return {.file = file,
            .begin = static_cast<std::uint64_t>(block.pos),
            .end = static_cast<std::uint64_t>(block.pos + block.size)};
}

void swapRows(std::span<std::uint8_t> pixels, std::size_t rowSize) {
    for (auto top = pixels; top.size() >= 2 * rowSize && rowSize > 0;
         top = top.subspan(rowSize, top.size() - 2 * rowSize)) {
        std::ranges::swap_ranges(top.first(rowSize), top.last(rowSize));
    }
}

}  // namespace

std::string Rad2Error::message() const {
    return "byte " + std::to_string(offset) + ": " + reason;
}

bool Rad2File::hasMagic(std::span<const std::uint8_t> file) {
    return file.size() >= magic.size() && std::ranges::equal(file.first(magic.size()), magic);
}

Result<Rad2File, Rad2Error> Rad2File::parse(std::span<const std::uint8_t> file) {
    if (!hasMagic(file)) {
        return error(0, "the file does not begin with \"RAD2\"");
    }
    Rad2File parsed(file);
    if (const auto header = parsed.readHeader(); !header) {
        return std::unexpected(header.error());
    }
    auto block = parsed.find(DataBlockType::rad2);
    if (!block) {
        return std::unexpected(std::move(block.error()));
    }
    parsed.rad2Block_ = *block;
    return parsed;
}

Result<void, Rad2Error> Rad2File::readHeader() {
    constexpr std::uint32_t isLast = 1;
    constexpr std::uint32_t isGeometry = 1U << 4U;
    constexpr std::array lengthWidths{1U, 2U, 4U, 1U};
    const ByteReader file(file_);
    for (std::uint64_t entry = staticHeaderSize;;) {
        const auto tag = file.integer(entry, 1);
        const unsigned width = tag ? lengthWidths[*tag >> 2U & 3U] : 0;
        const auto length = file.integer(entry + 1, width);
        if (!tag || !length) {
            return error(entry, "a header entry passes the end of the file");
        }
        if ((*tag & isGeometry) != 0) {
            if (auto geometry = readGeometry(entry); !geometry) {
                return geometry;
            }
        }
        const std::uint64_t end = entry + 1 + width + *length;
        if (end > file.size()) {
            return error(entry, "a header entry passes the end of the file");
        }
        entry = end;
        if ((*tag & isLast) != 0) {
            header_.dataHeaderPos = static_cast<std::int64_t>(entry);
            return {};
        }
    }
}

Result<void, Rad2Error> Rad2File::readGeometry(std::uint64_t entry) {
    // These places are fixed, whatever the width of the length field in front of them and its value.
    const ByteReader file(file_);
    const auto geometry = file.integer(entry + 2, 1);
    if (!geometry) {
        return error(entry, "a geometry entry passes the end of the file");
    }
    const std::uint32_t sizeClass = *geometry >> 6U;
    header_.bpp = (*geometry >> 4U & 3U) + 1;
    if (sizeClass < 3) {
        header_.width = header_.height = std::int64_t{256} << sizeClass;
    } else {
        const auto width = file.integer(entry + 3, 2);
        const auto height = file.integer(entry + 5, 2);
        if (!width || !height) {
            return error(entry, "a geometry entry passes the end of the file");
        }
        header_.width = *width;
        header_.height = *height;
    }
    header_.size = std::max(header_.width, header_.height);
    return {};
}

Result<std::optional<Rad2DataBlock>, Rad2Error> Rad2File::find(DataBlockType type) const {
    const ByteReader file(file_);
    for (auto offset = static_cast<std::uint64_t>(header_.dataHeaderPos);;) {
        const auto block = blockAt(file, offset);
        if (!block) {
            return std::unexpected(block.error());
        }
        if (block->type() == static_cast<std::uint8_t>(type)) {
            return block->payload;
        }
        if (block->isLast()) {
            return std::nullopt;
        }
        if (block->end() > file.size()) {
            return error(offset, blockTooLong);
        }
        offset = block->end();
    }
}

Result<std::vector<Rad2Block>, Rad2Error> Rad2File::blocks() const {
    const ByteReader file(file_);
    std::vector<Rad2Block> all;
    bool hasImage = false;
    for (auto offset = static_cast<std::uint64_t>(header_.dataHeaderPos);;) {
        const auto block = blockAt(file, offset);
        const bool isWhole = block && block->end() <= file.size();
        if (!isWhole && hasImage) {
            return all;
        }
        if (!isWhole) {
            return block ? error(offset, blockTooLong) : std::unexpected(block.error());
        }
        hasImage = hasImage || block->type() == static_cast<std::uint8_t>(DataBlockType::rad2);
        all.push_back({.type = block->type(), .payload = block->payload});
        if (block->isLast()) {
            return all;
        }
        offset = block->end();
    }
}

Result<std::optional<std::span<const std::uint8_t>>, Rad2Error> Rad2File::payload(DataBlockType type) const {
    const auto block = find(type);
    if (!block) {
        return std::unexpected(block.error());
    }
    if (!*block) {
        return std::nullopt;
    }
    const auto pos = static_cast<std::uint64_t>((*block)->pos);
    const auto bytes = ByteReader(file_).slice(pos, static_cast<std::uint64_t>((*block)->size));
    if (!bytes) {
        return error(pos - blockHeaderSize, blockTooLong);
    }
    return bytes;
}

Result<void, Rad2Error> Rad2File::checkImage(std::uint64_t maximalPixels) const {
    if (!rad2Block_) {
        return error(static_cast<std::uint64_t>(header_.dataHeaderPos), "there is no rad2 block");
    }
    const auto pos = static_cast<std::uint64_t>(rad2Block_->pos);
    if (pos > file_.size()) {  // the skipped bytes in front of an empty payload are cut
        return error(pos - blockHeaderSize, blockTooLong);
    }
    if (pixelCount() > maximalPixels) {
        return error(staticHeaderSize, "the image has " + std::to_string(pixelCount()) +
                                           " pixels, more than the " + std::to_string(maximalPixels) +
                                           " that are allowed");
    }
    return {};
}

Result<void, Rad2Error> Rad2File::decode(std::span<const std::uint8_t> colors, bool inversed,
                                         std::span<std::uint8_t> out) const {
    if (auto checked = checkImage(pixelCount()); !checked) {
        return checked;
    }
    if (colors.size() < tableSize) {
        return error(0, "the colour table has " + std::to_string(colors.size()) + " bytes, fewer than " +
                            std::to_string(tableSize));
    }
    platform::precondition(out.size() == pixelCount() * pixelSize,
                           "The output must hold four bytes for every pixel");
    auto decoded =
        resultOf(Rad2Runs::color(sourceOf(file_, *rad2Block_), colors.data(), out.data(), pixelCount()));
    if (decoded && inversed) {
        swapRows(out, static_cast<std::size_t>(header_.width) * pixelSize);
    }
    return decoded;
}

Result<Data, Rad2Error> Rad2File::decode(std::span<const std::uint8_t> colors, bool inversed,
                                         std::uint64_t maximalPixels) const {
    if (const auto checked = checkImage(maximalPixels); !checked) {
        return std::unexpected(checked.error());
    }
    Data out(pixelCount() * pixelSize);
    if (const auto decoded = decode(colors, inversed, out); !decoded) {
        return std::unexpected(decoded.error());
    }
    return out;
}

Result<Data, Rad2Error> Rad2File::decodeIndices(std::uint64_t maximalPixels) const {
    if (const auto checked = checkImage(maximalPixels); !checked) {
        return std::unexpected(checked.error());
    }
    Data out(pixelCount());
    if (const auto decoded = resultOf(Rad2Runs::expand(sourceOf(file_, *rad2Block_), out)); !decoded) {
        return std::unexpected(decoded.error());
    }
    return out;
}

}  // namespace nimbuscope
