#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/ManualRunLoop.hpp"

namespace nimbuscope::testing {
namespace {

using namespace std::chrono_literals;
using platform::Timer;

/// What every run loop does. `runUntilStopped` runs it until its work calls `stop`.
void keepTheContract(platform::RunLoop& loop, const std::function<void()>& runUntilStopped,
                     const std::function<void()>& stop) {
    std::string log;
    const auto note = [&](char letter) { return [&log, letter] { log += letter; }; };
    loop.asyncAfter(24h, note('x'));
    loop.async([&] { (note('a')(), loop.async(note('c'))); });
    loop.async([&] { (note('b')(), loop.asyncAfter(1ms, [&] { (note('d')(), stop()); })); });
    EXPECT_EQ(log, "");
    runUntilStopped();
    EXPECT_EQ(log, "abcd");

    int count = 0;
    const auto once = std::make_shared<Timer>(1ms, false, [&](Timer&) { log += 'o'; });
    const auto never = std::make_shared<Timer>(1ms, true, [&](Timer&) { log += 'n'; });
    const auto thrice = std::make_shared<Timer>(10ms, true, [&](Timer& timer) {
        log += 't';
        if (++count == 3) {
            timer.invalidate();
            loop.asyncAfter(30ms, stop);
        }
    });
    for (const auto& timer : {once, never, thrice}) {
        loop.add(timer);
    }
    never->invalidate();
    runUntilStopped();
    EXPECT_EQ(log, "abcdottt");
    EXPECT_FALSE(once->isValid());
}

TEST(RunLoop, runsWorkInOrderAndFiresTimersUntilTheyAreInvalid) {
    platform::MainRunLoop real;
    real.stop();
    real.run();  // for good, if it missed what came before
    keepTheContract(real, [&] { real.run(); }, [&] { real.stop(); });
    ManualRunLoop manual;
    keepTheContract(manual, [&] { manual.advance(1h); }, [] {});
}

TEST(RunLoop, letsTimersShareWakeUpsWithinTheirTolerances) {
    ManualRunLoop loop;
    std::vector<std::chrono::nanoseconds> dates;
    for (const auto interval : {600s, 640s}) {
        const auto note = [&](Timer&) { dates.push_back(loop.elapsed()); };
        loop.add(std::make_shared<Timer>(interval, true, note, interval / 10));
    }
    loop.advance(659s);
    EXPECT_TRUE(dates.empty());
    loop.advance(1s);
    EXPECT_EQ(dates, std::vector<std::chrono::nanoseconds>(2, 660s));
    EXPECT_EQ(loop.wakeUps, 1);
    loop.advance(24h - 660s);
    EXPECT_EQ(dates.size(), 143U + 134U) << "dates were lost or drifted";
    EXPECT_LT(loop.wakeUps, 260);
}

TEST(Timer, thatIsFiredByHandKeepsItsPlanIfItRepeats) {
    ManualRunLoop loop;
    int calls = 0;
    const auto repeating = std::make_shared<Timer>(10s, true, [&](Timer&) { ++calls; });
    const auto single = std::make_shared<Timer>(10s, false, [&](Timer&) { calls += 100; });
    for (const auto& timer : {repeating, single}) {
        loop.add(timer);
        timer->fire();
    }
    EXPECT_EQ(calls, 101);
    loop.advance(35s);
    EXPECT_EQ(calls, 104);
}

}  // namespace
}  // namespace nimbuscope::testing
