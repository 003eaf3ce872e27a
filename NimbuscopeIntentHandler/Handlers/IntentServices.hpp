#pragma once

#include <functional>

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Concurrency/Task.hpp"
#include "Platform/Locale/Bundle.hpp"

namespace nimbuscope {

/// What the handlers work with. The pool and the bundle outlive every handler.
struct IntentServices {
    /// Gives the shared places; called when they are first needed, and must give the same object each time.
    std::function<SharedStorage&()> storage;
    const platform::Bundle& bundle;
    platform::TaskPool& tasks;
};

}  // namespace nimbuscope
