// Lets every file operation and every allocation of many scenarios fail, one after the other: once, and that
// one with all behind it. Nothing crashes, nothing leaks, what is stored is as before or as after.
//
// Work that runs out of memory throws std::bad_alloc or says that it failed. Where it cannot, which is so of
// hashing and of the destructors of the JSON trees that migrations edit, the process stops with a message.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <csignal>
#include <filesystem>
#include <new>

#include "tests/support/TemporaryDirectory.hpp"
#include "torture/support/Child.hpp"
#include "torture/support/FailingAllocations.hpp"
#include "torture/support/FailingFiles.hpp"
#include "torture/support/Scenario.hpp"
#include "torture/support/Torture.hpp"

namespace nimbuscope::torture {
namespace {

using nimbuscope::testing::TemporaryDirectory;

/// Exit codes of a process that worked with a fuse.
enum Code : int { sound = 0, failed = 1, notBlown = 2 };

/// Runs the work; whether it says that it was done. Out of memory it was not.
bool carriesOut(const Scenario& scenario, const std::string& directory) {
    try {
        return scenario.work(directory);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Whether a process that had no memory left stopped on purpose, and said so.
bool isStop(const Ending& ending) {
    return ending.code == -SIGABRT && (ending.errors.starts_with("Fatal error: ") ||
                                       ending.errors.find("std::bad_alloc") != std::string::npos);
}

class Faults : public ::testing::TestWithParam<Scenario> {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(directory_.path("before"));
        scenario_.prepare(directory_.path("before"));
        const std::string after = copy("after");
        ASSERT_TRUE(scenario_.work(after) || !scenario_.tells) << "the work fails by itself";
        before_ = scenario_.state(copy("state"));
        after_ = scenario_.state(after);
        if (scenario_.part) {
            const std::string part = copy("part");
            scenario_.part(part);
            part_ = scenario_.state(part);
        }
        try {  // what the first exception of a process takes and keeps
            throw std::bad_alloc();
        } catch (const std::bad_alloc&) {
        }
    }

    [[nodiscard]] std::string copy(const std::string& name) const {
        std::filesystem::remove_all(directory_.path(name));
        std::filesystem::copy(directory_.path("before"), directory_.path(name),
                              std::filesystem::copy_options::recursive);
        return directory_.path(name);
    }

    /// Whether the work leaves memory behind. What it takes once and keeps it has already taken.
    [[nodiscard]] bool leaks(Fuse& fuse, std::int64_t first, bool forEver) const {
        const std::string place = copy("again");
        const std::int64_t blocks = liveBlocks();
        fuse.arm(first, forEver);
        static_cast<void>(carriesOut(scenario_, place));
        fuse.disarm();
        return liveBlocks() != blocks;
    }

    void expectOldOrNew(const std::string& place, bool isDone) const {
        const std::string found = scenario_.state(place);
        EXPECT_TRUE(found == after_ || (!isDone && (found == before_ || found == part_)))
            << "said to be " << (isDone ? "done" : "undone") << ", found:\n"
            << found << "\nbefore:\n"
            << before_ << "\nafter:\n"
            << after_;
    }

    /// The work with a fuse, and a look at what it leaves.
    [[nodiscard]] int disturb(Fuse& fuse, std::int64_t first, bool forEver, const std::string& place) const {
        const std::int64_t blocks = liveBlocks();
        fuse.arm(first, forEver);
        const bool isDone = carriesOut(scenario_, place);
        fuse.disarm();
        const bool mayLeak = liveBlocks() != blocks;
        EXPECT_TRUE(!mayLeak || !leaks(fuse, first, forEver)) << "memory was left behind";
        expectOldOrNew(place, isDone && scenario_.tells);
        return ::testing::Test::HasFailure() ? failed : fuse.hasBlown() ? sound : notBlown;
    }

    /// Lets the first, second … call fail until none is left to fail; how many there were.
    int failEach(Fuse& fuse, bool forEver) {
        for (int first = 1;; ++first) {
            SCOPED_TRACE((forEver ? "for ever from call " : "call ") + std::to_string(first));
            const std::string place = copy("disturbed");
            const Ending ending = inChild([&] { return disturb(fuse, first, forEver, place); });
            if (ending.code == notBlown) {
                return first - 1;
            }
            if (isStop(ending)) {
                expectSoundInChild([&] { expectOldOrNew(place, false); });
                ++stops_;
                continue;
            }
            EXPECT_EQ(ending.code, sound)
                << "its exit code, or minus its signal: " << ending.code << "; it said:\n"
                << ending.errors;
            if (HasFailure()) {
                return first;
            }
        }
    }

    const Scenario& scenario_ = GetParam();
    TemporaryDirectory directory_;
    std::string before_, after_, part_;
    int stops_ = 0;
};

TEST_P(Faults, ofFiles) {
    Row row("failing file operations: " + scenario_.name);
    row += failEach(fileFuse(), false) + failEach(fileFuse(), true);
    EXPECT_EQ(stops_, 0);
}

TEST_P(Faults, ofAllocations) {
    Row row("failing allocations: " + scenario_.name);
    row += failEach(allocationFuse(), false) + failEach(allocationFuse(), true);
    row.note(stops_ > 0 ? std::to_string(stops_) + " stops" : "");
}

const auto nameOf = [](const auto& info) {
    std::string name = info.param.name;
    std::ranges::replace_if(name, [](char c) { return std::isalnum(c) == 0; }, '_');
    return name;
};
INSTANTIATE_TEST_SUITE_P(Store, Faults, ::testing::ValuesIn(storeScenarios()), nameOf);
INSTANTIATE_TEST_SUITE_P(Cache, Faults, ::testing::ValuesIn(cacheScenarios()), nameOf);
INSTANTIATE_TEST_SUITE_P(Coding, Faults, ::testing::ValuesIn(codingScenarios()), nameOf);

}  // namespace
}  // namespace nimbuscope::torture

int main(int argumentCount, char** arguments) {
    nimbuscope::torture::installFailingFiles();
    return nimbuscope::torture::run(argumentCount, arguments, 1);
}
