#include "Platform/Intents/JSONRPC.hpp"

#include <utility>

#include "Platform/Coding/JSONWriter.hpp"

namespace nimbuscope::platform::jsonrpc {
namespace {

/// The id of a request as its line has it: no other text of a number is sure to be the caller's.
std::optional<std::string> idAsWritten(std::string_view line) {
    simdjson::ondemand::parser parser;
    const simdjson::padded_string padded(line);
    simdjson::ondemand::document document;
    simdjson::ondemand::value id;
    if (parser.iterate(padded).get(document) != simdjson::SUCCESS ||
        document["id"].get(id) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    const std::string_view token = id.raw_json_token();
    return std::string(token.substr(0, token.find_last_not_of(" \t\r") + 1));
}

/// The id as JSON text; none for a value that no id can have.
std::optional<std::string> idText(JSONElement id, std::string_view line) {
    using Type = simdjson::dom::element_type;
    JSONWriter writer;
    switch (id.type()) {
        case Type::STRING:
            writer.value(std::string_view(id));
            break;
        case Type::INT64:
            writer.value(std::int64_t(id));
            break;
        case Type::UINT64:
            return std::to_string(std::uint64_t(id));
        case Type::DOUBLE:
            return idAsWritten(line);
        case Type::NULL_VALUE:
            writer.null();
            break;
        default:
            return std::nullopt;
    }
    return writer.finish().value_or("null");
}

std::unexpected<Rejection> rejected(std::optional<std::string> id, Error::Code code, std::string message) {
    return std::unexpected(Rejection{std::move(id).value_or("null"), {code, std::move(message)}});
}

}  // namespace

Result<Request, Rejection> readRequest(JSONDocument& document, std::string_view line) {
    using Code = Error::Code;
    const auto root = document.parse(line);
    if (!root) {
        return rejected({}, Code::parseError, root.error().message());
    }
    simdjson::dom::object object;
    if (root->get(object) != simdjson::SUCCESS) {
        return rejected({}, Code::invalidRequest, "a request is one JSON object");
    }
    Request request;
    JSONElement value;
    if (object["id"].get(value) == simdjson::SUCCESS) {
        request.id = idText(value, line);
        if (!request.id) {
            return rejected({}, Code::invalidRequest, "an id is a text, a number or null");
        }
    }
    std::string_view text;
    if (object["jsonrpc"].get(text) != simdjson::SUCCESS || text != "2.0") {
        return rejected(request.id, Code::invalidRequest, "a request has \"jsonrpc\": \"2.0\"");
    }
    if (object["method"].get(text) != simdjson::SUCCESS) {
        return rejected(request.id, Code::invalidRequest, "a request has a \"method\", a text");
    }
    request.method = text;
    if (object["params"].get(value) == simdjson::SUCCESS) {
        request.params = value;
    }
    return request;
}

Error errorOf(const INCallError& error) {
    switch (error.code) {
        case INCallError::Code::methodNotFound:
            return {Error::Code::methodNotFound, error.reason};
        case INCallError::Code::invalidParameters:
            return {Error::Code::invalidParams, error.reason};
        case INCallError::Code::failed:
            break;
    }
    return {Error::Code::internalError, error.reason};
}

std::string resultLine(std::string_view id, std::string_view resultJSON) {
    std::string line;
    line.reserve(id.size() + resultJSON.size() + 40);
    line.append(R"({"jsonrpc":"2.0","id":)")
        .append(id)
        .append(R"(,"result":)")
        .append(resultJSON)
        .append("}\n");
    return line;
}

std::string errorLine(std::string_view id, const Error& error) {
    JSONWriter writer;
    writer.beginObject();
    writer.key("jsonrpc");
    writer.value("2.0");
    writer.key("id");
    writer.json(id);
    writer.key("error");
    writer.beginObject();
    writer.key("code");
    writer.value(static_cast<std::int64_t>(error.code));
    writer.key("message");
    writer.value(error.message);
    writer.endObject();
    writer.endObject();
    // Messages quote only text that came out of valid JSON.
    return writer.finish().value_or(
               R"({"jsonrpc":"2.0","id":null,"error":{"code":-32603,"message":"error"}})") +
           '\n';
}

}  // namespace nimbuscope::platform::jsonrpc
