// The noun `map`: what maps show, and the names on them.

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

#include "CommandLine.hpp"
#include "NimbuscopeKit/RadarImagery/MapGeometry.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "Results.hpp"

namespace nimbuscope::tool {
namespace {

using Pair = std::pair<double, double>;

std::optional<double> numberOf(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
    return isNumber ? std::optional(number) : std::nullopt;
}

/// "640x480" or "38.7,-9.1".
std::optional<Pair> pairOf(std::string_view text, char separator) {
    const std::size_t middle = text.find(separator);
    if (middle == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = numberOf(text.substr(0, middle));
    const auto second = numberOf(text.substr(middle + 1));
    return first && second ? std::optional(Pair{*first, *second}) : std::nullopt;
}

struct SpanOptions {
    Pair size;
    Pair center;
    std::int64_t zoom = 0;
    bool isJSON = false;
};

CommandResult<void> span(const SpanOptions& options, std::string& output) {
    constexpr const char* what = "map span";
    const auto span = MKCoordinateSpan::make(
        {.width = options.size.first, .height = options.size.second},
        {.latitude = options.center.first, .longitude = options.center.second}, options.zoom);
    if (!span) {
        return std::unexpected(CommandError{what, span.error().reason});
    }
    if (!options.isJSON) {
        output = fmt::format("{} degrees of latitude, {} of longitude\n", span->latitudeDelta,
                             span->longitudeDelta);
        return {};
    }
    platform::JSONWriter writer;
    writer.beginObject();
    writer.key("latitudeDelta");
    writer.value(span->latitudeDelta);
    writer.key("longitudeDelta");
    writer.value(span->longitudeDelta);
    writer.endObject();
    return printJSON(what, writer, output);
}

void addSpan(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<SpanOptions>();
    auto& verb =
        commandLine.addVerb(parent, "span", "Tells how many degrees a map view shows",
                            "nimbuscope map span --size 640x480 --center 38.72,-9.14 --zoom 8 --json",
                            [options](std::string& output) { return span(*options, output); });
    const auto addPair = [&](const char* name, Pair& value, const char* description, char separator,
                             auto isAllowed, const char* form, const char* expected) {
        const auto fault = [separator, isAllowed, expected](const std::string& text) -> std::string {
            const auto pair = pairOf(text, separator);
            return pair && isAllowed(*pair) ? "" : fmt::format("expected {}, found {}", expected, text);
        };
        const auto read = [&value, separator](const std::vector<std::string>& texts) {
            value = pairOf(texts.front(), separator).value_or(Pair{});
            return true;
        };
        verb.add_option(name, read, description)->type_name(form)->expected(1)->required()->check(fault);
    };
    addPair(
        "--size", options->size, "Size of the view in pixels", 'x',
        [](const Pair& size) { return size.first >= 0 && size.second >= 0; }, "WxH",
        "two numbers from 0 on with x between");
    addPair(
        "--center", options->center, "Centre in degrees, north and east positive", ',',
        [](const Pair& center) { return std::abs(center.first) <= 90 && std::abs(center.second) <= 180; },
        "LAT,LON", "a latitude from -90 to 90, a comma and a longitude from -180 to 180");
    verb.add_option("--zoom", options->zoom, "Zoom level; at 0 the world is 512 pixels wide")->required();
    verb.add_flag("--json", options->isJSON, "Print {latitudeDelta, longitudeDelta}");
}

void addCountry(CommandLine& commandLine, CLI::App& parent) {
    const auto code = std::make_shared<std::string>();
    auto& verb =
        commandLine.addVerb(parent, "country", "Names a country in your language",
                            "nimbuscope map country PT", [code](std::string& output) -> CommandResult<void> {
                                output = Country::countryName(*code, platform::ICULocale::ofUser()) + '\n';
                                return {};
                            });
    verb.add_option("CODE", *code, "Country code (ISO 3166); printed as it is where there is no name")
        ->required();
}

}  // namespace

void addMap(CommandLine& commandLine) {
    auto& parent = commandLine.addNoun("map", "Answers questions about maps");
    addSpan(commandLine, parent);
    addCountry(commandLine, parent);
}

}  // namespace nimbuscope::tool
