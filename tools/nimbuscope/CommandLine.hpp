#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Core/Result.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope::tool {

struct CommandDescription;

/// Why a command failed: printed as `nimbuscope: WHAT: WHY`.
struct CommandError {
    std::string what;  ///< what was attempted, or the file that is at fault
    std::string why;   ///< place, expected and found
};

/// Prints an error, in one line whatever it holds.
void printError(const CommandError& error);

template <class T>
using CommandResult = platform::Result<T, CommandError>;

/// The program's nouns and verbs, and what they share: the store, standard output, and the exit codes
/// 0 (done), 1 (the data or the operation failed) and 2 (the command line is wrong).
class CommandLine {
  public:
    /// What a verb does: appends its results to `output`, which is written when it succeeds.
    using Action = std::function<CommandResult<void>(std::string& output)>;

    CommandLine();

    /// A noun, to which verbs are added; its help ends with the first one's example.
    CLI::App& addNoun(const std::string& name, const std::string& description);

    /// A noun that is a command itself.
    CLI::App& addCommand(const std::string& name, const std::string& description, const std::string& example,
                         Action action);

    /// A verb of `parent` that runs `action`; its help ends with `example`, a whole command line.
    CLI::App& addVerb(CLI::App& parent, const std::string& name, const std::string& description,
                      const std::string& example, Action action);

    /// Where the key-value stores are, once the command line is parsed.
    [[nodiscard]] CommandResult<std::string> storeDirectory() const;

    /// The store of a suite, or the standard store for an empty name.
    [[nodiscard]] CommandResult<std::shared_ptr<platform::NSUserDefaults>> openStore(
        const std::string& suite) const;

    /// All that has been added.
    [[nodiscard]] CommandDescription description() const;

    /// Parses the arguments, runs the verb and returns the exit code.
    int run(int argumentCount, const char* const* arguments);

  private:
    int execute();

    CLI::App app_;
    std::string storeOption_;
    Action selected_;
};

/// The noun that commands work with, each in a file of its own.
void addApi(CommandLine& commandLine);
void addCatalogue(CommandLine& commandLine);
void addCompletion(CommandLine& commandLine);
void addDefaults(CommandLine& commandLine);
void addForecast(CommandLine& commandLine);
void addHosts(CommandLine& commandLine);
void addIntents(CommandLine& commandLine);
void addLocation(CommandLine& commandLine);
void addManual(CommandLine& commandLine);
void addMap(CommandLine& commandLine);
void addMaps(CommandLine& commandLine);
void addPalette(CommandLine& commandLine);
void addPlaces(CommandLine& commandLine);
void addPreferences(CommandLine& commandLine);
void addSign(CommandLine& commandLine);
void addTile(CommandLine& commandLine);

/// The option of verbs that read tiles: how many pixels these may have.
void addMaximalPixels(CLI::App& verb, std::int64_t& maximalPixels);

/// Verbs of `palette` and `tile` that have files of their own.
void addPaletteLegend(CommandLine& commandLine, CLI::App& parent);
void addPaletteText(CommandLine& commandLine, CLI::App& parent);
void addTileRender(CommandLine& commandLine, CLI::App& parent);
void addTileSheet(CommandLine& commandLine, CLI::App& parent);

}  // namespace nimbuscope::tool
