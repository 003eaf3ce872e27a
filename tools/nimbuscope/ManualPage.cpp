#include "ManualPage.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ManualText.hpp"

namespace nimbuscope::tool {
namespace {

/// Text as it is, at any place of a line.
std::string plain(std::string_view text) {
    std::string result = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        switch (c) {
            case '\\':
                result += "\\e";
                break;
            case '-':
                result += "\\-";
                break;
            case '`':
                result += "\\(ga";
                break;
            default:
                result += c;
        }
    }
    return result;
}

/// The arguments of a macro that name an option, or a positional, and its value.
std::string usage(const OptionDescription& option, std::string_view name) {
    std::string text = name.empty() ? "" : "Fl " + plain(name.substr(1));
    if (option.kind != ValueKind::none) {
        text += (text.empty() ? "Ar " : " Ar ") + plain(option.valueName) + (option.isRepeated ? " ..." : "");
    }
    return text;
}

/// What a command takes, as synopses show it.
std::string synopsis(const CommandDescription& command) {
    std::string text = ".Nm nimbuscope\n.Cm " + plain(command.path) + '\n';
    int alternatives = 0;
    const auto add = [&](const OptionDescription& option, const std::string& shown) {
        if (option.alternatives != 0 && option.alternatives == alternatives) {
            text.insert(text.size() - 1, " | " + shown);
            return;
        }
        alternatives = option.alternatives;
        text += alternatives != 0 ? ".Brq " : option.isRequired ? "." : ".Op ";
        text += shown + '\n';
    };
    for (const OptionDescription& positional : command.positionals) {
        add(positional, usage(positional, ""));
    }
    for (const OptionDescription& option : command.options) {
        if (option.isInherited) {
            add(option, usage(option, option.names.back()));
        }
    }
    return text;
}

/// Each sentence on a line of its own.
std::string sentence(std::string_view text) {
    std::string result = plain(text);
    for (std::size_t at = 0; (at = result.find(". ", at)) != std::string::npos;) {
        result[++at] = '\n';
    }
    return result + (text.ends_with('.') ? "\n" : ".\n");
}

std::string item(const OptionDescription& option) {
    std::string head = option.names.empty() ? usage(option, "") : "";
    for (const std::string& name : option.names) {
        head += (head.empty() ? "" : " , ") + usage(option, name);
    }
    std::string text = ".It " + head + '\n' + sentence(option.description);
    if (!option.values.empty()) {
        text += sentence(fmt::format("One of {}", fmt::join(option.values, ", ")));
    }
    if (!option.limits.empty()) {
        text += sentence("Must be " + option.limits);
    }
    if (!option.excludes.empty()) {
        text += sentence(fmt::format("Not with {}", fmt::join(option.excludes, ", ")));
    }
    return option.defaultValue.empty() ? text : text + sentence("By default " + option.defaultValue);
}

/// A list of positionals and options; those that the program itself has are told once.
std::string items(const CommandDescription& command) {
    std::string text;
    for (const OptionDescription& positional : command.positionals) {
        text += item(positional);
    }
    for (const OptionDescription& option : command.options) {
        text += option.isInherited || command.path.empty() ? item(option) : "";
    }
    return text.empty() ? "" : ".Bl -tag -width Ds\n" + text + ".El\n";
}

std::string subsection(const CommandDescription& command) {
    std::string text = ".Ss " + plain(command.path) + '\n';
    text += command.commands.empty() ? synopsis(command) + ".Pp\n" : "";
    text += sentence(command.description) + items(command);
    return command.example.empty() ? text : text + ".Pp\nExample:\n.Dl " + plain(command.example) + '\n';
}

}  // namespace

std::string manualPage(const CommandDescription& program) {
    std::string text = manualBeginning;
    text += ".Sh OPTIONS\nThese are taken by every command.\n" + items(program) + ".Sh COMMANDS\n";
    for (const CommandDescription* command : program.all()) {
        text += command->path.empty() ? "" : subsection(*command);
    }
    return text + manualEnd;
}

}  // namespace nimbuscope::tool
