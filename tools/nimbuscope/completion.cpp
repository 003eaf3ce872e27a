// The command `completion`: scripts for the shells.

#include <map>

#include "CommandLine.hpp"
#include "ShellCompletion.hpp"

namespace nimbuscope::tool {

void addCompletion(CommandLine& commandLine) {
    static const std::map<std::string, std::string (*)(const CommandDescription&)> shells{
        {"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}};
    const auto shell = std::make_shared<std::string>();
    auto& command = commandLine.addCommand(
        "completion", "Prints the script that completes command lines in a shell",
        "nimbuscope completion bash > ~/.local/share/bash-completion/completions/nimbuscope",
        [&commandLine, shell](std::string& output) -> CommandResult<void> {
            output = shells.at(*shell)(commandLine.description());
            return {};
        });
    command.add_option("SHELL", *shell, "The shell")->required()->check(CLI::IsMember(shells));
}

}  // namespace nimbuscope::tool
