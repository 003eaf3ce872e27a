#include "NimbuscopeKit/Preferences/Migration.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Platform/Coding/JSONDecoder.hpp"

namespace nimbuscope {
namespace {

using nlohmann::ordered_json;
using platform::dataOf;
using platform::textOf;

std::string fixture(const std::string& name) {
    const std::ifstream file(NIMBUSCOPE_TEST_DATA "/preferences/" + name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Key order and kinds of numbers count, so that texts are compared.
TEST(Migration, BringsRecordsOfEveryOldVersionToTheNewest) {
    for (int version = 1; version < 12; ++version) {
        const std::string name = "v" + std::to_string(version);
        const auto migrated = migratedPreferences(dataOf(fixture(name + ".json")));
        ASSERT_TRUE(migrated) << name << ": " << migrated.error().cause.message();
        EXPECT_EQ(textOf(*migrated), ordered_json::parse(fixture(name + "-migrated.json")).dump()) << name;
        EXPECT_EQ(migratedPreferences(*migrated), *migrated) << name;
    }
}

/// The settings that a version did not have come from the steps; two that no step sets decide what can be
/// read.
TEST(Migration, LeadsToARecordThatDecodesWhereItHasWhatNoStepSets) {
    platform::JSONDecoder decoder;
    const auto read = [&](const char* name) {
        return decoder.decode<AppPreferences>(textOf(migratedPreferences(dataOf(fixture(name))).value()));
    };
    EXPECT_EQ(read("v1.json").error().path, "main.isNeedSendStartupPush");
    const auto v11 = read("v11.json");
    ASSERT_TRUE(v11) << v11.error().message();
    EXPECT_EQ(v11->layer.colorScheme, ColorSchemePreference::ncmae);
    EXPECT_FALSE(v11->main.isHapticEnabled);
}

TEST(Migration, ReturnsTheNewestVersionByteForByte) {
    for (const char* stored : {R"({"version":12})", " { \"a\" : 1,\"a\":2, \"version\" :12.0 }\n",
                               R"({"version":1,"layer":null,"version":12})"}) {
        EXPECT_EQ(migratedPreferences(dataOf(stored)), dataOf(stored));
    }
}

TEST(Migration, TellsAVersionThatCannotBeReadFromBytesThatAreNoRecord) {
    for (const char* version : {"0", "13", "-1", "12.5", "true", "\"12\"", "null", "[12]", "1e300"}) {
        const auto migrated = migratedPreferences(dataOf(R"({"version":)" + std::string(version) + "}"));
        ASSERT_FALSE(migrated) << version;
        EXPECT_EQ(migrated.error().serviceError, PreferencesServiceError::unableToReadPreferencesVersion);
        EXPECT_EQ(migrated.error().cause.path, "version");
    }
    EXPECT_TRUE(migratedPreferences(dataOf("{}")).error().serviceError);
    for (const char* stored :
         {"", "12", "[{\"version\":3}]", "{\"version\":3", "{\"version\":3,\"a\":1e999}"}) {
        const auto migrated = migratedPreferences(dataOf(stored));
        ASSERT_FALSE(migrated) << stored;
        EXPECT_FALSE(migrated.error().serviceError) << stored;
    }
}

}  // namespace
}  // namespace nimbuscope
