#pragma once

#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Locale/Bundle.hpp"

namespace nimbuscope::platform {

/// The texts of the catalogues of domain "nimbuscope" (GNU gettext) in `DIRECTORY/LANGUAGE/LC_MESSAGES`.
///
/// The language is that of the process's message locale, or of `$LANGUAGE`. One process-wide directory: the
/// last bundle that was made says which.
class NIMBUSCOPE_EXPORT GettextBundle final : public Bundle {
  public:
    explicit GettextBundle(const std::string& directory);

    [[nodiscard]] std::string localizedString(std::string_view key) const override;

    /// Takes the user's language from the environment (`LC_ALL`, `LC_MESSAGES`, `LANG`, by name: the locale
    /// need not be installed). Numbers keep the form of the C locale. Call once, before other threads start.
    static void useLanguageOfUser();
};

}  // namespace nimbuscope::platform
