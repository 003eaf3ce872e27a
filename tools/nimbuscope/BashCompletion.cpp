#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ShellCompletion.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* beginning =
    R"sh(# Completion of nimbuscope for bash, written by: nimbuscope completion bash

# What can stand at a place: sets `words` and `paths`. False for what is no place. Places are commands, and
# behind them options with a value, "-" for a new option, numbers for values without a name, "*" for more.
_nimbuscope_at() {
    words= paths=
    case $1 in
)sh";

constexpr const char* end = R"sh(    *) return 1 ;;
    esac
}

_nimbuscope() {
    local current=${COMP_WORDS[COMP_CWORD]} command= option= words paths word
    local -i position=1
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $word == = ]]; then
            continue # between an option and its value
        elif [[ $option ]]; then
            option=
        elif [[ $word == -?* ]]; then
            _nimbuscope_at "$command $word" && option=$word
        elif ((position == 1)) && _nimbuscope_at "${command:+$command }$word"; then
            command+=${command:+ }$word
        else
            position+=1
        fi
    done
    [[ $current != = ]] || current=
    if [[ $option ]]; then
        _nimbuscope_at "$command $option"
    elif [[ $current == -* ]]; then
        _nimbuscope_at "$command -"
    else
        _nimbuscope_at "$command $position" || _nimbuscope_at "$command *"
    fi
    COMPREPLY=()
    if [[ $paths ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen "$paths" -- "$current")
    elif [[ $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

complete -F _nimbuscope nimbuscope
)sh";

/// An arm of the `case` statement.
std::string place(const std::string& name, const std::vector<std::string>& words, ValueKind kind) {
    std::string found;
    if (!words.empty()) {
        found = fmt::format("words='{}' ", fmt::join(words, " "));
    } else if (kind == ValueKind::file || kind == ValueKind::directory) {
        found = kind == ValueKind::file ? "paths=-f " : "paths=-d ";
    }
    return fmt::format("    '{}') {};;\n", name, found);
}

std::string places(const CommandDescription& command) {
    std::string text;
    if (!command.path.empty()) {
        text += place(command.path, {}, ValueKind::none);
    }
    if (!command.commands.empty()) {
        std::vector<std::string> names;
        names.reserve(command.commands.size());
        for (const CommandDescription& below : command.commands) {
            names.push_back(below.name);
        }
        text += place(command.path + " 1", names, ValueKind::none);
    }
    int position = 0;
    for (const OptionDescription& positional : command.positionals) {
        const std::string number = positional.isRepeated ? "*" : std::to_string(++position);
        text += place(command.path + ' ' + number, positional.values, positional.kind);
    }
    std::vector<std::string> options;
    for (const OptionDescription& option : command.allOptions()) {
        for (const std::string& name : option.names) {
            options.push_back(name);
            if (option.kind != ValueKind::none) {
                text += place(command.path + ' ' + name, option.values, option.kind);
            }
        }
    }
    return text + place(command.path + " -", options, ValueKind::none);
}

}  // namespace

std::string bashCompletion(const CommandDescription& program) {
    std::string text = beginning;
    for (const CommandDescription* command : program.all()) {
        text += places(*command);
    }
    return text + end;
}

}  // namespace nimbuscope::tool
