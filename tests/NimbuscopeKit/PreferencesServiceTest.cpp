#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using platform::DefaultsError;
using Observed = std::function<void(PreferencesService&)>;

struct Reports final : ErrorTrackingService {
    std::vector<std::string> all;
    void track(const platform::NSError& error) override { all.push_back(error.localizedDescription); }
};

struct Observer final : PreferencesServiceObserver {
    Observed observed;
    explicit Observer(Observed action) : observed(std::move(action)) {}
    void preferencesDidChange(PreferencesService& service) override { observed(service); }
};

struct PreferencesServiceTest : ::testing::Test {
    static constexpr auto key = PreferencesServiceImpl::appPreferencesKey;
    const std::string newInstallation =
        readFile(NIMBUSCOPE_SOURCE_DIRECTORY "/tests/data/preferences/new-installation.json");
    InMemoryUserDefaults standard;
    std::shared_ptr<InMemoryUserDefaults> group = std::make_shared<InMemoryUserDefaults>();
    std::shared_ptr<FailingUserDefaults> store = std::make_shared<FailingUserDefaults>(group);
    std::shared_ptr<Reports> reports = std::make_shared<Reports>();

    PreferencesServiceImpl start() { return {standard, store, reports, std::make_shared<FixedLocale>(true)}; }
    void put(std::string_view name, const platform::DefaultsValue& value) {
        ASSERT_TRUE(group->set(name, value));
    }
    std::string record() {
        return std::string(platform::textOf(*group->object(key).value()->as<platform::Data>()));
    }
};

TEST_F(PreferencesServiceTest, aFreshStoreHoldsANewInstallationAfterTheStartAndTextCountsAsNone) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(start().preferences(), AppPreferences());
        EXPECT_EQ(record(), newInstallation);
        put(key, "text");
    }
    EXPECT_TRUE(reports->all.empty());
}

TEST_F(PreferencesServiceTest, theStandardStoreIsCopiedOnceOverWhateverIsThere) {
    ASSERT_TRUE(standard.set("nbcOpacity", std::int64_t{55}));
    ASSERT_TRUE(standard.set("isMigrated", false));
    put("nbcOpacity", std::int64_t{10});
    put("isMigrated", std::int64_t{1});  // not the boolean
    EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
    ASSERT_TRUE(standard.set("nbcOpacity", std::int64_t{60}));
    ASSERT_TRUE(group->removeObject(key));
    EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
}

TEST_F(PreferencesServiceTest, migratesAtTheFirstStartAndWritesNothingAtTheSecond) {
    put(key, platform::dataOf(R"({"version":10,"main":{}})"));
    for (const auto fault :
         {std::optional<DefaultsError::Code>(), std::optional(DefaultsError::Code::readOnly)}) {
        store->writeFault = fault;
        static_cast<void>(start());
        EXPECT_EQ(record(), R"({"version":12,"main":{"isHapticEnabled":true,"isStartupPushSent":true}})");
    }
    EXPECT_TRUE(reports->all.empty());
}

TEST_F(PreferencesServiceTest, anUnreadableRecordIsReportedAndReplacedByTheOldSettings) {
    const std::string none = "expected an object, found an array";
    const std::string version = "version: the value is none of the allowed ones";
    const struct {
        std::string stored;
        std::vector<std::string> atStart;
        std::string fault;
    } cases[]{
        {"[]", {none}, none},
        {R"({"version":13})", {"unableToReadPreferencesVersion: " + version}, version},
        {R"({"version":11,"main":{}})", {}, "main.isRatingEnabled: missing key"},
    };
    put("nbcOpacity", std::int64_t{55});
    for (const auto& [stored, atStart, fault] : cases) {
        reports->all.clear();
        put(key, platform::dataOf(stored));
        auto service = start();
        EXPECT_EQ(std::exchange(reports->all, {}), atStart);
        EXPECT_EQ(record() == stored, !atStart.empty());

        ::testing::internal::CaptureStderr();
        const AppPreferences replacement = service.preferences();
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "    Unable to parse AppPreferences - please check if migrations are correct!\n    \n"
                  " Preferences will be reset to default \n" +
                      fault + "\n");
        EXPECT_EQ(replacement.radar.overlayOpacity, 55);
        EXPECT_EQ(record(), platform::JSONEncoder().encode(replacement).value());
        EXPECT_EQ(service.preferences(), replacement);
        EXPECT_THAT(reports->all, ::testing::ElementsAre(fault));
    }
}

TEST_F(PreferencesServiceTest, observersAreToldInOrderWhileTheyComeAndGo) {
    auto service = start();
    std::string told;
    std::shared_ptr<Observer> first;
    const auto twice = std::make_shared<Observer>([&](auto&) { told += '2'; });
    first = std::make_shared<Observer>([&](PreferencesService& changed) {
        told += '1';
        changed.removeObserver(*first);
        changed.removeObserver(*twice);
        changed.set(preference::launchesCount{7});
    });
    const auto last = std::make_shared<Observer>([&](PreferencesService& changed) {
        told += std::to_string(changed.preferences().main.launchesCount);
    });
    for (const auto& observer : {twice, first, twice, last}) {
        service.addObserver(observer);
    }
    service.set(preference::isAlertsEnabled{true});
    EXPECT_EQ(told, "2177");
    EXPECT_TRUE(service.preferences().layer.isAlertsEnabled);
}

TEST_F(PreferencesServiceTest, whatCannotBeStoredIsReportedAndLeavesTheRecord) {
    auto service = start();
    service.addObserver(std::make_shared<Observer>([](auto&) { ADD_FAILURE() << "told of nothing"; }));
    for (const auto code : {DefaultsError::Code::readOnly, DefaultsError::Code::full}) {
        store->writeFault = code;
        service.set(preference::overlayOpacity{5});
        service.setPreferences({});
        EXPECT_EQ(service.preferences(), AppPreferences());
    }
    store->writeFault.reset();
    service.set(preference::pushToken{"\xFF"});
    store->readFault = DefaultsError::Code::damaged;
    service.set(preference::overlayOpacity{5});
    EXPECT_EQ(service.preferences(), AppPreferences());
    EXPECT_EQ(reports->all.size(), 7U);
    EXPECT_EQ(record(), newInstallation);
}

}  // namespace
}  // namespace nimbuscope::testing
