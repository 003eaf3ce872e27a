#include "Platform/Defaults/DefaultsValue.hpp"

#include <cmath>
#include <optional>
#include <string_view>

#include "Platform/Coding/Base64.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::string_view dataKey = "$data";

class ValueWriter {
  public:
    explicit ValueWriter(JSONWriter& writer) : writer_(writer) {}

    void operator()(bool value) { writer_.value(value); }
    void operator()(std::int64_t value) { writer_.value(value); }
    void operator()(const std::string& value) { writer_.value(value); }

    void operator()(double value) { writer_.value(value, JSONWriter::Reals::marked); }

    void operator()(const Data& value) {
        writer_.beginObject();
        writer_.key(dataKey);
        writer_.value(base64Encoded(value));
        writer_.endObject();
    }

    void operator()(const DefaultsArray& values) {
        writer_.beginArray();
        for (const DefaultsValue& value : values) {
            writeJSON(writer_, value);
        }
        writer_.endArray();
    }

    void operator()(const DefaultsDictionary& dictionary) {
        writer_.beginObject();
        for (const auto& [key, value] : dictionary) {
            const std::string escaped = key.starts_with('$') ? '$' + key : key;
            writer_.key(escaped);
            writeJSON(writer_, value);
        }
        writer_.endObject();
    }

  private:
    JSONWriter& writer_;
};

Result<DefaultsValue, DecodingError> arrayValue(simdjson::dom::array array) {
    DefaultsArray values;
    for (const JSONElement element : array) {
        auto value = defaultsValue(element);
        if (!value) {
            return std::unexpected(inElement(values.size(), std::move(value.error())));
        }
        values.push_back(std::move(*value));
    }
    return values;
}

Result<DefaultsValue, DecodingError> dataValue(JSONElement json) {
    std::string_view text;
    if (json.get(text) != simdjson::SUCCESS) {
        return std::unexpected(*inKey(dataKey, typeMismatch("a base-64 text", json)));
    }
    auto bytes = base64Decoded(text);
    if (!bytes) {
        return std::unexpected(DecodingError{std::string(dataKey), "the text is not base-64"});
    }
    return std::move(*bytes);
}

Result<DefaultsValue, DecodingError> dictionaryValue(simdjson::dom::object object) {
    DefaultsDictionary dictionary;
    for (auto [key, element] : object) {
        if (key == dataKey && object.size() == 1) {
            return dataValue(element);
        }
        if (key.starts_with('$') && !key.starts_with("$$")) {
            return std::unexpected(
                DecodingError{std::string(key), "a key that begins with \"$\" is written with two"});
        }
        auto value = defaultsValue(element);
        if (!value) {
            return std::unexpected(inKey(key, std::move(value.error())));
        }
        dictionary.insert_or_assign(std::string(key.substr(key.starts_with('$') ? 1 : 0)), std::move(*value));
    }
    return dictionary;
}

}  // namespace

void writeJSON(JSONWriter& writer, const DefaultsValue& value) {
    std::visit(ValueWriter(writer), static_cast<const DefaultsValue::variant&>(value));
}

Result<DefaultsValue, DecodingError> defaultsValue(JSONElement json) {
    switch (json.type()) {
        case simdjson::dom::element_type::ARRAY:
            return arrayValue(simdjson::dom::array(json));
        case simdjson::dom::element_type::OBJECT:
            return dictionaryValue(simdjson::dom::object(json));
        case simdjson::dom::element_type::INT64:
            return std::int64_t(json);
        case simdjson::dom::element_type::DOUBLE:
            return double(json);
        case simdjson::dom::element_type::STRING:
            return std::string(std::string_view(json));
        case simdjson::dom::element_type::BOOL:
            return bool(json);
        case simdjson::dom::element_type::UINT64:
            return std::unexpected(DecodingError{{}, "the integer does not fit 64 bits with sign"});
        case simdjson::dom::element_type::NULL_VALUE:
            break;
    }
    return std::unexpected(DecodingError{{}, "null is no value"});
}

}  // namespace nimbuscope::platform
