#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INObject.hpp"

namespace nimbuscope::platform {

/// The value of an intent's parameter: a boolean, an integer (also the raw value of an enumeration), a
/// number, or an object.
using INParameterValue = std::variant<bool, std::int64_t, double, std::shared_ptr<INObject>>;

/// One parameter that a class of intents has: its name and how its value is read from the keyed form.
struct INParameter {
    std::string_view name;
    Result<INParameterValue, DecodingError> (*decode)(JSONElement json);
};

/// A request of the system to the extension, with parameters that are kept under their names.
class NIMBUSCOPE_EXPORT INIntent : public NSObject {
  public:
    /// The parameters of the class, fixed at build time.
    [[nodiscard]] virtual std::span<const INParameter> parameterTable() const = 0;

    /// Takes the parameters from an object of values by name. Null counts as absent, other names are ignored.
    /// The error's path begins with the parameter's name; the intent is then as it was.
    [[nodiscard]] DecodingFault restore(JSONElement parameters);

    /// Writes {"class": …, "parameters": {…}} with the parameters that have a value, in the order of the
    /// table.
    NIMBUSCOPE_EXPORT friend void writeJSON(JSONWriter& writer, const INIntent& intent);

  protected:
    /// The value of a scalar parameter, or none.
    template <class T>
    [[nodiscard]] std::optional<T> scalar(std::string_view name) const {
        const auto found = values_.find(name);
        return found != values_.end() ? std::optional(std::get<T>(found->second)) : std::nullopt;
    }
    template <class T>
    void setScalar(std::string_view name, std::optional<T> value) {
        value ? static_cast<void>(values_.insert_or_assign(name, *value))
              : static_cast<void>(values_.erase(name));
    }

    /// The very object that was set, or null.
    template <class T>
    [[nodiscard]] std::shared_ptr<T> object(std::string_view name) const {
        const auto found = values_.find(name);
        return found != values_.end()
                   ? std::static_pointer_cast<T>(std::get<std::shared_ptr<INObject>>(found->second))
                   : nullptr;
    }
    void setObject(std::string_view name, std::shared_ptr<INObject> value) {
        value ? static_cast<void>(values_.insert_or_assign(name, std::move(value)))
              : static_cast<void>(values_.erase(name));
    }

    /// A parameter that is an enumeration, kept as its raw value.
    template <Enumeration E>
    [[nodiscard]] std::optional<E> enumeration(std::string_view name) const {
        const auto raw = scalar<std::int64_t>(name);
        return raw ? fromRawValue<E>(*raw) : std::nullopt;
    }
    template <Enumeration E>
    void setEnumeration(std::string_view name, std::optional<E> value) {
        setScalar(name, value ? std::optional(rawValue(*value)) : std::nullopt);
    }

  private:
    // The names are those of the parameter table, which outlives every intent.
    std::map<std::string_view, INParameterValue> values_;
};

/// Reads a parameter that is a boolean or a number.
template <class T>
Result<INParameterValue, DecodingError> decodeScalarParameter(JSONElement json) {
    T value{};
    const DecodingFault found = JSONReader<T>::read(json, value);
    return found ? std::unexpected(*found) : Result<INParameterValue, DecodingError>(value);
}

/// Reads a parameter that is an enumeration with integer raw values; a raw value without a case is an error.
template <Enumeration E>
Result<INParameterValue, DecodingError> decodeEnumerationParameter(JSONElement json) {
    E value{};
    const DecodingFault found = JSONReader<E>::read(json, value);
    return found ? std::unexpected(*found) : Result<INParameterValue, DecodingError>(rawValue(value));
}

/// Reads a parameter that is an object of class T.
template <std::derived_from<INObject> T>
Result<INParameterValue, DecodingError> decodeObjectParameter(JSONElement json) {
    auto object = std::make_shared<T>();
    const DecodingFault found = object->restore(json);
    return found ? std::unexpected(*found) : Result<INParameterValue, DecodingError>(std::move(object));
}

/// An intent as the bytes of its keyed form.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<std::string, EncodingError> archived(const INIntent& intent);

/// The class and the parameters of an intent in its keyed form, before an intent is made of them.
struct NIMBUSCOPE_EXPORT INIntentForm {
    std::string className;
    std::optional<JSONElement> parameters;  ///< valid as long as the document that it was read from

    [[nodiscard]] static Result<INIntentForm, DecodingError> read(JSONElement json);
};

/// The intent of class T that was archived as `bytes`.
template <std::derived_from<INIntent> T>
[[nodiscard]] Result<std::shared_ptr<T>, DecodingError> unarchived(std::string_view bytes) {
    JSONDocument document;
    const auto root = document.parse(bytes);
    const auto form = root ? INIntentForm::read(*root) : std::unexpected(root.error());
    if (!form) {
        return std::unexpected(form.error());
    }
    auto intent = std::make_shared<T>();
    if (form->className != intent->className()) {
        return std::unexpected(DecodingError{"class", "another class of intent: " + form->className});
    }
    if (form->parameters) {
        if (const DecodingFault found = intent->restore(*form->parameters)) {
            return std::unexpected(inKey("parameters", *found));
        }
    }
    return intent;
}

}  // namespace nimbuscope::platform
