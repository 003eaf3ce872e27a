#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"

#include <algorithm>
#include <array>
#include <limits>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"

namespace nimbuscope {
namespace {

using platform::Data;
using platform::Result;

constexpr std::uint64_t maximalSide = 0xFFFF;

void append(Data& out, std::uint64_t value, unsigned width) {
    for (unsigned shift = width * 8; shift > 0; shift -= 8) {
        out.push_back(static_cast<std::uint8_t>(value >> (shift - 8)));
    }
}

/// The one header entry: a file without a geometry entry has the first size class.
void appendHeader(Data& out, const Rad2Writer::Contents& contents) {
    constexpr std::uint8_t lastEntry = 0x01;
    constexpr std::uint8_t lastGeometry = 0x11;
    constexpr std::uint8_t explicitSize = 0xC0;
    constexpr std::array<std::uint64_t, 3> classSides{256, 512, 1024};
    const auto found = std::ranges::find(classSides, contents.width);
    const auto sizeClass = static_cast<std::uint8_t>(found - classSides.begin());
    if (contents.isSizeExplicit || contents.width != contents.height || sizeClass == classSides.size()) {
        out.insert(out.end(), {lastGeometry, 5, explicitSize});
        append(out, contents.width, 2);
        append(out, contents.height, 2);
    } else if (sizeClass == 0) {
        out.insert(out.end(), {lastEntry, 0});
    } else {
        out.insert(out.end(), {lastGeometry, 1, static_cast<std::uint8_t>(sizeClass << 6U)});
    }
}

void appendBlock(Data& out, DataBlockType type, bool isLast, std::span<const std::uint8_t> payload) {
    out.push_back(static_cast<std::uint8_t>(type) | (isLast ? Rad2File::lastBlock : 0U));
    append(out, payload.size(), 4);
    append(out, 0, Rad2File::blockTrailerSize);
    out.insert(out.end(), payload.begin(), payload.end());
}

/// Two shorter runs are never smaller than one of the next form.
void appendRun(Data& out, std::uint8_t index, std::uint64_t length) {
    constexpr std::uint8_t shortCount = 0;  // stands for a count of 16 bits
    constexpr std::uint8_t longCount = 255;
    out.push_back(index);
    if (length < longCount) {
        out.push_back(static_cast<std::uint8_t>(length));
    } else if (length <= 0xFFFF) {
        out.push_back(shortCount);
        append(out, length, 2);
    } else {
        out.push_back(longCount);
        append(out, length, 4);
    }
}

Data runsOf(std::span<const std::uint8_t> indices) {
    Data runs;
    for (auto pixel = indices.begin(); pixel != indices.end();) {
        const auto end =
            std::find_if(pixel, indices.end(), [&](std::uint8_t index) { return index != *pixel; });
        appendRun(runs, *pixel, static_cast<std::uint64_t>(end - pixel));
        pixel = end;
    }
    return runs;
}

std::unexpected<Rad2WriterError> error(std::string reason) {
    return std::unexpected(Rad2WriterError{.reason = std::move(reason)});
}

}  // namespace

Result<Data, Rad2WriterError> Rad2Writer::write(const Contents& contents) {
    constexpr std::uint64_t maximalPayload = std::numeric_limits<std::uint32_t>::max();
    const std::string size = std::to_string(contents.width) + " × " + std::to_string(contents.height);
    if (contents.width > maximalSide || contents.height > maximalSide) {
        return error("an image of " + size + " pixels is too large: a side has at most 65535");
    }
    if (contents.indices.size() != contents.width * contents.height) {
        return error("an image of " + size + " pixels cannot have " +
                     std::to_string(contents.indices.size()) + " indices");
    }
    const Data runs = runsOf(contents.indices);
    if (std::max(runs.size(), contents.arrows ? contents.arrows->size() : 0) > maximalPayload) {
        return error("a data block would have more than " + std::to_string(maximalPayload) + " bytes");
    }
    Data out(Rad2File::magic.begin(), Rad2File::magic.end());
    out.push_back(0);  // means nothing
    appendHeader(out, contents);
    if (contents.arrows) {
        appendBlock(out, DataBlockType::arrows, false, *contents.arrows);
    }
    appendBlock(out, DataBlockType::rad2, true, runs);
    return out;
}

}  // namespace nimbuscope
