#pragma once

#include <functional>
#include <memory>

#include "NimbuscopeKit/Preferences/AppPreferences.hpp"
#include "NimbuscopeKit/Preferences/PreferenceKey.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

class PreferencesService;

/// Wants to know when this process saves preferences.
class NIMBUSCOPE_EXPORT PreferencesServiceObserver {
  public:
    virtual ~PreferencesServiceObserver() = default;

    /// Called after each successful save, with no store locked. May read and save preferences, and add or
    /// remove observers.
    virtual void preferencesDidChange(PreferencesService& preferencesService) = 0;
};

/// Where the rest of the system reads and changes the user's settings. Used from the main thread. Nothing
/// fails towards the caller: every read returns a usable record.
class NIMBUSCOPE_EXPORT PreferencesService {
  public:
    virtual ~PreferencesService() = default;

    /// The record as it is stored now, by whatever process.
    [[nodiscard]] virtual AppPreferences preferences() = 0;

    /// Stores `preferences` in place of the whole record.
    virtual void setPreferences(const AppPreferences& preferences) = 0;

    /// Reads the record, lets `edit` change it and stores it, once, while no other process can write it.
    /// `edit` uses no store and no service.
    using Edit = std::function<void(AppPreferences& preferences)>;
    virtual void modifyPreferences(const Edit& edit) = 0;

    /// Changes the one setting that `key` names, as `modifyPreferences` does.
    virtual void set(const PreferenceKey& key) = 0;

    /// Observers are told in the order in which they were added, as often as they were added.
    virtual void addObserver(std::shared_ptr<PreferencesServiceObserver> observer) = 0;

    /// Removes every entry that is this very object; it is not told of changes any more.
    virtual void removeObserver(const PreferencesServiceObserver& observer) = 0;
};

}  // namespace nimbuscope
