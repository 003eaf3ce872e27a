#include "NimbuscopeKit/Networking/RequestSigner.hpp"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "Platform/URLLoading/URLComponents.hpp"

namespace nimbuscope {
namespace {

using platform::bytesOf;
using platform::Result;
using platform::SHA256Digest;
using platform::URLComponents;
using platform::URLError;

constexpr std::string_view algorithm = "NB-HMAC-SHA256";
constexpr std::array<std::string_view, 3> scope{"eu-west-1", "mobile", "nb_request"};

/// Appends the last `width` decimal digits of `number`.
void appendDigits(std::string& text, unsigned number, unsigned width) {
    std::array<char, 4> digits{};
    for (unsigned i = width; i > 0; --i, number /= 10) {
        digits[i - 1] = static_cast<char>('0' + number % 10);
    }
    text.append(digits.data(), width);
}

/// "20240307T091502Z" in the Gregorian calendar and Coordinated Universal Time, whatever the locale.
std::string timestamp(RequestSigner::Instant now) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(seconds - day);
    std::string text;
    appendDigits(text, static_cast<unsigned>(static_cast<int>(date.year())), 4);
    appendDigits(text, static_cast<unsigned>(date.month()), 2);
    appendDigits(text, static_cast<unsigned>(date.day()), 2);
    text += 'T';
    appendDigits(text, static_cast<unsigned>(time.hours().count()), 2);
    appendDigits(text, static_cast<unsigned>(time.minutes().count()), 2);
    appendDigits(text, static_cast<unsigned>(time.seconds().count()), 2);
    return text += 'Z';
}

std::string hexadecimal(const SHA256Digest& digest) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text(2 * digest.size(), '\0');
    for (std::size_t i = 0; i < digest.size(); ++i) {
        text[2 * i] = digits[digest[i] >> 4U];
        text[2 * i + 1] = digits[digest[i] & 0x0FU];
    }
    return text;
}

std::string joined(std::span<const std::string_view> texts, char separator) {
    std::size_t size = texts.size();
    for (const std::string_view text : texts) {
        size += text.size();
    }
    std::string result;
    result.reserve(size);
    for (const std::string_view& text : texts) {
        if (&text != texts.data()) {
            result += separator;
        }
        result += text;
    }
    return result;
}

void appendCanonicalQuery(std::string& text, const URLComponents& components) {
    const auto items = components.queryItems();
    std::vector<const platform::URLQueryItem*> sorted(items.size());
    std::ranges::transform(items, sorted.begin(), [](const auto& item) { return &item; });
    // By name, and those of one name as they came: without the buffer of a stable sort.
    std::ranges::sort(sorted, [](const auto* left, const auto* right) {
        const int order = left->name.compare(right->name);
        return order != 0 ? order < 0 : left < right;
    });
    for (const auto* item : sorted) {
        text += item == sorted.front() ? "" : "&";
        text += item->name;
        text += '=';
        text += item->value ? std::string_view(*item->value) : "";
    }
}

}  // namespace

platform::HTTPHeaders RequestSignature::headers() && {
    platform::HTTPHeaders fields;
    fields.add("X-Nb-Algorithm", std::move(algorithm));
    fields.add("X-Nb-Credential", std::move(credential));
    fields.add("X-Nb-Date", std::move(date));
    fields.add("X-Nb-SignedHeaders", std::move(signedHeaders));
    fields.add("X-Nb-Signature", std::move(signature));
    return fields;
}

Result<std::string, URLError> canonicalRequest(std::string_view method, std::string_view url) {
    const auto components = URLComponents::parse(url);
    if (!components) {
        return std::unexpected(components.error());
    }
    std::string lines;
    lines.reserve(method.size() + 3 * url.size() + 32);  // escaped, a byte takes three
    lines += method;
    lines += '\n';
    lines += platform::addingPercentEncodingForPath(components->path());
    lines += '\n';
    appendCanonicalQuery(lines, *components);
    lines += "\nhost:";
    lines += components->host;
    return lines += "\nUNSIGNED-PAYLOAD";
}

// Here, so that those who make one need not link what hashes.
RequestSigner::RequestSigner() = default;
RequestSigner::~RequestSigner() = default;

Result<RequestSignature, URLError> RequestSigner::sign(const platform::URLRequest& request,
                                                       std::span<const std::string_view> signedHeaders,
                                                       std::string_view key, std::string_view secret,
                                                       Instant now) {
    const auto canonical = canonicalRequest(request.httpMethod, request.url);
    if (!canonical) {
        return std::unexpected(canonical.error());
    }
    const std::string time = timestamp(now);
    const std::string_view day = std::string_view(time).substr(0, 8);
    const std::string dayAndScope = joined(std::array{day, scope[0], scope[1], scope[2]}, '/');
    const std::string hash = hexadecimal(sha256_.hash(bytesOf(*canonical)));
    const std::string stringToSign =
        joined(std::array<std::string_view, 4>{algorithm, time, dayAndScope, hash}, '\n');
    const SHA256Digest signature = sha256_.hmac(signingKey(secret, day), bytesOf(stringToSign));
    std::vector<std::string_view> names(signedHeaders.begin(), signedHeaders.end());
    std::ranges::sort(names);
    return RequestSignature{.algorithm = std::string(algorithm),
                            .credential = joined(std::array<std::string_view, 2>{key, dayAndScope}, '/'),
                            .date = time,
                            .signedHeaders = joined(names, ','),
                            .signature = hexadecimal(signature)};
}

const SHA256Digest& RequestSigner::signingKey(std::string_view secret, std::string_view day) {
    if (day_ != day || secret_ != secret) {
        key_ = sha256_.hmac(bytesOf("NB" + std::string(secret)), bytesOf(day));
        for (const std::string_view part : scope) {
            key_ = sha256_.hmac(key_, bytesOf(part));
        }
        day_ = day;
        secret_ = secret;
    }
    return key_;
}

}  // namespace nimbuscope
