#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"
#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

std::string call(const std::string& id, const std::string& method, const std::string& intent,
                 const std::string& parameters = "{}") {
    return R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":")" + method +
           R"(","params":{"intent":{"class":")" + intent + R"(","parameters":)" + parameters + "}}}\n";
}

std::string reply(const std::string& id, const std::string& result) {
    return R"({"jsonrpc":"2.0","id":)" + id + R"(,"result":)" + result + "}\n";
}

struct ExtensionProcess : ::testing::Test {
    void SetUp() override { store({{.id = "a"}, {.id = "b", .name = "B", .current = true}}); }
    void store(const std::vector<Place>& places) const {
        platform::SQLiteUserDefaultsSuites suites(directory.path());
        SharedStorage storage(suites);
        ASSERT_TRUE(SavedPlaces(storage.groupStorage()).replace(places));
    }
    std::string answer(const std::string& lines) {
        const Outcome outcome =
            run({program}, lines, {{"NIMBUSCOPE_STORE", directory.path()}, {"LC_ALL", "C"}});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }

    TemporaryDirectory directory;
    const std::string program =
        NIMBUSCOPE_BINARY_DIRECTORY "/NimbuscopeIntentHandler/NimbuscopeIntentHandler";
};

TEST_F(ExtensionProcess, answersEveryOperationOfEveryIntent) {
    const std::string somewhere = R"({"location":{"class":"Location","identifier":"x","display":"X"}})";
    const struct {
        std::string method, intent, parameters, result;
    } cases[] = {
        {"handler", "CurrentWeatherIntent", "{}", R"({"handler":"CurrentWeatherIntentHandler"})"},
        {"handler", "NoSuchIntent", R"({"location":5})", R"({"handler":"IntentHandler"})"},
        {"provideLocationOptionsCollection", "SatelliteMapIntent", "{}",
         R"({"sections":[{"items":[{"class":"Location","identifier":"b","display":"B"},)"
         R"({"class":"Location","identifier":"a","display":"New Favorite"}]}]})"},
        {"defaultLocation", "WeatherRadarMapIntent", "{}",
         R"({"class":"ForecastLocation","identifier":"b","display":"B"})"},
        {"defaultMapColorScheme", "WeatherRadarMapIntent", "{}",
         R"({"class":"MapColorScheme","identifier":"4","display":"Universal Blue","id":4})"},
        {"resolveLocation", "WeatherForecastIntent", somewhere,
         R"({"resolution":"success","value":{"class":"Location","identifier":"x","display":"X"}})"},
        {"resolveLocation", "RadarMapIntent", R"({"location":null})", R"({"resolution":"needsValue"})"},
        {"handle", "WeatherForecastIntent", somewhere,
         R"({"class":"WeatherForecastIntentResponse","code":2,"userActivity":{"activityType":"SiriShortcut",)"
         R"("title":"Weather Forecast","userInfo":{"place_id":"x"}}})"},
        {"handle", "CurrentWeatherIntent", "{}",
         R"({"class":"CurrentWeatherIntentResponse","code":5,"userActivity":null})"},
    };
    for (const auto& [method, intent, parameters, result] : cases) {
        EXPECT_EQ(answer(call("1", method, intent, parameters)), reply("1", result));
    }
    const struct {
        std::string name, title, userInfo;
    } shortcuts[] = {
        {"RadarMap", "Radar Map", R"("map_layer":"radar")"},
        {"SatelliteMap", "Satellite Map", R"("map_layer":"satellite")"},
        {"CurrentWeather", "Weather Conditions", R"("forecast_block":"conditions")"},
    };
    for (const auto& [name, title, userInfo] : shortcuts) {
        EXPECT_EQ(answer(call("1", "handle", name + "Intent", somewhere)),
                  reply("1", R"({"class":")" + name + R"(IntentResponse","code":2,"userActivity":)" +
                                 R"({"activityType":"SiriShortcut","title":")" + title + R"(","userInfo":{)" +
                                 userInfo + R"(,"place_id":"x"}}})"));
    }
    std::string options = answer(call("1", "provideLocationOptionsCollection", "WeatherRadarMapIntent"));
    EXPECT_NE(options.find(R"({"class":"ForecastLocation","identifier":"b")"), std::string::npos);
    options = answer(call("1", "provideMapColorSchemeOptionsCollection", "WeatherRadarMapIntent"));
    EXPECT_NE(options.find(R"([{"class":"MapColorScheme","identifier":"1",)"), std::string::npos);
    EXPECT_TRUE(options.ends_with(R"("id":32}]}]}})"
                                  "\n"))
        << options;
}

TEST_F(ExtensionProcess, answersBadLinesWithErrorsAndGoesOn) {
    const auto callWith = [](const std::string& parameters) {
        return call("1", "defaultLocation", "WeatherRadarMapIntent", parameters);
    };
    const std::pair<int, std::vector<std::string>> cases[] = {
        {-32700,
         {"nonsense", "", "{\"id\":1,\"x\":\"\xff\"}", std::string(100000, '['), std::string(10 << 20, 'x')}},
        {-32600,
         {"42", "[]", R"({"jsonrpc":"1.0","id":1,"method":"handler"})",
          R"({"jsonrpc":"2.0","id":[1],"method":"handler"})", R"({"jsonrpc":"2.0","id":1,"method":5})"}},
        {-32601,
         {R"({"jsonrpc":"2.0","id":1,"method":"nothing"})", call("1", "handle", "ConfigurationIntent"),
          call("1", "defaultLocation", "RadarMapIntent"), call("1", "defaultLocation", "NoSuchIntent")}},
        {-32602,
         {R"({"jsonrpc":"2.0","id":1,"method":"handler"})",
          R"({"jsonrpc":"2.0","id":1,"method":"handler","params":[]})",
          R"({"jsonrpc":"2.0","id":1,"method":"handler","params":{"intent":{"class":5}}})", callWith("5"),
          callWith(R"({"location":"x"})"), callWith(R"({"location":{"class":"ForecastLocation"}})"),
          callWith(R"({"location":{"class":"Location","display":"X"}})"), callWith(R"({"mapType":4})"),
          callWith(R"({"snow":1})")}},
    };
    std::string input;
    for (const auto& [code, texts] : cases) {
        for (const std::string& text : texts) {
            const std::string line = text + (text.ends_with('\n') ? "" : "\n");
            const std::string error = answer(line);
            EXPECT_NE(error.find(R"(,"error":{"code":)" + std::to_string(code) + ','), std::string::npos);
            EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
            input += line;
        }
    }
    const std::string all = answer(input + call("99", "handler", "RadarMapIntent"));
    EXPECT_EQ(std::ranges::count(all, '\n'), std::ranges::count(input, '\n') + 1);
    EXPECT_NE(all.find(reply("99", R"({"handler":"RadarMapIntentHandler"})")), std::string::npos);
}

TEST_F(ExtensionProcess, answersEachOfManyCallsInFlightUnderItsIdBeforeItEndsButNoNotification) {
    std::vector<std::string> ids{"\"5\"", "null", "-1.50", "18446744073709551616", "\"\\\"é\\n\""};
    for (int i = 0; i < 3000; ++i) {
        ids.push_back(std::to_string(i));
    }
    std::string input = call("1", "handle", "RadarMapIntent");
    input.erase(input.find(R"("id":1,)"), 7);
    std::multiset<std::string> expected;
    for (const std::string& id : ids) {
        input += call(id, "handle", "RadarMapIntent");
        expected.insert(reply(id, R"({"class":"RadarMapIntentResponse","code":5,"userActivity":null})"));
    }
    input.pop_back();  // the last line ends with the input
    std::istringstream output(answer(input));
    std::multiset<std::string> replies;
    for (std::string line; std::getline(output, line);) {
        replies.insert(line + '\n');
    }
    EXPECT_EQ(replies, expected);
}

TEST_F(ExtensionProcess, saysWhereCallsCannotBeReadOrRepliesNotBeWritten) {
    const std::pair<const char*, const char*> cases[]{
        {"</", "NimbuscopeIntentHandler: standard input: Is a directory\n"},
        {">/dev/full", "NimbuscopeIntentHandler: standard output: No space left on device\n"}};
    for (const auto& [streams, errors] : cases) {
        const Outcome outcome =
            run({"sh", "-c", "exec " + program + " " + streams}, "42\n", {{"LC_ALL", "C"}});
        EXPECT_EQ(outcome.exitCode, 1) << streams;
        EXPECT_EQ(outcome.output + outcome.errors, errors);
    }
}

TEST_F(ExtensionProcess, answersFromAnUnreadableStoreAsFromAnEmptyOne) {
    const std::string question = call("1", "defaultLocation", "WeatherRadarMapIntent");
    store({{.id = "a"}});
    EXPECT_NE(answer(question).find(R"("identifier":"a")"), std::string::npos)
        << "the first where none is current";
    const std::string file = directory.path("group.com.brisk-labs.Nimbuscope.sqlite");
    for (const std::string& damaged :
         {std::string("not a store"), std::string(), readFile(file).substr(0, 5000)}) {
        writeFile(file, damaged);
        EXPECT_EQ(answer(question), reply("1", "null"));
        EXPECT_EQ(readFile(file), damaged);
    }
}

}  // namespace
}  // namespace nimbuscope::testing
