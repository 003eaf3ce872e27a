#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {

/// Runs the command line inside a directory of the test's own.
struct ToolTest : ::testing::Test {
    static constexpr auto* tool = NIMBUSCOPE_BINARY_DIRECTORY "/tools/nimbuscope/nimbuscope ";
    TemporaryDirectory directory;

    /// Runs `nimbuscope ARGUMENTS` by way of a shell.
    [[nodiscard]] Outcome call(const std::string& arguments, const std::string& input = {},
                               const std::string& locale = "C") const {
        return run({"/bin/sh", "-c", "cd '" + directory.path() + "' && exec " + tool + arguments}, input,
                   {{"LC_ALL", locale}});
    }
    /// What a command that succeeds prints.
    [[nodiscard]] std::string output(const std::string& arguments, const std::string& input = {},
                                     const std::string& locale = "C") const {
        const Outcome done = call(arguments, input, locale);
        EXPECT_EQ(done.exitCode, 0) << arguments;
        EXPECT_EQ(done.errors, "") << arguments;
        return done.output;
    }
    /// What a command that fails says, without the name of the tool: one line. It prints nothing and leaves
    /// no file `out`.
    [[nodiscard]] std::string failure(const std::string& arguments, int exitCode = 1,
                                      const std::string& input = {}) const {
        const Outcome failed = call(arguments, input);
        EXPECT_EQ(failed.exitCode, exitCode) << arguments;
        EXPECT_EQ(failed.output, "") << arguments;
        EXPECT_FALSE(std::filesystem::exists(directory.path("out"))) << arguments;
        EXPECT_TRUE(failed.errors.starts_with("nimbuscope: ") && failed.errors.ends_with('\n') &&
                    std::ranges::count(failed.errors, '\n') == 1)
            << failed.errors;
        return failed.errors.substr(12, failed.errors.size() - 13);
    }
    [[nodiscard]] std::string read(const std::string& name) const { return readFile(directory.path(name)); }
    void write(const std::string& name, std::string_view bytes) const {
        std::filesystem::create_directories(std::filesystem::path(directory.path(name)).parent_path());
        writeFile(directory.path(name), bytes);
    }
};

}  // namespace nimbuscope::testing
