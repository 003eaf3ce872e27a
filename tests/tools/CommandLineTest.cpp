#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

const std::string tool = NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope";

class CommandLine : public ::testing::Test {
  protected:
    [[nodiscard]] Outcome call(std::vector<std::string> arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(), tool);
        return run(arguments, input, {{"NIMBUSCOPE_STORE", directory_.path("store")}, {"LC_ALL", "C"}});
    }
    [[nodiscard]] std::string output(std::vector<std::string> arguments,
                                     const std::string& input = {}) const {
        const Outcome outcome = call(std::move(arguments), input);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }
    /// Expects failure with nothing on standard output, and returns the one line on standard error.
    [[nodiscard]] std::string failure(std::vector<std::string> arguments, int exitCode,
                                      const std::string& input = {}) const {
        const Outcome outcome = call(std::move(arguments), input);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(outcome.errors.starts_with("nimbuscope: ") && outcome.errors.ends_with('\n') &&
                    std::ranges::count(outcome.errors, '\n') == 1)
            << outcome.errors;
        return outcome.errors.substr(12, outcome.errors.size() - 13);
    }

    TemporaryDirectory directory_;
};

TEST_F(CommandLine, helpAndVersionPrintOnEveryLevelAndMistakesExitWithTwo) {
    const std::vector<std::string> levels[] = {{"--help"},
                                               {"places", "--help"},
                                               {"places", "add", "--help"},
                                               {"defaults", "write", "--help"},
                                               {"intents", "--help"}};
    for (const auto& arguments : levels) {
        EXPECT_NE(output(arguments).find("nimbuscope"), std::string::npos);
    }
    EXPECT_EQ(output({"--version"}).substr(0, 11), "nimbuscope ");
    const std::vector<std::string> mistakes[] = {
        {"nonsense"},
        {"places"},
        {"places", "list", "--nonsense"},
        {"places", "add", "--name", "A", "--latitude", "91", "--longitude", "0"},
        {"places", "add", "--name", "A", "--latitude", "1"},
        {"defaults", "write", "k"},
        {"defaults", "write", "k", "--int", "1.5"},
        {"defaults", "write", "k", "--int", "9223372036854775808"},
        {"defaults", "write", "k", "--bool", "maybe"},
        {"defaults", "write", "k", "--int", "1", "--string", "x"},
        {"defaults", "read", "--suite", "x", "--standard"},
        {"intents", "nonsense", "RadarMapIntent"},
    };
    for (const auto& arguments : mistakes) {
        EXPECT_EQ(failure(arguments, 2).substr(0, 14), "command line: ");
    }
    EXPECT_FALSE(std::filesystem::exists(directory_.path("store")));
}

TEST_F(CommandLine, defaultsKeepTheirTypesThroughTheStore) {
    writeFile(directory_.path("bytes"), std::string("\0\xFF", 2));
    const std::vector<std::string> values[] = {
        {"b", "--bool", "true"},
        {"i", "--int", "-9223372036854775808"},
        {"d", "--double", "-3"},
        {"s", "--string", "-1 é"},
        {"data", "--data", directory_.path("bytes")},
        {"json", "--value-json", R"({"a":[1,1.0,{"$data":"AP8="}],"$$q":false})"},
    };
    for (std::vector<std::string> arguments : values) {
        arguments.insert(arguments.begin(), {"defaults", "write"});
        EXPECT_EQ(output(arguments), "");
    }
    EXPECT_EQ(output({"defaults", "read", "--json"}),
              R"({"b":true,"d":-3.0,"data":{"$data":"AP8="},"i":-9223372036854775808,)"
              R"("json":{"$$q":false,"a":[1,1.0,{"$data":"AP8="}]},"s":"-1 é"})"
              "\n");
    EXPECT_EQ(output({"defaults", "read", "s"}), "-1 é\n");
    EXPECT_EQ(output({"defaults", "read", "s", "--json"}), "\"-1 é\"\n");
    EXPECT_EQ(output({"defaults", "delete", "s"}), "");
    EXPECT_EQ(failure({"defaults", "delete", "s"}, 1), "defaults delete: no value under \"s\"");
    EXPECT_EQ(failure({"defaults", "read", "b", "--standard"}, 1), "defaults read: no value under \"b\"");
    EXPECT_EQ(failure({"defaults", "write", "x", "--value-json", "[1,null]"}, 1),
              "--value-json: [1]: null is no value");
    EXPECT_EQ(failure({"defaults", "write", "x", "--data", directory_.path("none")}, 1),
              directory_.path("none") + ": No such file or directory");
    EXPECT_NE(failure({"defaults", "write", "x", "--double", "inf"}, 1), "");
    EXPECT_NE(failure({"defaults", "read", "--suite", "../x"}, 1), "");
}

TEST_F(CommandLine, placesAreListedAddedRemovedImportedAndExported) {
    EXPECT_EQ(output({"places", "list", "--json"}), "[]\n");
    EXPECT_EQ(
        output({"places", "add", "--name", "A", "--latitude", "-33.8688", "--longitude", "0", "--id", "a"}),
        "a\n");
    EXPECT_EQ(output({"places", "add", "--name", "B", "--latitude", "0", "--longitude", "-180", "--current"})
                  .size(),
              37U);
    EXPECT_NE(
        failure({"places", "add", "--name", "A", "--latitude", "1", "--longitude", "1", "--id", "a"}, 1), "");
    EXPECT_EQ(failure({"places", "remove", "c"}, 1), "places: no place has the id \"c\"");
    EXPECT_EQ(output({"places", "list"})[0], '*');

    const std::string exported = output({"places", "export"});
    EXPECT_TRUE(exported.starts_with(R"([{"id":"a",)")) << "in stored order";
    const std::string file = directory_.path("places.json");
    EXPECT_EQ(output({"places", "export", "-o", file}), "");
    EXPECT_EQ(readFile(file), exported);
    EXPECT_EQ(output({"places", "remove", "a"}), "");
    EXPECT_EQ(output({"places", "import", "-"}, exported), "");
    EXPECT_EQ(output({"places", "export"}), exported);

    std::string malformed = exported;
    malformed.replace(malformed.rfind(R"("name")"), 6, R"("nome")");
    EXPECT_EQ(failure({"places", "import", "-"}, 1, malformed), "-: [1].name: missing key");
    EXPECT_EQ(failure({"places", "import", "-"}, 1, "[\n{,"), "-: invalid JSON at byte 3");
    EXPECT_EQ(output({"places", "export"}), exported) << "a refused import changes nothing";
}

TEST_F(CommandLine, outputsAreWholeOrUntouched) {
    const std::string sample = NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/places.json";
    EXPECT_EQ(output({"places", "import", sample}), "");
    EXPECT_NE(failure({"places", "export", "-o", "/dev/full"}, 1), "");
    EXPECT_NE(failure({"places", "export", "-o", directory_.path("none/x")}, 1), "");
    const std::string file = directory_.path("places.json");
    writeFile(file, "before");
    std::filesystem::create_symlink(file, directory_.path("link"));
    const std::string store = directory_.path("store/group.com.brisk-labs.Nimbuscope.sqlite");
    const std::string whole = readFile(store);
    for (const std::string& damaged : {std::string("not a store"), whole.substr(0, whole.size() / 2)}) {
        writeFile(store, damaged);
        EXPECT_NE(failure({"places", "export", "-o", file}, 1), "");
        EXPECT_NE(failure({"places", "list"}, 1), "");
        EXPECT_NE(failure({"places", "import", sample}, 1), "");
        EXPECT_NE(failure({"intents", "defaultLocation", "WeatherRadarMapIntent"}, 1), "");
        EXPECT_EQ(readFile(store), damaged);
        EXPECT_EQ(readFile(file), "before");
    }
    writeFile(store, whole);
    EXPECT_EQ(output({"places", "export", "-o", directory_.path("link")}), "");
    EXPECT_TRUE(std::filesystem::is_symlink(directory_.path("link")));
    EXPECT_TRUE(readFile(file).starts_with("[{"));
}

TEST_F(CommandLine, intentsAnswerAsTheExtensionDoes) {
    EXPECT_EQ(output({"places", "import", NIMBUSCOPE_SOURCE_DIRECTORY "/docs/sample/places.json"}), "");
    EXPECT_EQ(output({"intents", "defaultLocation", "WeatherRadarMapIntent", "--json"}),
              R"({"class":"ForecastLocation","identifier":"current","display":"Kraków"})"
              "\n");
    EXPECT_EQ(output({"intents", "resolveLocation", "RadarMapIntent", "--location-name", "X", "--json"}),
              R"({"resolution":"success","value":{"class":"Location","identifier":null,"display":"X"}})"
              "\n");
    EXPECT_EQ(output({"intents", "handle", "SatelliteMapIntent", "--location-id", "x"}),
              "class: SatelliteMapIntentResponse\ncode: 2\nuserActivity:\n  activityType: SiriShortcut\n"
              "  title: Satellite Map\n  userInfo:\n    map_layer: satellite\n    place_id: x\n");
    EXPECT_EQ(failure({"intents", "handle", "ConfigurationIntent"}, 1),
              "intents: no operation \"handle\" for ConfigurationIntent");
}

}  // namespace
}  // namespace nimbuscope::testing
