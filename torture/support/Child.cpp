#include "torture/support/Child.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace nimbuscope::torture {
namespace {

int statusOfChild(const std::function<int()>& work) {
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        const int code = work();
        std::fflush(stdout);
        ::_exit(code);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

}  // namespace

void expectSoundInChild(const std::function<void()>& work) {
    const int status = statusOfChild([&] {
        work();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_FALSE(WIFSIGNALED(status)) << "ended by a signal: " << ::strsignal(WTERMSIG(status));
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << "exit code " << WEXITSTATUS(status);
}

void abandonInChild(const std::function<void()>& work) {
    const int status = statusOfChild([&] {
        work();
        return 0;
    });
    ASSERT_EQ(status, 0);
}

}  // namespace nimbuscope::torture
