#include "NimbuscopeKit/Preferences/Migration.hpp"

#include <nlohmann/json.hpp>
#include <string_view>

#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

using Dictionary = nlohmann::ordered_json;
using Version = AppPreferences::Version;
using platform::Result;

/// Sets a key in a section, which is an object under a key of the dictionary. A missing section stays
/// missing; one that is no object goes.
void set(Dictionary& dictionary, std::string_view section, const char* key, Dictionary value) {
    const auto found = dictionary.find(section);
    if (found == dictionary.end()) {
        return;
    }
    if (!found->is_object()) {
        dictionary.erase(found);
        return;
    }
    (*found)[key] = std::move(value);
}

void addLegend(Dictionary& record) {
    auto legend = Dictionary::object();  // not in braces, whose halves g++ 12 leaves behind without memory
    legend["isLegendEnabled"] = true;
    legend["tooltipType"] = 0;
    set(record, "map", "legend", std::move(legend));
}

void enableStorms(Dictionary& record) {
    set(record, "layer", "isStormsEnabled", true);
}

void disableAlerts(Dictionary& record) {
    set(record, "layer", "isAlertsEnabled", false);
}

void openMapAndPlaySixHours(Dictionary& record) {
    set(record, "main", "isOpenMapOnLaunchEnabled", true);
    set(record, "player", "pastInterval", sixHours);
}

// The misspelt key is what applications in the field have stored.
void addOverlayType(Dictionary& record) {
    set(record, "layer", "ovarlayType", 0);
}

void disableRecentLayers(Dictionary& record) {
    set(record, "layer", "isRecentLayersEnabled", false);
}

void showInsights(Dictionary& record) {
    set(record, "main", "isShowAIInsights", true);
}

void enableHaptics(Dictionary& record) {
    set(record, "main", "isHapticEnabled", true);
}

// Not the key that the record has: "isNeedSendStartupPush" is another setting.
void markStartupPush(Dictionary& record) {
    set(record, "main", "isStartupPushSent", true);
}

struct Step {
    Version to;
    Migration migration;
};

constexpr std::array steps{
    Step{Version::v1, Migration::none()},
    Step{Version::v2, Migration::migrate(addLegend)},
    Step{Version::v3, Migration::migrate(enableStorms)},
    Step{Version::v4, Migration::none()},  // changed the advertisements, no longer part of this record
    Step{Version::v5, Migration::migrate(disableAlerts)},
    Step{Version::v6, Migration::none()},
    Step{Version::v7, Migration::migrate(openMapAndPlaySixHours)},
    Step{Version::v8, Migration::migrate(addOverlayType)},
    Step{Version::v9, Migration::migrate(disableRecentLayers)},
    Step{Version::v10, Migration::migrate(showInsights)},
    Step{Version::v11, Migration::migrate(enableHaptics)},
    Step{Version::v12, Migration::migrate(markStartupPush)},
};

static_assert(std::ranges::equal(steps, platform::allCases<Version>(), {}, &Step::to));

/// The part of the record that says how to read the rest.
struct Stamp {
    Version version = newestVersion<AppPreferences>;

    static constexpr auto fields = std::tuple{platform::key("version", &Stamp::version)};
};

Result<Version, MigrationError> versionOf(const platform::Data& stored) {
    platform::JSONDocument document;
    const auto root = document.parse(stored);
    if (!root) {
        return std::unexpected(MigrationError{{}, root.error()});
    }
    if (!root->is_object()) {
        return std::unexpected(MigrationError{{}, std::move(*platform::typeMismatch("an object", *root))});
    }
    Stamp stamp;
    if (auto fault = platform::JSONReader<Stamp>::read(*root, stamp)) {
        return std::unexpected(
            MigrationError{PreferencesServiceError::unableToReadPreferencesVersion, std::move(*fault)});
    }
    return stamp.version;
}

}  // namespace

Migration AppPreferences::migrate(Version to) {
    const auto* const found = std::ranges::find(steps, to, &Step::to);
    platform::precondition(found != steps.end(), "no such version of the preferences");
    return found->migration;
}

Result<std::optional<platform::Data>, MigrationError> migratedPreferences(const platform::Data& stored) {
    const auto version = versionOf(stored);
    if (!version) {
        return std::unexpected(version.error());
    }
    if (*version == newestVersion<AppPreferences>) {
        return std::nullopt;
    }
    // The text is known to be JSON: what this parser still refuses is a number beyond the range of doubles.
    Dictionary dictionary = Dictionary::parse(stored, nullptr, false);
    if (dictionary.is_discarded()) {
        return std::unexpected(MigrationError{{}, {{}, "a number is out of range"}});
    }
    for (const Version next : platform::allCases<Version>()) {
        if (next > *version) {
            AppPreferences::migrate(next)(dictionary);
            dictionary["version"] = platform::rawValue(next);
        }
    }
    return platform::dataOf(dictionary.dump());
}

}  // namespace nimbuscope
