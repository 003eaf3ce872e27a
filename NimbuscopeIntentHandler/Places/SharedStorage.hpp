#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "NimbuscopeIntentHandler/Places/Place.hpp"
#include "NimbuscopeKit/Preferences/AppGroup.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope {

/// Wants to know when the shared places change.
class NIMBUSCOPE_EXPORT SharedStorageObserver {
  public:
    virtual ~SharedStorageObserver() = default;
};

/// The saved places that the application shares with its extensions. Reads may come from any thread.
class NIMBUSCOPE_EXPORT SharedStorage {
  public:
    static constexpr std::string_view appGroupIdentifier = nimbuscope::appGroupIdentifier;
    static constexpr std::string_view placesKey = "places";

    /// Opens the application group's store. Stops the process when there is no such store to open.
    explicit SharedStorage(platform::NSUserDefaultsSuites& suites);

    /// The process's one instance over the user's store, made with the first call.
    [[nodiscard]] static SharedStorage& shared();

    /// The places that can be read, the one for the current location first, the others as they are stored.
    /// What cannot be read is left out; a store that cannot be read has no places. Read afresh with every
    /// call.
    [[nodiscard]] std::vector<Place> places() const;

    /// The first of `places` that stands for the current location.
    [[nodiscard]] std::optional<Place> currentPlace() const;

    /// The application group's store.
    [[nodiscard]] platform::NSUserDefaults& groupStorage() const { return *groupStorage_; }

    /// Observers are held weakly, in the order in which they were added. One thread at a time.
    void addObserver(const std::shared_ptr<SharedStorageObserver>& observer);
    void removeObserver(const SharedStorageObserver& observer);
    [[nodiscard]] std::vector<std::shared_ptr<SharedStorageObserver>> observers() const;

  private:
    std::shared_ptr<platform::NSUserDefaults> groupStorage_;
    std::vector<std::weak_ptr<SharedStorageObserver>> observers_;
};

/// The places of a stored list, malformed ones left out, the current one first; none for what is no list.
[[nodiscard]] NIMBUSCOPE_EXPORT std::vector<Place> decodePlaces(const platform::Data& json);

}  // namespace nimbuscope
