// Writes the C++ source of nbNetworkPublicKey: a public key in PEM, without line breaks, masked with the base
// of the API's addresses.
//   nimbuscope-mask-key PEM-FILE BASE-URL SOURCE-FILE

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t keySize = 442;  // the PEM of a 2048-bit RSA key with exponent 65537, in one line

std::string sourceFor(std::string_view pem, std::string_view mask) {
    std::string source =
        "#include \"NimbuscopeKit/Networking/NBCrypto.hpp\"\n\n"
        "const std::array<std::uint8_t, nimbuscope::networkPublicKeySize> nimbuscope::nbNetworkPublicKey{\n";
    for (std::size_t i = 0; i < pem.size(); ++i) {
        const auto byte = static_cast<unsigned char>(pem[i] ^ mask[i % mask.size()]);
        source += std::to_string(byte) + (i % 16 == 15 ? ",\n" : ",");
    }
    return source + "};\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4 || std::string_view(arguments[2]).empty()) {
        std::fputs("usage: nimbuscope-mask-key PEM-FILE BASE-URL SOURCE-FILE\n", stderr);
        return EXIT_FAILURE;
    }
    std::ifstream file(arguments[1]);
    std::string pem{std::istreambuf_iterator<char>(file), {}};
    std::erase_if(pem, [](char c) { return c == '\r' || c == '\n'; });
    if (pem.size() != keySize || !pem.starts_with("-----BEGIN PUBLIC KEY-----")) {
        std::fprintf(stderr, "%s: expected a public key of %zu bytes of PEM without line breaks, found %zu\n",
                     arguments[1], keySize, pem.size());
        return EXIT_FAILURE;
    }
    std::ofstream source(arguments[3]);
    source << sourceFor(pem, arguments[2]) << std::flush;
    if (!source) {
        std::perror(arguments[3]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
