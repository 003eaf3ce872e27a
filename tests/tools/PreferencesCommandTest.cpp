#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

struct PreferencesCommand : ::testing::Test {
    TemporaryDirectory directory;
    std::string locale = "C";

    Outcome call(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(),
                         {NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope", "preferences"});
        return run(arguments, input, {{"NIMBUSCOPE_STORE", directory.path()}, {"LC_ALL", locale}});
    }
};

TEST_F(PreferencesCommand, setsAndResetsWhileAnotherProcessLooksOn) {
    platform::SQLiteUserDefaultsSuites suites(directory.path());
    const auto group = suites.suite(appGroupIdentifier).value();
    PreferencesServiceImpl service(*suites.standard().value(), group, nullptr,
                                   std::make_shared<FixedLocale>(true));
    ASSERT_TRUE(group->set("nbcOpacity", std::int64_t{55}));
    EXPECT_EQ(call({"set", "minimalIntensity", "-32"}).exitCode, 0);
    EXPECT_EQ(service.preferences().radar.minimalIntensity, IntensityPreference::None);
    service.set(preference::launchesCount{77});
    EXPECT_NE(call({"show", "--json"}).output.find(R"("launchesCount":77,)"), std::string::npos);

    const Outcome refused = call({"set", "units", "3"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.errors, "nimbuscope: preferences set: units: the value is none of the allowed ones\n");
    EXPECT_EQ(call({"set", "unit", "1"}).exitCode, 2);
    EXPECT_EQ(service.preferences().map.units, UnitsPreference::Metric);

    locale = "en_US.UTF-8";
    EXPECT_EQ(call({"reset"}).exitCode, 0);
    EXPECT_EQ(service.preferences().map.units, UnitsPreference::Imperial);
    EXPECT_EQ(service.preferences().radar.overlayOpacity, 55);

    ASSERT_TRUE(group->set(PreferencesServiceImpl::appPreferencesKey, platform::dataOf("nonsense")));
    const Outcome replaced = call({"show", "--json"});
    EXPECT_EQ(replaced.exitCode, 0);
    EXPECT_TRUE(replaced.errors.starts_with("    Unable to parse AppPreferences")) << replaced.errors;
    EXPECT_EQ(call({"show", "--json"}).errors, "");
}

TEST_F(PreferencesCommand, migratesBytesToBytesOrWritesNothing) {
    EXPECT_EQ(call({"migrate", "-", "--json"}, " {\"version\":12 }").output, " {\"version\":12 }");
    EXPECT_EQ(call({"migrate", "-"}, "{\"version\":11,\"x\":1.0}").output, "{\"version\":12,\"x\":1.0}");
    const Outcome failed = call({"migrate", "-", "-o", directory.path("out")}, "{\"version\":true}");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.errors, "nimbuscope: -: version: expected an integer, found a boolean\n");
    EXPECT_FALSE(std::filesystem::exists(directory.path("out")));
}

}  // namespace
}  // namespace nimbuscope::testing
