#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

const std::string extension = NIMBUSCOPE_BINARY_DIRECTORY "/NimbuscopeIntentHandler/NimbuscopeIntentHandler";

std::string call(const std::string& id, const std::string& method, const std::string& intent,
                 const std::string& parameters = "{}") {
    return R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":")" + method +
           R"(","params":{"intent":{"class":")" + intent + R"(","parameters":)" + parameters + "}}}\n";
}

/// The replies by their id as it stands in the text; what follows the id is the value.
std::multimap<std::string, std::string> repliesOf(const std::string& output) {
    std::multimap<std::string, std::string> replies;
    const std::string start = R"({"jsonrpc":"2.0","id":)";
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.starts_with(start)) << line;
        const std::size_t comma = line.find(R"(,")", start.size());
        replies.emplace(line.substr(start.size(), comma - start.size()),
                        line.substr(comma + 1, line.size() - comma - 2));
    }
    return replies;
}

class ExtensionProcess : public ::testing::Test {
  protected:
    void SetUp() override {
        platform::SQLiteUserDefaultsSuites suites(directory_.path());
        SharedStorage storage(suites);
        ASSERT_TRUE(SavedPlaces(storage.groupStorage())
                        .replace({{.id = "a", .name = "A"}, {.id = "b", .name = "B", .current = true}}));
    }
    [[nodiscard]] Outcome serve(const std::string& input) const {
        return run({extension}, input, {{"NIMBUSCOPE_STORE", directory_.path()}, {"LC_ALL", "C"}});
    }
    [[nodiscard]] std::string answer(const std::string& line) const {
        const Outcome outcome = serve(line);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        const auto replies = repliesOf(outcome.output);
        EXPECT_EQ(replies.size(), 1U) << outcome.output;
        return replies.empty() ? "" : replies.begin()->second;
    }

    TemporaryDirectory directory_;
};

TEST_F(ExtensionProcess, answersEveryOperationOfEveryIntent) {
    const std::string somewhere = R"({"location":{"class":"Location","identifier":"x","display":"X"}})";
    const std::string options =
        R"("result":{"sections":[{"items":[{"class":"%","identifier":"b","display":"B"},{"class":"%","identifier":"a","display":"A"}]}]})";
    const auto optionsOf = [&](const std::string& objectClass) {
        std::string text = options;
        for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%')) {
            text.replace(at, 1, objectClass);
        }
        return text;
    };
    const auto activity = [](const std::string& intent, const std::string& title,
                             const std::string& userInfo) {
        return R"("result":{"class":")" + intent +
               R"(Response","code":2,"userActivity":{"activityType":"SiriShortcut","title":")" + title +
               R"(","userInfo":{)" + userInfo + "}}}";
    };
    struct Case {
        std::string method, intent, parameters, reply;
    };
    const Case cases[] = {
        {"handler", "CurrentWeatherIntent", "{}", R"("result":{"handler":"CurrentWeatherIntentHandler"})"},
        {"handler", "ConfigurationIntent", "{}", R"("result":{"handler":"IntentHandler"})"},
        {"handler", "NoSuchIntent", R"({"location":5})", R"("result":{"handler":"IntentHandler"})"},
        {"provideLocationOptionsCollection", "WeatherRadarMapIntent", "{}", optionsOf("ForecastLocation")},
        {"provideLocationOptionsCollection", "SatelliteMapIntent", "{}", optionsOf("Location")},
        {"defaultLocation", "WeatherRadarMapIntent", "{}",
         R"("result":{"class":"ForecastLocation","identifier":"b","display":"B"})"},
        {"defaultMapColorScheme", "WeatherRadarMapIntent", "{}",
         R"("result":{"class":"MapColorScheme","identifier":"4","display":"Universal Blue","id":4})"},
        {"resolveLocation", "WeatherForecastIntent", somewhere,
         R"("result":{"resolution":"success","value":{"class":"Location","identifier":"x","display":"X"}})"},
        {"resolveLocation", "RadarMapIntent", R"({"location":null})",
         R"("result":{"resolution":"needsValue"})"},
        {"handle", "RadarMapIntent", R"({"location":{"class":"Location","display":"X"}})",
         activity("RadarMapIntent", "Radar Map", R"("map_layer":"radar","place_id":"")")},
        {"handle", "SatelliteMapIntent", somewhere,
         activity("SatelliteMapIntent", "Satellite Map", R"("map_layer":"satellite","place_id":"x")")},
        {"handle", "WeatherForecastIntent", somewhere,
         activity("WeatherForecastIntent", "Weather Forecast", R"("place_id":"x")")},
        {"handle", "CurrentWeatherIntent", somewhere,
         activity("CurrentWeatherIntent", "Weather Conditions",
                  R"("forecast_block":"conditions","place_id":"x")")},
        {"handle", "CurrentWeatherIntent", "{}",
         R"("result":{"class":"CurrentWeatherIntentResponse","code":5,"userActivity":null})"},
    };
    for (const auto& [method, intent, parameters, reply] : cases) {
        EXPECT_EQ(answer(call("1", method, intent, parameters)), reply);
    }
    const std::string schemes =
        answer(call("1", "provideMapColorSchemeOptionsCollection", "WeatherRadarMapIntent"));
    std::string ids;
    for (std::size_t at = schemes.find("\"id\":"); at != std::string::npos;
         at = schemes.find("\"id\":", at + 1)) {
        ids += schemes.substr(at + 5, schemes.find('}', at) - at - 5) + ' ';
    }
    EXPECT_EQ(ids, "1 2 3 4 5 6 7 8 11 12 13 14 15 16 17 21 22 23 31 32 ");
}

TEST_F(ExtensionProcess, answersBadLinesWithErrorsAndGoesOn) {
    const std::pair<std::string, int> cases[] = {
        {"nonsense", -32700},
        {"", -32700},
        {"{\"id\":1,\"x\":\"\xff\"}", -32700},
        {std::string(100000, '['), -32700},
        {std::string(10 << 20, 'x'), -32700},
        {'"' + std::string(10 << 20, 'x') + '"', -32700},
        {"42", -32600},
        {"{}", -32600},
        {"[]", -32600},
        {R"({"jsonrpc":"1.0","id":1,"method":"handler"})", -32600},
        {R"({"jsonrpc":"2.0","id":[1],"method":"handler"})", -32600},
        {R"({"jsonrpc":"2.0","id":1,"method":5})", -32600},
        {R"({"jsonrpc":"2.0","id":1,"method":"nothing"})", -32601},
        {R"({"jsonrpc":"2.0","id":1,"method":"handler"})", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"handler","params":[]})", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"handler","params":{"intent":{"class":5}}})", -32602},
        {call("1", "handle", "ConfigurationIntent"), -32601},
        {call("1", "handle", "WeatherRadarMapIntent"), -32601},
        {call("1", "defaultLocation", "RadarMapIntent"), -32601},
        {call("1", "defaultLocation", "NoSuchIntent"), -32601},
        {call("1", "handle", "RadarMapIntent", "5"), -32602},
        {call("1", "handle", "RadarMapIntent", R"({"location":"x"})"), -32602},
        {call("1", "handle", "RadarMapIntent", R"({"location":{"class":"Location"}})"), -32602},
        {call("1", "handle", "RadarMapIntent", R"({"location":{"class":"ForecastLocation","display":"X"}})"),
         -32602},
        {call("1", "defaultLocation", "WeatherRadarMapIntent", R"({"mapType":4})"), -32602},
        {call("1", "defaultLocation", "WeatherRadarMapIntent", R"({"snow":1})"), -32602},
    };
    std::string input;
    for (const auto& [text, code] : cases) {
        const std::string line = text + (text.ends_with('\n') ? "" : "\n");
        EXPECT_TRUE(answer(line).starts_with(R"("error":{"code":)" + std::to_string(code) + ','))
            << line.substr(0, 80);
        input += line;
    }
    const Outcome all = serve(input + call("99", "handler", "RadarMapIntent"));
    const auto replies = repliesOf(all.output);
    EXPECT_EQ(replies.size(), std::size(cases) + 1);
    EXPECT_EQ(replies.count("99"), 1U);
    EXPECT_EQ(all.exitCode, 0);
    EXPECT_EQ(all.errors, "");
}

TEST_F(ExtensionProcess, keepsTheIdsAndDoesNotAnswerNotifications) {
    std::string input;
    for (const std::string id :
         {"5", "\"5\"", "null", "-1.5", "18446744073709551615", "\"\\\"\\u00e9\\n\""}) {
        input += call(id, "handler", "RadarMapIntent");
    }
    std::string notification = call("1", "handle", "RadarMapIntent");
    input += notification.erase(notification.find(R"("id":1,)"), 7);
    const auto replies = repliesOf(serve(input).output);
    EXPECT_EQ(replies.size(), 6U);
    for (const std::string id : {"5", "\"5\"", "null", "-1.5", "18446744073709551615", "\"\\\"é\\n\""}) {
        EXPECT_EQ(replies.count(id), 1U) << id;
    }
}

TEST_F(ExtensionProcess, answersEachOfManyCallsInFlightOnceBeforeItEnds) {
    std::string input;
    for (int i = 0; i < 3000; ++i) {
        input += call(std::to_string(i), i % 2 == 0 ? "provideLocationOptionsCollection" : "handle",
                      "RadarMapIntent");
    }
    input.pop_back();  // the last line ends with the input
    const Outcome outcome = serve(input);
    const auto replies = repliesOf(outcome.output);
    EXPECT_EQ(outcome.exitCode, 0);
    ASSERT_EQ(replies.size(), 3000U);
    for (int i = 0; i < 3000; ++i) {
        ASSERT_EQ(replies.count(std::to_string(i)), 1U) << i;
    }
}

TEST_F(ExtensionProcess, answersFromAnUnreadableStoreAsFromAnEmptyOne) {
    const std::string file = directory_.path("group.com.brisk-labs.Nimbuscope.sqlite");
    for (const std::string& damaged :
         {std::string("not a store"), std::string(), readFile(file).substr(0, 5000)}) {
        writeFile(file, damaged);
        EXPECT_EQ(answer(call("1", "defaultLocation", "WeatherRadarMapIntent")), R"("result":null)");
        EXPECT_EQ(readFile(file), damaged);
    }
}

}  // namespace
}  // namespace nimbuscope::testing
