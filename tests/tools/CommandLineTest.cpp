#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

struct CommandLine : ::testing::Test {
    using Arguments = std::vector<std::string>;
    const std::string sample = NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/places.json";
    TemporaryDirectory directory;
    std::string locale = "C";

    Outcome call(Arguments arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope");
        return run(arguments, input, {{"NIMBUSCOPE_STORE", directory.path("store")}, {"LC_ALL", locale}});
    }
    std::string output(const Arguments& arguments, const std::string& input = {}) {
        const Outcome outcome = call(arguments, input);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }
    /// Expects failure with nothing on standard output, and returns the one line on standard error.
    std::string failure(const Arguments& arguments, int exitCode = 1, const std::string& input = {}) {
        const Outcome outcome = call(arguments, input);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(outcome.errors.starts_with("nimbuscope: ")) << outcome.errors;
        EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1) << outcome.errors;
        return outcome.errors.substr(12);
    }
};

TEST_F(CommandLine, helpAndVersionPrintOnEveryLevelAndMistakesExitWithTwo) {
    const auto words = [](const std::string& line) {
        std::istringstream stream(line);
        return Arguments{std::istream_iterator<std::string>(stream), {}};
    };
    const std::pair<const char*, const char*> helps[]{
        {"--help", "Example: nimbuscope "},
        {"places --help", "Example: nimbuscope places "},
        {"defaults write --help", "Example: nimbuscope defaults write "},
        {"--version", "nimbuscope"}};
    for (const auto& [line, text] : helps) {
        EXPECT_NE(output(words(line)).find(text), std::string::npos) << line;
    }
    for (const char* line :
         {"nonsense", "places", "places list --nonsense", "places add --name A --latitude 1",
          "places add --name A --latitude 91 --longitude 0", "defaults write k",
          "intents nonsense RadarMapIntent", "defaults write k --int 9223372036854775808",
          "defaults write k --bool maybe", "defaults write k --int 1 --string x",
          "defaults read --suite x --standard", "preferences set unit 1", "defaults write k --int 0x10",
          "palette bytes 99999999999999999999 -o x", "palette legend 4 --type Rain --json -o -",
          "forecast show x --json --chart -", "tile render - --overlay - -o x", "tile info x --max-pixels 0",
          "map span --size 1x1 --center 0,181 --zoom 1 --json"}) {
        EXPECT_TRUE(failure(words(line), 2).starts_with("command line: ")) << line;
    }
    for (const Arguments& empty :
         {Arguments{"places", "list", "--store", ""}, Arguments{"defaults", "write", "k", "--double", ""},
          Arguments{"defaults", "write", "k", "--bool", ""}, Arguments{"defaults", "read", "--suite", ""},
          Arguments{"tile", "render", "x", "-o", "x", "--overlay", ""}}) {
        EXPECT_TRUE(failure(empty, 2).starts_with("command line: ")) << empty.back();
    }
    EXPECT_FALSE(std::filesystem::exists(directory.path("store")));
    EXPECT_EQ(failure({"places", "remove", "a\n\x1B"}), "places: no place has the id \"a\\u000a\\u001b\"\n");
}

TEST_F(CommandLine, defaultsKeepTheirTypesThroughTheStore) {
    const std::string bytes = directory.path("bytes");
    writeFile(bytes, std::string("\0\xFF", 2));
    const std::array<std::string, 3> values[] = {
        {"b", "--bool", "true"},   {"i", "--int", "-9223372036854775808"},
        {"d", "--double", "-3"},   {"s", "--string", "-1 é"},
        {"data", "--data", bytes}, {"json", "--value-json", R"({"a":[1,1.0,{"$data":"AP8="}],"$$q":false})"},
    };
    for (const auto& [key, option, value] : values) {
        EXPECT_EQ(output({"defaults", "write", key, option, value}), "");
    }
    EXPECT_EQ(output({"defaults", "read", "--json"}),
              R"({"b":true,"d":-3.0,"data":{"$data":"AP8="},"i":-9223372036854775808,)"
              R"("json":{"$$q":false,"a":[1,1.0,{"$data":"AP8="}]},"s":"-1 é"})"
              "\n");
    EXPECT_EQ(output({"defaults", "read", "s"}), "-1 é\n");
    EXPECT_EQ(output({"defaults", "delete", "s"}), "");
    EXPECT_EQ(failure({"defaults", "delete", "s"}), "defaults delete: no value under \"s\"\n");
    EXPECT_EQ(failure({"defaults", "read", "b", "--standard"}), "defaults read: no value under \"b\"\n");
    EXPECT_EQ(failure({"defaults", "write", "x", "--value-json", "[1,null]"}),
              "--value-json: [1]: null is no value\n");
    EXPECT_EQ(failure({"defaults", "write", "x", "--data", "/none"}), "/none: No such file or directory\n");
    EXPECT_NE(failure({"defaults", "write", "x", "--double", "inf"}), "");
    EXPECT_NE(failure({"defaults", "read", "--suite", "../x"}), "");
}

TEST_F(CommandLine, placesAreListedAddedRemovedImportedAndExported) {
    EXPECT_EQ(output({"places", "list", "--json"}), "[]\n");
    Arguments add{"places", "add", "--name", "A", "--latitude", "0", "--longitude", "-180", "--current"};
    EXPECT_EQ(output(add).size(), 37U);
    add.back() = "--id=a";
    EXPECT_EQ(output(add), "a\n");
    EXPECT_NE(failure(add), "");
    EXPECT_EQ(failure({"places", "remove", "c"}), "places: no place has the id \"c\"\n");
    EXPECT_EQ(output({"places", "list"})[0], '*');

    const std::string exported = output({"places", "export"});
    EXPECT_LT(exported.find(R"("current":true)"), exported.find(R"({"id":"a")")) << "in stored order";
    EXPECT_EQ(output({"places", "remove", "a"}), "");
    EXPECT_EQ(output({"places", "import", "-"}, exported), "");

    std::string malformed = exported;
    malformed.replace(malformed.rfind(R"("name")"), 6, R"("nome")");
    EXPECT_EQ(failure({"places", "import", "-"}, 1, malformed), "-: [1].name: missing key\n");
    EXPECT_EQ(output({"places", "export"}), exported) << "a refused import changes nothing";
}

TEST_F(CommandLine, outputsAreWholeOrUntouched) {
    EXPECT_EQ(output({"places", "import", sample}), "");
    EXPECT_NE(failure({"places", "export", "-o", "/dev/full"}), "");
    EXPECT_NE(failure({"places", "export", "-o", directory.path("none/x")}), "");
    const std::string file = directory.path("places.json");
    const std::string link = directory.path("link");
    writeFile(file, "before");
    std::filesystem::create_symlink(file, link);
    const std::string store = directory.path("store/group.com.brisk-labs.Nimbuscope.sqlite");
    const std::string whole = readFile(store);
    for (const std::string& damaged : {std::string("not a store"), whole.substr(0, whole.size() / 2)}) {
        writeFile(store, damaged);
        for (const Arguments& arguments : {Arguments{"places", "export", "-o", file},
                                           {"places", "import", sample},
                                           {"intents", "defaultLocation", "WeatherRadarMapIntent"}}) {
            EXPECT_NE(failure(arguments), "");
        }
        EXPECT_EQ(readFile(store), damaged);
        EXPECT_EQ(readFile(file), "before");
    }
    writeFile(store, whole);
    EXPECT_EQ(output({"places", "export", "-o", link}), "");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(readFile(file), output({"places", "export"}));
}

TEST_F(CommandLine, intentsAnswerAsTheExtensionDoes) {
    EXPECT_EQ(output({"places", "import", sample}), "");
    EXPECT_EQ(output({"intents", "defaultLocation", "WeatherRadarMapIntent", "--json"}),
              R"({"class":"ForecastLocation","identifier":"current","display":"Kraków"})"
              "\n");
    EXPECT_EQ(output({"intents", "handle", "SatelliteMapIntent", "--location-name", "x"}),
              "class: SatelliteMapIntentResponse\ncode: 2\nuserActivity:\n  activityType: SiriShortcut\n"
              "  title: Satellite Map\n  userInfo:\n    map_layer: satellite\n    place_id: \n");
}

TEST_F(CommandLine, preferencesAreSetAndResetWhileAnotherProcessLooksOn) {
    platform::SQLiteUserDefaultsSuites suites(directory.path("store"));
    const auto group = suites.suite(appGroupIdentifier).value();
    PreferencesServiceImpl service(*suites.standard().value(), group, nullptr,
                                   std::make_shared<FixedLocale>(true));
    EXPECT_EQ(output({"preferences", "set", "minimalIntensity", "-32"}), "");
    EXPECT_EQ(service.preferences().radar.minimalIntensity, IntensityPreference::None);
    service.set(preference::launchesCount{77});
    EXPECT_NE(output({"preferences", "show", "--json"}).find(R"("launchesCount":77,)"), std::string::npos);

    EXPECT_EQ(failure({"preferences", "set", "units", "3"}),
              "preferences set: units: 3 is none of the allowed values\n");
    locale = "en_US.UTF-8";
    EXPECT_EQ(output({"preferences", "reset"}), "");
    EXPECT_EQ(service.preferences().map.units, UnitsPreference::Imperial);

    ASSERT_TRUE(group->set(PreferencesServiceImpl::appPreferencesKey, platform::dataOf("nonsense")));
    const Outcome replaced = call({"preferences", "show", "--json"});
    EXPECT_EQ(replaced.exitCode, 0);
    EXPECT_TRUE(replaced.errors.starts_with("    Unable to parse AppPreferences")) << replaced.errors;
}

TEST_F(CommandLine, preferencesMigrateBytesToBytesOrWriteNothing) {
    EXPECT_EQ(output({"preferences", "migrate", "-", "--json"}, " {\"version\":12 }"), " {\"version\":12 }");
    const std::string file = directory.path("out");
    EXPECT_EQ(failure({"preferences", "migrate", "-", "-o", file}, 1, "{\"version\":true}"),
              "-: version: expected an integer, found a boolean\n");
    EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace nimbuscope::testing
