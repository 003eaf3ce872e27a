#include "NimbuscopeKit/Networking/ApiErrors.hpp"

#include <algorithm>
#include <utility>

namespace nimbuscope {

std::string_view description(APIError error) {
    switch (error) {
        case APIError::jsonError:
            return "jsonError: the reply is not the JSON expected";
        case APIError::notAuthorized:
            return "notAuthorized: there are no credentials";
        case APIError::authorizationError:
            return "authorizationError: the server gave no credentials";
        case APIError::encodingError:
            return "encodingError: the request cannot be put into bytes";
    }
    std::unreachable();
}

std::string description(const ApiError& error) {
    std::string line = error.code;  // from the network: it might hold anything
    std::ranges::replace_if(line, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    return "the server refused: " + line;
}

std::string description(const SerializationError& error) {
    return error.kind == SerializationError::Kind::missing ? error.text
                                                           : error.text + " is invalid: " + error.value;
}

std::string_view description(NetworkError error) {
    switch (error) {
        case NetworkError::noData:
            return "noData: the reply has no body";
        case NetworkError::noDataOrError:
            return "noDataOrError: neither a body nor an error came";
        case NetworkError::jsonParsingError:
            return "jsonParsingError: the body is no JSON";
        case NetworkError::jsonStructureError:
            return "jsonStructureError: the body is JSON of another shape";
    }
    std::unreachable();
}

std::string description(const StatusCodeError& error) {
    return "status " + std::to_string(error.code) + ": " + std::string(StatusCodeError::errorDescription);
}

}  // namespace nimbuscope
