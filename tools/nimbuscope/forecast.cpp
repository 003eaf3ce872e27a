// The noun `forecast`: what the server says about the weather.

#include <algorithm>

#include "CommandLine.hpp"
#include "ForecastText.hpp"
#include "NimbuscopeKit/Forecast/ApiForecastIcon.hpp"
#include "Platform/Linux/Bundle_gettext.hpp"
#include "Platform/Linux/Locale_icu.hpp"
#include "ReadableJSON.hpp"
#include "Records.hpp"
#include "Results.hpp"

namespace nimbuscope::tool {
namespace {

struct ShowOptions {
    std::string file;
    std::string units;
    std::string chart;
    bool isJSON = false;
};

/// The units that were named, or those of the user's region.
UnitsPreference unitsOf(const std::string& name) {
    const auto all = caseTable(UnitsPreference{});
    const auto* const named =
        std::ranges::find(all, name, [](UnitsPreference units) { return title(units); });
    if (named != all.end()) {
        return *named;
    }
    return platform::ICULocale::ofUser().usesMetricSystem() ? UnitsPreference::Metric
                                                            : UnitsPreference::Imperial;
}

CommandResult<void> drawChart(const ShowOptions& options, const ApiForecast& forecast, std::string& output) {
    const auto chart = hourlyChart(forecast.data, unitsOf(options.units));
    if (chart.hours.empty()) {
        return std::unexpected(CommandError{options.file, "data.hourly.data: no hours to draw"});
    }
    return writePNG(options.file, drawing::drawHourlyChart(chart), options.chart, output);
}

CommandResult<void> show(const ShowOptions& options, std::string& output) {
    const auto forecast = readRecord<ApiForecast>(options.file);
    if (!forecast) {
        return std::unexpected(forecast.error());
    }
    if (!options.chart.empty()) {
        if (auto drawn = drawChart(options, *forecast, output); !drawn || !output.empty()) {
            return drawn;
        }
    }
    if (options.isJSON) {
        return printRecord(options.file, *forecast, output);
    }
    output =
        forecastText(*forecast, unitsOf(options.units), platform::GettextBundle(NIMBUSCOPE_LOCALE_DIRECTORY));
    return {};
}

void addShow(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<ShowOptions>();
    auto& verb = commandLine.addVerb(parent, "show", "Prints a forecast: now, the next hour, hours and days",
                                     "nimbuscope forecast show docs/sample/forecast.json --chart hours.png",
                                     [options](std::string& output) { return show(*options, output); });
    verb.add_option("FILE", options->file, "Reply of the forecast endpoint; - for standard input")
        ->required();
    verb.add_option("--units", options->units,
                    "imperial, metric, or mixed: Celsius and miles; your region's by default")
        ->check(CLI::IsMember({"imperial", "metric", "mixed"}));
    verb.add_option("--chart", options->chart,
                    "Also draw the hours; - for standard output, with nothing else")
        ->type_name("PNG");
    verb.add_flag("--json", options->isJSON, "Print the record as JSON, in the units of the server");
    verb.parse_complete_callback([options] {
        if (options->isJSON && options->chart == "-") {
            throw CLI::ValidationError(
                "-: standard output is taken for the chart or for --json, not for both");
        }
    });
}

struct IconOptions {
    std::string code;
    std::optional<std::string> suffix;
    bool isJSON = false;
};

CommandResult<void> icon(const IconOptions& options, std::string& output) {
    using Icon = ApiForecastIcon;
    const std::string& code = options.code;
    const platform::GettextBundle bundle(NIMBUSCOPE_LOCALE_DIRECTORY);
    platform::JSONWriter writer;
    const auto write = [&](std::string_view key, const auto& value) {
        writer.key(key);
        writer.value(value);
    };
    writer.beginObject();
    write("symbol", Icon::toImageSystemName(code));
    write("description", Icon::toDescriptionText(code, bundle));
    write("level", Icon::toLevel(code));
    write("levelDescription", Icon::toLevelDescriptionText(code, bundle));
    write("isPrecipitation", Icon::isPrecipitation(code));
    write("isNoPrecipitation", Icon::isNoPrecipitation(code));
    write("isBlueLine", Icon::isBlueLine(code));
    write("isGrayLine", Icon::isGrayLine(code));
    write("asset", Icon::getAssetName(code, options.suffix));
    writer.endObject();
    const auto printed = printJSON("forecast icon", writer, output);
    if (printed && !options.isJSON) {
        output = readableJSON(output);
    }
    return printed;
}

void addIcon(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<IconOptions>();
    auto& verb = commandLine.addVerb(parent, "icon", "Tells what an icon code stands for",
                                     "nimbuscope forecast icon clouds_sun_rain --suffix Small --json",
                                     [options](std::string& output) { return icon(*options, output); });
    verb.add_option("CODE", options->code, "Icon code; any text is one")->required();
    verb.add_option("--suffix", options->suffix, "What the name of the image ends with");
    verb.add_flag("--json", options->isJSON, "Print an object");
}

}  // namespace

void addForecast(CommandLine& commandLine) {
    auto& parent = commandLine.addNoun("forecast", "Shows forecasts");
    addShow(commandLine, parent);
    addIcon(commandLine, parent);
}

}  // namespace nimbuscope::tool
