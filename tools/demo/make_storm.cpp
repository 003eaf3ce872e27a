// Prints a made-up storm as PGM, a palette index for each pixel:
//   make_storm [KIND] SIDE SEED
// KIND is a case of `Storm`, a squall line when left out.

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "tools/demo/Storms.hpp"

namespace {

using namespace nimbuscope;
using demo::Storm;

std::optional<std::uint32_t> numberOf(std::string_view text) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

int fail(std::uint32_t maximalSide) {
    std::fputs("make_storm: expected [", stderr);
    const char* separator = "";
    for (const Storm storm : platform::allCases<Storm>()) {
        const std::string_view name = platform::rawValue(storm);
        std::fprintf(stderr, "%s%.*s", separator, static_cast<int>(name.size()), name.data());
        separator = "|";
    }
    std::fprintf(stderr, "], a side from 1 to %u and a seed\n", maximalSide);
    return 2;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    constexpr std::uint32_t maximalSide = 8192;
    if (argumentCount != 3 && argumentCount != 4) {
        return fail(maximalSide);
    }
    const auto storm = argumentCount == 4 ? platform::fromRawValue<Storm>(arguments[1]) : Storm::squall;
    const auto side = numberOf(arguments[argumentCount - 2]);
    const auto seed = numberOf(arguments[argumentCount - 1]);
    if (!storm || !side || !seed || *side == 0 || *side > maximalSide) {
        return fail(maximalSide);
    }
    const demo::Raster raster = demo::makeStorm(*storm, *side, *side, *seed);
    const auto& indices = raster.indices;
    std::printf("P5 %u %u 255\n", *side, *side);
    const bool isWritten =
        std::fwrite(indices.data(), 1, indices.size(), stdout) == indices.size() && std::fflush(stdout) == 0;
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
