#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Coding/JSONEncoder.hpp"
#include "Platform/Coding/JSONReader.hpp"

/// Dictionaries with keys that no field table knows. Of a repeated key the last counts; they are written in
/// the order of the keys' bytes.
namespace nimbuscope::platform {

template <class T>
struct JSONReader<std::map<std::string, T>> {
    static DecodingFault read(JSONElement json, std::map<std::string, T>& values) {
        simdjson::dom::object object;
        if (json.get(object) != simdjson::SUCCESS) {
            return typeMismatch("an object", json);
        }
        for (const auto [name, element] : object) {
            T value{};
            if (DecodingFault inner = JSONReader<T>::read(element, value)) {
                return inKey(name, std::move(inner));
            }
            values.insert_or_assign(std::string(name), std::move(value));
        }
        return {};
    }
    static bool readStraight(JSONToken json, std::map<std::string, T>& values) {
        simdjson::ondemand::object object;
        if (json.get(object) != simdjson::SUCCESS) {
            return false;
        }
        for (auto entry : object) {
            simdjson::ondemand::field field;
            std::string_view name;
            if (std::move(entry).get(field) != simdjson::SUCCESS ||
                field.unescaped_key().get(name) != simdjson::SUCCESS) {
                return false;
            }
            T& value = values.insert_or_assign(std::string(name), T{}).first->second;
            if (!JSONReader<T>::readStraight(field.value(), value)) {
                return false;
            }
        }
        return true;
    }
};

template <class T>
void writeJSON(JSONWriter& writer, const std::map<std::string, T>& values) {
    writer.beginObject();
    for (const auto& [name, value] : values) {
        writer.key(name);
        writeJSON(writer, value);
    }
    writer.endObject();
}

}  // namespace nimbuscope::platform
