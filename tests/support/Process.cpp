#include "tests/support/Process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string_view>

namespace nimbuscope::testing {
namespace {

struct Pipe {
    std::array<int, 2> ends{};
    Pipe() { static_cast<void>(::pipe2(ends.data(), O_CLOEXEC)); }
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& additions) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text(*variable);
        if (!additions.contains(text.substr(0, text.find('=')))) {
            variables.push_back(text);
        }
    }
    for (const auto& [name, value] : additions) {
        variables.push_back(name + '=' + value);
    }
    return variables;
}

/// Appends what is there to read; closes the descriptor at its end.
void drain(pollfd& source, std::string& into) {
    std::array<char, 1U << 16U> chunk;
    const ssize_t count = ::read(source.fd, chunk.data(), chunk.size());
    if (count > 0) {
        into.append(chunk.data(), static_cast<std::size_t>(count));
    } else {
        ::close(source.fd);
        source.fd = -1;
    }
}

/// Writes what fits; closes the descriptor when all is written or nobody reads.
void feed(pollfd& target, std::string_view& rest) {
    const ssize_t count = rest.empty() ? -1 : ::write(target.fd, rest.data(), rest.size());
    if (count >= 0) {
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    if (count < 0 || rest.empty()) {
        ::close(target.fd);
        target.fd = -1;
    }
}

}  // namespace

Outcome run(const std::vector<std::string>& command, const std::string& input,
            const std::map<std::string, std::string>& environment) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe in;
    Pipe out;
    Pipe err;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.ends[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err.ends[1], 2);
    auto arguments = command;
    auto variables = environmentWith(environment);
    pid_t child = -1;
    const int failed = ::posix_spawn(&child, command[0].c_str(), &actions, nullptr,
                                     pointers(arguments).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    for (const int end : {in.ends[0], out.ends[1], err.ends[1]}) {
        ::close(end);
    }
    Outcome outcome;
    ::fcntl(in.ends[1], F_SETFL, O_NONBLOCK);
    std::array<pollfd, 3> ends{
        {{in.ends[1], POLLOUT, 0}, {out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    std::string_view rest = input;
    while (ends[0].fd >= 0 || ends[1].fd >= 0 || ends[2].fd >= 0) {
        ::poll(ends.data(), ends.size(), -1);
        if (ends[0].revents != 0) {
            feed(ends[0], rest);
        }
        if (ends[1].revents != 0) {
            drain(ends[1], outcome.output);
        }
        if (ends[2].revents != 0) {
            drain(ends[2], outcome.errors);
        }
    }
    int status = 0;
    if (failed == 0 && ::waitpid(child, &status, 0) == child) {
        outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    return outcome;
}

BackgroundProcess::BackgroundProcess(std::vector<std::string> command) {
    command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL", "--"});
    const Pipe out;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], 1);
    static_cast<void>(
        ::posix_spawnp(&child_, command[0].c_str(), &actions, nullptr, pointers(command).data(), environ));
    posix_spawn_file_actions_destroy(&actions);
    ::close(out.ends[1]);
    output_ = out.ends[0];
}

BackgroundProcess::~BackgroundProcess() {
    if (child_ > 0) {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }
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
