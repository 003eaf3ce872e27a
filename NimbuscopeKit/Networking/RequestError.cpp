#include "NimbuscopeKit/Networking/RequestError.hpp"

#include <string_view>

namespace nimbuscope {
namespace {

std::string lineOf(const platform::URLError& error) {
    return error.message() + " (" + error.cause.domain + ' ' + std::to_string(error.cause.code) + ')';
}
std::string lineOf(const platform::DecodingError& error) {
    return error.message();
}
std::string lineOf(const platform::DefaultsError& error) {
    return error.message();
}
template <class Error>
std::string lineOf(const Error& error) {
    return std::string(description(error));
}

platform::NSError numbered(const platform::URLError& error) {
    return {"URLError", static_cast<int>(error.code), {}};
}
platform::NSError numbered(const StatusCodeError& error) {
    return {"Networking.StatusCodeError", static_cast<int>(error.code), {}};
}
platform::NSError numbered(NetworkError error) {
    return {"Networking.NetworkError", static_cast<int>(error), {}};
}
platform::NSError numbered(const platform::DecodingError& /*error*/) {
    return {"DecodingError", 0, {}};
}
platform::NSError numbered(APIError error) {
    return {"APIError", static_cast<int>(error), {}};
}
platform::NSError numbered(const ApiError& /*error*/) {
    return {"ApiError", 0, {}};
}
platform::NSError numbered(const platform::DefaultsError& error) {
    return {"NSUserDefaults", static_cast<int>(error.code), {}};
}

}  // namespace

std::string description(const RequestError& error) {
    return std::visit([](const auto& cause) { return lineOf(cause); }, error);
}

platform::NSError trackable(const RequestError& error) {
    platform::NSError tracked = std::visit([](const auto& cause) { return numbered(cause); }, error);
    tracked.localizedDescription = description(error);
    return tracked;
}

}  // namespace nimbuscope
