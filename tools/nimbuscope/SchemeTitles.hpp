#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nimbuscope::tool {

/// The numbering that users' choices are of.
inline constexpr std::uint32_t numberingOfChoices = 2;

/// A scheme number that has a palette of its own, and the English title.
struct SchemeTitle {
    std::int64_t scheme;
    std::string title;
};

/// All such schemes by number: those that users choose from, and those for other maps and for raw values.
[[nodiscard]] std::vector<SchemeTitle> schemeTitles();

/// The title of any scheme number; numbers without a palette of their own show raw values.
[[nodiscard]] std::string titleOfScheme(std::int64_t scheme);

}  // namespace nimbuscope::tool
