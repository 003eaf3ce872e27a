#include "NimbuscopeKit/Networking/Hosts.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <utility>

#include "Platform/URLLoading/URLComponents.hpp"

namespace nimbuscope {
namespace {

using platform::DefaultsArray;
using platform::DefaultsResult;
using platform::DefaultsValue;

std::string defaultsKey(HostIdentifier identifier) {
    std::string name(platform::rawValue(identifier));
    name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return "nbHosts" + name;
}

std::optional<std::vector<std::string>> textsOf(const DefaultsValue& value) {
    const auto* array = value.as<DefaultsArray>();
    if (array == nullptr) {
        return std::nullopt;
    }
    std::vector<std::string> texts;
    for (const DefaultsValue& element : *array) {
        const auto* text = element.as<std::string>();
        if (text == nullptr) {
            return std::nullopt;
        }
        texts.push_back(*text);
    }
    return texts;
}

__extension__ using Product = unsigned __int128;

}  // namespace

std::string_view builtInHost(HostIdentifier identifier) {
    return identifier == HostIdentifier::api ? NIMBUSCOPE_API_HOST : NIMBUSCOPE_CDN_HOST;
}

DefaultsResult<std::unique_ptr<Hosts>> Hosts::open(std::shared_ptr<platform::NSUserDefaults> groupDefaults,
                                                   std::shared_ptr<platform::SecRandom> random) {
    std::unique_ptr<Hosts> hosts(new Hosts(std::move(groupDefaults), std::move(random)));
    for (const HostIdentifier identifier : platform::allCases<HostIdentifier>()) {
        const auto stored = hosts->groupDefaults_->object(defaultsKey(identifier));
        if (!stored) {
            return std::unexpected(stored.error());
        }
        if (auto texts = *stored ? textsOf(**stored) : std::nullopt) {
            hosts->hosts_.emplace(identifier, std::move(*texts));
        }
    }
    return hosts;
}

std::string Hosts::getHttpsHost(HostIdentifier identifier) const {
    const auto entry = hosts_.find(identifier);
    std::vector<std::string_view> candidates;
    if (entry != hosts_.end()) {
        std::ranges::copy_if(entry->second, std::back_inserter(candidates), platform::isValidHostAndPort);
    }
    const std::string_view host =
        candidates.empty() ? builtInHost(identifier) : candidates[draw(candidates.size())];
    return "https://" + std::string(host);
}

DefaultsResult<void> Hosts::resetHosts(HostIdentifier identifier) {
    return store({{identifier, {std::string(builtInHost(identifier))}}});
}

DefaultsResult<void> Hosts::updateHostsBySettings(const ApiSettingsItem& settings) {
    Table changes;
    for (const auto& [name, list] : settings.hosts) {
        if (const auto identifier = platform::fromRawValue<HostIdentifier>(name)) {
            changes.emplace(*identifier, list);
        }
    }
    return changes.empty() ? DefaultsResult<void>{} : store(std::move(changes));
}

DefaultsResult<void> Hosts::store(Table changes) {
    const auto stored = groupDefaults_->transaction([&]() -> DefaultsResult<void> {
        for (const auto& [identifier, list] : changes) {
            const auto done =
                groupDefaults_->set(defaultsKey(identifier), DefaultsArray(list.begin(), list.end()));
            if (!done) {
                return done;
            }
        }
        return {};
    });
    if (stored) {
        changes.merge(hosts_);
        hosts_ = std::move(changes);
    }
    return stored;
}

/// An index below `count` from random words, without favour (Lemire's multiplication with rejection).
std::size_t Hosts::draw(std::size_t count) const {
    if (count == 1) {
        return 0;
    }
    const std::uint64_t uneven = (std::uint64_t{0} - count) % count;  // 2^64 mod count
    for (;;) {
        std::array<std::uint8_t, 8> bytes{};
        random_->copyBytes(bytes);
        const Product product = Product{std::bit_cast<std::uint64_t>(bytes)} * count;
        if (static_cast<std::uint64_t>(product) >= uneven) {
            return static_cast<std::size_t>(product >> 64U);
        }
    }
}

}  // namespace nimbuscope
