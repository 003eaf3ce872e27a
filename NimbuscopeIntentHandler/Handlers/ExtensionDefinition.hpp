#pragma once

#include "NimbuscopeIntentHandler/Handlers/IntentServices.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INExtension.hpp"

namespace nimbuscope {

/// The extension as the system calls it: an `IntentHandler` over `services` as the principal object, the six
/// classes of intents, and the operations that each one's handler has.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::INExtensionDefinition extensionDefinition(IntentServices services);

}  // namespace nimbuscope
