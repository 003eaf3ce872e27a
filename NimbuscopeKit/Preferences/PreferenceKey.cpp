#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"

#include <array>
#include <string>
#include <utility>

#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {
namespace {

using platform::DecodingError;
using platform::Result;

Result<std::string, DecodingError> plainText(std::string_view value) {
    return platform::isValidUTF8(value) ? Result<std::string, DecodingError>(value)
                                        : std::unexpected(DecodingError{{}, "the text is not valid UTF-8"});
}

/// A plain word is taken for a text, so that the error says what was expected instead.
template <class Payload>
Result<Payload, DecodingError> jsonValue(std::string_view value) {
    platform::JSONDecoder decoder;
    const bool isWord = !platform::Record<Payload> && !platform::JSONDocument().parse(value);
    const auto quoted = isWord ? platform::JSONEncoder().encode(std::string(value)) : std::string(value);
    return quoted ? decoder.decode<Payload>(*quoted) : std::unexpected(quoted.error());
}

template <class Case>
Result<PreferenceKey, DecodingError> read(std::string_view value) {
    Result<typename Case::Payload, DecodingError> payload;
    if constexpr (std::same_as<typename Case::Payload, std::string>) {
        payload = plainText(value);
    } else {
        payload = jsonValue<typename Case::Payload>(value);
    }
    return payload ? Result<PreferenceKey, DecodingError>(Case{std::move(*payload)})
                   : std::unexpected(platform::inKey(Case::name, std::move(payload.error())));
}

struct NamedCase {
    std::string_view name;
    Result<PreferenceKey, DecodingError> (*read)(std::string_view value);
};

template <std::size_t... position>
constexpr auto namedCases(std::index_sequence<position...> /*positions*/) {
    return std::array{NamedCase{std::variant_alternative_t<position, PreferenceKey>::name,
                                read<std::variant_alternative_t<position, PreferenceKey>>}...};
}

constexpr auto cases = namedCases(std::make_index_sequence<std::variant_size_v<PreferenceKey>>{});

}  // namespace

std::vector<std::string_view> preferenceKeyNames() {
    std::vector<std::string_view> names;
    std::ranges::transform(cases, std::back_inserter(names), &NamedCase::name);
    return names;
}

Result<PreferenceKey, DecodingError> preferenceKey(std::string_view name, std::string_view value) {
    const auto* const found = std::ranges::find(cases, name, &NamedCase::name);
    if (found == cases.end()) {
        return std::unexpected(DecodingError{std::string(name), "no preference has this name"});
    }
    return found->read(value);
}

}  // namespace nimbuscope
