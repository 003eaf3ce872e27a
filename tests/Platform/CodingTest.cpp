#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Coding/Base64.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONDictionary.hpp"
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
    std::map<std::string, Inner> named;

    static constexpr auto fields = std::tuple{key("name", &Outer::name),
                                              key("note", &Outer::note),
                                              key("flag", &Outer::flag),
                                              key("count", &Outer::count),
                                              keyWithDefault("usual", &Outer::usual),
                                              key("list", &Outer::list),
                                              key("level", &Outer::level),
                                              key("word", &Outer::word),
                                              keyWithDefault("named", &Outer::named)};
    bool operator==(const Outer&) const = default;
};

const std::string wholeText =
    R"({"name":"é\n","note":"n","flag":true,"count":-9223372036854775808,"usual":{"x":-0.0,"small":-128},)"
    R"("list":[{"x":1e+22,"small":127},{"x":0.1,"small":0},{"x":-179.99999999999997,"small":0},{"x":5e-324,"small":0},)"
    R"({"x":1.7976931348623157e+308,"small":0}],"level":-3,"word":"Two",)"
    R"("named":{"\t\u0001\\":{"x":1.5,"small":1},"b":{"x":2.5,"small":2}}})";

TEST(Coding, aRecordSurvivesARoundTripToTheByte) {
    const Outer decoded = JSONDecoder().decode<Outer>(wholeText).value();
    EXPECT_EQ(decoded.count, std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(std::signbit(decoded.usual.x));
    EXPECT_EQ(JSONEncoder().encode(decoded), wholeText);

    Outer unsound = decoded;
    unsound.list[1].x = std::numeric_limits<double>::infinity();
    unsound.named["b"].x = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(JSONEncoder().encode(unsound).error().path, "list[1].x");
    EXPECT_EQ(rawValue(static_cast<Word>(7)), "");
}

TEST(Coding, keysInAnyOrderUnknownRepeatedOrNullReadAlike) {
    const std::string other =
        R"({"word":"Two","n\\":["1\"23456789012345678901234567890",-1e-400],"usual":{"x":1,"small":1},)"
        R"("list":[{"small":127,"x":1e22},{"x":123456789012345678901,"small":0.0}],"level":40,)"
        R"("usual":null,"count":5.0,"flag":true,"note":null,"name":"a","name":"b","level":-3})";
    const Outer decoded = JSONDecoder().decode<Outer>(other).value();
    const double huge = 123456789012345678901.0;
    const Outer expected{"b", {}, true, 5, {7, 8}, {{1e22, 127}, {huge, 0}}, Level::low, Word::two, {}};
    EXPECT_EQ(decoded, expected);
    EXPECT_EQ(JSONEncoder().encode(decoded)->find("note"), std::string::npos);
    for (const std::string& beyond :
         {std::string("1e400"), std::string("1e99999999999999999999"), "1" + std::string(400, '0') + "e-5"}) {
        EXPECT_EQ(JSONDecoder().decode<Inner>(R"({"x":)" + beyond + R"(,"small":1})").error().path, "x");
    }
    std::string beside = R"({"beyond":1e400,)" + other.substr(1);
    beside.replace(beside.find("5.0"), 3, "1234567890123456789");
    EXPECT_EQ(JSONDecoder().decode<Outer>(beside).value().count, 1234567890123456789);
    EXPECT_EQ(JSONDecoder().decode<Inner>(R"({"x":0.)" + std::string(400, '0') +
                                          R"(1,"small":1,"n":1e-99999999999999999999})"),
              (Inner{0, 1}));
}

TEST(Coding, aTextReadsTheSameStraightAndThroughADocument) {
    std::vector<std::string> texts{wholeText + " \n", wholeText + "}", wholeText + "1",
                                   " [" + wholeText + "]"};
    const std::pair<std::string, std::string> changes[] = {
        {R"("note":"n")", R"("note":null)"},
        {R"({"x":-0.0,"small":-128})", "null"},
        {"1e+22", "1E400"},
        {"1e+22", "1E-400"},
        {R"({"x":2.5,"small":2})", R"({"x":true})"},
        {"0.1", "1e-400"},
        {R"(1e+22,"small":127},{"x":0.1)", R"(1E-400,"small":127},{"x":1E400)"}};
    for (const auto& [from, to] : changes) {
        texts.push_back(wholeText);
        texts.back().replace(wholeText.find(from), from.size(), to);
    }
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

TEST(Coding, errorsNameThePathAndWhatWasFound) {
    const std::string least = "-9223372036854775808";
    const struct {
        std::string from, to, error;
    } cases[] = {
        {R"("flag":true)", R"("flag":1)", "flag: expected a boolean, found a number"},
        {R"("note":"n")", R"("note":5)", "note: expected a text, found a number"},
        {least, R"("5")", "count: expected an integer, found a text"},
        {least, "9223372036854775808", "count: the number is out of range"},
        {least, "-1e30", "count: the number is out of range"},
        {R"("note":"n")", R"("note":18446744073709551615)", "note: expected a text, found a number"},
        {R"("named":{)", R"("named":0,"other":{)", "named: expected an object, found a number"},
        {R"("b":{"x":2.5)", R"("b":{"x":true)", "named.b.x: expected a number, found a boolean"},
        {least, "81.5", "count: expected an integer, found a fraction"},
        {R"("small":127)", R"("small":128)", "list[0].small: the number is out of range"},
        {R"("x":0.1)", R"("x":[])", "list[1].x: expected a number, found an array"},
        {R"("level":-3)", R"("level":0)", "level: 0 is none of the allowed values"},
        {R"("word":"Two")", R"("word":"two")", R"(word: "two" is none of the allowed values)"},
        {R"("usual":{"x":-0.0,)", R"("usual":{)", "usual.x: missing key"},
        {R"([{"x":1e+22)", R"([null,{"x":1e+22)", "list[0]: expected an object, found null"},
        // Two faults: the first of the table counts, and fields with a default come last.
        {R"("usual":{"x":-0.0,"small":-128},"list")", R"("usual":{},"list":[{}],"l")",
         "list[0].x: missing key"},
        {wholeText, "", "invalid JSON at byte 0"},
        {wholeText, R"({"name":01})", "invalid JSON at byte 9"},
        {wholeText, R"({"name":1e999++})", "invalid JSON at byte 12"},
        {wholeText, R"({"name":01e999})", "invalid JSON at byte 13"},
        {wholeText, R"({"name":-1.e999})", "invalid JSON at byte 11"},
        {wholeText, "{} {}", "invalid JSON at byte 3"},
        {wholeText, "\xEF\xBB\xBF{}", "invalid JSON at byte 0"},
        {wholeText, std::string("{}\0", 3), "invalid JSON at byte 2"},
        {wholeText, "{\"name\":\"\xff\"}", "invalid UTF-8 at byte 9"},
        {wholeText, std::string(2000, '[') + std::string(2000, ']'), "nested deeper than 1024 levels"},
        {wholeText, "42", "expected an object, found a number"},
    };
    for (const auto& [from, to, error] : cases) {
        std::string json = wholeText;
        json.replace(json.find(from), from.size(), to);
        EXPECT_EQ(JSONDecoder().decode<Outer>(json).error().message(), error);
    }
}

TEST(Base64, followsTheTestVectorsOfRFC4648) {
    using Vector = std::pair<std::string, std::string>;
    for (const auto& [plain, text] : {Vector("", ""), Vector("f", "Zg=="), Vector("fo", "Zm8="),
                                      Vector("foo", "Zm9v"), Vector("fooba", "Zm9vYmE=")}) {
        EXPECT_EQ(base64Encoded(dataOf(plain)), text);
        EXPECT_EQ(base64Decoded(text), dataOf(plain));
    }
    for (const char* bad : {"Zg", "Zg=", "Zh==", "Zm9=", "====", "Zm 9v", "Zm9v\n", "Zg==Zg=="}) {
        EXPECT_EQ(base64Decoded(bad), std::nullopt) << bad;
    }
}

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
                R"({"number":1,"text":"},]","nested":[]},{"number":2,"text":"[{","nested":[]}]})";
    }
    return json + "]\n";
}

TEST(JSONArrayReader, readsLongListsWhereverTheirStretchesEnd) {
    for (const std::string separator : {",", " ,\n\t", ", "}) {
        const auto list = JSONDecoder().decodeList<Entry>(dataOf(trickyList(6000, separator))).value();
        ASSERT_EQ(list.size(), 6000U);
        for (std::size_t i = 0; i < list.size(); ++i) {
            ASSERT_EQ(list[i].number, static_cast<std::int64_t>(i));
            ASSERT_EQ(list[i].nested.size(), 2U);
        }
    }
}

TEST(JSONArrayReader, aFaultAnywhereFailsWithItsPlaceInTheWholeText) {
    const std::string sound = trickyList(6000, ",");
    const auto expectError = [&](std::size_t at, char bad, const std::string& error) {
        std::string json = sound + ' ';
        json[at] = bad;
        EXPECT_EQ(JSONDecoder().decodeList<Entry>(dataOf(json)).error().message(), error);
    };
    const auto byte = [](std::size_t at) { return " at byte " + std::to_string(at); };
    const std::size_t key = sound.find(R"("number":4500)");
    expectError(key + 1, 'N', "[4500].number: missing key");
    expectError(key + 8, ';', "invalid JSON" + byte(key + 8));
    expectError(key + 24, '\xFF', "invalid UTF-8" + byte(key + 24));
    expectError(sound.size() - 2, ' ', "invalid JSON" + byte(sound.size() + 1));
    expectError(sound.size(), '1', "invalid JSON" + byte(sound.size()));
    for (const std::string& unsound :
         {std::string("[1 2]"), std::string("[1] 2"), std::string(200'000, ' ') + ',',
          R"([{"text":")" + std::string(200'000, 'x') + "\"}, "}) {
        EXPECT_FALSE(JSONDecoder().decodeList<std::int64_t>(dataOf(unsound)));
        EXPECT_FALSE(JSONDecoder().decodeList<Entry>(dataOf(unsound)));
    }
    EXPECT_EQ(JSONDecoder().decodeList<std::int64_t>(dataOf("[0,1]")), (std::vector<std::int64_t>{0, 1}));
    std::string zeros = "[0";
    for (int i = 0; i < 60'000; ++i) {
        zeros += ",0";
    }
    EXPECT_EQ(JSONDecoder().decodeList<std::int64_t>(dataOf(zeros + "]")), std::vector<std::int64_t>(60'001));
    EXPECT_EQ(JSONDecoder().decodeList<Entry>(dataOf("{}")).error().message(),
              "expected an array, found an object");
}

}  // namespace
}  // namespace nimbuscope::platform
