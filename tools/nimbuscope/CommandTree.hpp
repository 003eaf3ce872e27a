#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

/// What the parser knows about the command line, for those that print it: manual and completion scripts.
namespace nimbuscope::tool {

/// What the value of an option or a positional is.
enum class ValueKind { none, text, file, directory };

/// An option, a flag (whose value is of kind none), or a positional (which has no names).
struct OptionDescription {
    std::vector<std::string> names;  ///< with their hyphens, short ones first
    ValueKind kind = ValueKind::text;
    std::string valueName;  ///< "FILE"
    std::string description;
    std::string limits;               ///< what is checked, such as "INT in [1 - 1024]", beside `values`
    std::string defaultValue;         ///< empty when there is none to be named
    std::vector<std::string> values;  ///< all that are allowed; empty when that cannot be said
    std::vector<std::string> excludes;
    bool isRequired = false;
    bool isRepeated = false;  ///< several values may follow
    bool isInherited = true;  ///< the commands below take it too
    int alternatives = 0;     ///< exactly one of those with the same number is required; 0: of its own
};

/// The program, a noun or a verb.
struct CommandDescription {
    std::string name;
    std::string path;  ///< the words behind the program's name: "tile render"; empty for the program
    std::string description;
    std::string example;  ///< a whole command line; empty for what has commands
    std::vector<OptionDescription> options;
    std::vector<OptionDescription> inherited;  ///< options of the commands above
    std::vector<OptionDescription> positionals;
    std::vector<CommandDescription> commands;

    /// Its own options and those of the commands above.
    [[nodiscard]] std::vector<OptionDescription> allOptions() const;

    /// Itself and all commands below, each before those below it.
    [[nodiscard]] std::vector<const CommandDescription*> all() const;
};

/// What a verb's help says before the example, at its end.
inline constexpr std::string_view exampleMark = "Example: ";

/// Describes a program whose nouns and verbs have all been added.
[[nodiscard]] CommandDescription describe(const CLI::App& program);

}  // namespace nimbuscope::tool
