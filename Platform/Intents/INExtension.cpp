#include "Platform/Intents/INExtension.hpp"

#include <algorithm>
#include <utility>

#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope::platform {
namespace {

constexpr std::string_view handlerMethod = "handler";

/// An intent of a class that the extension does not know: it has a class and nothing else.
class UnknownIntent final : public INIntent {
  public:
    explicit UnknownIntent(std::string className) : className_(std::move(className)) {}

    [[nodiscard]] std::string_view className() const override { return className_; }
    [[nodiscard]] std::span<const INParameter> parameterTable() const override { return {}; }

  private:
    std::string className_;
};

struct HandlerReply {
    std::string handler;

    static constexpr auto fields = std::tuple{key("handler", &HandlerReply::handler)};
};

}  // namespace

void INExtensionDispatcher::call(std::string_view method, const JSONElement* params,
                                 INReplyHandler reply) const {
    using Code = INCallError::Code;
    if (!isMethod(method)) {
        reply(std::unexpected(INCallError{Code::methodNotFound, "no method \"" + std::string(method) + '"'}));
        return;
    }
    const auto request = intent(params);
    if (!request) {
        reply(std::unexpected(INCallError{Code::invalidParameters, request.error().message()}));
        return;
    }
    const auto handler = principal_->handler(**request);
    if (method == handlerMethod) {
        reply(callReply(HandlerReply{std::string(handler->className())}));
        return;
    }
    const std::string_view intentClass = (*request)->className();
    const INOperation* const found = operation(method, intentClass);
    if (found == nullptr) {
        reply(std::unexpected(INCallError{Code::methodNotFound, "no operation \"" + std::string(method) +
                                                                    "\" for " + std::string(intentClass)}));
        return;
    }
    found->perform(handler, *request, std::move(reply));
}

bool INExtensionDispatcher::isMethod(std::string_view method) const {
    return method == handlerMethod || std::ranges::find(definition_.operations, method,
                                                        &INOperation::method) != definition_.operations.end();
}

Result<std::shared_ptr<INIntent>, DecodingError> INExtensionDispatcher::intent(
    const JSONElement* params) const {
    if (params == nullptr) {
        return std::unexpected(DecodingError{"params", "missing key"});
    }
    simdjson::dom::object object;
    if (params->get(object) != simdjson::SUCCESS) {
        return std::unexpected(*inKey("params", typeMismatch("an object", *params)));
    }
    JSONElement json;
    if (object["intent"].get(json) != simdjson::SUCCESS) {
        return std::unexpected(DecodingError{"params.intent", "missing key"});
    }
    const auto form = INIntentForm::read(json);
    if (!form) {
        return std::unexpected(inKey("params.intent", form.error()));
    }
    const auto known =
        std::ranges::find(definition_.intents, form->className, &INIntentDefinition::className);
    if (known == definition_.intents.end()) {
        return std::make_shared<UnknownIntent>(form->className);
    }
    auto intent = known->make();
    if (form->parameters) {
        if (const DecodingFault found = intent->restore(*form->parameters)) {
            return std::unexpected(inKey("params.intent.parameters", *found));
        }
    }
    return intent;
}

const INOperation* INExtensionDispatcher::operation(std::string_view method,
                                                    std::string_view intentClass) const {
    const auto found = std::ranges::find_if(definition_.operations, [&](const INOperation& candidate) {
        return candidate.method == method && candidate.intentClass == intentClass;
    });
    return found != definition_.operations.end() ? &*found : nullptr;
}

}  // namespace nimbuscope::platform
