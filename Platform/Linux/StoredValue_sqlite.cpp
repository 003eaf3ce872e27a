#include "Platform/Linux/StoredValue_sqlite.hpp"

#include <cmath>
#include <span>
#include <utility>

#include "Platform/Coding/JSONDocument.hpp"

namespace nimbuscope::platform {
namespace {

/// How the `type` column names the type of the value beside it. Stored: never renumber.
enum class StoredType : std::int64_t {
    boolean = 1,     // INTEGER 0 or 1
    integer = 2,     // INTEGER
    real = 3,        // REAL
    string = 4,      // TEXT
    data = 5,        // BLOB
    array = 6,       // TEXT, JSON
    dictionary = 7,  // TEXT, JSON
};

std::optional<DefaultsValue> containerOf(std::string_view json) {
    JSONDocument document;
    const auto root = document.parse(json);
    auto value = root ? defaultsValue(*root) : std::unexpected(root.error());
    return value ? std::optional(std::move(*value)) : std::nullopt;
}

DefaultsValue dataOfBlob(std::span<const std::uint8_t> bytes) {
    Data data;
    data.reserve(bytes.size() + JSONDocument::enough);  // data is mostly JSON: spare its parser a copy
    data.assign(bytes.begin(), bytes.end());
    return data;
}

}  // namespace

std::optional<std::string> StoredValue::bind(SQLiteStatement& insert) const {
    const auto bindAs = [&](StoredType type, auto bound) {
        insert.bind(2, static_cast<std::int64_t>(type));
        insert.bind(3, bound);
        return std::nullopt;
    };
    if (const auto* boolean = value_.as<bool>()) {
        return bindAs(StoredType::boolean, std::int64_t{*boolean});
    }
    if (const auto* integer = value_.as<std::int64_t>()) {
        return bindAs(StoredType::integer, *integer);
    }
    if (const auto* bytes = value_.as<Data>()) {
        return bindAs(StoredType::data, std::span<const std::uint8_t>(*bytes));
    }
    // Texts and numbers must be fit for JSON, as those inside containers must.
    const auto* const string = value_.as<std::string>();
    if (string != nullptr && isValidUTF8(*string)) {
        return bindAs(StoredType::string, std::string_view(*string));
    }
    if (const auto* real = value_.as<double>(); real != nullptr && std::isfinite(*real)) {
        return bindAs(StoredType::real, *real);
    }
    JSONWriter writer;
    writeJSON(writer, value_);
    auto text = writer.finish();
    if (!text) {
        return text.error().message();
    }
    json_ = std::move(*text);
    const bool isArray = value_.as<DefaultsArray>() != nullptr;
    return bindAs(isArray ? StoredType::array : StoredType::dictionary, std::string_view(json_));
}

std::optional<DefaultsValue> StoredValue::read(const SQLiteStatement& row) {
    const int found = row.storageClass(1);
    switch (static_cast<StoredType>(row.integer(0))) {
        case StoredType::boolean:
            return found == SQLITE_INTEGER ? std::optional<DefaultsValue>(row.integer(1) != 0) : std::nullopt;
        case StoredType::integer:
            return found == SQLITE_INTEGER ? std::optional<DefaultsValue>(row.integer(1)) : std::nullopt;
        case StoredType::real:
            return found == SQLITE_FLOAT ? std::optional<DefaultsValue>(row.real(1)) : std::nullopt;
        case StoredType::string:
            return found == SQLITE_TEXT ? std::optional<DefaultsValue>(std::string(row.text(1)))
                                        : std::nullopt;
        case StoredType::data:
            return found == SQLITE_BLOB ? std::optional(dataOfBlob(row.bytes(1))) : std::nullopt;
        case StoredType::array:
        case StoredType::dictionary:
            return found == SQLITE_TEXT ? containerOf(row.text(1)) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace nimbuscope::platform
