#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/URLLoading/URLError.hpp"

namespace nimbuscope::platform {

/// One parameter of a query, decoded.
struct URLQueryItem {
    std::string name;
    std::optional<std::string> value;  ///< absent without "="

    bool operator==(const URLQueryItem&) const = default;
};

/// The parts of an absolute URL with a host (RFC 3986). Nothing is normalised: no dot segments are removed,
/// no slashes merged, no case changed.
struct NIMBUSCOPE_EXPORT URLComponents {
    std::string scheme;                 ///< lower case
    std::optional<std::string> user;    ///< user information, as written
    std::string host;                   ///< as written; an IPv6 address in its brackets
    std::optional<std::uint16_t> port;  ///< 1 to 65535
    std::string percentEncodedPath;     ///< empty or beginning with "/"
    std::optional<std::string> percentEncodedQuery;
    std::optional<std::string> fragment;  ///< percent-encoded

    /// The parts of `url`. Characters that a URL cannot hold but UTF-8 can are percent-encoded. Fails with
    /// `badURL` for control characters and spaces, escapes that are not "%" and two hexadecimal digits, paths
    /// and queries that do not decode to UTF-8, and hosts and ports that cannot be.
    [[nodiscard]] static Result<URLComponents, URLError> parse(std::string_view url);

    /// The path, decoded.
    [[nodiscard]] std::string path() const;

    /// The parameters of the query in order, split at "&" and the first "=" and decoded; "+" stays "+". Empty
    /// without a query and for an empty one; otherwise every "&" separates two, of which either may be empty.
    [[nodiscard]] std::vector<URLQueryItem> queryItems() const;

    /// The URL made of these parts.
    [[nodiscard]] std::string string() const;

    bool operator==(const URLComponents&) const = default;
};

/// True for a host name or address that can stand in a URL, with or without ":" and a port: "localhost:8443",
/// "[::1]". Labels are letters, digits, "-" and "_".
[[nodiscard]] NIMBUSCOPE_EXPORT bool isValidHostAndPort(std::string_view text);

/// The bytes of `text` with every escape decoded; absent for an escape that is not "%" and two hexadecimal
/// digits.
[[nodiscard]] NIMBUSCOPE_EXPORT std::optional<std::string> removingPercentEncoding(std::string_view text);

/// The text of a URL path: bytes other than RFC 3986's pchar and "/", and ";", become "%" and two upper-case
/// hexadecimal digits.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string addingPercentEncodingForPath(std::string_view text);

}  // namespace nimbuscope::platform
