#include "NimbuscopeKit/RadarImagery/Rad2.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <tuple>
#include <variant>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Runs.hpp"
#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"

namespace nimbuscope {
namespace {

using platform::Data;

constexpr std::uint64_t anyNumber = 1U << 24U;
const Data lastRad2{0x31, 0, 0, 0, 0, 9, 9, 9};

Data operator+(Data left, const Data& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// A file with these header entries and blocks.
Data fileOf(const Data& entries, const Data& blocks) {
    return Data{'R', 'A', 'D', '2', 0x77} + entries + blocks;
}

Data block(std::uint8_t type, const Data& payload) {
    return Data{type, 0, 0, 0, static_cast<std::uint8_t>(payload.size()), 1, 2, 3} + payload;
}

/// An image of an explicit size with these runs.
Data image(std::uint8_t width, std::uint8_t height, const Data& runs) {
    return fileOf({0x11, 5, 0xC0, 0, width, 0, height}, block(0x31, runs));
}

/// Entry k is (k, k + 1, k + 2, 255).
Data table() {
    Data colors(1024, 255);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        colors[i] = i % 4 < 3 ? static_cast<std::uint8_t>(i / 4 + i % 4) : 255;
    }
    return colors;
}

using Decoded = std::variant<Data, std::string>;

/// The red bytes of the image, or which rule the file breaks.
Decoded redOf(const Data& file, bool inversed = false) {
    const auto parsed = Rad2File::parse(file);
    const auto pixels =
        parsed ? parsed->decode(table(), inversed, anyNumber) : std::unexpected(parsed.error());
    if (!pixels) {
        return pixels.error().message();
    }
    Data red;
    for (std::size_t i = 0; i < pixels->size(); i += 4) {
        red.push_back((*pixels)[i]);
    }
    return red;
}

TEST(Rad2, headerGivesTheGeometry) {
    const Data fourMebibytes = Data{0x19, 0x00, 0x40, 0x00, 0x00} + Data(0x00400000);
    for (const auto& [entries, width, height, bpp] : {
             std::tuple(Data{0x01, 0}, 256, 256, 1),  // no geometry
             {{0x11, 1, 0xBF}, 1024, 1024, 4},        // low bits are noise
             {{0x11, 5, 0xC0, 1, 0x2C, 0, 0xC8}, 300, 200, 1},
             {{0x11, 5, 0xD0, 0, 0, 0xFF, 0xFF}, 0, 65535, 2},
             {{0x00, 2, 0x11, 0x11, 0x11, 1, 0x40}, 512, 512, 1},  // a skipped entry
             {{0x10, 1, 0x40, 0x11, 1, 0x90}, 1024, 1024, 2},      // the last one wins
             {{0x1D, 1, 0x40}, 512, 512, 1},                       // width code 3 is one byte
             {{0xF1, 1, 0x40}, 512, 512, 1},                       // unknown tag bits
             {Data{0x15, 0x00, 0x41} + Data(0x41), 512, 512, 1},   // low byte of the length
             {fourMebibytes, 512, 512, 1},                         // second byte of the length
         }) {
        const Data file = fileOf(entries, lastRad2);
        const Rad2 rad2(file);
        EXPECT_EQ(rad2.width(), width);
        EXPECT_EQ(rad2.height(), height);
        EXPECT_EQ(rad2.size(), std::max(width, height));
        EXPECT_EQ(rad2.bpp(), bpp);
        EXPECT_EQ(rad2.dataHeaderPos(), 5 + static_cast<std::int64_t>(entries.size()));
        EXPECT_EQ(rad2.dataBlock(), (Rad2DataBlock{.pos = rad2.dataHeaderPos() + 8, .size = 0}));
        EXPECT_TRUE(rad2.valid() && rad2.transparent());
        EXPECT_EQ(rad2.source(), file);
    }
    // An explicit size is read where it lies, though the entry declares one byte: the block overlaps it.
    EXPECT_EQ(Rad2(fileOf({0x11, 1, 0xC0}, lastRad2)).width(), 0x3100);
}

TEST(Rad2, runsFillPixelsInOrderAndSizesAreChecked) {
    const std::string pastPixels = "byte 20: a run passes the last pixel";
    for (const auto& [file, expected] : std::initializer_list<std::pair<Data, Decoded>>{
             {image(3, 2, {7, 4}), Data{7, 7, 7, 7, 0, 0}},
             {image(3, 1, {7, 0, 0, 0, 8, 255, 0, 0, 0, 0, 9, 3, 5, 0, 0, 0}), Data{9, 9, 9}},
             {image(20, 13, {5, 0, 1, 0, 6, 4}), Data(256, 5) + Data(4, 6)},
             {image(255, 2, {5, 254, 6, 255, 0, 0, 0, 255, 1, 1}), Data(254, 5) + Data(255, 6) + Data{1}},
             {image(2, 2, {}), Data(4)},
             {image(0, 9, {1, 0, 0, 0}), Data{}},
             {image(2, 2, {1, 5}), pastPixels},
             {image(2, 2, {1, 2, 1, 255, 255, 255, 255, 254}), "byte 22: a run passes the last pixel"},
             // Runs that begin inside the payload and end behind it.
             {fileOf({0x11, 5, 0xC0, 0, 3, 0, 1}, block(0x31, {5}) + Data{2}), Data{5, 5, 0}},
             {fileOf({0x11, 5, 0xC0, 0, 3, 0, 1}, block(0x31, {5, 1, 6}) + Data{0, 0, 2}), Data{5, 6, 6}},
             {image(3, 1, {5, 0, 0}), "byte 20: a run passes the end of the file"},
             {image(3, 1, {5, 1, 5, 255, 0, 0, 0}), "byte 22: a run passes the end of the file"},
             // Taken modulo 2^32, this block would lead to itself and this entry to the one before it.
             {fileOf({0x01, 0}, {0x90, 0xFF, 0xFF, 0xFF, 0xF8, 0, 0, 0}),
              "byte 7: a data block passes the end of the file"},
             {fileOf({0x08, 0xFF, 0xFF, 0xFF, 0xFB}, lastRad2),
              "byte 5: a header entry passes the end of the file"},
             {fileOf({0x11, 1, 0xC0, 1, 2, 3}, {}), "byte 5: a geometry entry passes the end of the file"},
             {fileOf({0x11, 5, 0xC0, 0xFF, 0xFF, 0xFF, 0xFF}, lastRad2),
              "byte 5: the image has 4294836225 pixels, more than the 16777216 that are allowed"},
             {fileOf({0x01, 0}, block(0x51, {})), "byte 7: there is no rad2 block"},
             {fileOf({0x01, 0}, {0x31, 0, 0, 0, 0, 9}), "byte 7: a data block passes the end of the file"},
             {Data{'R', 'A', 'D'}, "byte 0: the file does not begin with \"RAD2\""},
         }) {
        EXPECT_EQ(redOf(file), expected) << testing::PrintToString(file);
    }
    EXPECT_EQ(redOf(image(2, 3, {1, 2, 2, 2, 3, 1, 4, 1}), true), Decoded(Data{3, 4, 2, 2, 1, 1}));
    EXPECT_EQ(redOf(image(0, 9, {}), true), Decoded(Data{}));
    EXPECT_EQ(redOf(fileOf({0x01, 0}, block(0x31, {5, 255, 0, 1, 0, 0}))), Decoded(Data(65536, 5)));
}

TEST(Rad2, blocksAreFoundByType) {
    const Data entries{0x11, 5, 0xC0, 0, 1, 0, 1};
    const Data arrows = block(0x5E, {0xAA, 0xBB, 0xCC});
    const Rad2 rad2(fileOf(entries, arrows + block(0x90, {1}) + block(0x3F, {6, 1}) + Data{1, 2}));
    EXPECT_EQ(rad2.dataBlock(), (Rad2DataBlock{.pos = 40, .size = 2}));
    EXPECT_EQ(rad2.bytes(DataBlockType::arrows), (Data{0xAA, 0xBB, 0xCC}));
    EXPECT_EQ(rad2.bytes(table(), false, 0.5), (Data{6, 7, 8, 255}));
    EXPECT_TRUE(rad2.valid() && !rad2.transparent());
    const std::vector<Rad2Block> all{{.type = 0x50, .payload = {.pos = 20, .size = 3}},
                                     {.type = 0x90, .payload = {.pos = 31, .size = 1}},
                                     {.type = 0x30, .payload = {.pos = 40, .size = 2}}};
    EXPECT_EQ(Rad2File::parse(rad2.source())->blocks(), all);

    // What follows the image is read by those alone who ask for it.
    for (const auto& [behind, error] :
         {std::pair(Data{0x50, 0}, "byte 22: the header of a data block passes the end of the file"),
          {Data{0x51, 0, 0, 0, 2, 1}, "byte 22: a data block passes the end of the file"}}) {
        const Data file = fileOf(entries, block(0x30, {6, 1}) + behind);
        const auto parsed = Rad2File::parse(file);
        EXPECT_EQ(redOf(file), Decoded(Data{6}));
        EXPECT_EQ(parsed->blocks()->size(), 1U);
        EXPECT_EQ(parsed->payload(DataBlockType::arrows).error().message(), error);
    }
    const Data cut = fileOf(entries, {0x31, 0, 0, 0, 9, 6});
    EXPECT_FALSE(Rad2File::parse(cut)->payload(DataBlockType::rad2));
    EXPECT_FALSE(Rad2File::parse(cut)->blocks());

    const Rad2 none(fileOf(entries, block(0x51, {1}) + block(0x31, {6, 1})));  // behind the last block
    EXPECT_TRUE(!none.valid() && none.transparent());
    EXPECT_EQ(none.bytes(DataBlockType::rad2), std::nullopt);
    EXPECT_EQ(none.bytes(table(), false), Data{});
    EXPECT_FALSE(Rad2File::parse(none.source())->decode(table(), false, std::span<std::uint8_t>()));
    const Rad2 other(Data{'R', 'A', 'D', '1', 0, 1, 0});
    EXPECT_TRUE(!other.valid() && other.transparent() && other.source().empty());
    EXPECT_EQ(other.width(), 256);
    EXPECT_EQ(other.bytes(DataBlockType::arrows), std::nullopt);
}

TEST(Rad2, truncationIsAnErrorAtEveryByte) {
    const Data arrows(300, 3);
    const Data indices = Data(65600, 1) + Data(295, 2) + Data{3, 4, 5};
    const Data entries{0x10, 1, 0x40, 0x04, 0, 2, 9, 9, 0x08, 0, 0, 0, 1, 9, 0x11, 5, 0xC0, 0, 9, 0, 9};
    const Data runs{5, 1, 5, 0, 0, 40, 6, 255, 0, 0, 0, 40};
    for (const Data& whole :
         {*Rad2Writer::write({.width = 1, .height = 65535, .indices = Data(65535, 4), .arrows = arrows}),
          *Rad2Writer::write({.width = 9, .height = 7322, .indices = indices}),
          fileOf(entries, block(0x90, {1, 2}) + block(0x31, runs))}) {
        ASSERT_TRUE(std::holds_alternative<Data>(redOf(whole)));
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Data cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            const auto red = redOf(cut);
            ASSERT_TRUE(std::holds_alternative<std::string>(red)) << size;
            EXPECT_LE(std::stoull(std::get<std::string>(red).substr(5)), std::max<std::size_t>(size, 5));
        }
    }
}

/// A payload of runs of all forms and kinds of length; about `pixels` pixels.
Data randomRuns(std::mt19937& random, std::size_t pixels) {
    Data runs;
    constexpr std::array<std::size_t, 6> longest{1, 1, 20, 20, 254, 900};
    std::size_t kind = 0;
    for (std::size_t done = 0; done < pixels;) {
        kind = random() % 12 == 0 ? random() % longest.size() : kind;
        const std::size_t length = (kind < 5 ? 1 : 0) + random() % longest[kind];
        runs.push_back(static_cast<std::uint8_t>(random()));
        if (length > 0 && length < 255 && random() % 40 != 0) {
            runs.push_back(static_cast<std::uint8_t>(length));
        } else {
            const bool isLong = random() % 2 == 0;
            runs = std::move(runs) + (isLong ? Data{255, 0, 0} : Data{0}) +
                   Data{static_cast<std::uint8_t>(length >> 8U), static_cast<std::uint8_t>(length)};
        }
        done += length;
    }
    return runs;
}

TEST(Rad2, everyVariantDecodesAsTheRulesSay) {
    std::mt19937 random(11);
    Data colors = table();
    std::fill_n(colors.begin(), 128 * 4, std::uint8_t{0});  // zeros are passed over where there are many
    constexpr std::size_t margin = 64;
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = random() % 6000;
        Data file = randomRuns(random, count);
        const std::uint64_t end = file.size() - random() % std::min<std::size_t>(file.size() + 1, 5);
        file.resize(file.size() - (random() % 4 == 0 ? random() % (file.size() + 1) : 0));
        const Rad2Runs::Source source{.file = file, .begin = 0, .end = end};
        Data indices(count);
        const Rad2Runs::Outcome expected = Rad2Runs::expand(source, indices);
        for (const Rad2Runs::Variant& variant : Rad2Runs::variants()) {
            if (!variant.isSupported) {
                continue;
            }
            Data out(count * 4 + margin, 0xEE);
            ASSERT_EQ(variant.function(source, colors.data(), out.data(), count), expected) << variant.name;
            ASSERT_EQ(std::ranges::count(std::span(out).last(margin), 0xEE), margin) << variant.name;
            bool isSame = true;
            for (std::size_t i = 0; i < count; ++i) {
                isSame = isSame &&
                         (std::memcmp(&out[i * 4], &colors[indices[i] * 4U], 4) == 0 || out[i * 4 + 3] == 0);
            }
            ASSERT_TRUE(isSame || expected.status != Rad2Runs::Status::done) << variant.name;
        }
    }
}

TEST(Rad2, whatTheBytesLackStopsTheProcess) {
    const Data cut = image(2, 2, {1, 2, 3});
    EXPECT_DEATH(Rad2(fileOf({0x11, 1, 0x40}, {})), "Fatal error: byte 8: the header of a data block");
    const Rad2 rad2(cut);  // only decoding reads the runs
    EXPECT_DEATH(std::ignore = rad2.bytes(table(), false), "Fatal error: byte 22: a run passes the end");
    const Data sound = image(1, 1, {});
    EXPECT_FALSE(Rad2File::parse(sound)->decode(Data(1023), false, anyNumber));
    const Rad2 open(fileOf({0x01, 0}, block(0x30, {})));  // nothing says that this is the last block
    EXPECT_DEATH(std::ignore = open.bytes(DataBlockType::arrows), "Fatal error: byte 15: the header");
}

TEST(Rad2, overlaysReplacePixels) {
    const Data base{1, 2, 3, 4, 5, 6, 7, 8};
    const Data overlay{9, 9, 9, 1, 8, 8, 8, 0};
    const auto image = Rad2::cgImage(2, 1, base, overlay);
    EXPECT_EQ(image, (platform::CGImage{2, 1, 8, 32, 8, 0x4001, {9, 9, 9, 1, 5, 6, 7, 8}}));
    EXPECT_EQ(Rad2::cgImage(1, 2, base, std::nullopt)->data, base);
    constexpr std::int64_t tooLong = std::int64_t{1} << 31U;
    for (const auto& [width, height] : {std::pair(1L, -1L), {-1, 1}, {tooLong, 0}, {0, tooLong}, {2, 2}}) {
        EXPECT_EQ(Rad2::cgImage(width, height, base, std::nullopt), std::nullopt);
    }
    EXPECT_EQ(Rad2::cgImage(2, 1, {}, overlay), std::nullopt);
    EXPECT_DEATH(std::ignore = Rad2::cgImage(1, 1, {1, 2, 3, 4}, overlay),
                 "Fatal error: an overlay of 8 bytes");
}

}  // namespace
}  // namespace nimbuscope
