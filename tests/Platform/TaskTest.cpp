#include "Platform/Concurrency/Task.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <stdexcept>

namespace nimbuscope::platform {
namespace {

AsyncBody<int> body(int number) {
    if (number % 3 == 1) {
        throw std::runtime_error("one");
    }
    if (number % 3 == 2) {
        throw number;
    }
    co_return number;
}

TEST(TaskPool, everyHandlerIsCalledExactlyOnceWhateverTheBodyDoes) {
    std::array<std::atomic<int>, 300> calls{};
    TaskPool pool(2);
    for (int i = 0; i < 300; ++i) {
        pool.start<int>(body(i), [&calls, i](Result<int, NSError> outcome) {
            EXPECT_EQ(outcome.value_or(-1), i % 3 == 0 ? i : -1);
            EXPECT_TRUE(outcome || (outcome.error().localizedDescription == "one") == (i % 3 == 1));
            ++calls[static_cast<std::size_t>(i)];
        });
    }
    pool.join();
    EXPECT_TRUE(std::ranges::all_of(calls, [](int count) { return count == 1; }));
}

TEST(Completion, thatGoesWithoutAnOutcomeSaysSo) {
    int calls = 0;
    {
        Completion<int> first([&](const auto& outcome) { calls += outcome ? 100 : 1; });
        const Completion<int> second(std::move(first));
    }
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace nimbuscope::platform
