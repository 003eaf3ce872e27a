#include "NimbuscopeKit/Networking/NBCrypto.hpp"

#include <cstdio>
#include <utility>

#include "NimbuscopeKit/Networking/Hosts.hpp"
#include "NimbuscopeKit/Networking/NBRSA.hpp"

namespace nimbuscope {
namespace {

std::string serverPublicKeyPEM() {
    const std::string mask = builtInApiBaseURL();
    std::string pem;
    for (const std::uint8_t byte : nbNetworkPublicKey) {
        pem += static_cast<char>(byte ^ static_cast<std::uint8_t>(mask[pem.size() % mask.size()]));
    }
    return pem;
}

}  // namespace

std::string builtInApiBaseURL() {
    return "https://" + std::string(builtInHost(HostIdentifier::api)) + "/mobile/";
}

NBCrypto::NBCrypto(platform::SecKeyStore& keyStore, std::shared_ptr<platform::SecRandom> random)
    : serverPublicKey_(NBRSA::addPublicKey(serverPublicKeyPEM(), keyStore)), random_(std::move(random)) {}

platform::Data NBCrypto::randomBytes(std::size_t length) const {
    platform::Data bytes(length);
    random_->copyBytes(bytes);
    return bytes;
}

platform::Data NBCrypto::crypt(platform::Bytes data, platform::Bytes initialisationVector,
                               platform::Bytes key, platform::CryptOperation operation) const {
    auto output = platform::crypt(operation, initialisationVector, key, data);
    if (!output) {
        std::fprintf(stderr, "CCCrypt status: %d\n", static_cast<int>(output.error()));
        return {};
    }
    return std::move(*output);
}

std::optional<platform::Data> NBCrypto::encodeKey(platform::Bytes data) const {
    auto block = serverPublicKey_ ? serverPublicKey_->encrypt(data)
                                  : std::unexpected(platform::SecError::itemNotFound);
    return block ? std::optional(std::move(*block)) : std::nullopt;
}

}  // namespace nimbuscope
