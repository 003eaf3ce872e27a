#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "ShellCompletion.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* beginning = R"(#compdef nimbuscope
# Completion of nimbuscope for zsh, written by: nimbuscope completion zsh
)";

constexpr const char* end = R"(
if [[ $funcstack[1] == _nimbuscope ]]; then
    _nimbuscope "$@"
else
    compdef _nimbuscope nimbuscope
fi
)";

constexpr const char* dispatch = R"(    case $state in
    command) _describe command commands ;;
    value) (( $+functions[{0}_$line[1]] )) && {0}_$line[1] ;;
    esac
)";

/// In single quotes, and so that `_arguments` and `_describe` take it for plain text.
std::string plain(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += R"('\'')";
        } else {
            result += c == '\\' || c == ':' || c == '[' || c == ']' ? std::string{'\\', c} : std::string{c};
        }
    }
    return result;
}

std::string functionOf(const CommandDescription& command) {
    std::string name = command.path.empty() ? "_nimbuscope" : "_nimbuscope_" + command.path;
    std::ranges::replace(name, ' ', '_');
    return name;
}

/// ":NAME:" and what stands for a value.
std::string valueOf(const OptionDescription& option) {
    std::string choices = " ";
    if (!option.values.empty()) {
        choices = fmt::format("({})", fmt::join(option.values, " "));
    } else if (option.kind == ValueKind::file) {
        choices = "_files";
    } else if (option.kind == ValueKind::directory) {
        choices = "_files -/";
    }
    return ':' + plain(option.valueName) + ':' + choices;
}

std::string argumentOf(const OptionDescription& option) {
    std::vector<std::string> excluded = option.names;
    excluded.insert(excluded.end(), option.excludes.begin(), option.excludes.end());
    if (!option.isInherited) {
        excluded = {"-", "*"};  // what ends the program excludes everything
    }
    std::string text;
    for (const std::string& name : option.names) {
        const bool hasValue = option.kind != ValueKind::none;
        const char* mark = !hasValue ? "" : name.starts_with("--") ? "=" : "+";
        text += fmt::format(" \\\n        '({}){}{}[{}]{}'", fmt::join(excluded, " "), name, mark,
                            plain(option.description), hasValue ? valueOf(option) : "");
    }
    return text;
}

std::string function(const CommandDescription& command) {
    const std::string name = functionOf(command);
    std::string text = fmt::format("\n{}() {{\n", name);
    if (!command.commands.empty()) {
        text += "    local curcontext=$curcontext state line\n    local -a commands=(\n";
        for (const CommandDescription& below : command.commands) {
            text += fmt::format("        '{}:{}'\n", below.name, plain(below.description));
        }
        text += "    )\n";
    }
    // What stands behind the name of a command is the command's.
    text += command.commands.empty() ? "    _arguments" : "    _arguments -C -A '-*'";
    for (const OptionDescription& option : command.allOptions()) {
        text += argumentOf(option);
    }
    int position = 0;
    for (const OptionDescription& positional : command.positionals) {
        const std::string number = positional.isRepeated ? "*" : std::to_string(++position);
        text += fmt::format(" \\\n        '{}{}'", number, valueOf(positional));
    }
    if (!command.commands.empty()) {
        text += " \\\n        '1:command:->command' '*::value:->value'\n";
        text += fmt::format(dispatch, name);
    } else {
        text += '\n';
    }
    return text + "}\n";
}

}  // namespace

std::string zshCompletion(const CommandDescription& program) {
    std::string text = beginning;
    for (const CommandDescription* command : program.all()) {
        text += function(*command);
    }
    return text + end;
}

}  // namespace nimbuscope::tool
