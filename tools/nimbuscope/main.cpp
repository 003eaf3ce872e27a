#include "CommandLine.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"

int main(int argumentCount, char** arguments) {
    using namespace nimbuscope;
    platform::GettextBundle::useLanguageOfUser();
    tool::CommandLine commandLine;
    tool::addDefaults(commandLine);
    tool::addPlaces(commandLine);
    tool::addPreferences(commandLine);
    tool::addIntents(commandLine);
    tool::addPalette(commandLine);
    tool::addTile(commandLine);
    tool::addMap(commandLine);
    tool::addMaps(commandLine);
    tool::addApi(commandLine);
    tool::addHosts(commandLine);
    tool::addSign(commandLine);
    tool::addForecast(commandLine);
    tool::addCatalogue(commandLine);
    tool::addLocation(commandLine);
    tool::addCompletion(commandLine);
    tool::addManual(commandLine);
    return commandLine.run(argumentCount, arguments);
}
