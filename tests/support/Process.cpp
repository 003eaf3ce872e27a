#include "tests/support/Process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

namespace nimbuscope::testing {
namespace {

struct Pipe {
    std::array<int, 2> ends{};
    Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
};

/// Starts a program on these descriptors.
pid_t start(std::vector<std::string> command, std::array<int, 3> descriptors) {
    std::vector<char*> arguments;
    for (std::string& text : command) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        for (int number = 0; number < 3; ++number) {
            ::dup2(descriptors[static_cast<std::size_t>(number)], number);
        }
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    return child;
}

/// All that was written to a file in memory, which is closed.
std::string taken(int file) {
    std::string text(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(::pread(file, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    ::close(file);
    return text;
}

}  // namespace

Outcome run(const std::vector<std::string>& command, std::string_view input,
            const std::map<std::string, std::string>& environment) {
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::string> whole{"env"};
    for (const auto& [name, value] : environment) {
        whole.push_back(name + '=' + value);
    }
    whole.insert(whole.end(), command.begin(), command.end());
    const Pipe in;
    const int output = ::memfd_create("output", MFD_CLOEXEC);
    const int errors = ::memfd_create("errors", MFD_CLOEXEC);
    const pid_t child = start(whole, {in.ends[0], output, errors});
    ::close(in.ends[0]);
    for (ssize_t count = 0; count >= 0 && !input.empty();) {
        count = ::write(in.ends[1], input.data(), input.size());
        input.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    ::close(in.ends[1]);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), taken(output), taken(errors)};
}

void inTwoProcesses(const std::function<bool(int process)>& work) {
    for (const int process : {0, 1}) {
        if (::fork() == 0) {
            ::_exit(work(process) ? 0 : 1);
        }
    }
    for (int status = 0; ::wait(&status) > 0;) {
        EXPECT_EQ(status, 0);
    }
}

std::int64_t killed(std::minstd_rand& random,
                    const std::function<void(std::function<void(std::int64_t)> tell)>& work) {
    const Pipe told;
    const pid_t child = ::fork();
    if (child == 0) {
        work([&](std::int64_t number) {
            if (::write(told.ends[1], &number, sizeof number) != sizeof number) {
                ::_exit(1);
            }
        });
        ::_exit(1);
    }
    ::close(told.ends[1]);
    std::int64_t last = -1;
    const auto next = [&] { return ::read(told.ends[0], &last, sizeof last) == sizeof last; };
    for (auto numbers = random() % 4; numbers > 0 && next(); --numbers) {
    }
    ::usleep(static_cast<useconds_t>(random() % 2000));
    ::kill(child, SIGKILL);
    while (next()) {
    }
    ::close(told.ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the process ended by itself";
    return last;
}

BackgroundProcess::BackgroundProcess(std::vector<std::string> command) {
    command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL", "--"});
    const Pipe out;
    child_ = start(std::move(command), {0, out.ends[1], 2});
    ::close(out.ends[1]);
    output_ = out.ends[0];
}

BackgroundProcess::~BackgroundProcess() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
    ::close(output_);
}

std::string BackgroundProcess::readLine() const {
    std::string line;
    for (char character = 0; ::read(output_, &character, 1) == 1 && character != '\n';) {
        line += character;
    }
    return line;
}

}  // namespace nimbuscope::testing
