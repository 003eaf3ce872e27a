#include "NimbuscopeIntentHandler/Handlers/ExtensionDefinition.hpp"
#include "Platform/Intents/NSExtensionMain.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"

int main() {
    using namespace nimbuscope;
    platform::GettextBundle::useLanguageOfUser();
    const platform::GettextBundle bundle(NIMBUSCOPE_LOCALE_DIRECTORY);
    platform::TaskPool tasks(2);
    const int code = platform::NSExtensionMain(extensionDefinition({&SharedStorage::shared, bundle, tasks}));
    tasks.join();
    return code;
}
