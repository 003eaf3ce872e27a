#include <gtest/gtest.h>
#include <unistd.h>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Coding/JSONEncoder.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

struct Reports final : ErrorTrackingService {
    std::vector<std::string> all;
    void track(const platform::NSError& error) override { all.push_back(error.localizedDescription); }
};

struct Observer final : PreferencesServiceObserver {
    std::function<void(PreferencesService&)> observed;
    explicit Observer(decltype(observed) action) : observed(std::move(action)) {}
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
    std::string_view record() {
        stored = group->object(key).value();
        return platform::textOf(*stored->as<platform::Data>());
    }
    std::optional<platform::DefaultsValue> stored;
};

TEST_F(PreferencesServiceTest, theStandardStoreIsCopiedOnceOverWhateverIsThere) {
    put("nbcOpacity", std::int64_t{10});
    put("isMigrated", std::int64_t{1});  // not the boolean
    for (const std::int64_t opacity : {55, 60}) {
        ASSERT_TRUE(standard.set("nbcOpacity", opacity));
        EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
        ASSERT_TRUE(group->removeObject(key));
    }
}

TEST_F(PreferencesServiceTest, olderSettingsThatCouldNotBeReadCountAtTheNextStart) {
    ASSERT_TRUE(standard.set("nbcOpacity", std::int64_t{55}));
    FailingUserDefaults busy(std::make_shared<InMemoryUserDefaults>());
    busy.readFault = platform::DefaultsError::Code::busy;
    static_cast<void>(PreferencesServiceImpl(busy, store, reports, std::make_shared<FixedLocale>(true)));
    EXPECT_EQ(std::exchange(reports->all, {}).size(), 1U);
    EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
}

TEST_F(PreferencesServiceTest, makesOrMigratesTheRecordAtTheFirstStartAndWritesNothingAtTheSecond) {
    const std::pair<platform::DefaultsValue, std::string> cases[] = {
        {false, newInstallation},
        {"text", newInstallation},
        {platform::dataOf(R"({"version":10,"main":{}})"),
         R"({"version":12,"main":{"isHapticEnabled":true,"isStartupPushSent":true}})"},
    };
    for (const auto& [before, after] : cases) {
        store->writeFault.reset();
        put(key, before);
        for (int round = 0; round < 2; ++round) {
            static_cast<void>(start());
            EXPECT_EQ(record(), after);
            store->writeFault = platform::DefaultsError::Code::readOnly;
        }
    }
    EXPECT_TRUE(reports->all.empty());
}

TEST_F(PreferencesServiceTest, anUnreadableRecordIsReportedAndReplacedByTheOldSettings) {
    const std::string none = "expected an object, found an array";
    const std::string version = "version: 13 is none of the allowed values";
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
    for (const auto& [bytes, atStart, fault] : cases) {
        put(key, platform::dataOf(bytes));
        auto service = start();
        EXPECT_EQ(std::exchange(reports->all, {}), atStart);
        EXPECT_EQ(record() == bytes, !atStart.empty());

        ::testing::internal::CaptureStderr();
        const AppPreferences replacement = service.preferences();
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "    Unable to parse AppPreferences - please check if migrations are correct!\n    \n"
                  " Preferences will be reset to default \n" +
                      fault + "\n");
        EXPECT_EQ(replacement.radar.overlayOpacity, 55);
        EXPECT_EQ(record(), platform::JSONEncoder().encode(replacement).value());
        EXPECT_EQ(service.preferences(), replacement);
        EXPECT_EQ(std::exchange(reports->all, {}), std::vector{fault});
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
    service.addObserver(std::make_shared<Observer>([&](auto&) { told += 'k'; }));  // kept by the service
    service.set(preference::isAlertsEnabled{true});
    EXPECT_EQ(told, "217k7k");
    EXPECT_TRUE(service.preferences().layer.isAlertsEnabled);
}

TEST_F(PreferencesServiceTest, whatCannotBeStoredIsReportedAndLeavesTheRecord) {
    auto service = start();
    const auto observer = std::make_shared<Observer>([](auto&) { ADD_FAILURE() << "told of nothing"; });
    service.addObserver(observer);
    service.set(preference::pushToken{"\xFF"});
    store->writeFault = platform::DefaultsError::Code::full;
    service.set(preference::overlayOpacity{5});
    service.setPreferences({});
    EXPECT_EQ(service.preferences(), AppPreferences());
    store->writeFault.reset();
    store->readFault = platform::DefaultsError::Code::damaged;
    service.set(preference::overlayOpacity{5});
    EXPECT_EQ(service.preferences(), AppPreferences());
    EXPECT_EQ(reports->all.size(), 5U);
    EXPECT_EQ(record(), newInstallation);
}

/// A service over the stores in the directory, as each process opens its own. None is open at a fork.
PreferencesServiceImpl start(const TemporaryDirectory& directory) {
    platform::SQLiteUserDefaultsSuites suites(directory.path(), 60000);
    return {*suites.standard().value(), suites.suite(appGroupIdentifier).value(), nullptr,
            std::make_shared<FixedLocale>(true)};
}

/// A record that fills many pages of the file and in which one number is everywhere.
AppPreferences numbered(std::int64_t number) {
    AppPreferences record;
    record.main.launchesCount = number;
    record.notifications.pushToken = std::string(50000, static_cast<char>('a' + number % 26));
    record.radar.overlayOpacity = number;
    return record;
}

TEST(PreferencesServiceProcesses, killedDuringASaveTheRecordIsTheOldOrTheNewOne) {
    const TemporaryDirectory directory;
    std::minstd_rand random(20);
    std::int64_t stored = 0;
    start(directory).setPreferences(numbered(stored));
    for (int kill = 0; kill < 200; ++kill) {
        const std::int64_t told = killed(random, [&](const auto& tell) {
            auto service = start(directory);
            for (;;) {
                tell(++stored);
                service.setPreferences(numbered(stored));
            }
        });
        const std::int64_t expected = std::max(told, stored);
        const AppPreferences record = start(directory).preferences();
        stored = record.main.launchesCount;
        ASSERT_TRUE(stored == expected || stored == told - 1) << stored << ' ' << told;
        ASSERT_EQ(record, numbered(stored)) << "kill " << kill;
    }
    EXPECT_GT(stored, 100);
}

TEST(PreferencesServiceProcesses, changesByTwoProcessesAtOnceAreAllKept) {
    const TemporaryDirectory directory;
    inTwoProcesses([&](int /*process*/) {
        auto service = start(directory);
        for (int i = 0; i < 100; ++i) {
            service.modifyPreferences([](AppPreferences& preferences) {
                ++preferences.main.launchesCount;
                ::usleep(500);  // room for the other process, if the record were not locked
            });
        }
        return true;
    });
    EXPECT_EQ(start(directory).preferences().main.launchesCount, 201);
}

}  // namespace
}  // namespace nimbuscope::testing
