#include "Platform/Graphics/PNG.hpp"

#include <gtest/gtest.h>

#include <random>

namespace nimbuscope::platform {
namespace {

TEST(PNG, pixelsComeBackAsTheyWere) {
    std::mt19937 random(1);
    RGBAImage image{.width = 37, .height = 5, .pixels = Data(37 * 5 * 4)};
    for (std::uint8_t& byte : image.pixels) {
        byte = static_cast<std::uint8_t>(random());  // colours stronger than their alpha among them
    }
    const auto file = encodePNG(image.width, image.height, image.pixels);
    ASSERT_TRUE(file) << file.error().reason;
    const auto read = decodePNG(*file, 37 * 5);
    ASSERT_TRUE(read) << read.error().reason;
    EXPECT_EQ(*read, image);
    EXPECT_FALSE(decodePNG(*file, 37 * 5 - 1));
    for (std::size_t size = 0; size < file->size() - 4; ++size) {  // the last four only check an empty chunk
        EXPECT_FALSE(decodePNG(std::span(*file).first(size), 1000)) << size;
    }
}

TEST(PNG, sizesMustFit) {
    const Data pixels(16);
    EXPECT_TRUE(encodePNG(2, 2, pixels));
    for (const auto& [width, height] : {std::pair(0U, 4U),
                                        {4U, 0U},
                                        {2U, 1U},
                                        {4U, 4U},
                                        {0x80000000U, 2U},
                                        {1U, 0x80000000U},
                                        {0x40000001U, 4U}}) {
        EXPECT_FALSE(encodePNG(width, height, pixels)) << width;
    }
}

}  // namespace
}  // namespace nimbuscope::platform
