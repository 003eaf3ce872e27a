#include "CommandLine.hpp"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>

#include "CommandTree.hpp"
#include "Files.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/StoreDirectory.hpp"
#include "StrictValues.hpp"

namespace nimbuscope::tool {
namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

std::string withoutControlCharacters(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        result += code < 0x20 || code == 0x7F ? fmt::format("\\u{:04x}", code) : std::string(1, character);
    }
    return result;
}

int report(const CommandError& error, int exitCode = exitFailed) {
    printError(error);
    return exitCode;
}

}  // namespace

void printError(const CommandError& error) {
    fmt::print(stderr, "nimbuscope: {}: {}\n", withoutControlCharacters(error.what),
               withoutControlCharacters(error.why));
}

CommandLine::CommandLine() : app_("Works with Nimbuscope's stores, intents and radar data.", "nimbuscope") {
    app_.set_version_flag("--version", "nimbuscope " NIMBUSCOPE_VERSION);
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.add_option(
            "--store", storeOption_,
            "Directory of the key-value stores; default $NIMBUSCOPE_STORE, else $XDG_DATA_HOME/nimbuscope")
        ->type_name("DIR");
    app_.footer(std::string(exampleMark) + "nimbuscope places list --json");
}

CLI::App& CommandLine::addNoun(const std::string& name, const std::string& description) {
    CLI::App& noun = *app_.add_subcommand(name, description);
    noun.require_subcommand(1);
    noun.footer("");  // instead of the program's
    return noun;
}

CLI::App& CommandLine::addCommand(const std::string& name, const std::string& description,
                                  const std::string& example, Action action) {
    return addVerb(app_, name, description, example, std::move(action));
}

CLI::App& CommandLine::addVerb(CLI::App& parent, const std::string& name, const std::string& description,
                               const std::string& example, Action action) {
    CLI::App& verb = *parent.add_subcommand(name, description);
    verb.footer(std::string(exampleMark) + example);
    if (parent.get_footer().empty()) {
        parent.footer(verb.get_footer());
    }
    verb.callback([this, action = std::move(action)] { selected_ = action; });
    return verb;
}

CommandResult<std::string> CommandLine::storeDirectory() const {
    std::string directory = storeOption_.empty() ? platform::defaultStoreDirectory() : storeOption_;
    if (directory.empty()) {
        return std::unexpected(
            CommandError{"store", "neither --store nor NIMBUSCOPE_STORE nor HOME names a place"});
    }
    return directory;
}

CommandResult<std::shared_ptr<platform::NSUserDefaults>> CommandLine::openStore(
    const std::string& suite) const {
    const auto directory = storeDirectory();
    if (!directory) {
        return std::unexpected(directory.error());
    }
    platform::SQLiteUserDefaultsSuites suites(*directory);
    auto store = suite.empty() ? suites.standard() : suites.suite(suite);
    if (!store) {
        return std::unexpected(CommandError{"store", store.error().message()});
    }
    return std::move(*store);
}

CommandDescription CommandLine::description() const {
    return describe(app_);
}

int CommandLine::run(int argumentCount, const char* const* arguments) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that went away shows as a failed write
    refuseLooseValues(app_);
    try {
        app_.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {  // --help, --version
            std::ostringstream printed;
            app_.exit(error, printed, printed);
            const auto written = writeStandardOutput(printed.str());
            return written ? 0 : report(written.error());
        }
        return report({"command line", error.what()}, exitUsage);
    }
    try {
        return execute();
    } catch (const std::exception& exception) {  // no memory, or no thread to be had
        return report({app_.get_subcommands().front()->get_name(), exception.what()});
    }
}

int CommandLine::execute() {
    std::string output;
    const auto done = selected_(output);
    if (!done) {
        return report(done.error());
    }
    const auto written = writeStandardOutput(output);
    return written ? 0 : report(written.error());
}

}  // namespace nimbuscope::tool
