#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>

#include "Platform/Graphics/PNG.hpp"
#include "tests/support/LibPNG.hpp"

namespace nimbuscope::testing {
namespace {

using platform::Data;
using platform::decodePNGSamples;
using platform::PNGLimits;

struct Kind {
    int colorType;
    std::vector<int> depths;
    std::size_t channels;
};

const std::vector<Kind> kinds{
    {0, {1, 2, 4, 8, 16}, 1}, {2, {8, 16}, 3}, {3, {1, 2, 4, 8}, 1}, {4, {8, 16}, 2}, {6, {8, 16}, 4}};

/// Samples at random, runs among them so that all filters are chosen.
PNGFile randomFile(std::mt19937& random, const Kind& kind, int depth) {
    const auto side = [&] { return static_cast<std::uint32_t>(1 + random() % 40); };
    PNGFile file{.width = side(), .height = side(), .depth = depth, .colorType = kind.colorType};
    file.isInterlaced = random() % 2 == 0;
    file.hasTransparency = random() % 2 == 0;
    file.hasGamma = random() % 2 == 0;
    file.samples.resize(file.rowSize() * file.height);
    std::uint8_t sample = 0;
    for (std::uint8_t& byte : file.samples) {
        byte = sample = random() % 2 == 0 ? sample : static_cast<std::uint8_t>(random());
    }
    return file;
}

/// The rows without the bits that fill up the last byte of each, which mean nothing.
Data withoutFill(const PNGFile& file, Data rows) {
    const std::size_t used =
        file.width * static_cast<std::size_t>(file.depth) % 8;  // one channel, or whole bytes
    for (std::size_t end = file.rowSize(); used != 0 && end <= rows.size(); end += file.rowSize()) {
        rows[end - 1] &= static_cast<std::uint8_t>(0xFF00U >> used);
    }
    return rows;
}

TEST(PNGSamples, areThoseThatAnIndependentWriterWrote) {
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        for (const Kind& kind : kinds) {
            for (const int depth : kind.depths) {
                const PNGFile file = randomFile(random, kind, depth);
                const auto image = decodePNGSamples(writePNGFile(file), {});
                ASSERT_TRUE(image) << image.error().message();
                EXPECT_EQ(image->width, file.width);
                EXPECT_EQ(image->height, file.height);
                EXPECT_EQ(image->bitsPerComponent, static_cast<std::size_t>(depth));
                EXPECT_EQ(image->bitsPerPixel, static_cast<std::size_t>(depth) * kind.channels);
                EXPECT_EQ(image->bytesPerRow, file.rowSize());
                EXPECT_EQ(withoutFill(file, image->data), withoutFill(file, file.samples)) << depth;
            }
        }
    }
}

TEST(PNGSamples, truncationIsAnErrorAtEveryByte) {
    std::mt19937 random(3);
    PNGFile file = randomFile(random, kinds[1], 16);
    file.isInterlaced = true;
    const Data bytes = writePNGFile(file);
    for (std::size_t size = 0; size < bytes.size() - 4; ++size) {  // the last four only check an empty chunk
        const auto image = decodePNGSamples(std::span(bytes).first(size), {});
        ASSERT_FALSE(image) << size;
        EXPECT_EQ(image.error().message(), "byte " + std::to_string(size) + ": the file ends too early");
    }
}

/// The file with another size in its header, the checksum with it.
Data resized(Data file, std::uint32_t width, std::uint32_t height) {
    const auto put = [&](std::size_t offset, std::uint32_t value) {
        for (unsigned i = 0; i < 4; ++i) {
            file[offset + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
        }
    };
    put(16, width);
    put(20, height);
    put(29, static_cast<std::uint32_t>(::crc32(0, &file[12], 17)));
    return file;
}

TEST(PNGSamples, limitsHoldBeforeMemoryIsTaken) {
    const Data file = writeIndices(8, 4, Data(32, 9), 3);
    EXPECT_TRUE(decodePNGSamples(file, {.width = 8, .height = 4, .pixels = 32}));
    for (const PNGLimits& limits : {PNGLimits{.width = 7}, PNGLimits{.height = 3}, PNGLimits{.pixels = 31}}) {
        EXPECT_FALSE(decodePNGSamples(file, limits));
    }
    PNGFile withText{.width = 8, .height = 4, .textSize = 100'000, .samples = Data(32)};
    EXPECT_TRUE(decodePNGSamples(writePNGFile(withText), {.chunkSize = 200'000}));
    EXPECT_FALSE(
        decodePNGSamples(writePNGFile(withText), {.chunkSize = 20'000}));  // that it would inflate to
    constexpr std::uint32_t most = 0x7FFFFFFF;
    for (const auto& [width, height] : {std::pair(most, most), {65535U, 65535U}, {0U, 4U}, {most + 1, 1U}}) {
        EXPECT_FALSE(decodePNGSamples(resized(file, width, height), {.pixels = ~std::uint64_t{0}}));
    }
    // Of 16 bits a channel: more bytes than can be counted, in the file's form or in both.
    const PNGFile deep{.depth = 16, .colorType = 6, .samples = Data(9)};
    for (const std::uint32_t height : {1U << 30U, most}) {
        EXPECT_FALSE(platform::decodePNG(resized(writePNGFile(deep), most, height), ~std::size_t{0}));
    }
}

}  // namespace
}  // namespace nimbuscope::testing
