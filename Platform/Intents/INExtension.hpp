#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Intents/INIntent.hpp"

namespace nimbuscope::platform {

/// The principal object of an extension: says which object serves an intent.
class NIMBUSCOPE_EXPORT INExtension : public NSObject, public std::enable_shared_from_this<INExtension> {
  public:
    [[nodiscard]] virtual std::shared_ptr<NSObject> handler(const INIntent& intent) = 0;
};

/// Why a call of the system was not answered with a result.
struct INCallError {
    enum class Code { methodNotFound, invalidParameters, failed };

    Code code = Code::failed;
    std::string reason;
};

/// The result of a call as JSON text.
using INCallReply = Result<std::string, INCallError>;

/// Takes the reply to one call; called exactly once, on any thread.
using INReplyHandler = std::move_only_function<void(INCallReply)>;

/// A class of intents that an extension knows.
struct INIntentDefinition {
    std::string_view className;
    std::shared_ptr<INIntent> (*make)();
};

/// An operation that the handler of a class of intents has.
struct INOperation {
    std::string_view method;
    std::string_view intentClass;
    void (*perform)(const std::shared_ptr<NSObject>& handler, const std::shared_ptr<INIntent>& intent,
                    INReplyHandler reply);
};

/// All that the system knows about an extension.
struct INExtensionDefinition {
    std::function<std::shared_ptr<INExtension>()> makePrincipal;
    std::span<const INIntentDefinition> intents;
    std::span<const INOperation> operations;
};

/// Carries out calls by name on an extension: finds the intent's handler through the principal object, and
/// the operation by method and class of intent. Beside the operations of the definition there is "handler",
/// for every intent, which answers {"handler": CLASS}. Calls may be made from any thread.
class NIMBUSCOPE_EXPORT INExtensionDispatcher {
  public:
    /// Makes the principal object.
    explicit INExtensionDispatcher(INExtensionDefinition definition)
        : definition_(std::move(definition)), principal_(definition_.makePrincipal()) {}

    /// Calls `method` with `params`, {"intent": {"class", "parameters"}}, which are not needed after the
    /// return. Parameters that are absent altogether are a null pointer.
    void call(std::string_view method, const JSONElement* params, INReplyHandler reply) const;

  private:
    [[nodiscard]] bool isMethod(std::string_view method) const;
    [[nodiscard]] Result<std::shared_ptr<INIntent>, DecodingError> intent(const JSONElement* params) const;
    [[nodiscard]] const INOperation* operation(std::string_view method, std::string_view intentClass) const;

    INExtensionDefinition definition_;
    std::shared_ptr<INExtension> principal_;
};

/// Writes a value as the result of a call.
template <class T>
[[nodiscard]] INCallReply callReply(const T& value) {
    JSONWriter writer;
    writeJSON(writer, value);
    auto text = writer.finish();
    return text ? INCallReply(std::move(*text))
                : std::unexpected(INCallError{INCallError::Code::failed, text.error().message()});
}

}  // namespace nimbuscope::platform
