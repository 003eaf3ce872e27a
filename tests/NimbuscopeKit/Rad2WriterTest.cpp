#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"

#include <gtest/gtest.h>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "tests/support/Storms.hpp"

namespace nimbuscope {
namespace {

using platform::Data;

TEST(Rad2Writer, writesTheShortestFormOfEveryRun) {
    for (const auto& [length, form] : {std::pair(std::size_t{1}, Data{7, 1}),
                                       {254, {7, 254}},
                                       {255, {7, 0, 0, 255}},  // the count 255 stands for the long form
                                       {256, {7, 0, 1, 0}},
                                       {65535, {7, 0, 255, 255}},
                                       {65536, {7, 255, 0, 1, 0, 0}}}) {
        Data indices(65536, 7);
        std::fill(indices.begin() + static_cast<std::ptrdiff_t>(length), indices.end(), std::uint8_t{0});
        const auto file = Rad2Writer::write({.width = 256, .height = 256, .indices = indices});
        ASSERT_TRUE(file);
        EXPECT_EQ(Data(file->begin() + 15, file->begin() + 15 + static_cast<std::ptrdiff_t>(form.size())),
                  form);
        const std::size_t rest = 65536 - length;  // index 0 is written like any other
        EXPECT_EQ(file->size(), 15 + form.size() + (rest == 0 ? 0U : rest < 255 ? 2U : 4U));
        EXPECT_EQ(Rad2File::parse(*file)->decodeIndices(65536), indices);
    }
}

TEST(Rad2Writer, headersAndBlocksAreAsShortAsTheSizeAllows) {
    const Data arrows{5, 6};
    for (const auto& [width, height, isExplicit, header] :
         {std::tuple(256U, 256U, false, Data{0x01, 0}),
          {512, 512, false, {0x11, 1, 0x40}},
          {1024, 1024, false, {0x11, 1, 0x80}},
          {512, 512, true, {0x11, 5, 0xC0, 2, 0, 2, 0}},
          {256, 512, false, {0x11, 5, 0xC0, 1, 0, 2, 0}},
          {3, 1, false, {0x11, 5, 0xC0, 0, 3, 0, 1}},
          {65535, 1, false, {0x11, 5, 0xC0, 255, 255, 0, 1}},
          {0, 7, false, {0x11, 5, 0xC0, 0, 0, 0, 7}}}) {
        const Data indices(std::size_t{width} * height, 1);
        Data expected{'R', 'A', 'D', '2', 0};
        expected.insert(expected.end(), header.begin(), header.end());
        const Data blocks{0x50, 0, 0, 0, 2, 0, 0, 0, 5, 6, 0x31};
        expected.insert(expected.end(), blocks.begin(), blocks.end());
        auto file = Rad2Writer::write({.width = width,
                                       .height = height,
                                       .indices = indices,
                                       .arrows = arrows,
                                       .isSizeExplicit = isExplicit});
        ASSERT_TRUE(file);
        EXPECT_EQ(Rad2File::parse(*file)->decodeIndices(indices.size()), indices);
        file->resize(expected.size());
        EXPECT_EQ(*file, expected);
    }
    EXPECT_FALSE(Rad2Writer::write({.width = 65536, .height = 1, .indices = Data(65536)}));
    EXPECT_FALSE(Rad2Writer::write({.width = 2, .height = 2, .indices = Data(3)}));
    EXPECT_FALSE(Rad2Writer::write({.width = 1ULL << 32U, .height = 1ULL << 32U}));
}

TEST(Rad2Writer, stormsComeBackAsTheyWere) {
    using tests::Storm;
    for (const Storm storm : {Storm::sparse, Storm::busy, Storm::worst, Storm::realistic}) {
        for (const auto& [width, height] : {std::pair(256U, 256U), {301U, 77U}}) {
            const tests::Raster raster = tests::makeStorm(storm, width, height, 9);
            const auto file =
                Rad2Writer::write({.width = width, .height = height, .indices = raster.indices});
            ASSERT_TRUE(file);
            EXPECT_EQ(Rad2File::parse(*file)->decodeIndices(raster.indices.size()), raster.indices);
        }
    }
}

}  // namespace
}  // namespace nimbuscope
