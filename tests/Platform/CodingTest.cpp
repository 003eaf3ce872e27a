#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Coding/Base64.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope::platform {
namespace {

enum class Level : std::int16_t { low = -3, high = 40 };
constexpr auto caseTable(Level) {
    return std::array{Level::low, Level::high};
}

enum class Word { one, two };
constexpr auto caseTable(Word) {
    return std::array{TextCase{Word::one, "One"}, TextCase{Word::two, "Two"}};
}

struct Inner {
    double x = 0.5;
    std::int8_t small = 0;

    static constexpr auto fields = std::tuple{key("x", &Inner::x), key("small", &Inner::small)};
    bool operator==(const Inner&) const = default;
};

struct Outer {
    std::string name;
    std::optional<std::string> note;
    bool flag = false;
    std::int64_t count = 0;
    Inner usual{7, 8};
    std::vector<Inner> list;
    Level level{};
    Word word{};

    static constexpr auto fields = std::tuple{key("name", &Outer::name),
                                              key("note", &Outer::note),
                                              key("flag", &Outer::flag),
                                              key("count", &Outer::count),
                                              keyWithDefault("usual", &Outer::usual),
                                              key("list", &Outer::list),
                                              key("level", &Outer::level),
                                              key("word", &Outer::word)};
    bool operator==(const Outer&) const = default;
};

const std::string wholeText =
    R"({"name":"é\n","note":"n","flag":true,"count":-9223372036854775808,"usual":{"x":-0.0,"small":-128},)"
    R"("list":[{"x":1e+22,"small":127},{"x":0.1,"small":0}],"level":-3,"word":"Two"})";

std::string errorOf(const std::string& json) {
    const auto decoded = JSONDecoder().decode<Outer>(json);
    return decoded ? "decoded" : decoded.error().message();
}

TEST(Coding, aRecordSurvivesARoundTripToTheByte) {
    const auto decoded = JSONDecoder().decode<Outer>(wholeText);
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(decoded->count, std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(std::signbit(decoded->usual.x));
    EXPECT_EQ(JSONEncoder().encode(*decoded), wholeText);
}

TEST(Coding, keysInAnyOrderUnknownRepeatedOrNullReadAlike) {
    const std::string other =
        R"({"word":"Two","unknown":[{}],"list":[{"small":127,"x":1e22},{"x":0.1,"small":0.0}],"level":40,)"
        R"("usual":null,"count":5.0,"flag":true,"note":null,"name":"a","name":"b","level":-3})";
    const auto decoded = JSONDecoder().decode<Outer>(other);
    ASSERT_TRUE(decoded) << decoded.error().message();
    const Outer expected{"b", std::nullopt, true, 5, {7, 8}, {{1e22, 127}, {0.1, 0}}, Level::low, Word::two};
    EXPECT_EQ(*decoded, expected);
    EXPECT_EQ(JSONEncoder().encode(*decoded)->find("note"), std::string::npos);
}

TEST(Coding, aTextReadsTheSameStraightAndThroughADocument) {
    std::vector<std::string> texts{wholeText + " \n", wholeText + "}", wholeText + "1",
                                   " [" + wholeText + "]"};
    for (std::size_t size = 0; size < wholeText.size(); ++size) {
        texts.push_back(wholeText.substr(0, size));
        for (const char other : {'"', 'n', '0', ',', '}', ']', ' ', '\\', '\x01', '\xFF'}) {
            texts.push_back(wholeText);
            texts.back()[size] = other;
        }
    }
    JSONDecoder straight;
    JSONDecoder through;
    for (const std::string& text : texts) {
        for (const char behind : {'}', ']', ',', '"'}) {  // what lies behind a text must not count
            const std::string padded = text + std::string(JSONDocument::enough, behind);
            const auto one =
                straight.decode<Outer>(std::string_view(padded).substr(0, text.size()), JSONDocument::enough);
            const auto other = through.decode<Outer>(text);
            ASSERT_EQ(one.has_value(), other.has_value()) << text;
            ASSERT_TRUE(one ? *one == *other : one.error().message() == other.error().message()) << text;
        }
    }
}

TEST(Coding, aDefaultThatNullTakesBackStands) {
    const auto decoded = JSONDecoder().decode<Outer>(
        R"({"name":"","flag":false,"count":0,"usual":{"x":1,"small":1},"usual":null,"list":[],"level":40,"word":"One"})");
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(decoded->usual, (Inner{7, 8}));
}

TEST(Coding, errorsNameThePathAndWhatWasFound) {
    struct Case {
        std::string from, to, error;
    };
    const Case cases[] = {
        {R"("flag":true)", R"("flag":1)", "flag: expected a boolean, found a number"},
        {R"("flag":true)", R"("other":true)", "flag: missing key"},
        {R"("flag":true)", R"("flag":null)", "flag: missing key"},
        {R"("note":"n")", R"("note":5)", "note: expected a text, found a number"},
        {R"(-9223372036854775808)", "true", "count: expected an integer, found a boolean"},
        {R"(-9223372036854775808)", R"("5")", "count: expected an integer, found a text"},
        {R"(-9223372036854775808)", "9223372036854775808", "count: the number is out of range"},
        {R"(-9223372036854775808)", "1e19", "count: the number is out of range"},
        {R"(-9223372036854775808)", "81.5", "count: expected an integer, found a fraction"},
        {R"("small":127)", R"("small":128)", "list[0].small: the number is out of range"},
        {R"("x":0.1)", R"("x":[])", "list[1].x: expected a number, found an array"},
        {R"("level":-3)", R"("level":0)", "level: the value is none of the allowed ones"},
        {R"("word":"Two")", R"("word":"two")", "word: the value is none of the allowed ones"},
        {R"("usual":{"x":-0.0,)", R"("usual":{)", "usual.x: missing key"},
        {R"([{"x":1e+22)", R"([null,{"x":1e+22)", "list[0]: expected an object, found null"},
        // Two faults: the first of the table counts, and fields with a default come last.
        {R"("usual":{"x":-0.0,"small":-128},"list")", R"("usual":{},"list":[{}],"l")",
         "list[0].x: missing key"},
    };
    for (const auto& [from, to, error] : cases) {
        std::string json = wholeText;
        json.replace(json.find(from), from.size(), to);
        EXPECT_EQ(errorOf(json), error) << json;
    }
}

TEST(Coding, documentsMustBeWholeValidAndShallow) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "invalid JSON at byte 0"},
        {"{\"name\":01}", "invalid JSON at byte 9"},
        {"{} {}", "invalid JSON at byte 3"},
        {"{\"name\":\"\xff\"}", "invalid UTF-8 at byte 9"},
        {"[1,2", "invalid JSON at byte 4"},
        {std::string(2000, '[') + std::string(2000, ']'), "nested deeper than 1024 levels"},
        {"42", "expected an object, found a number"},
    };
    for (const auto& [json, error] : cases) {
        EXPECT_EQ(errorOf(json), error) << json.substr(0, 40);
    }
}

TEST(Coding, hugeNumbersSpoilOnlyTheirOwnField) {
    const auto read = [](const std::string& number) {
        return JSONDecoder().decode<Inner>(R"({"n\\":"1\"23456789012345678901234567890","x":)" + number +
                                           R"(,"small":1})");
    };
    EXPECT_EQ(read("123456789012345678901234567890")->x, 123456789012345678901234567890.0);
    EXPECT_EQ(read("-123456789012345678901")->x, -123456789012345678901.0);
    EXPECT_EQ(read("1e-400")->x, 0);
    ASSERT_FALSE(read("1e400"));
    EXPECT_EQ(read("1e400").error().path, "x");
    EXPECT_EQ(read("1e4e4").error().path, "");
}

TEST(Coding, whatJSONCannotHoldIsAnErrorWithItsPath) {
    Outer value;
    value.word = Word::one;
    value.list = {{1, 1}, {std::numeric_limits<double>::infinity(), 1}};
    EXPECT_EQ(JSONEncoder().encode(value).error().path, "list[1].x");
    value.list.clear();
    value.note = "\xC3";
    EXPECT_EQ(JSONEncoder().encode(value).error().message(), "note: the text is not valid UTF-8");
}

TEST(Coding, doublesKeepEveryBitInTheShortestText) {
    for (const double number :
         {0.1, 55.755826, -179.99999999999997, 5e-324, 1.7976931348623157e308, 1e21, 100000.0}) {
        JSONWriter writer;
        writer.value(number);
        const std::string text = writer.finish().value();
        EXPECT_EQ(JSONDecoder().decode<double>(text), number) << text;
        EXPECT_LE(text.size(), 24U);
    }
}

TEST(Base64, followsTheTestVectorsOfRFC4648) {
    const std::pair<std::string, std::string> vectors[] = {
        {"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}};
    for (const auto& [plain, text] : vectors) {
        EXPECT_EQ(base64Encoded(dataOf(plain)), text);
        EXPECT_EQ(base64Decoded(text), dataOf(plain));
    }
    for (const char* bad : {"Zg", "Zg=", "Zh==", "Zm9=", "Z===", "====", "Zm 9v", "Zm9v\n", "Zg==Zg=="}) {
        EXPECT_EQ(base64Decoded(bad), std::nullopt) << bad;
    }
}

}  // namespace
}  // namespace nimbuscope::platform
