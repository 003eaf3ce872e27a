#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nimbuscope::platform {

/// Bytes with no meaning of their own; owned.
using Data = std::vector<std::uint8_t>;

/// The bytes seen as text, for parsers that check them; borrowed from `data`.
[[nodiscard]] inline std::string_view textOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

/// The text seen as bytes; borrowed.
[[nodiscard]] inline std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// A copy of the bytes of `text`.
[[nodiscard]] inline Data dataOf(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace nimbuscope::platform
