#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"

/// What can go wrong between a request and its payload, besides what the transport and the decoder report.
/// `description` puts each into one line without any part of credentials.
namespace nimbuscope {

/// Of authorized requests.
enum class APIError {
    jsonError,           ///< the reply is not the JSON expected
    notAuthorized,       ///< no credentials
    authorizationError,  ///< credentials were asked for in vain
    encodingError,       ///< the request cannot be put into bytes
};
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view description(APIError error);

/// The server answered with a code other than 0.
struct ApiError {
    std::string code;  ///< the server's message, for all its name

    bool operator==(const ApiError&) const = default;
};
[[nodiscard]] NIMBUSCOPE_EXPORT std::string description(const ApiError& error);

/// A reply that is taken apart by hand lacks a key, or has another kind of value there.
struct SerializationError {
    enum class Kind { missing, invalid };

    Kind kind = Kind::missing;
    std::string text;   ///< `missing`: a sentence; `invalid`: the key
    std::string value;  ///< `invalid`: what was there

    [[nodiscard]] static SerializationError missing(std::string_view sentence) {
        return {Kind::missing, std::string(sentence), {}};
    }
    bool operator==(const SerializationError&) const = default;
};
[[nodiscard]] NIMBUSCOPE_EXPORT std::string description(const SerializationError& error);

/// Of any request.
enum class NetworkError {
    noData,              ///< the reply has no body
    noDataOrError,       ///< neither a body nor an error came
    jsonParsingError,    ///< the body is no JSON
    jsonStructureError,  ///< the body is JSON of another shape
};
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view description(NetworkError error);

/// The reply's HTTP status is not one of success.
struct StatusCodeError {
    std::int64_t code = 0;  ///< the status

    /// For the user; the same for every status.
    static constexpr std::string_view errorDescription =
        "An error occurred communicating with the server. Please try again.";

    bool operator==(const StatusCodeError&) const = default;
};
[[nodiscard]] NIMBUSCOPE_EXPORT std::string description(const StatusCodeError& error);

}  // namespace nimbuscope
