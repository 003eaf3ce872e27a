// The first signature of a day, against the hashing of as many blocks as it needs at the speed of a long
// text. Times are per block.

#include <cstdio>
#include <string_view>

#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "support/Ratios.hpp"

using namespace nimbuscope;
using namespace nimbuscope::benchmarks;

namespace {

constexpr std::size_t blockSize = 64;

/// How many blocks SHA-256 takes for a text, with its padding.
constexpr std::size_t blocks(std::size_t size) {
    return (size + 1 + 8 + blockSize - 1) / blockSize;
}

/// Those of an authentication code: the text behind one block of key, and the hash behind another.
constexpr std::size_t codeBlocks(std::size_t size) {
    return blocks(blockSize + size) + blocks(blockSize + 32);
}

}  // namespace

int main() {
    constexpr std::string_view url =
        "https://api.nimbus.example/mobile/maps/?step=600&nowcast_interval=600&interval=7200";
    constexpr std::string_view stringToSign =
        "NB-HMAC-SHA256\n20240307T091502Z\n20240307/eu-west-1/mobile/nb_request\n"
        "0000000000000000000000000000000000000000000000000000000000000000";
    const std::size_t canonicalSize = canonicalRequest("GET", url).value().size();
    const std::size_t needed = blocks(canonicalSize) + codeBlocks(8) + codeBlocks(9) + codeBlocks(6) +
                               codeBlocks(10) + codeBlocks(stringToSign.size());

    RequestSigner signer;
    platform::SHA256 sha256;
    const platform::URLRequest request{.url = std::string(url)};
    const platform::Data megabyte(std::size_t{1} << 20U, 0x5A);
    constexpr std::array<std::string_view, 1> host{"host"};
    RequestSigner::Instant now = std::chrono::sys_days(std::chrono::days(20000));
    const std::string title = "a signature, " + std::to_string(needed) + " blocks";
    const bool isKept =
        compare(title,
                {{"sign",
                  [&] {
                      now += std::chrono::days(1);
                      benchmark::DoNotOptimize(signer.sign(request, host, "AKEXAMPLE", "s3cret", now));
                  },
                  static_cast<double>(needed)},
                 {"1 MiB", [&] { benchmark::DoNotOptimize(sha256.hash(megabyte)); },
                  static_cast<double>(blocks(megabyte.size()))}},
                {{1, 2.7}});
    return isKept ? 0 : 1;
}
