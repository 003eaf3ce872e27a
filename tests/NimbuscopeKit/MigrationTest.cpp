#include "NimbuscopeKit/Preferences/Migration.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using platform::dataOf;
using platform::textOf;

std::string fixture(const std::string& name) {
    return readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/" + name);
}

/// Key order and kinds of numbers count, so that texts are compared.
TEST(Migration, bringsRecordsOfEveryOldVersionToTheNewest) {
    for (int version = 1; version < 12; ++version) {
        const std::string name = "v" + std::to_string(version);
        const auto migrated = migratedPreferences(dataOf(fixture(name + ".json")));
        ASSERT_TRUE(migrated) << name << ": " << migrated.error().cause.message();
        EXPECT_EQ(textOf(*migrated), nlohmann::ordered_json::parse(fixture(name + "-migrated.json")).dump())
            << name;
    }
}

TEST(Migration, returnsTheNewestVersionByteForByte) {
    for (const char* stored :
         {" { \"a\" : 1,\"a\":2, \"version\" :12.0 }\n", R"({"version":1,"layer":0,"version":12})"}) {
        EXPECT_EQ(migratedPreferences(dataOf(stored)), dataOf(stored));
    }
}

TEST(Migration, tellsAVersionThatCannotBeReadFromBytesThatAreNoRecord) {
    for (const char* version : {"0", "13", "12.5", "true", "\"12\"", "null", "[12]", "1e300"}) {
        const auto migrated = migratedPreferences(dataOf(R"({"version":)" + std::string(version) + "}"));
        ASSERT_FALSE(migrated) << version;
        EXPECT_EQ(migrated.error().serviceError, PreferencesServiceError::unableToReadPreferencesVersion);
        EXPECT_EQ(migrated.error().cause.path, "version");
    }
    for (const char* stored :
         {"", "12", "[{\"version\":3}]", "{\"version\":3", "{\"version\":3,\"a\":1e999}"}) {
        const auto migrated = migratedPreferences(dataOf(stored));
        EXPECT_TRUE(!migrated && !migrated.error().serviceError) << stored;
    }
}

}  // namespace
}  // namespace nimbuscope::testing
