#include "tests/support/SignatureVerifier.hpp"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <regex>
#include <sstream>
#include <vector>

namespace nimbuscope::testing {
namespace {

std::string hmac(const std::string& key, const std::string& text) {
    std::array<unsigned char, 32> code;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), code.data(), nullptr);
    return {code.begin(), code.end()};
}

std::string hex(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        std::array<char, 3> digits;
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(byte));
        text += digits.data();
    }
    return text;
}

std::string sha256Hex(const std::string& text) {
    std::string digest(32, '\0');
    SHA256(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
           reinterpret_cast<unsigned char*>(digest.data()));
    return hex(digest);
}

std::string decoded(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '%';
        result += isEscape ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)) : text[i];
        i += isEscape ? 2 : 0;
    }
    return result;
}

std::string canonicalPath(const std::string& path) {
    std::string result;
    for (const char byte : decoded(path)) {
        const bool isPlain = std::isalnum(static_cast<unsigned char>(byte)) != 0 ||
                             std::string("-._~!$&'()*+,=:@/").find(byte) != std::string::npos;
        std::array<char, 4> escape;
        std::snprintf(escape.data(), escape.size(), "%%%02X", static_cast<unsigned char>(byte));
        result += isPlain ? std::string(1, byte) : escape.data();
    }
    return result;
}

std::string canonicalQuery(const std::string& query) {
    std::vector<std::pair<std::string, std::string>> items;
    std::istringstream parts(query.empty() ? query : query + '&');
    for (std::string part; std::getline(parts, part, '&');) {
        const std::size_t equals = std::min(part.find('='), part.size());
        items.emplace_back(decoded(part.substr(0, equals)),
                           equals < part.size() ? decoded(part.substr(equals + 1)) : "");
    }
    std::stable_sort(items.begin(), items.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::string result;
    for (const auto& [name, value] : items) {
        result += (result.empty() && &name == &items.front().first ? "" : "&") + name + "=" + value;
    }
    return result;
}

}  // namespace

std::string faultOfSignature(const SeenRequest& request, const std::map<std::string, std::string>& secrets) {
    std::smatch parts;
    const std::string date = request.header("X-Nb-Date");
    const std::string credential = request.header("X-Nb-Credential");
    if (!std::regex_match(date, std::regex(R"(\d{8}T\d{6}Z)"))) {
        return "date: " + date;
    }
    if (!std::regex_match(credential, parts, std::regex("(.+)/(\\d{8})/eu-west-1/mobile/nb_request")) ||
        parts[2] != date.substr(0, 8) || !secrets.contains(parts[1])) {
        return "credential";
    }
    if (request.header("X-Nb-Algorithm") != "NB-HMAC-SHA256" ||
        request.header("X-Nb-SignedHeaders") != "host") {
        return "algorithm or signed headers";
    }
    const std::size_t question = std::min(request.target.find('?'), request.target.size());
    const std::string path = canonicalPath(request.target.substr(0, question));
    const std::string query =
        question < request.target.size() ? canonicalQuery(request.target.substr(question + 1)) : "";
    const std::string canonical = request.method + "\n" + path + "\n" + query +
                                  "\nhost:" + request.host.substr(0, request.host.rfind(':')) +
                                  "\nUNSIGNED-PAYLOAD";
    std::string key = "NB" + secrets.at(parts[1]);
    for (const std::string& step :
         {date.substr(0, 8), std::string("eu-west-1"), std::string("mobile"), std::string("nb_request")}) {
        key = hmac(key, step);
    }
    const std::string expected = hex(hmac(key, "NB-HMAC-SHA256\n" + date + "\n" + date.substr(0, 8) +
                                                   "/eu-west-1/mobile/nb_request\n" + sha256Hex(canonical)));
    return request.header("X-Nb-Signature") == expected ? "" : "signature of\n" + canonical;
}

}  // namespace nimbuscope::testing
