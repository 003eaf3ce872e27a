#include "CommandTree.hpp"

#include <tuple>

namespace nimbuscope::tool {
namespace {

ValueKind kindOf(std::string_view valueName) {
    if (valueName.empty()) {
        return ValueKind::none;
    }
    if (valueName == "DIR") {
        return ValueKind::directory;
    }
    return valueName == "FILE" || valueName == "PNG" ? ValueKind::file : ValueKind::text;
}

/// The name of the value, and what the option's check says of itself, which the parser has behind a colon:
/// "TEXT:{a,b}", "INT:INT in [1 - 1024]". A name may hold colons too.
std::pair<std::string, std::string> nameAndCheck(const std::string& type) {
    for (const char* beginning : {":{", ":INT in", ":FLOAT in", ":POSITIVE"}) {
        if (const auto at = type.rfind(beginning); at != std::string::npos) {
            return {type.substr(0, at), type.substr(at + 1)};
        }
    }
    return {type, ""};
}

OptionDescription describe(const CLI::Option& option) {
    OptionDescription result;
    for (const std::string& name : option.get_snames()) {
        result.names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        result.names.push_back("--" + name);
    }
    std::string check;
    std::tie(result.valueName, check) = nameAndCheck(option.get_type_name());
    result.kind = kindOf(result.valueName);
    if (option.get_positional()) {
        result.valueName = option.get_name(true);
        result.kind = result.kind == ValueKind::text ? kindOf(result.valueName) : result.kind;
    }
    if (check.starts_with('{')) {
        result.values = CLI::detail::split(check.substr(1, check.size() - 2), ',');
    } else if (result.valueName == "BOOLEAN") {
        result.values = {"false", "true"};
    } else {
        result.limits = check;
    }
    result.description = option.get_description();
    result.defaultValue = option.get_default_str();
    for (const CLI::Option* other : option.get_excludes()) {
        result.excludes.push_back(other->get_name());
    }
    result.isRequired = option.get_required();
    result.isRepeated = option.get_items_expected_max() > 1;
    return result;
}

/// Adds what `app` takes, which is a command or one of its groups of alternatives.
void addOptions(const CLI::App& app, int alternatives, CommandDescription& result) {
    for (const CLI::Option* option : app.get_options()) {
        OptionDescription described = describe(*option);
        described.isInherited = option != app.get_help_ptr() && option != app.get_version_ptr();
        described.alternatives = alternatives;
        (option->get_positional() ? result.positionals : result.options).push_back(std::move(described));
    }
}

CommandDescription describe(const CLI::App& app, std::string path, std::vector<OptionDescription> inherited) {
    CommandDescription result{.name = app.get_name(), .path = std::move(path)};
    result.description = app.get_description();
    const std::string footer = app.get_footer();
    if (footer.starts_with(exampleMark)) {
        result.example = footer.substr(exampleMark.size());
    }
    addOptions(app, 0, result);
    int alternatives = 0;
    for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (part->get_name().empty()) {
            addOptions(*part, ++alternatives, result);
        }
    }
    result.inherited = std::move(inherited);
    std::vector<OptionDescription> passedOn = result.allOptions();
    std::erase_if(passedOn, [](const OptionDescription& option) { return !option.isInherited; });
    for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (!part->get_name().empty()) {
            const std::string prefix = result.path.empty() ? "" : result.path + ' ';
            result.commands.push_back(describe(*part, prefix + part->get_name(), passedOn));
        }
    }
    return result;
}

}  // namespace

std::vector<OptionDescription> CommandDescription::allOptions() const {
    std::vector<OptionDescription> result = options;
    result.insert(result.end(), inherited.begin(), inherited.end());
    return result;
}

std::vector<const CommandDescription*> CommandDescription::all() const {
    std::vector<const CommandDescription*> result{this};
    for (const CommandDescription& command : commands) {
        const auto below = command.all();
        result.insert(result.end(), below.begin(), below.end());
    }
    return result;
}

CommandDescription describe(const CLI::App& program) {
    return describe(program, {}, {});
}

}  // namespace nimbuscope::tool
