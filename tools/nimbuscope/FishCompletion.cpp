#include <fmt/format.h>
#include <fmt/ranges.h>

#include <set>

#include "ShellCompletion.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* functions = R"(
# True behind the words of a command and COUNT values without a name, or any number of these.
function __nimbuscope_at --argument-names count
    set -l command $argv[2..]
    set -l words
    set -l option
    for word in (commandline -opc)[2..]
        if test -n "$option"
            set option
        else if contains -- $word $__nimbuscope_valued
            set option $word
        else if not string match -q -- '-?*' $word
            set -a words $word
        end
    end
    for i in (seq (count $command))
        test "$words[$i]" = $command[$i]; or return 1
    end
    test $count = any; or test (count $words) -eq (math $count + (count $command))
end

complete -c nimbuscope -f
)";

std::string inQuotes(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' || c == '\\' ? std::string{'\\', c} : std::string{c};
    }
    return result + '\'';
}

/// A line that says what comes behind `count` values of a command.
std::string line(const CommandDescription& command, std::string_view count, const std::string& choice) {
    const std::string words = command.path.empty() ? "" : ' ' + command.path;
    return fmt::format("complete -c nimbuscope -n '__nimbuscope_at {}{}' {}\n", count, words, choice);
}

/// The words or files that stand for a value.
std::string choices(const OptionDescription& option) {
    if (!option.values.empty()) {
        return fmt::format(" -a '{}'", fmt::join(option.values, " "));
    }
    if (option.kind == ValueKind::directory) {
        return " -a '(__fish_complete_directories)'";
    }
    return option.kind == ValueKind::file ? " -F" : "";
}

std::string optionLine(const CommandDescription& command, const OptionDescription& option) {
    std::string choice;
    for (const std::string& name : option.names) {
        const bool isLong = name.starts_with("--");
        choice += fmt::format("{} {} ", isLong ? "-l" : "-s", name.substr(isLong ? 2 : 1));
    }
    choice += "-d " + inQuotes(option.description);
    if (option.kind != ValueKind::none) {
        choice += (option.kind == ValueKind::file ? " -r" : " -x") + choices(option);
    }
    return line(command, command.commands.empty() ? "any" : "0", choice);
}

std::string lines(const CommandDescription& command) {
    std::string text = '\n' + std::string("# nimbuscope ") + command.path + '\n';
    for (const CommandDescription& below : command.commands) {
        text += line(command, "0", fmt::format("-a {} -d {}", below.name, inQuotes(below.description)));
    }
    int position = 0;
    for (const OptionDescription& positional : command.positionals) {
        const std::string count = positional.isRepeated ? "any" : std::to_string(position++);
        if (const std::string choice = choices(positional); !choice.empty()) {
            text += line(command, count, choice.substr(1));
        }
    }
    for (const OptionDescription& option : command.allOptions()) {
        text += optionLine(command, option);
    }
    return text;
}

}  // namespace

std::string fishCompletion(const CommandDescription& program) {
    std::set<std::string> valued;
    std::string text;
    for (const CommandDescription* command : program.all()) {
        for (const OptionDescription& option : command->options) {
            if (option.kind != ValueKind::none) {
                valued.insert(option.names.begin(), option.names.end());
            }
        }
        text += lines(*command);
    }
    return fmt::format(
               "# Completion of nimbuscope for fish, written by: nimbuscope completion fish\n\n"
               "# Options with a value.\nset -g __nimbuscope_valued {}\n",
               fmt::join(valued, " ")) +
           functions + text;
}

}  // namespace nimbuscope::tool
