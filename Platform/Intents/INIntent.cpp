#include "Platform/Intents/INIntent.hpp"

#include <utility>

namespace nimbuscope::platform {
namespace {

struct ParameterWriter {
    JSONWriter& writer;

    void operator()(bool value) const { writer.value(value); }
    void operator()(std::int64_t value) const { writer.value(value); }
    void operator()(double value) const { writer.value(value); }
    void operator()(const std::shared_ptr<INObject>& value) const { writeJSON(writer, *value); }
};

}  // namespace

DecodingFault INIntent::restore(JSONElement parameters) {
    simdjson::dom::object object;
    if (parameters.get(object) != simdjson::SUCCESS) {
        return typeMismatch("an object", parameters);
    }
    std::map<std::string_view, INParameterValue> values;
    for (const INParameter& parameter : parameterTable()) {
        JSONElement json;
        if (object[parameter.name].get(json) != simdjson::SUCCESS || json.is_null()) {
            continue;
        }
        auto value = parameter.decode(json);
        if (!value) {
            return std::make_unique<DecodingError>(inKey(parameter.name, std::move(value.error())));
        }
        values.emplace(parameter.name, std::move(*value));
    }
    values_ = std::move(values);
    return nullptr;
}

void writeJSON(JSONWriter& writer, const INIntent& intent) {
    writer.beginObject();
    writer.key("class");
    writer.value(intent.className());
    writer.key("parameters");
    writer.beginObject();
    for (const INParameter& parameter : intent.parameterTable()) {
        const auto value = intent.values_.find(parameter.name);
        if (value != intent.values_.end()) {
            writer.key(parameter.name);
            std::visit(ParameterWriter{writer}, value->second);
        }
    }
    writer.endObject();
    writer.endObject();
}

Result<std::string, EncodingError> archived(const INIntent& intent) {
    JSONWriter writer;
    writeJSON(writer, intent);
    return writer.finish();
}

Result<INIntentForm, DecodingError> INIntentForm::read(JSONElement json) {
    simdjson::dom::object object;
    if (json.get(object) != simdjson::SUCCESS) {
        return std::unexpected(*typeMismatch("an object", json));
    }
    INIntentForm form;
    JSONElement value;
    if (object["class"].get(value) != simdjson::SUCCESS) {
        return std::unexpected(DecodingError{"class", "missing key"});
    }
    if (const DecodingFault found = JSONReader<std::string>::read(value, form.className)) {
        return std::unexpected(inKey("class", *found));
    }
    if (object["parameters"].get(value) == simdjson::SUCCESS && !value.is_null()) {
        form.parameters = value;
        if (!value.is_object()) {
            return std::unexpected(*inKey("parameters", typeMismatch("an object", value)));
        }
    }
    return form;
}

}  // namespace nimbuscope::platform
