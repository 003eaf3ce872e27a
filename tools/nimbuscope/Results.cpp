#include "Results.hpp"

#include "Files.hpp"

namespace nimbuscope::tool {

CommandResult<void> writePNG(const std::string& what, const platform::RGBAImage& image,
                             const std::string& file, std::string& output) {
    const auto png = platform::encodePNG(image.width, image.height, image.pixels);
    return png ? writeResult(file, platform::textOf(*png), output)
               : std::unexpected(CommandError{what, png.error().reason});
}

CommandResult<void> printJSON(const std::string& what, platform::JSONWriter& writer, std::string& output) {
    const auto text = writer.finish();
    if (!text) {
        return std::unexpected(CommandError{what, text.error().message()});
    }
    output += *text + '\n';
    return {};
}

}  // namespace nimbuscope::tool
