// Colour-table texts: what reads is written as text that reads back the same, and a stop list made of it is
// sound.

#include "Target.hpp"
#include "colorschemes/colorschemes.h"
#include "colorschemes/text/ColorTable.hpp"

using namespace nimbuscope;
using fuzz::require;

namespace {

std::vector<ColorTableStop> withoutLines(std::vector<ColorTableStop> stops) {
    for (ColorTableStop& stop : stops) {
        stop.line = 0;
    }
    return stops;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = parseColorTable({reinterpret_cast<const char*>(data), size});
    if (!table) {
        require(!table.error().reason.empty(), "a fault has a reason");
        return 0;
    }
    require(!table->stops.empty(), "a table has colours");
    const auto again = parseColorTable(colorTableText(*table));
    require(again && withoutLines(again->stops) == withoutLines(table->stops), "it reads back the same");
    require(renderColorTable(*table, -32, 95, 64).size() == 64, "as many colours as were asked for");
    if (const auto list = stopListOf(*table)) {
        require(cs_check_stop_list(list->data(), list->size(), nullptr) == CS_STOP_LIST_SOUND,
                "the stop list is sound");
    }
    return 0;
}
