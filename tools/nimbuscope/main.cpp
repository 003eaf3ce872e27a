#include "Platform/Linux/Bundle_gettext.hpp"
#include "CommandLine.hpp"

int main(int argumentCount, char** arguments) {
    using namespace nimbuscope;
    platform::GettextBundle::useLanguageOfUser();
    tool::CommandLine commandLine;
    tool::addDefaults(commandLine);
    tool::addPlaces(commandLine);
    tool::addIntents(commandLine);
    tool::addPalette(commandLine);
    return commandLine.run(argumentCount, arguments);
}
