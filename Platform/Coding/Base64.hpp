#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// The standard base-64 text of `bytes`, padded (RFC 4648, section 4).
[[nodiscard]] NIMBUSCOPE_EXPORT std::string base64Encoded(std::span<const std::uint8_t> bytes);

/// The bytes of a padded standard base-64 text; none for any other text: a foreign character, a length that
/// is no multiple of four, padding in the wrong place, bits set beyond the last byte.
[[nodiscard]] NIMBUSCOPE_EXPORT std::optional<Data> base64Decoded(std::string_view text);

}  // namespace nimbuscope::platform
