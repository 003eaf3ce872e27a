#pragma once

#include <functional>
#include <string>
#include <variant>

#include "NimbuscopeKit/Networking/ApiErrors.hpp"
#include "Platform/Coding/CodingError.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSError.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/URLLoading/URLError.hpp"

namespace nimbuscope {

/// Why a request gave no value: the transport failed, the status was not one of success, there was no body,
/// the body could not be decoded, there were no credentials, or the server refused.
using RequestError = std::variant<platform::URLError, StatusCodeError, NetworkError, platform::DecodingError,
                                  APIError, ApiError, platform::DefaultsError>;

/// One line that holds nothing of the credentials.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string description(const RequestError& error);

/// The error for those who collect errors; the domain is the name of its type, the code its number there.
[[nodiscard]] NIMBUSCOPE_EXPORT platform::NSError trackable(const RequestError& error);

template <class T>
using RequestResult = platform::Result<T, RequestError>;

/// Receives a result; called once.
template <class T>
using RequestHandler = std::move_only_function<void(RequestResult<T>)>;

/// Receives each result of a request that is repeated.
template <class T>
using RepeatedHandler = std::function<void(RequestResult<T>)>;

}  // namespace nimbuscope
