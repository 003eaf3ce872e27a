// Rad2 files: every variant of the decoder agrees with the one that goes run by run, and what decodes can be
// written and reads back the same.

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Runs.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"
#include "Target.hpp"

using namespace nimbuscope;
using fuzz::require;

namespace {

constexpr std::size_t mostPixels = 4096;  // more only take time

std::array<std::uint8_t, Rad2File::tableSize> makeColors() {
    std::array<std::uint8_t, Rad2File::tableSize> colors{};
    for (std::size_t i = 0; i < colors.size(); ++i) {
        colors[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    }
    return colors;
}

void compareVariants(std::span<const std::uint8_t> file, const Rad2DataBlock& block, std::size_t count) {
    static const auto colors = makeColors();
    const auto begin = static_cast<std::uint64_t>(block.pos);
    const Rad2Runs::Source source{
        .file = file, .begin = begin, .end = begin + static_cast<std::uint64_t>(block.size)};
    const auto all = Rad2Runs::variants();
    std::vector<std::uint8_t> expected(count * Rad2File::pixelSize);
    const auto outcome = all.back().function(source, colors.data(), expected.data(), count);
    for (const Rad2Runs::Variant& variant : all) {
        if (variant.isSupported) {
            std::vector<std::uint8_t> out(expected.size());
            require(variant.function(source, colors.data(), out.data(), count) == outcome, "same outcome");
            require(outcome.status != Rad2Runs::Status::done || out == expected, "same pixels");
        }
    }
}

void writeAndReadBack(const Rad2File& file) {
    const auto indices = file.decodeIndices(mostPixels);
    if (!indices) {
        require(indices.error().offset <= std::numeric_limits<std::uint32_t>::max(), "offset in the file");
        return;
    }
    const auto arrows = file.payload(DataBlockType::arrows);
    const auto written = Rad2Writer::write({.width = static_cast<std::uint64_t>(file.width()),
                                            .height = static_cast<std::uint64_t>(file.height()),
                                            .indices = *indices,
                                            .arrows = arrows ? *arrows : std::nullopt});
    require(written.has_value(), "what was read can be written");
    const auto again = Rad2File::parse(*written);
    require(again && again->decodeIndices(mostPixels) == *indices, "it reads back the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> bytes(data, size);
    const auto file = Rad2File::parse(bytes);
    if (!file) {
        require(file.error().offset <= std::max<std::size_t>(size, 5), "the fault is in the file");
        return 0;
    }
    if (const auto blocks = file->blocks()) {
        require(!blocks->empty(), "a file has a block");
    }
    if (const auto& block = file->rad2Block()) {
        compareVariants(bytes, *block, std::min<std::size_t>(file->pixelCount(), mostPixels));
        writeAndReadBack(*file);
    }
    return 0;
}
