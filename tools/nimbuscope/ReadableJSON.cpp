#include "ReadableJSON.hpp"

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Coding/JSONWriter.hpp"

namespace nimbuscope::tool {
namespace {

using platform::JSONElement;

bool isContainer(JSONElement json) {
    return json.is_object() || json.is_array();
}

bool isFlat(simdjson::dom::object object) {
    return std::ranges::none_of(object, [](const auto& field) { return isContainer(field.value); });
}

std::string scalarText(JSONElement json) {
    std::string_view text;
    return json.get(text) == simdjson::SUCCESS ? readableText(text) : simdjson::minify(json);
}

void append(std::string& output, JSONElement json, const std::string& indent);

void appendField(std::string& output, std::string_view key, JSONElement value, const std::string& indent) {
    output.append(indent).append(key).append(isContainer(value) ? ":\n" : ": ");
    if (isContainer(value)) {
        append(output, value, indent + "  ");
    } else {
        output += scalarText(value) + '\n';
    }
}

void appendElement(std::string& output, JSONElement element, const std::string& indent) {
    simdjson::dom::object object;
    if (element.get(object) == simdjson::SUCCESS && isFlat(object)) {
        std::string_view separator = "- ";
        output += indent;
        for (const auto [key, value] : object) {
            output.append(separator).append(key).append(": ").append(scalarText(value));
            separator = ", ";
        }
        output += '\n';
    } else if (isContainer(element)) {
        output += indent + "-\n";
        append(output, element, indent + "  ");
    } else {
        output += indent + "- " + scalarText(element) + '\n';
    }
}

void append(std::string& output, JSONElement json, const std::string& indent) {
    simdjson::dom::object object;
    simdjson::dom::array array;
    if (json.get(object) == simdjson::SUCCESS) {
        for (const auto [key, value] : object) {
            appendField(output, key, value, indent);
        }
    } else if (json.get(array) == simdjson::SUCCESS) {
        for (const JSONElement element : array) {
            appendElement(output, element, indent);
        }
    } else {
        output += indent + scalarText(json) + '\n';
    }
}

}  // namespace

std::string readableText(std::string_view text) {
    const bool isPlain = std::ranges::none_of(text, [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    });
    platform::JSONWriter writer;
    writer.value(text);
    return isPlain ? std::string(text) : writer.finish().value_or("");
}

std::string readableJSON(std::string_view json) {
    platform::JSONDocument document;
    std::string output;
    const auto root = document.parse(json);
    if (root) {
        append(output, *root, "");
    }
    return output;
}

}  // namespace nimbuscope::tool
