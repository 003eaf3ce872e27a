#pragma once

#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <string>

#include "Platform/Security/DeviceIdentifier.hpp"
#include "Platform/Security/SecKeyStore.hpp"
#include "Platform/Security/SecRandom.hpp"

namespace nimbuscope::testing {

/// Random words that the test lists; none may be missing.
class ScriptedRandom final : public platform::SecRandom {
  public:
    std::deque<std::uint64_t> words;
    void copyBytes(std::span<std::uint8_t> bytes) override {
        std::memcpy(bytes.data(), &words.at(0), bytes.size());
        words.pop_front();
    }
};

/// A device with the identifier that the test gives it.
class FixedDevice final : public platform::DeviceIdentifier {
  public:
    std::optional<platform::UUID> identifier;
    [[nodiscard]] std::optional<platform::UUID> identifierForVendor() const override { return identifier; }
};

/// Keys in memory that encrypt to their own bytes. What is no DER sequence is no key. Fails to add or to find
/// while it is told to.
class InMemoryKeyStore final : public platform::SecKeyStore {
  public:
    std::optional<platform::SecError> addFault;
    std::optional<platform::SecError> findFault;

    [[nodiscard]] platform::Result<void, platform::SecError> add(std::string_view tag,
                                                                 platform::Bytes publicKey) override {
        if (addFault || keys_.contains(tag) || publicKey.empty() || publicKey[0] != 0x30) {
            return std::unexpected(addFault              ? *addFault
                                   : keys_.contains(tag) ? platform::SecError::duplicateItem
                                                         : platform::SecError::decode);
        }
        keys_.emplace(tag, std::make_shared<Key>(publicKey));
        return {};
    }
    [[nodiscard]] platform::Result<std::shared_ptr<const platform::SecKey>, platform::SecError> copyMatching(
        std::string_view tag) const override {
        const auto found = keys_.find(tag);
        if (findFault || found == keys_.end()) {
            return std::unexpected(findFault.value_or(platform::SecError::itemNotFound));
        }
        return found->second;
    }
    void deleteMatching(std::string_view tag) override { keys_.erase(std::string(tag)); }

  private:
    struct Key final : platform::SecKey {
        explicit Key(platform::Bytes bytes) : block(bytes.begin(), bytes.end()) { block.resize(256); }
        [[nodiscard]] std::size_t blockSize() const override { return block.size(); }
        [[nodiscard]] platform::Result<platform::Data, platform::SecError> encrypt(
            platform::Bytes data) const override {
            return data.size() + 42 <= block.size()
                       ? platform::Result<platform::Data, platform::SecError>(block)
                       : std::unexpected(platform::SecError::parameter);
        }
        platform::Data block;
    };
    std::map<std::string, std::shared_ptr<const Key>, std::less<>> keys_;
};

}  // namespace nimbuscope::testing
