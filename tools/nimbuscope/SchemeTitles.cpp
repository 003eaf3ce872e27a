#include "SchemeTitles.hpp"

#include <algorithm>

#include "EnglishBundle.hpp"
#include "NimbuscopeKit/Preferences/ColorSchemePreference.hpp"

namespace nimbuscope::tool {

std::vector<SchemeTitle> schemeTitles() {
    std::vector<SchemeTitle> titles{{0, "Raw Values"},         {18, "Perceptual"},
                                    {33, "Rain Rate"},         {100, "Satellite"},
                                    {101, "Temperature"},      {200, "Raw Values in Two Parts"},
                                    {255, "Raw Values in Red"}};
    for (const ColorSchemePreference scheme : caseTable(ColorSchemePreference{})) {
        titles.push_back({static_cast<std::int64_t>(scheme), title(scheme, EnglishBundle())});
    }
    std::ranges::sort(titles, {}, &SchemeTitle::scheme);
    return titles;
}

std::string titleOfScheme(std::int64_t scheme) {
    const auto titles = schemeTitles();
    const auto found = std::ranges::find(titles, scheme, &SchemeTitle::scheme);
    return found != titles.end() ? found->title : titles.front().title;
}

}  // namespace nimbuscope::tool
