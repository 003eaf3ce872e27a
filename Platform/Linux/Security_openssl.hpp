#pragma once

#include <map>

#include "Platform/Core/Export.hpp"
#include "Platform/Security/SecKeyStore.hpp"
#include "Platform/Security/SecRandom.hpp"

namespace nimbuscope::platform {

/// Random bytes of OpenSSL's generator, which the system's entropy seeds.
class NIMBUSCOPE_EXPORT OpenSSLRandom final : public SecRandom {
  public:
    void copyBytes(std::span<std::uint8_t> bytes) override;
};

/// Keys in memory, for as long as the process lives.
class NIMBUSCOPE_EXPORT OpenSSLKeyStore final : public SecKeyStore {
  public:
    [[nodiscard]] Result<void, SecError> add(std::string_view applicationTag, Bytes publicKey) override;
    [[nodiscard]] Result<std::shared_ptr<const SecKey>, SecError> copyMatching(
        std::string_view applicationTag) const override;
    void deleteMatching(std::string_view applicationTag) override;

  private:
    std::map<std::string, std::shared_ptr<const SecKey>, std::less<>> keys_;
};

}  // namespace nimbuscope::platform
