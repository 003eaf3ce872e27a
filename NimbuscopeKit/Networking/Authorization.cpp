#include "NimbuscopeKit/Networking/Authorization.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "Platform/Coding/Base64.hpp"
#include "Platform/Coding/JSONDictionary.hpp"
#include "Platform/Core/UUID.hpp"

namespace nimbuscope {
namespace {

using platform::DefaultsResult;
using platform::JSONElement;
using platform::JSONReader;
using platform::NSUserDefaults;
using platform::Result;

bool isUsable(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

std::optional<std::string> storedText(const NSUserDefaults& storage, std::string_view name,
                                      std::string_view deviceKey) {
    const auto stored = storage.object(name);
    const auto* text = stored && *stored ? (*stored)->as<std::string>() : nullptr;
    const auto bytes = text != nullptr ? platform::base64Decoded(*text) : std::nullopt;
    if (!bytes) {
        return std::nullopt;
    }
    std::string plain = scrambled(platform::textOf(*bytes), deviceKey);
    const bool isWhole = plain.size() == bytes->size() && isUsable(plain);
    return isWhole ? std::optional(std::move(plain)) : std::nullopt;
}

/// The value of a key as a T; none where it is missing or of another kind.
template <class T>
std::optional<T> member(simdjson::dom::object object, std::string_view name) {
    std::optional<T> value;
    for (const auto [key, element] : object) {
        if (key == name && JSONReader<T>::read(element, value.emplace())) {
            value.reset();
        }
    }
    return value;
}

struct Credentials {
    std::string key;
    std::string secret;
};

Result<Credentials, AuthorizationError> credentialsIn(simdjson::dom::object reply) {
    const auto code = member<std::int64_t>(reply, "code");
    if (!code) {
        return std::unexpected(SerializationError::missing("Code is missing"));
    }
    const auto message = member<std::string>(reply, "message");
    if (!message) {
        return std::unexpected(SerializationError::missing("Message is missing"));
    }
    auto data = member<std::map<std::string, std::string>>(reply, "data");
    if (!data || !data->contains("key") || !data->contains("secret")) {
        return std::unexpected(SerializationError::missing("Authorization paramethers is missing"));
    }
    if (*code != 0) {
        return std::unexpected(ApiError{*message});
    }
    Credentials credentials{std::move(data->at("key")), std::move(data->at("secret"))};
    if (!isUsable(credentials.key) || !isUsable(credentials.secret)) {
        return std::unexpected(UnusableCredentials{});
    }
    return credentials;
}

}  // namespace

std::string description(const AuthorizationError& error) {
    if (const auto* store = std::get_if<platform::DefaultsError>(&error)) {
        return store->message();
    }
    if (std::holds_alternative<UnusableCredentials>(error)) {
        return "the server gave credentials that are empty or not printable ASCII";
    }
    if (const auto* request = std::get_if<APIError>(&error)) {
        return std::string(description(*request));
    }
    const auto* refusal = std::get_if<ApiError>(&error);
    return refusal != nullptr ? description(*refusal) : description(std::get<SerializationError>(error));
}

std::string deviceKey(const platform::DeviceIdentifier& device) {
    const auto identifier = device.identifierForVendor();
    return (identifier ? *identifier : platform::UUID::random()).uuidString();
}

std::string scrambled(std::string_view text, std::string_view deviceKey) {
    std::string result;
    for (std::size_t i = 0; i < text.size() && !deviceKey.empty(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i] ^ deviceKey[i % deviceKey.size()]);
        if (byte >= 0x80) {
            break;
        }
        result += static_cast<char>(byte);
    }
    return result;
}

Authorization::Authorization(std::shared_ptr<NSUserDefaults> storage, std::string deviceKey)
    : storage_(std::move(storage)), deviceKey_(std::move(deviceKey)) {
    auto storedKey = storedText(*storage_, AUTH_KEY_NAME, deviceKey_);
    auto storedSecret = storedText(*storage_, AUTH_SECRET_NAME, deviceKey_);
    if (storedKey && storedSecret) {
        key = std::move(*storedKey);
        secret = std::move(*storedSecret);
    }
}

DefaultsResult<std::shared_ptr<NSUserDefaults>> Authorization::openStorage(
    platform::NSUserDefaultsSuites& suites) {
    auto group = suites.suite(appGroupIdentifier);
    return group ? std::move(group) : suites.standard();
}

Result<void, AuthorizationError> Authorization::accept(std::string_view json) {
    platform::JSONDocument document;
    const auto root = document.parse(json);
    simdjson::dom::object reply;
    if (!root || root->get(reply) != simdjson::SUCCESS) {
        return std::unexpected(APIError::jsonError);
    }
    auto credentials = credentialsIn(reply);
    if (!credentials) {
        return std::unexpected(std::move(credentials.error()));
    }
    std::swap(key, credentials->key);
    std::swap(secret, credentials->secret);
    const auto saved = save();
    if (!saved) {
        key = std::move(credentials->key);
        secret = std::move(credentials->secret);
        return std::unexpected(saved.error());
    }
    return {};
}

DefaultsResult<void> Authorization::save() const {
    return storage_->transaction([this]() -> DefaultsResult<void> {
        for (const auto& [name, text] : {std::pair{AUTH_KEY_NAME, &key}, {AUTH_SECRET_NAME, &secret}}) {
            const auto bytes = platform::dataOf(scrambled(*text, deviceKey_));
            const auto stored = storage_->set(name, platform::base64Encoded(bytes));
            if (!stored) {
                return stored;
            }
        }
        return {};
    });
}

DefaultsResult<void> Authorization::reset() const {
    return storage_->transaction([this]() -> DefaultsResult<void> {
        const auto removed = storage_->removeObject(AUTH_KEY_NAME);
        return removed ? storage_->removeObject(AUTH_SECRET_NAME) : removed;
    });
}

}  // namespace nimbuscope
