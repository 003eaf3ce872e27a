// Graymaps: the samples of one that is read are the rest of the file and fit its size.

#include "Target.hpp"
#include "tools/nimbuscope/GrayMap.hpp"

using namespace nimbuscope;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto map = tool::parseGrayMap({data, size});
    if (!map) {
        require(map.error().offset <= size, "the place is in the file");
        return 0;
    }
    require(map->width > 0 && map->height > 0, "there are pixels");
    require(map->samples.size() / map->width == map->height && map->samples.size() % map->width == 0,
            "the samples fit the size");
    require(map->samples.data() + map->samples.size() == data + size, "nothing follows the samples");
    return 0;
}
