#include "Platform/Linux/Locale_icu.hpp"

#include <unicode/ulocdata.h>

#include <cstdlib>

namespace nimbuscope::platform {

ICULocale::ICULocale(std::string_view posixName)
    : identifier_(posixName.substr(0, posixName.find_first_of(".@"))) {
    // To the Unicode data these names would be languages that they do not have.
    if (identifier_ == "C" || identifier_ == "POSIX") {
        identifier_.clear();
    }
}

ICULocale ICULocale::ofUser() {
    for (const char* variable : {"LC_ALL", "LC_MEASUREMENT", "LANG"}) {
        const char* name = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): the caller vouches for it
        if (name != nullptr && *name != '\0') {
            return ICULocale(name);
        }
    }
    return ICULocale("");
}

bool ICULocale::usesMetricSystem() const {
    // An empty identifier would ask for the process's default locale instead.
    if (identifier_.empty()) {
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    const UMeasurementSystem system = ulocdata_getMeasurementSystem(identifier_.c_str(), &status);
    // The British system differs from the metric one on roads only.
    return U_FAILURE(status) || system != UMS_US;
}

}  // namespace nimbuscope::platform
