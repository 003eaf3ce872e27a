// Several processes over one store, some of them killed.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <thread>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope {
namespace {

/// A service over the stores in `directory`, as each process opens its own.
PreferencesServiceImpl start(const test::TemporaryDirectory& directory) {
    platform::SQLiteUserDefaultsSuites suites(directory.path().string());
    return {*suites.standard().value(), suites.suite(appGroupIdentifier).value(), nullptr,
            std::make_shared<test::FixedLocale>(true)};
}

/// A process that runs `work` and ends. No store may be open when it begins.
template <class Work>
pid_t fork(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

int exitStatus(pid_t child) {
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

/// A record that fills many pages of the file and all of whose parts tell its number.
AppPreferences numbered(std::int64_t number) {
    AppPreferences record;
    record.main.launchesCount = number;
    record.notifications.pushToken = std::string(50'000, static_cast<char>('a' + number % 26));
    record.radar.overlayOpacity = number;
    return record;
}

/// Saves one record after the other, each once the one before is acknowledged through `acknowledge`.
[[noreturn]] void saveForEver(const test::TemporaryDirectory& directory, int acknowledge) {
    auto service = start(directory);
    for (std::int64_t number = service.preferences().main.launchesCount + 1;; ++number) {
        service.setPreferences(numbered(number));
        static_cast<void>(::write(acknowledge, &number, sizeof number));
    }
}

/// The last number that the killed process acknowledged, or `none`.
std::int64_t lastAcknowledged(int acknowledged, std::int64_t none) {
    std::int64_t number = none;
    while (::read(acknowledged, &number, sizeof number) == sizeof number) {
    }
    return number;
}

TEST(PreferencesServiceProcesses, KilledDuringASaveTheRecordIsTheOldOrTheNewOne) {
    const test::TemporaryDirectory directory;
    start(directory).setPreferences(numbered(1));
    std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the moments need not differ between runs
    for (int round = 0; round < 200; ++round) {
        const std::int64_t before = start(directory).preferences().main.launchesCount;
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const pid_t child = fork([&] { saveForEver(directory, pipe[1]); });
        ::close(pipe[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 12'000));
        ::kill(child, SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(exitStatus(child)));
        const std::int64_t acknowledged = lastAcknowledged(pipe[0], before);
        ::close(pipe[0]);
        const AppPreferences record = start(directory).preferences();
        ASSERT_EQ(record, numbered(record.main.launchesCount)) << "round " << round;
        ASSERT_GE(record.main.launchesCount, acknowledged);
        ASSERT_LE(record.main.launchesCount, acknowledged + 1);
    }
    EXPECT_GT(start(directory).preferences().main.launchesCount, 1);
}

TEST(PreferencesServiceProcesses, LoseNoneOfEachOthersChanges) {
    const test::TemporaryDirectory directory;
    constexpr int changes = 60;
    std::vector<pid_t> children;
    for (const bool isExtension : {false, true}) {
        children.push_back(fork([&directory, isExtension] {
            auto service = start(directory);
            for (int i = 0; i < changes; ++i) {
                service.modifyPreferences([&](AppPreferences& preferences) {
                    ++preferences.main.launchesCount;
                    ++(isExtension ? preferences.radar.overlayOpacity : preferences.main.launchesCount);
                });
            }
        }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(exitStatus(child), 0);
    }
    auto service = start(directory);
    EXPECT_EQ(service.preferences().main.launchesCount, 1 + 3 * changes);
    EXPECT_EQ(service.preferences().radar.overlayOpacity, 80 + changes);
}

TEST(PreferencesServiceProcesses, SeeEachOthersChangesOnTheNextRead) {
    const test::TemporaryDirectory directory;
    int go[2];
    ASSERT_EQ(::pipe(go), 0);
    const pid_t extension = fork([&] {
        char signal = 0;
        static_cast<void>(::read(go[0], &signal, 1));
        start(directory).set(preference::units{UnitsPreference::Hybrid});
    });
    auto service = start(directory);
    EXPECT_EQ(service.preferences().map.units, UnitsPreference::Metric);
    EXPECT_EQ(::write(go[1], "", 1), 1);
    EXPECT_EQ(exitStatus(extension), 0);
    EXPECT_EQ(service.preferences().map.units, UnitsPreference::Hybrid);
}

}  // namespace
}  // namespace nimbuscope
