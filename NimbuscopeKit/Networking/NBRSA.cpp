#include "NimbuscopeKit/Networking/NBRSA.hpp"

#include <algorithm>
#include <array>
#include <optional>

#include "Platform/Coding/Base64.hpp"
#include "Platform/Core/ByteReader.hpp"

namespace nimbuscope {
namespace {

using platform::Bytes;
using platform::Result;

constexpr std::string_view applicationTag = "com.brisk-labs.Nimbuscope.networkPublicKey";
constexpr std::string_view pemBegin = "-----BEGIN PUBLIC KEY-----";
constexpr std::string_view pemEnd = "-----END PUBLIC KEY-----";

constexpr std::uint8_t sequenceTag = 0x30;
constexpr std::uint8_t bitStringTag = 0x03;

/// AlgorithmIdentifier of rsaEncryption (1.2.840.113549.1.1.1) with a NULL parameter.
constexpr std::array<std::uint8_t, 15> rsaEncryption{0x30, 0x0D, 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86,
                                                     0xF7, 0x0D, 0x01, 0x01, 0x01, 0x05, 0x00};

/// Walks through DER bytes; each step fails at the end, and stays where it failed.
class DERWalk {
  public:
    explicit DERWalk(Bytes der) : reader_(der) {}

    [[nodiscard]] std::uint64_t offset() const { return offset_; }

    [[nodiscard]] bool skip(Bytes expected) {
        const auto found = reader_.slice(offset_, expected.size());
        const bool isThere = found && std::ranges::equal(*found, expected);
        offset_ += isThere ? expected.size() : 0;
        return isThere;
    }
    [[nodiscard]] bool skip(std::uint8_t byte) { return skip(Bytes(&byte, 1)); }

    [[nodiscard]] bool skipLength() {
        constexpr std::uint32_t longForm = 0x80;
        const auto first = reader_.integer(offset_, 1);
        const std::uint32_t more = first && *first > longForm ? *first - longForm : 0;
        if (!first || !reader_.holds(offset_ + 1, more)) {
            return false;
        }
        offset_ += 1 + more;
        return true;
    }

    [[nodiscard]] Bytes rest() const { return *reader_.slice(offset_, reader_.size() - offset_); }

  private:
    platform::ByteReader reader_;
    std::uint64_t offset_ = 0;
};

/// The base-64 text of a PEM; none where its last line comes before the first.
std::optional<std::string> bodyOf(std::string_view pem) {
    const std::size_t begin = pem.find(pemBegin);
    const std::size_t end = pem.find(pemEnd);
    if (begin != pem.npos && end != pem.npos) {
        const std::size_t start = begin + pemBegin.size();
        if (end < start) {
            return std::nullopt;
        }
        pem = pem.substr(start, end - start);
    }
    std::string body;
    std::ranges::copy_if(pem, std::back_inserter(body), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
               c == '/' || c == '=';
    });
    return body;
}

}  // namespace

std::shared_ptr<const platform::SecKey> NBRSA::addPublicKey(std::string_view pem,
                                                            platform::SecKeyStore& keyStore) {
    const auto body = bodyOf(pem);
    const auto der = body ? platform::base64Decoded(*body) : std::nullopt;
    const auto publicKey = der ? stripPublicKeyHeader(*der) : std::unexpected(PublicKeyError{});
    if (!publicKey) {
        return nullptr;
    }
    keyStore.deleteMatching(applicationTag);
    if (!keyStore.add(applicationTag, *publicKey)) {
        return nullptr;
    }
    return keyStore.copyMatching(applicationTag).value_or(nullptr);
}

Result<Bytes, PublicKeyError> NBRSA::stripPublicKeyHeader(Bytes der) {
    DERWalk walk(der);
    const auto failed = [&](const char* reason) {
        return std::unexpected(PublicKeyError{walk.offset(), reason});
    };
    if (!walk.skip(sequenceTag) || !walk.skipLength()) {
        return failed("expected a sequence");
    }
    if (!walk.skip(rsaEncryption)) {
        return failed("expected the identifier of rsaEncryption");
    }
    if (!walk.skip(bitStringTag) || !walk.skipLength()) {
        return failed("expected a bit string");
    }
    if (!walk.skip(std::uint8_t{0})) {
        return failed("expected a bit string of whole bytes");
    }
    return walk.rest();
}

}  // namespace nimbuscope
