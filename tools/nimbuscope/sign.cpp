// The command `sign`: what signs a request to the mobile API.

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <optional>

#include "CommandLine.hpp"
#include "NimbuscopeKit/Networking/RequestSigner.hpp"
#include "Results.hpp"

namespace nimbuscope::tool {
namespace {

struct SignOptions {
    platform::URLRequest request;
    std::string key;
    std::string secret;
    RequestSigner::Instant at;
    bool isJSON = false;
};

bool isGraph(char character) {
    return character > ' ' && character < 0x7F;
}

/// The instant of a text of the form "2024-03-07T09:15:02Z".
std::optional<RequestSigner::Instant> instantOf(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00Z";
    std::array<int, 6> numbers{};
    std::size_t count = 0;
    if (text.size() != form.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (form[i] == '0' ? !isDigit : text[i] != form[i]) {
            return std::nullopt;
        }
        count += form[i] == '0' ? 0 : 1;
        if (isDigit) {
            numbers[count] = numbers[count] * 10 + (text[i] - '0');
        }
    }
    const auto [year, month, day, hour, minute, second] = numbers;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok() || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second);
}

CommandResult<void> sign(const SignOptions& options, std::string& output) {
    constexpr std::array<std::string_view, 1> signedHeaders{"host"};
    auto signature =
        RequestSigner().sign(options.request, signedHeaders, options.key, options.secret, options.at);
    if (!signature) {
        return std::unexpected(CommandError{"sign", signature.error().message()});
    }
    const auto headers = std::move(*signature).headers();
    platform::JSONWriter writer;
    writer.beginObject();
    for (const auto& [name, value] : headers.fields()) {
        if (!options.isJSON) {
            output += fmt::format("{}: {}\n", name, value);
        }
        writer.key(name);
        writer.value(value);
    }
    writer.endObject();
    return options.isJSON ? printJSON("sign", writer, output) : CommandResult<void>{};
}

}  // namespace

void addSign(CommandLine& commandLine) {
    const auto options = std::make_shared<SignOptions>();
    auto& command =
        commandLine.addCommand("sign", "Prints the headers that sign a request to the mobile API",
                               "nimbuscope sign --method GET --url "
                               "https://api.nimbus.example/mobile/maps/?step=600 --key K --secret S "
                               "--at 2024-03-07T09:15:02Z",
                               [options](std::string& output) { return sign(*options, output); });
    command.add_option("--method", options->request.httpMethod, "HTTP method")
        ->required()
        ->check([](const std::string& method) {
            const bool isName = !method.empty() && std::ranges::all_of(method, isGraph);
            return isName ? "" : "expected the name of a method";
        });
    command.add_option("--url", options->request.url, "Address of the request")->required();
    command.add_option("--key", options->key, "Access key")->required()->check([](const std::string& key) {
        const bool isPrintable = std::ranges::all_of(key, [](char c) { return c == ' ' || isGraph(c); });
        return !key.empty() && isPrintable ? "" : "a header cannot hold this key";
    });
    command.add_option("--secret", options->secret, "Secret")->required();
    const auto readInstant = [options](const std::vector<std::string>& texts) {
        const auto instant = instantOf(texts.front());
        options->at = instant.value_or(RequestSigner::Instant());
        return instant.has_value();
    };
    command.add_option("--at", readInstant, "Instant of the signature")
        ->type_name("YYYY-MM-DDThh:mm:ssZ")
        ->expected(1)
        ->required();
    command.add_flag("--json", options->isJSON, "Print an object of header names and values");
}

}  // namespace nimbuscope::tool
