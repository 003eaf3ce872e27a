#pragma once

#include <string>

namespace nimbuscope::platform {

/// The directory of the key-value stores: `$NIMBUSCOPE_STORE`, else `nimbuscope` in `$XDG_DATA_HOME` (an
/// absolute path, as the XDG base directories have it), else in `~/.local/share`. Empty when the environment
/// names none.
[[nodiscard]] std::string defaultStoreDirectory();

}  // namespace nimbuscope::platform
