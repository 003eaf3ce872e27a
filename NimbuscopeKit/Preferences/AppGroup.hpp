#pragma once

#include <string_view>

namespace nimbuscope {

/// The group of the application and its extensions: the name of the store that they share.
inline constexpr std::string_view appGroupIdentifier = "group.com.brisk-labs.Nimbuscope";

}  // namespace nimbuscope
