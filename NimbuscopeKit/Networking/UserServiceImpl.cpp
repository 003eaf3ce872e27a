#include "NimbuscopeKit/Networking/UserServiceImpl.hpp"

#include <string_view>
#include <utility>

namespace nimbuscope {
namespace {

std::optional<std::string> text(const platform::DefaultsDictionary& dictionary, std::string_view key) {
    const auto found = dictionary.find(key);
    const auto* value = found != dictionary.end() ? found->second.as<std::string>() : nullptr;
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

}  // namespace

UserServiceImpl::UserServiceImpl(platform::DefaultsDictionary infoDictionary,
                                 std::shared_ptr<const platform::Locale> locale,
                                 std::shared_ptr<const platform::TimeZone> timeZone,
                                 std::function<UnitsPreference()> units)
    : infoDictionary_(std::move(infoDictionary)),
      locale_(std::move(locale)),
      timeZone_(std::move(timeZone)),
      units_(std::move(units)) {}

std::optional<std::string> UserServiceImpl::version() const {
    return text(infoDictionary_, "CFBundleShortVersionString");
}

std::optional<std::string> UserServiceImpl::build() const {
    return text(infoDictionary_, "CFBundleVersion");
}

}  // namespace nimbuscope
