#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Coding/JSONDecoder.hpp"

namespace nimbuscope::platform {
namespace {

struct Entry {
    std::int64_t number = 0;
    std::string text;
    std::vector<Entry> nested;

    static constexpr auto fields =
        std::tuple{key("number", &Entry::number), key("text", &Entry::text), key("nested", &Entry::nested)};
};

/// A list long enough for many stretches, full of texts and nested lists that look like the end of an
/// element.
std::string trickyList(std::size_t count, const std::string& separator) {
    std::string json = " [";
    for (std::size_t i = 0; i < count; ++i) {
        json += (i == 0 ? "" : separator) + R"({"number":)" + std::to_string(i) +
                R"(,"text":"},{\"\\","nested":[)" +
                R"({"number":1,"text":"]","nested":[]},{"number":2,"text":"[{","nested":[]}]})";
    }
    return json + "]\n";
}

TEST(JSONArrayReader, readsLongListsWhereverTheirStretchesEnd) {
    for (const std::string separator : {",", " ,\n\t", ", "}) {
        const auto list = JSONDecoder().decodeList<Entry>(dataOf(trickyList(6000, separator)));
        ASSERT_TRUE(list) << list.error().message();
        ASSERT_EQ(list->size(), 6000U);
        for (std::size_t i = 0; i < list->size(); ++i) {
            ASSERT_EQ((*list)[i].number, static_cast<std::int64_t>(i));
            ASSERT_EQ((*list)[i].nested.size(), 2U);
        }
    }
}

TEST(JSONArrayReader, aFaultAnywhereFailsWithItsPlaceInTheWholeText) {
    const std::string sound = trickyList(6000, ",");
    const auto errorWith = [&](std::size_t at, char bad) {
        std::string json = sound;
        json[at] = bad;
        const auto list = JSONDecoder().decodeList<Entry>(dataOf(json));
        return list ? "decoded" : list.error().message();
    };
    const std::size_t key = sound.find(R"("number":4500)");
    EXPECT_EQ(errorWith(key + 1, 'N'), "[4500].number: missing key");
    EXPECT_EQ(errorWith(key + 8, ';'), "invalid JSON at byte " + std::to_string(key + 8));
    EXPECT_EQ(errorWith(key + 24, '\xFF'), "invalid UTF-8 at byte " + std::to_string(key + 24));
    EXPECT_EQ(errorWith(sound.size() - 2, ' '), "invalid JSON at byte " + std::to_string(sound.size()));
    EXPECT_EQ(JSONDecoder().decodeList<Entry>(dataOf(sound + "1")).error().message(),
              "invalid JSON at byte " + std::to_string(sound.size()));
    EXPECT_EQ(JSONDecoder().decodeList<Entry>(dataOf("{}")).error().message(),
              "expected an array, found an object");
}

TEST(JSONArrayReader, listsOfAnythingElseAreReadInOnePiece) {
    std::string numbers = "[0";
    for (int i = 1; i < 100000; ++i) {
        numbers += ',' + std::to_string(i);
    }
    EXPECT_EQ(JSONDecoder().decodeList<std::int64_t>(dataOf(numbers + ']'))->back(), 99999);
    EXPECT_TRUE(JSONDecoder().decodeList<std::int64_t>(dataOf("[]"))->empty());
}

}  // namespace
}  // namespace nimbuscope::platform
