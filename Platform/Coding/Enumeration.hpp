#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

/// Enumerations that are stored by raw value and can be listed.
///
/// An enumeration declares its cases once, in declaration order, in a function that is found beside it:
///
///     enum class Accuracy : std::int64_t { high = 1, medium = 2 };
///     constexpr auto caseTable(Accuracy) { return std::array{Accuracy::high, Accuracy::medium}; }
///
/// The raw value is the underlying integer. Where it is a text, the table holds `TextCase` entries instead.
namespace nimbuscope::platform {

/// One case of an enumeration whose raw values are texts.
template <class E>
struct TextCase {
    E value;
    std::string_view raw;
};

template <class E>
concept Enumeration = std::is_enum_v<E> && requires(E value) { caseTable(value); };

namespace detail {

template <class E>
constexpr E caseOf(E entry) {
    return entry;
}
template <class E>
constexpr E caseOf(const TextCase<E>& entry) {
    return entry.value;
}
template <class E>
constexpr std::int64_t rawOf(E entry) {
    return static_cast<std::int64_t>(entry);
}
template <class E>
constexpr std::string_view rawOf(const TextCase<E>& entry) {
    return entry.raw;
}

}  // namespace detail

/// The type of the raw values of E: `std::int64_t` or `std::string_view`.
template <Enumeration E>
using RawValue = decltype(detail::rawOf(caseTable(E{})[0]));

/// Every case, in declaration order.
template <Enumeration E>
[[nodiscard]] constexpr auto allCases() {
    constexpr auto table = caseTable(E{});
    std::array<E, table.size()> cases{};
    std::ranges::transform(table, cases.begin(), [](const auto& entry) { return detail::caseOf(entry); });
    return cases;
}

/// The case with this raw value; none when no case has it.
template <Enumeration E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(RawValue<E> raw) {
    for (const auto& entry : caseTable(E{})) {
        if (detail::rawOf(entry) == raw) {
            return detail::caseOf(entry);
        }
    }
    return std::nullopt;
}

/// The raw value of a case, as it is stored.
template <Enumeration E>
[[nodiscard]] constexpr RawValue<E> rawValue(E value) {
    if constexpr (std::same_as<RawValue<E>, std::int64_t>) {
        return static_cast<std::int64_t>(value);
    } else {
        for (const auto& entry : caseTable(E{})) {
            if (entry.value == value) {
                return entry.raw;
            }
        }
        return {};
    }
}

}  // namespace nimbuscope::platform
