// The verb `palette legend`.

#include <algorithm>
#include <map>

#include "CommandLine.hpp"
#include "NimbuscopeKit/RadarImagery/RadarColorScheme.hpp"
#include "Results.hpp"
#include "tools/drawing/PaletteChart.hpp"

namespace nimbuscope::tool {
namespace {

constexpr const char* verbName = "palette legend";

const std::map<std::string, ColorSchemeType> types{
    {"Rain", ColorSchemeType::Rain},
    {"Hail", ColorSchemeType::Hail},
    {"Snow", ColorSchemeType::Snow},
    {"FreezingRain", ColorSchemeType::FreezingRain},
    {"IcePellete", ColorSchemeType::IcePellete},
    {"Clouds", ColorSchemeType::Clouds},
};
/// How the types are called on the picture.
const std::map<ColorSchemeType, std::string> titles{
    {ColorSchemeType::Rain, "Rain"},
    {ColorSchemeType::Hail, "Hail"},
    {ColorSchemeType::Snow, "Snow"},
    {ColorSchemeType::FreezingRain, "Freezing rain"},
    {ColorSchemeType::IcePellete, "Ice pellets"},
    {ColorSchemeType::Clouds, "Clouds"},
};

struct Options {
    std::int64_t scheme = 0;
    std::string type;
    std::string direction = "horizontal";
    bool isJSON = false;
    std::string file;
};

std::unexpected<CommandError> refused(std::string why) {
    return std::unexpected(CommandError{verbName, std::move(why)});
}

void writeNumbers(platform::JSONWriter& writer, std::span<const double> numbers) {
    writer.beginArray();
    for (const double number : numbers) {
        writer.value(number);
    }
    writer.endArray();
}

void writeLayer(platform::JSONWriter& writer, const platform::CAGradientLayer& layer) {
    writer.beginObject();
    writer.key("colors");
    writer.beginArray();
    for (const platform::CGColor& color : layer.colors) {
        writeNumbers(writer, std::array{color.red, color.green, color.blue, color.alpha});
    }
    writer.endArray();
    writer.key("locations");
    writeNumbers(writer, layer.locations);
    writer.key("startPoint");
    writeNumbers(writer, std::array{layer.startPoint.x, layer.startPoint.y});
    writer.key("endPoint");
    writeNumbers(writer, std::array{layer.endPoint.x, layer.endPoint.y});
    writer.endObject();
}

CommandResult<void> legend(const Options& options, std::string& output) {
    const auto scheme = RadarColorScheme::make(options.scheme, true, true, RadarColorScheme::weakestDbz);
    if (!scheme) {
        return refused(scheme.error().reason);
    }
    const ColorSchemeType type = types.at(options.type);
    const auto direction =
        options.direction == "vertical" ? GradientDirection::vertical : GradientDirection::horizontal;
    const auto layer = scheme->checkedGradient(type, direction);
    if (!layer) {
        return refused(layer.error().reason);
    }
    if (!options.file.empty()) {
        const auto image = drawing::drawLegend(*layer, direction, titles.at(type), drawing::legendAxis(type));
        auto written = writePNG(verbName, image, options.file, output);
        if (!written || !options.isJSON) {
            return written;
        }
    }
    platform::JSONWriter writer;
    writeLayer(writer, *layer);
    return printJSON(verbName, writer, output);
}

}  // namespace

void addPaletteLegend(CommandLine& commandLine, CLI::App& parent) {
    const auto options = std::make_shared<Options>();
    auto& verb =
        commandLine.addVerb(parent, "legend", "Draws the legend strip of one kind of precipitation",
                            "nimbuscope palette legend 4 --type Rain --direction vertical -o rain.png",
                            [options](std::string& output) { return legend(*options, output); });
    verb.add_option("SCHEME", options->scheme, "Scheme number, as `palette list` shows them")->required();
    std::vector<std::string> names(types.size());
    std::ranges::transform(types, names.begin(), [](const auto& type) { return type.first; });
    verb.add_option("--type", options->type, "What the legend shows")
        ->required()
        ->check(CLI::IsMember(names));
    verb.add_option("--direction", options->direction, "Which way it runs")
        ->check(CLI::IsMember({"horizontal", "vertical"}))
        ->capture_default_str();
    auto& wanted = *verb.add_option_group("result");
    wanted.add_flag("--json", options->isJSON, "Print the gradient, components from 0 to 1");
    wanted.add_option("-o,--output", options->file, "File to write; - for standard output")->type_name("PNG");
    wanted.require_option(1, 2);
    verb.parse_complete_callback([options] {
        if (options->isJSON && options->file == "-") {
            throw CLI::ValidationError(
                "-: standard output is taken for the picture or for --json, not for both");
        }
    });
}

}  // namespace nimbuscope::tool
