// Stop lists: one that is found sound is walked and rendered within its bytes.

#include <algorithm>
#include <array>
#include <vector>

#include "Target.hpp"
#include "colorschemes/colorschemes.h"
#include "colorschemes/text/ColorTable.hpp"

using namespace nimbuscope;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint32_t count = 128;
    std::size_t offset = 0;
    const auto fault = cs_check_stop_list(data, size, &offset);
    require(offset <= size, "the place is in the list");
    if (fault != CS_STOP_LIST_SOUND) {
        return 0;
    }
    const std::vector<std::uint8_t> list(data, data + offset);  // nothing behind its end
    std::array<std::uint8_t, std::size_t{count} * 4> out{};
    require(cs_render_pal_colors(out.data(), list.data(), 0, count - 1, 0, count) == 1, "it renders");
    require(!stopsOfList(list.data(), true).empty(), "it has stops");
    return 0;
}
