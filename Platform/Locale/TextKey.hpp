#pragma once

#include <string_view>

namespace nimbuscope::platform {

/// Marks an English text that is looked up in the catalogues later, so that it is collected into
/// po/nimbuscope.pot. Returns the text as it is.
[[nodiscard]] constexpr std::string_view textKey(std::string_view english) {
    return english;
}

}  // namespace nimbuscope::platform
