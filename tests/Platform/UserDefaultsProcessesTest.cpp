#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <random>
#include <thread>
#include <vector>

#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

using platform::SQLiteUserDefaultsSuites;

/// Writes counters until it is killed: "a" and "b" together in one transaction, then tells the number.
[[noreturn]] void writeUntilKilled(const std::string& directory, std::int64_t from, int acknowledge) {
    const auto store = SQLiteUserDefaultsSuites(directory).standard().value();
    for (std::int64_t number = from;; ++number) {
        const auto written = store->transaction([&]() -> platform::DefaultsResult<void> {
            const auto a = store->set("a", number);
            return a ? store->set("b", number) : a;
        });
        if (!written || ::write(acknowledge, &number, sizeof number) != sizeof number) {
            ::_exit(1);
        }
    }
}

std::int64_t storedNumber(const std::string& directory, const char* key) {
    const auto value = SQLiteUserDefaultsSuites(directory).standard().value()->object(key);
    const auto* number = value && *value ? (*value)->as<std::int64_t>() : nullptr;
    return number != nullptr ? *number : -1;
}

/// Lets a writer run until it has acknowledged a few writes and a random moment more, kills it, and returns
/// the last number that it acknowledged.
std::int64_t killedWriter(const std::string& directory, std::int64_t from, std::minstd_rand& random) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        writeUntilKilled(directory, from, ends[1]);
    }
    ::close(ends[1]);
    std::int64_t last = -1;
    const auto acknowledged = [&] { return ::read(ends[0], &last, sizeof last) == sizeof last; };
    for (auto i = random() % 4; i > 0 && acknowledged(); --i) {
    }
    for (auto spin = random() % 2000000; spin > 0; --spin) {
        std::atomic_signal_fence(std::memory_order_seq_cst);  // keeps the loop
    }
    ::kill(child, SIGKILL);
    while (acknowledged()) {
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";
    return last;
}

TEST(SQLiteUserDefaultsProcesses, aWriterKilledAtAnyMomentLosesNothingAcknowledgedAndTearsNothing) {
    const TemporaryDirectory directory;
    std::minstd_rand random(20240229);
    std::int64_t acknowledged = -1;
    for (int i = 0; i < 200; ++i) {
        const std::int64_t last = killedWriter(directory.path(), acknowledged + 1, random);
        acknowledged = std::max(acknowledged, last);
        const std::int64_t stored = storedNumber(directory.path(), "a");
        ASSERT_GE(stored, acknowledged) << "kill " << i;
        ASSERT_EQ(stored, storedNumber(directory.path(), "b")) << "kill " << i;
        acknowledged = std::max(acknowledged, stored);
    }
    EXPECT_GT(acknowledged, 100);
}

TEST(SQLiteUserDefaultsProcesses, twoProcessesWriteAThousandKeysEachAndNoneIsLost) {
    const TemporaryDirectory directory;
    std::vector<pid_t> writers;
    for (const std::string name : {"x", "y"}) {
        const pid_t child = ::fork();
        if (child == 0) {
            const auto store = SQLiteUserDefaultsSuites(directory.path(), 60000).standard().value();
            bool isWritten = true;
            for (int i = 0; i < 1000; ++i) {
                isWritten = isWritten && store->set(name + std::to_string(i), std::int64_t{i});
            }
            ::_exit(isWritten ? 0 : 1);
        }
        writers.push_back(child);
    }
    for (const pid_t writer : writers) {
        int status = -1;
        ::waitpid(writer, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(
        SQLiteUserDefaultsSuites(directory.path()).standard().value()->dictionaryRepresentation()->size(),
        2000U);
}

TEST(SQLiteUserDefaultsProcesses, threadsShareOneObjectAndTransactionsDoNotMix) {
    const TemporaryDirectory directory;
    const auto store = SQLiteUserDefaultsSuites(directory.path()).standard().value();
    ASSERT_TRUE(store->set("n", std::int64_t{0}));
    const auto countUp = [&] {
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(store->transaction(
                [&] { return store->set("n", *store->object("n").value()->as<std::int64_t>() + 1); }));
        }
    };
    std::thread other(countUp);
    countUp();
    other.join();
    EXPECT_EQ(store->object("n").value(), std::int64_t{100});
}

}  // namespace
}  // namespace nimbuscope::testing
