#include "Platform/Linux/Bundle_gettext.hpp"

#include <libintl.h>

#include <clocale>
#include <cstdlib>

#include "Platform/Linux/Environment.hpp"

namespace nimbuscope::platform {
namespace {

constexpr const char* domain = "nimbuscope";

}  // namespace

GettextBundle::GettextBundle(const std::string& directory) {
    bindtextdomain(domain, directory.c_str());
    bind_textdomain_codeset(domain, "UTF-8");
}

std::string GettextBundle::localizedString(std::string_view key) const {
    // The empty text stands for the catalogue's own header.
    return key.empty() ? std::string() : dgettext(domain, std::string(key).c_str());
}

// NOLINTBEGIN(concurrency-mt-unsafe): runs before other threads start.
void GettextBundle::useLanguageOfUser() {
    if (std::setlocale(LC_MESSAGES, "") != nullptr) {
        return;
    }
    // The locale is not installed. Catalogues are found all the same, by the name in LANGUAGE, once the
    // message locale is any other than "C".
    if (const std::string language(localeName("LC_MESSAGES")); !language.empty()) {
        setenv("LANGUAGE", language.substr(0, language.find('.')).c_str(), 0);
    }
    std::setlocale(LC_MESSAGES, "C.UTF-8");
}
// NOLINTEND(concurrency-mt-unsafe)

}  // namespace nimbuscope::platform
