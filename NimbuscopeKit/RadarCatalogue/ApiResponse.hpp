#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <tuple>

#include "Platform/Coding/Fields.hpp"

/// The envelope around everything that the mobile API returns.
namespace nimbuscope {

/// A reply with a payload.
template <class Payload>
struct ApiResponse {
    std::int64_t code = 0;  ///< result of the call; 0 is success
    std::string message;    ///< the server's words for it
    Payload data{};

    static constexpr auto fields =
        std::tuple{platform::key("code", &ApiResponse::code), platform::key("message", &ApiResponse::message),
                   platform::key("data", &ApiResponse::data)};
    bool operator==(const ApiResponse&) const = default;
};

/// A reply whose payload nobody wants.
struct ApiValidation {
    std::int64_t code = 0;
    std::string message;

    static constexpr auto fields = std::tuple{platform::key("code", &ApiValidation::code),
                                              platform::key("message", &ApiValidation::message)};
    bool operator==(const ApiValidation&) const = default;
};

/// A record that is an envelope itself: it stands for the whole body of a reply. Any other record is the
/// payload of an `ApiResponse`.
template <class T>
concept ApiEnvelope = requires(const T& reply) {
    { reply.code } -> std::convertible_to<std::int64_t>;
    { reply.message } -> std::convertible_to<std::string>;
};

}  // namespace nimbuscope
