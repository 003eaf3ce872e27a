#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

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

/// A process that saves the records after number `stored`, each when it has told its number, until it is
/// killed. Returns the last number told.
std::int64_t killedSaving(const TemporaryDirectory& directory, std::int64_t stored,
                          std::minstd_rand& random) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        auto service = start(directory);
        for (std::int64_t number = stored + 1; ::write(ends[1], &number, sizeof number) > 0; ++number) {
            service.setPreferences(numbered(number));
        }
    }
    ::close(ends[1]);
    const auto next = [&] { return ::read(ends[0], &stored, sizeof stored) == sizeof stored; };
    for (auto saves = 1 + random() % 4; saves > 0 && next(); --saves) {
    }
    ::usleep(static_cast<useconds_t>(random() % 2000));
    ::kill(child, SIGKILL);
    while (next()) {
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the process ended by itself";
    return stored;
}

TEST(PreferencesServiceProcesses, killedDuringASaveTheRecordIsTheOldOrTheNewOne) {
    const TemporaryDirectory directory;
    std::minstd_rand random(20);
    std::int64_t stored = 0;
    start(directory).setPreferences(numbered(stored));
    for (int kill = 0; kill < 200; ++kill) {
        const std::int64_t told = killedSaving(directory, stored, random);
        const AppPreferences record = start(directory).preferences();
        stored = record.main.launchesCount;
        ASSERT_TRUE(stored == told || stored == told - 1) << stored << ' ' << told;
        ASSERT_EQ(record, numbered(stored)) << "kill " << kill;
    }
    EXPECT_GT(stored, 100);
}

TEST(PreferencesServiceProcesses, changesByTwoProcessesAtOnceAreAllKept) {
    const TemporaryDirectory directory;
    for (int process = 0; process < 2; ++process) {
        if (::fork() == 0) {
            auto service = start(directory);
            for (int i = 0; i < 100; ++i) {
                service.modifyPreferences([](AppPreferences& preferences) {
                    ++preferences.main.launchesCount;
                    ::usleep(500);  // room for the other process, if the record were not locked
                });
            }
            ::_exit(0);
        }
    }
    while (::wait(nullptr) > 0) {
    }
    EXPECT_EQ(start(directory).preferences().main.launchesCount, 201);
}

}  // namespace
}  // namespace nimbuscope::testing
