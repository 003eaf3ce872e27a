#include "Platform/Coding/Base64.hpp"

#include <array>

namespace nimbuscope::platform {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t foreign = 0xFF;

constexpr auto values = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(foreign);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return table;
}();

}  // namespace

std::string base64Encoded(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = group << 8U | (k < count ? bytes[i + k] : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? alphabet[group >> (18 - 6 * k) & 0x3FU] : '=';
        }
    }
    return text;
}

std::optional<Data> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    const std::size_t digits = text.size() - padding;
    Data bytes;
    bytes.reserve(digits * 3 / 4);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        const std::uint8_t value = values[static_cast<unsigned char>(text[i])];
        if (value == foreign) {
            return std::nullopt;
        }
        bits = bits << 6U | value;
        if (i % 4 != 0) {
            bytes.push_back(static_cast<std::uint8_t>(bits >> (6 - 2 * (i % 4))));
        }
    }
    const std::uint32_t leftOver = padding == 0 ? 0 : bits & (padding == 2 ? 0x0FU : 0x03U);
    return leftOver == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace nimbuscope::platform
