// The shared instances that the extension works with, composed of the adapters of this operating system.

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Linux/NSUserDefaults_sqlite.hpp"
#include "Platform/Linux/StoreDirectory.hpp"

namespace nimbuscope {

SharedStorage& SharedStorage::shared() {
    static platform::SQLiteUserDefaultsSuites suites(platform::defaultStoreDirectory());
    static SharedStorage instance(suites);
    return instance;
}

}  // namespace nimbuscope
