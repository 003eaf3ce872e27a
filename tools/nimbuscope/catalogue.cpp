// The noun `catalogue`: the network of radar stations and what they offer.

#include <fmt/format.h>

#include "CommandLine.hpp"
#include "NimbuscopeKit/RadarCatalogue/RadarDatabase.hpp"
#include "NimbuscopeKit/RadarCatalogue/RadarProducts.hpp"
#include "ReadableJSON.hpp"
#include "Records.hpp"

namespace nimbuscope::tool {
namespace {

std::string textOf(const Database& database) {
    std::string text;
    const auto print = [&]<class... Arguments>(fmt::format_string<Arguments...> form,
                                               Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(text), form, std::forward<Arguments>(arguments)...);
    };
    text += "Radars\n";
    for (const Radar& radar : database.radars) {
        print("  {:<10}{:>9.4f}{:>10.4f}  status {}  {}{}, {}{}\n", readableText(radar.id), radar.latitude,
              radar.longitude, radar.status, readableText(radar.location),
              radar.state ? ", " + readableText(*radar.state) : "", readableText(radar.country),
              radar.image_id ? ", feeds " + readableText(*radar.image_id) : "");
    }
    text += "Images\n";
    for (const Image& image : database.images) {
        print("  {:<20}status {}  frequency {}  {}: {}{}\n", readableText(image.id), image.status,
              image.frequency, readableText(image.projection), readableText(image.products),
              image.providerId ? ", by " + readableText(*image.providerId) : "");
    }
    text += "Providers\n";
    for (const Provider& provider : database.providers) {
        print("  {:<10}{}, {}: {}\n", readableText(provider.id), readableText(provider.name),
              readableText(provider.url), readableText(provider.description));
    }
    return text;
}

std::string textOf(const RadarProducts& station) {
    std::string text =
        fmt::format("{}: {} products in {}{}\n", readableText(station.id), station.products.size(),
                    readableText(station.host), readableText(station.dir));
    for (const RadarProduct& product : station.products) {
        text += fmt::format("{} {:<8}{}, frequency {}, updated {}, within [{}]\n",
                            product.id == station.default_ ? '*' : ' ', readableText(product.id),
                            readableText(product.name), product.frequency, product.lastUpdate,
                            fmt::join(product.boundingBox, ", "));
        for (const RadarScan& scan : product.scans) {
            text += fmt::format("    {:>12}  {:>5} x {:<5} {:>10} bytes  {}\n", scan.timestamp, scan.width,
                                scan.heigth, scan.size, readableText(scan.name));
        }
    }
    return text;
}

/// A verb that reads a file as a T and prints it.
template <class T>
void addRecord(CommandLine& commandLine, CLI::App& parent, const char* name, const char* description,
               const char* sample) {
    struct Options {
        std::string file;
        bool isJSON = false;
    };
    const auto options = std::make_shared<Options>();
    const auto print = [options](std::string& output) -> CommandResult<void> {
        const auto record = readRecord<T>(options->file);
        if (!record) {
            return std::unexpected(record.error());
        }
        if (options->isJSON) {
            return printRecord(options->file, *record, output);
        }
        output = textOf(*record);
        return {};
    };
    auto& verb = commandLine.addVerb(parent, name, description,
                                     fmt::format("nimbuscope catalogue {} {}", name, sample), print);
    verb.add_option("FILE", options->file, "JSON as the server sends it; - for standard input")->required();
    verb.add_flag("--json", options->isJSON, "Print the record as JSON");
}

}  // namespace

void addCatalogue(CommandLine& commandLine) {
    auto& parent = commandLine.addNoun("catalogue", "Shows the radar network");
    addRecord<Database>(commandLine, parent, "show", "Prints the stations, images and providers",
                        "docs/sample/radars.json");
    addRecord<RadarProducts>(commandLine, parent, "products", "Prints what a station offers, * shown first",
                             "docs/sample/radar-products.json");
}

}  // namespace nimbuscope::tool
