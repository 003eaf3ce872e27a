#include "torture/support/Child.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace nimbuscope::torture {

Ending inChild(const std::function<int()>& work) {
    std::fflush(stdout);
    const int errors = ::memfd_create("errors", 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(errors, STDERR_FILENO);
        const int code = work();
        std::fflush(stdout);
        ::_exit(code);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    Ending ending{.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
                  .errors = std::string(static_cast<std::size_t>(::lseek(errors, 0, SEEK_END)), '\0')};
    EXPECT_EQ(::pread(errors, ending.errors.data(), ending.errors.size(), 0),
              static_cast<ssize_t>(ending.errors.size()));
    ::close(errors);
    return ending;
}

void expectSoundInChild(const std::function<void()>& work) {
    const Ending ending = inChild([&] {
        work();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(ending.code, 0) << "its exit code, or minus its signal; it said:\n" << ending.errors;
}

}  // namespace nimbuscope::torture
