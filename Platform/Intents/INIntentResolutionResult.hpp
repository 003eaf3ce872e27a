#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Platform/Coding/Enumeration.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Fatal.hpp"
#include "Platform/Intents/INObject.hpp"

namespace nimbuscope::platform {

/// What resolving a parameter came to.
enum class INResolution : std::int64_t { success, needsValue, disambiguation, confirmationRequired };

constexpr auto caseTable(INResolution) {
    using enum INResolution;
    return std::array{TextCase{success, "success"}, TextCase{needsValue, "needsValue"},
                      TextCase{disambiguation, "disambiguation"},
                      TextCase{confirmationRequired, "confirmationRequired"}};
}

/// The answer to whether a parameter's object is acceptable. Values are the very objects that were given.
class INObjectResolutionResult {
  public:
    using Object = std::shared_ptr<INObject>;

    [[nodiscard]] static INObjectResolutionResult success(Object resolved) {
        return {INResolution::success, {std::move(resolved)}};
    }
    [[nodiscard]] static INObjectResolutionResult disambiguation(std::vector<Object> choices) {
        return {INResolution::disambiguation, std::move(choices)};
    }
    [[nodiscard]] static INObjectResolutionResult confirmationRequired(Object toConfirm) {
        return {INResolution::confirmationRequired,
                toConfirm ? std::vector{toConfirm} : std::vector<Object>{}};
    }
    [[nodiscard]] static INObjectResolutionResult needsValue() { return {INResolution::needsValue, {}}; }

    [[nodiscard]] INResolution resolution() const { return resolution_; }

    /// The resolved object, the objects to choose from, the object to confirm, or nothing.
    [[nodiscard]] const std::vector<Object>& objects() const { return objects_; }

  private:
    INObjectResolutionResult(INResolution resolution, std::vector<Object> objects)
        : resolution_(resolution), objects_(std::move(objects)) {}

    INResolution resolution_;
    std::vector<Object> objects_;
};

/// The same for one class of objects. The variants for objects of any class are not available: they stop the
/// process.
template <std::derived_from<INObject> T>
class TypedObjectResolutionResult : public INObjectResolutionResult {
  public:
    /// A default-made result needs a value.
    TypedObjectResolutionResult() : TypedObjectResolutionResult(INObjectResolutionResult::needsValue()) {}

    [[nodiscard]] static TypedObjectResolutionResult success(std::shared_ptr<T> resolved) {
        return INObjectResolutionResult::success(std::move(resolved));
    }
    [[nodiscard]] static TypedObjectResolutionResult disambiguation(
        const std::vector<std::shared_ptr<T>>& choices) {
        return INObjectResolutionResult::disambiguation({choices.begin(), choices.end()});
    }
    [[nodiscard]] static TypedObjectResolutionResult confirmationRequired(std::shared_ptr<T> toConfirm) {
        return INObjectResolutionResult::confirmationRequired(std::move(toConfirm));
    }
    [[nodiscard]] static TypedObjectResolutionResult needsValue() { return {}; }

    [[noreturn]] static TypedObjectResolutionResult success(Object /*resolved*/) { unavailable(); }
    [[noreturn]] static TypedObjectResolutionResult disambiguation(const std::vector<Object>& /*choices*/) {
        unavailable();
    }
    [[noreturn]] static TypedObjectResolutionResult confirmationRequired(Object /*toConfirm*/) {
        unavailable();
    }

  private:
    TypedObjectResolutionResult(INObjectResolutionResult result)
        : INObjectResolutionResult(std::move(result)) {}

    [[noreturn]] static void unavailable() {
        fatalError("the variant for objects of any class is unavailable");
    }
};

/// The answer to whether a parameter's enumeration value is acceptable; holds the raw value.
template <Enumeration E>
class INEnumResolutionResult {
  public:
    [[nodiscard]] static INEnumResolutionResult success(E resolved) {
        return {INResolution::success, resolved};
    }
    [[nodiscard]] static INEnumResolutionResult confirmationRequired(E toConfirm) {
        return {INResolution::confirmationRequired, toConfirm};
    }

    [[nodiscard]] INResolution resolution() const { return resolution_; }
    [[nodiscard]] std::int64_t value() const { return value_; }

  private:
    INEnumResolutionResult(INResolution resolution, E value)
        : resolution_(resolution), value_(rawValue(value)) {}

    INResolution resolution_;
    std::int64_t value_;
};

/// Writes {"resolution": NAME} and, for a success, "value" with the object.
NIMBUSCOPE_EXPORT void writeJSON(JSONWriter& writer, const INObjectResolutionResult& result);

}  // namespace nimbuscope::platform
