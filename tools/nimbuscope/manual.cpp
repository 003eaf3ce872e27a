// The command `manual`: the page of the manual.

#include "CommandLine.hpp"
#include "ManualPage.hpp"

namespace nimbuscope::tool {

void addManual(CommandLine& commandLine) {
    commandLine.addCommand("manual", "Prints the page of the manual, in mdoc(7)",
                           "nimbuscope manual | man -l -",
                           [&commandLine](std::string& output) -> CommandResult<void> {
                               output = manualPage(commandLine.description());
                               return {};
                           });
}

}  // namespace nimbuscope::tool
