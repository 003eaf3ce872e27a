#include "Platform/URLLoading/URLComponents.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/URLLoading/CharacterSet.hpp"

namespace nimbuscope::platform {
namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// RFC 3986: unreserved and sub-delims, and what each part adds to them.
constexpr CharacterSet plain(isAlphanumeric, "-._~!$&'()*+,;=");
constexpr CharacterSet isUserCharacter(plain, ":");
constexpr CharacterSet isPathCharacter(plain, ":@/");
constexpr CharacterSet isQueryCharacter(isPathCharacter, "?");

std::optional<unsigned> hexadecimalDigit(char character) {
    if (isDigit(character)) {
        return static_cast<unsigned>(character - '0');
    }
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<unsigned>(lower - 'a' + 10))
                                        : std::nullopt;
}

void appendEscaped(std::string& text, char character) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    text += {'%', digits[byte >> 4U], digits[byte & 0x0FU]};
}

std::unexpected<URLError> badURL(std::string reason) {
    return std::unexpected(
        URLError{URLError::Code::badURL, {"nimbuscope.url", 1, "the URL " + std::move(reason)}});
}

/// A part that decodes to UTF-8, with everything that a URL cannot hold percent-encoded.
template <class IsAllowed>
Result<std::string, URLError> part(std::string_view text, std::string_view name, IsAllowed isAllowed) {
    if (std::ranges::all_of(text, isAllowed)) {
        return std::string(text);
    }
    const auto decoded = removingPercentEncoding(text);
    if (!decoded) {
        return badURL("has an invalid escape in its " + std::string(name));
    }
    if (!isValidUTF8(*decoded)) {
        return badURL("has a " + std::string(name) + " that is not UTF-8");
    }
    std::string encoded;
    encoded.reserve(text.size());
    for (const char character : text) {
        if (character == '%' || isAllowed(character)) {
            encoded += character;
        } else {
            appendEscaped(encoded, character);
        }
    }
    return encoded;
}

bool isLabel(std::string_view label) {
    constexpr std::size_t longest = 63;  // RFC 1035
    return !label.empty() && label.size() <= longest && std::ranges::all_of(label, [](char character) {
        return isLetter(character) || isDigit(character) || character == '-' || character == '_';
    });
}

bool isHostName(std::string_view text) {
    constexpr std::size_t longest = 253;  // RFC 1035
    if (text.size() > longest) {
        return false;
    }
    for (;;) {
        const std::size_t dot = text.find('.');
        if (!isLabel(text.substr(0, dot))) {
            return false;
        }
        if (dot == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(dot + 1);
    }
}

bool isAddressInBrackets(std::string_view text) {
    return text.size() > 3 && text.front() == '[' && text.back() == ']' &&
           text.find(':') != std::string_view::npos &&
           std::ranges::all_of(text.substr(1, text.size() - 2), [](char character) {
               return hexadecimalDigit(character) || character == ':' || character == '.';
           });
}

struct HostAndPort {
    std::string_view host;
    std::optional<std::uint16_t> port;
};

std::optional<HostAndPort> hostAndPort(std::string_view text) {
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
    HostAndPort parts{text.substr(0, colon), std::nullopt};
    if (!isHostName(parts.host) && !isAddressInBrackets(parts.host)) {
        return std::nullopt;
    }
    if (colon != std::string_view::npos) {
        const std::string_view digits = text.substr(colon + 1);
        std::uint16_t port = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
        if (error != std::errc() || end != digits.data() + digits.size() || port == 0) {
            return std::nullopt;
        }
        parts.port = port;
    }
    return parts;
}

/// What stands before the first of `delimiters`; it is taken off `rest`.
template <class... Delimiters>
std::string_view takeUntil(std::string_view& rest, Delimiters... delimiters) {
    const auto isDelimiter = [=](char character) { return ((character == delimiters) || ...); };
    const std::string_view taken(rest.begin(), std::ranges::find_if(rest, isDelimiter));
    rest.remove_prefix(taken.size());
    return taken;
}

/// The scheme, lower case, taken off `rest` with what follows it; empty where there is none.
std::string takeScheme(std::string_view& rest) {
    const std::size_t end = rest.find("://");
    const std::string_view scheme = rest.substr(0, end);
    const auto isSchemeCharacter = [](char character) {
        return isLetter(character) || isDigit(character) || character == '+' || character == '-' ||
               character == '.';
    };
    if (end == std::string_view::npos || scheme.empty() || !isLetter(scheme.front()) ||
        !std::ranges::all_of(scheme, isSchemeCharacter)) {
        return {};
    }
    std::string lower(scheme);
    std::ranges::transform(lower, lower.begin(), [](char character) {
        return isLetter(character) ? static_cast<char>(character | 0x20) : character;
    });
    rest.remove_prefix(end + 3);
    return lower;
}

std::string decoded(std::string_view text) {
    return removingPercentEncoding(text).value_or(std::string());
}

}  // namespace

Result<URLComponents, URLError> URLComponents::parse(std::string_view url) {
    if (std::ranges::any_of(url, [](char character) {
            return (character >= '\0' && character <= ' ') || character == '\x7F';
        })) {
        return badURL("contains a space or a control character");
    }
    std::string_view rest = url;
    URLComponents components;
    components.scheme = takeScheme(rest);
    if (components.scheme.empty()) {
        return badURL("does not begin with a scheme and \"://\"");
    }
    std::string_view authority = takeUntil(rest, '/', '?', '#');
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
        auto user = part(authority.substr(0, at), "user", isUserCharacter);
        if (!user) {
            return std::unexpected(std::move(user.error()));
        }
        components.user = std::move(*user);
        authority.remove_prefix(at + 1);
    }
    const auto place = hostAndPort(authority);
    if (!place) {
        return badURL("names no valid host and port");
    }
    components.host = place->host;
    components.port = place->port;
    auto path = part(takeUntil(rest, '?', '#'), "path", isPathCharacter);
    if (!path) {
        return std::unexpected(std::move(path.error()));
    }
    components.percentEncodedPath = std::move(*path);
    for (const auto& [mark, name, member] : {std::tuple{'?', "query", &components.percentEncodedQuery},
                                             std::tuple{'#', "fragment", &components.fragment}}) {
        if (!rest.starts_with(mark)) {
            continue;
        }
        rest.remove_prefix(1);
        auto text = part(mark == '?' ? takeUntil(rest, '#') : rest, name, isQueryCharacter);
        if (!text) {
            return std::unexpected(std::move(text.error()));
        }
        *member = std::move(*text);
    }
    return components;
}

std::string URLComponents::path() const {
    return decoded(percentEncodedPath);
}

std::vector<URLQueryItem> URLComponents::queryItems() const {
    std::vector<URLQueryItem> items;
    if (!percentEncodedQuery || percentEncodedQuery->empty()) {
        return items;
    }
    std::string_view rest = *percentEncodedQuery;
    items.reserve(static_cast<std::size_t>(std::ranges::count(rest, '&')) + 1);
    for (;;) {
        const std::string_view item = takeUntil(rest, '&');
        const std::size_t equals = item.find('=');
        items.push_back({decoded(item.substr(0, equals)),
                         equals == std::string_view::npos ? std::nullopt
                                                          : std::optional(decoded(item.substr(equals + 1)))});
        if (rest.empty()) {
            return items;
        }
        rest.remove_prefix(1);
    }
}

std::string URLComponents::string() const {
    std::string url;
    url.reserve(scheme.size() + host.size() + percentEncodedPath.size() +
                (percentEncodedQuery ? percentEncodedQuery->size() : 0) + 32);
    url += scheme;
    url += "://";
    if (user) {
        url += *user + '@';
    }
    url += host;
    if (port) {
        url += ':' + std::to_string(*port);
    }
    url += percentEncodedPath;
    if (percentEncodedQuery) {
        url += '?' + *percentEncodedQuery;
    }
    if (fragment) {
        url += '#' + *fragment;
    }
    return url;
}

bool isValidHostAndPort(std::string_view text) {
    return hostAndPort(text).has_value();
}

std::optional<std::string> removingPercentEncoding(std::string_view text) {
    if (text.find('%') == std::string_view::npos) {
        return std::string(text);
    }
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        const auto high = i + 2 < text.size() ? hexadecimalDigit(text[i + 1]) : std::nullopt;
        const auto low = high ? hexadecimalDigit(text[i + 2]) : std::nullopt;
        if (!low) {
            return std::nullopt;
        }
        bytes += static_cast<char>(*high << 4U | *low);
        i += 2;
    }
    return bytes;
}

std::string addingPercentEncodingForPath(std::string_view text) {
    std::string encoded;
    encoded.reserve(text.size());
    for (const char character : text) {
        if (isPathCharacter(character) && character != ';') {
            encoded += character;
        } else {
            appendEscaped(encoded, character);
        }
    }
    return encoded;
}

}  // namespace nimbuscope::platform
