#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>

#include "Platform/Concurrency/Task.hpp"

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
    std::atomic<int> values{0};
    std::atomic<int> errors{0};
    {
        TaskPool pool(2);
        for (int i = 0; i < 300; ++i) {
            pool.start<int>(body(i), [&, i](Result<int, NSError> outcome) {
                if (outcome) {
                    EXPECT_EQ(*outcome, i);
                    ++values;
                } else {
                    EXPECT_EQ(outcome.error().localizedDescription == "one", i % 3 == 1);
                    ++errors;
                }
            });
        }
        pool.join();
        EXPECT_EQ(values + errors, 300);
    }
    EXPECT_EQ(values, 100);
    EXPECT_EQ(errors, 200);
}

TEST(Completion, thatGoesWithoutAnOutcomeSaysSo) {
    int calls = 0;
    {
        Completion<int> first([&](const Result<int, NSError>& outcome) {
            ++calls;
            EXPECT_FALSE(outcome);
        });
        const Completion<int> second(std::move(first));
    }
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace nimbuscope::platform
