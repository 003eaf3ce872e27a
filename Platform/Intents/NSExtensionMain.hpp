#pragma once

#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INExtension.hpp"

namespace nimbuscope::platform {

/// The entry of an extension process: makes the principal object, serves calls until there are no more and
/// every one is answered, and returns the process's exit code: 0, or 1 when calls could not be read or
/// replies not be written, which standard error says. The process ignores SIGPIPE from the call on.
///
/// Calls are JSON-RPC 2.0 messages, one a line, read from the file descriptor `input`; replies go to
/// `output`, in the order in which they come about. Lines longer than 4 MiB are answered with an error, and
/// any number of calls takes bounded memory. Notifications are carried out and not answered.
[[nodiscard]] NIMBUSCOPE_EXPORT int NSExtensionMain(INExtensionDefinition definition, int input = 0,
                                                    int output = 1);

}  // namespace nimbuscope::platform
