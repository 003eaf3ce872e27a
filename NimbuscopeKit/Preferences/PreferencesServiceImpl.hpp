#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "NimbuscopeKit/Preferences/ErrorTrackingService.hpp"
#include "NimbuscopeKit/Preferences/PreferencesService.hpp"
#include "NimbuscopeKit/Preferences/PreferencesServiceError.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/ObserverList.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/Locale/Locale.hpp"

namespace nimbuscope {

/// The preferences as a JSON record in the store that the application shares with its extensions. The format
/// is described in docs/formats/preferences.md.
///
/// Every call goes to the store afresh, so that several services, in one process or many, see each other's
/// saved changes. What depends on the stored record is one transaction, so that none of their changes is
/// lost.
///
/// Errors go to the `ErrorTrackingService`, or to standard error without one. A record that cannot be read is
/// replaced, with a message on standard error, by what the older settings say
/// (`AppPreferences::fromUserDefaults`). A store that cannot be read is left alone: reads return that same
/// record, and changes are not made. No record is made of older settings that could not all be read or
/// copied.
class NIMBUSCOPE_EXPORT PreferencesServiceImpl final : public PreferencesService {
  public:
    using PreferencesServiceError = nimbuscope::PreferencesServiceError;

    static constexpr std::string_view appGroupIdentifier = nimbuscope::appGroupIdentifier;
    static constexpr std::string_view appPreferencesKey = "NimbuscopeAppPreferences";

    /// The domains of tracked errors. Errors of the first two concern a record, which will be or was
    /// replaced.
    static constexpr std::string_view serviceErrorDomain = "PreferencesServiceImpl.PreferencesServiceError";
    static constexpr std::string_view decodingErrorDomain = "PreferencesServiceImpl.DecodingError";
    /// The store could not be read or written; the code is that of `DefaultsError`.
    static constexpr std::string_view storeErrorDomain = "NSUserDefaults";

    /// Copies everything in `standardDefaults` into `groupDefaults`, unless that was done before, and brings
    /// the stored record to the newest version. What is up to date is not written again. A record that is no
    /// JSON or of no known version stays until the first read.
    PreferencesServiceImpl(const platform::NSUserDefaults& standardDefaults,
                           std::shared_ptr<platform::NSUserDefaults> groupDefaults,
                           std::shared_ptr<ErrorTrackingService> errorTrackingService,
                           std::shared_ptr<const platform::Locale> locale);

    [[nodiscard]] AppPreferences preferences() override;
    void setPreferences(const AppPreferences& preferences) override;
    void modifyPreferences(const Edit& edit) override;
    void set(const PreferenceKey& key) override;
    void addObserver(std::shared_ptr<PreferencesServiceObserver> observer) override;
    void removeObserver(const PreferencesServiceObserver& observer) override;

  private:
    /// A record, or why the stored bytes are none.
    using Record = platform::Result<AppPreferences, platform::DecodingError>;

    [[nodiscard]] platform::DefaultsResult<bool> isMigrated() const;
    [[nodiscard]] platform::DefaultsResult<void> copyOlderSettings(
        const platform::NSUserDefaults& standardDefaults);
    [[nodiscard]] platform::Result<std::optional<platform::Data>, platform::NSError> outstandingUpdate(
        bool mayMakeRecord) const;
    void bringUpToDate(bool mayMakeRecord);

    [[nodiscard]] platform::DefaultsResult<std::optional<platform::Data>> storedData() const;
    [[nodiscard]] platform::DefaultsResult<Record> storedRecord();
    [[nodiscard]] AppPreferences imported() const;
    [[nodiscard]] platform::DefaultsResult<AppPreferences> checkedImport() const;
    [[nodiscard]] platform::DefaultsResult<void> store(const AppPreferences& preferences);
    void change(const Edit& edit, std::optional<platform::DecodingError> fault);
    void finishSaving(platform::DefaultsResult<void> saved);
    void announceReset(const platform::DecodingError& fault) const;

    std::shared_ptr<platform::NSUserDefaults> groupDefaults_;
    std::shared_ptr<ErrorTrackingService> errorTrackingService_;
    std::shared_ptr<const platform::Locale> locale_;
    platform::ObserverList<PreferencesServiceObserver> observers_;
    platform::JSONDecoder decoder_;
};

}  // namespace nimbuscope
