#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INExtension.hpp"

/// The envelope of JSON-RPC 2.0 messages.
namespace nimbuscope::platform::jsonrpc {

/// What is answered instead of a result; the codes are those that the protocol reserves.
struct Error {
    enum class Code {
        parseError = -32700,
        invalidRequest = -32600,
        methodNotFound = -32601,
        invalidParams = -32602,
        internalError = -32603,
    };

    Code code = Code::internalError;
    std::string message;
};

/// One call. Without an id it is a notification, which gets no reply.
struct Request {
    std::optional<std::string> id;  ///< as JSON text, of the type that the caller gave it
    std::string method;
    std::optional<JSONElement> params;  ///< valid until the document parses again
};

/// A line that is no request: the reply that says so.
struct Rejection {
    std::string id;  ///< JSON text; "null" where the line does not tell
    Error error;
};

/// Reads one line. Batches are not taken: one message a line.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<Request, Rejection> readRequest(JSONDocument& document,
                                                                       std::string_view line);

/// The error that stands for a failed call.
[[nodiscard]] NIMBUSCOPE_EXPORT Error errorOf(const INCallError& error);

/// Replies, each one line with its line feed.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string resultLine(std::string_view id, std::string_view resultJSON);
[[nodiscard]] NIMBUSCOPE_EXPORT std::string errorLine(std::string_view id, const Error& error);

}  // namespace nimbuscope::platform::jsonrpc
