#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"

#include <cstdio>
#include <string>
#include <utility>

#include "NimbuscopeKit/Preferences/Migration.hpp"
#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {
namespace {

using platform::Data;
using platform::DecodingError;
using platform::DefaultsError;
using platform::DefaultsResult;
using platform::NSError;
using platform::Result;

constexpr std::string_view isMigratedKey = "isMigrated";

NSError errorFrom(const DefaultsError& error) {
    return {std::string(PreferencesServiceImpl::storeErrorDomain), static_cast<int>(error.code),
            error.message()};
}

NSError errorFrom(const DecodingError& error) {
    return {std::string(PreferencesServiceImpl::decodingErrorDomain), 0, error.message()};
}

NSError errorFrom(const MigrationError& error) {
    if (!error.serviceError) {
        return errorFrom(error.cause);
    }
    return {std::string(PreferencesServiceImpl::serviceErrorDomain), static_cast<int>(*error.serviceError),
            "unableToReadPreferencesVersion: " + error.cause.message()};
}

DefaultsResult<Data> encoded(const AppPreferences& preferences) {
    const auto text = platform::JSONEncoder().encode(preferences);
    if (!text) {
        return std::unexpected(DefaultsError{DefaultsError::Code::invalidValue, {}, text.error().message()});
    }
    return platform::dataOf(*text);
}

}  // namespace

PreferencesServiceImpl::PreferencesServiceImpl(const platform::NSUserDefaults& standardDefaults,
                                               std::shared_ptr<platform::NSUserDefaults> groupDefaults,
                                               std::shared_ptr<ErrorTrackingService> errorTrackingService,
                                               std::shared_ptr<const platform::Locale> locale)
    : groupDefaults_(std::move(groupDefaults)),
      errorTrackingService_(std::move(errorTrackingService)),
      locale_(std::move(locale)) {
    const auto copied = copyOlderSettings(standardDefaults);
    if (!copied) {
        report(errorFrom(copied.error()), errorTrackingService_.get());
    }
    bringUpToDate(copied.has_value());
}

AppPreferences PreferencesServiceImpl::preferences() {
    auto record = storedRecord();
    if (!record) {
        report(errorFrom(record.error()), errorTrackingService_.get());
        return imported();
    }
    if (*record) {
        return std::move(**record);
    }
    AppPreferences replacement = imported();
    change([&](AppPreferences& current) { replacement = current; }, std::move(record->error()));
    return replacement;
}

void PreferencesServiceImpl::setPreferences(const AppPreferences& preferences) {
    finishSaving(store(preferences));
}

void PreferencesServiceImpl::modifyPreferences(const Edit& edit) {
    change(edit, std::nullopt);
}

void PreferencesServiceImpl::set(const PreferenceKey& key) {
    modifyPreferences([&](AppPreferences& preferences) {
        std::visit([&](const auto& preference) { preference.applyTo(preferences); }, key);
    });
}

void PreferencesServiceImpl::addObserver(std::shared_ptr<PreferencesServiceObserver> observer) {
    observers_.add(std::move(observer));
}

void PreferencesServiceImpl::removeObserver(const PreferencesServiceObserver& observer) {
    observers_.remove(observer);
}

DefaultsResult<bool> PreferencesServiceImpl::isMigrated() const {
    const auto stored = groupDefaults_->object(isMigratedKey);
    if (!stored) {
        return std::unexpected(stored.error());
    }
    const auto* value = *stored ? (*stored)->as<bool>() : nullptr;
    return value != nullptr && *value;
}

DefaultsResult<void> PreferencesServiceImpl::copyOlderSettings(
    const platform::NSUserDefaults& standardDefaults) {
    const auto isCopied = isMigrated();
    if (!isCopied || *isCopied) {
        return isCopied ? DefaultsResult<void>{} : std::unexpected(isCopied.error());
    }
    const auto older = standardDefaults.dictionaryRepresentation();
    if (!older) {
        return std::unexpected(older.error());
    }
    const auto copied = groupDefaults_->transaction([&]() -> DefaultsResult<void> {
        const auto isCopiedMeanwhile = isMigrated();
        if (!isCopiedMeanwhile || *isCopiedMeanwhile) {
            return isCopiedMeanwhile ? DefaultsResult<void>{} : std::unexpected(isCopiedMeanwhile.error());
        }
        for (const auto& [key, value] : *older) {
            const auto stored = groupDefaults_->set(key, value);
            if (!stored) {
                return stored;
            }
        }
        return groupDefaults_->set(isMigratedKey, true);
    });
    return copied ? groupDefaults_->synchronize() : copied;
}

/// The bytes to store so that the record is up to date; none when it is, or where there is none and none may
/// be made.
Result<std::optional<Data>, NSError> PreferencesServiceImpl::outstandingUpdate(bool mayMakeRecord) const {
    const auto stored = storedData();
    if (!stored) {
        return std::unexpected(errorFrom(stored.error()));
    }
    if (!*stored) {
        if (!mayMakeRecord) {
            return std::nullopt;
        }
        const auto record = checkedImport();
        auto bytes = record ? encoded(*record) : std::unexpected(record.error());
        return bytes ? Result<std::optional<Data>, NSError>(std::move(*bytes))
                     : std::unexpected(errorFrom(bytes.error()));
    }
    auto migrated = migratedPreferences(**stored);
    if (!migrated) {
        return std::unexpected(errorFrom(migrated.error()));
    }
    return std::move(*migrated);
}

void PreferencesServiceImpl::bringUpToDate(bool mayMakeRecord) {
    auto update = outstandingUpdate(mayMakeRecord);
    if (update && *update) {
        auto done = groupDefaults_->transaction([&]() -> DefaultsResult<void> {
            update = outstandingUpdate(mayMakeRecord);  // once more: another process may have been faster
            return update && *update ? groupDefaults_->set(appPreferencesKey, std::move(**update))
                                     : DefaultsResult<void>{};
        });
        done = done ? groupDefaults_->synchronize() : done;
        if (!done) {
            report(errorFrom(done.error()), errorTrackingService_.get());
        }
    }
    if (!update) {
        report(update.error(), errorTrackingService_.get());
    }
}

DefaultsResult<std::optional<Data>> PreferencesServiceImpl::storedData() const {
    auto stored = groupDefaults_->object(appPreferencesKey);
    if (!stored) {
        return std::unexpected(std::move(stored.error()));
    }
    // A value of another type counts as none.
    auto* data = *stored ? std::get_if<Data>(&**stored) : nullptr;
    return data != nullptr ? std::optional(std::move(*data)) : std::nullopt;
}

DefaultsResult<PreferencesServiceImpl::Record> PreferencesServiceImpl::storedRecord() {
    const auto stored = storedData();
    if (!stored) {
        return std::unexpected(stored.error());
    }
    if (!*stored) {
        auto record = checkedImport();
        return record ? DefaultsResult<Record>(std::move(*record)) : std::unexpected(record.error());
    }
    return decoder_.decode<AppPreferences>(**stored);
}

AppPreferences PreferencesServiceImpl::imported() const {
    return AppPreferences::fromUserDefaults(*groupDefaults_, *locale_);
}

DefaultsResult<AppPreferences> PreferencesServiceImpl::checkedImport() const {
    return AppPreferences::checkedFromUserDefaults(*groupDefaults_, *locale_);
}

DefaultsResult<void> PreferencesServiceImpl::store(const AppPreferences& preferences) {
    auto bytes = encoded(preferences);
    return bytes ? groupDefaults_->set(appPreferencesKey, std::move(*bytes)) : std::unexpected(bytes.error());
}

/// Reads, edits and stores the record under the write lock. `fault` is what a read without the lock has
/// found, and counts where the lock is not to be had.
void PreferencesServiceImpl::change(const Edit& edit, std::optional<DecodingError> fault) {
    auto saved = groupDefaults_->transaction([&]() -> DefaultsResult<void> {
        auto record = storedRecord();
        if (!record) {
            return std::unexpected(std::move(record.error()));
        }
        fault = *record ? std::nullopt : std::optional(record->error());
        auto preferences = *record ? DefaultsResult<AppPreferences>(std::move(**record)) : checkedImport();
        if (!preferences) {
            return std::unexpected(std::move(preferences.error()));
        }
        edit(*preferences);
        return store(*preferences);
    });
    if (fault) {
        announceReset(*fault);
    }
    finishSaving(std::move(saved));
}

void PreferencesServiceImpl::finishSaving(DefaultsResult<void> saved) {
    saved = saved ? groupDefaults_->synchronize() : saved;
    if (!saved) {
        report(errorFrom(saved.error()), errorTrackingService_.get());
        return;
    }
    observers_.tell([this](PreferencesServiceObserver& observer) { observer.preferencesDidChange(*this); });
}

void PreferencesServiceImpl::announceReset(const DecodingError& fault) const {
    std::fprintf(stderr,
                 "    Unable to parse AppPreferences - please check if migrations are correct!\n"
                 "    \n"
                 " Preferences will be reset to default \n"
                 "%s\n",
                 fault.message().c_str());
    if (errorTrackingService_) {
        errorTrackingService_->track(errorFrom(fault));
    }
}

}  // namespace nimbuscope
