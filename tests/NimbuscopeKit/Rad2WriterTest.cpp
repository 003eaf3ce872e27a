#include "NimbuscopeKit/RadarImagery/Rad2Writer.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "NimbuscopeKit/RadarImagery/Rad2File.hpp"
#include "tools/demo/Storms.hpp"

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
        Data indices(length, 7);
        indices.resize(65536);
        const auto file = Rad2Writer::write({.width = 256, .height = 256, .indices = indices});
        ASSERT_TRUE(file);
        EXPECT_TRUE(std::ranges::equal(std::span(*file).subspan(15, form.size()), form)) << length;
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
          {65535, 1, false, {0x11, 5, 0xC0, 255, 255, 0, 1}},
          {0, 7, false, {0x11, 5, 0xC0, 0, 0, 0, 7}}}) {
        const Data indices(std::size_t{width} * height, 1);
        Data expected{'R', 'A', 'D', '2', 0, 0x50, 0, 0, 0, 2, 0, 0, 0, 5, 6, 0x31};
        expected.insert(expected.begin() + 5, header.begin(), header.end());
        auto file = Rad2Writer::write({width, height, indices, arrows, isExplicit});
        ASSERT_TRUE(file);
        EXPECT_EQ(Rad2File::parse(*file)->decodeIndices(indices.size()), indices);
        file->resize(expected.size());
        EXPECT_EQ(*file, expected);
    }
    EXPECT_FALSE(Rad2Writer::write({.width = 65536, .height = 1, .indices = Data(65536)}));
    EXPECT_FALSE(Rad2Writer::write({.width = 1, .height = 65536, .indices = Data(65536)}));
    EXPECT_FALSE(Rad2Writer::write({.width = 2, .height = 2, .indices = Data(3)}));
    EXPECT_FALSE(Rad2Writer::write({.width = 1ULL << 32U, .height = 1ULL << 32U}));
}

TEST(Rad2Writer, stormsComeBackAsTheyWere) {
    for (const demo::Storm storm : platform::allCases<demo::Storm>()) {
        const auto indices = demo::makeStorm(storm, 301, 256, 9).indices;
        const auto file = Rad2Writer::write({.width = 301, .height = 256, .indices = indices});
        ASSERT_TRUE(file);
        EXPECT_EQ(Rad2File::parse(*file)->decodeIndices(indices.size()), indices);
    }
}

}  // namespace
}  // namespace nimbuscope
