#include <gtest/gtest.h>

#include <future>

#include "Platform/Concurrency/SerialQueue.hpp"
#include "tests/support/ManualRunLoop.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;
using platform::Timer;

struct ManualFixture {
    ManualRunLoop loop;
    void run(const bool& isDone) {
        while (!isDone) {
            loop.advance(1ms);
        }
    }
};

struct MainFixture {
    platform::MainRunLoop loop;
    void run(const bool&) { loop.run(); }
};

template <class Fixture>
class RunLoopContract : public ::testing::Test {
  protected:
    Fixture fixture_;
    std::string log_;
    bool isDone_ = false;

    /// Runs the loop until `work` of it calls `stop`.
    void run() { fixture_.run(isDone_); }
    void stop() {
        isDone_ = true;
        if constexpr (std::same_as<Fixture, MainFixture>) {
            fixture_.loop.stop();
        }
    }
};

using Loops = ::testing::Types<ManualFixture, MainFixture>;
TYPED_TEST_SUITE(RunLoopContract, Loops);

TYPED_TEST(RunLoopContract, runsWorkInOrderAndLaterWorkLater) {
    platform::RunLoop& loop = this->fixture_.loop;
    loop.asyncAfter(20ms, [this] { this->log_ += 'd'; });
    loop.asyncAfter(40ms, [this] { this->stop(); });
    loop.async([this, &loop] {
        this->log_ += 'a';
        loop.async([this] { this->log_ += 'c'; });
    });
    loop.async([this] { this->log_ += 'b'; });
    EXPECT_EQ(this->log_, "");
    this->run();
    EXPECT_EQ(this->log_, "abcd");
}

TYPED_TEST(RunLoopContract, firesTimersUntilTheyAreInvalid) {
    platform::RunLoop& loop = this->fixture_.loop;
    int count = 0;
    const auto once = std::make_shared<Timer>(1ms, false, [&](Timer&) { this->log_ += 'o'; });
    const auto never = std::make_shared<Timer>(1ms, true, [&](Timer&) { this->log_ += 'n'; });
    const auto thrice = std::make_shared<Timer>(10ms, true, [&](Timer& timer) {
        this->log_ += 't';
        if (++count == 3) {
            timer.invalidate();
            loop.asyncAfter(30ms, [this] { this->stop(); });
        }
    });
    for (const auto& timer : {once, never, thrice}) {
        loop.add(timer);
    }
    never->invalidate();
    this->run();
    EXPECT_EQ(this->log_, "ottt");
    EXPECT_FALSE(once->isValid());
}

TEST(ManualRunLoop, letsTimersShareWakeUpsWithinTheirTolerances) {
    ManualRunLoop loop;
    std::vector<std::chrono::nanoseconds> dates;
    const auto timer = [&](std::chrono::seconds interval) {
        loop.add(std::make_shared<Timer>(
            interval, true, [&](Timer&) { dates.push_back(loop.elapsed()); }, interval / 10));
    };
    timer(600s);
    timer(640s);
    loop.advance(659s);
    EXPECT_TRUE(dates.empty());
    loop.advance(1s);
    EXPECT_EQ(dates, std::vector<std::chrono::nanoseconds>({660s, 660s}));
    EXPECT_EQ(loop.wakeUps, 1);
    loop.advance(24h - 660s);
    EXPECT_EQ(dates.size(), 143U + 134U);
    EXPECT_LT(loop.wakeUps, 260);
    for (std::size_t i = 1; i < dates.size(); ++i) {
        EXPECT_LE(dates[i] - dates[i - 1], 704s);
    }
}

TEST(Timer, thatIsFiredByHandKeepsItsPlanIfItRepeats) {
    ManualRunLoop loop;
    int calls = 0;
    const auto repeating = std::make_shared<Timer>(10s, true, [&](Timer&) { ++calls; });
    const auto single = std::make_shared<Timer>(10s, false, [&](Timer&) { calls += 100; });
    loop.add(repeating);
    loop.add(single);
    repeating->fire();
    single->fire();
    EXPECT_EQ(calls, 101);
    loop.advance(35s);
    EXPECT_EQ(calls, 104);
}

TEST(SerialQueue, runsOnePieceOfWorkAfterAnotherAndDropsWhatDidNotBegin) {
    std::string order;
    std::promise<void> done;
    {
        platform::SerialQueue queue("test");
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            queue.async([&order, letter] { order += letter; });
        }
        queue.asyncAfter(1ms, [&] {
            order += '.';
            done.set_value();
        });
        queue.asyncAfter(1h, [&] { order += '!'; });
        done.get_future().wait();
    }
    EXPECT_EQ(order, "abcdefghijklmnopqrstuvwxyz.");
}

}  // namespace
}  // namespace nimbuscope::testing
