#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "NimbuscopeIntentHandler/Places/Place.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"

namespace nimbuscope {

/// Why the stored list could not be read or changed, in one line; the list is as it was.
struct SavedPlacesError {
    std::string reason;
};

/// The writing side of the saved places: strict, and whole or not at all. A list with an element that cannot
/// be read is not touched, since writing it back would lose that element. Each change is one transaction, so
/// that changes by several processes at once all take effect.
class NIMBUSCOPE_EXPORT SavedPlaces {
  public:
    /// Works on the application group's store, which must outlive this object.
    explicit SavedPlaces(platform::NSUserDefaults& groupStorage) : groupStorage_(groupStorage) {}

    /// The list in its stored order; empty when none is stored.
    [[nodiscard]] platform::Result<std::vector<Place>, SavedPlacesError> all() const;

    /// Stores `places` in place of the whole list, whatever state that is in.
    [[nodiscard]] platform::Result<void, SavedPlacesError> replace(const std::vector<Place>& places);

    /// Appends a place whose id is new.
    [[nodiscard]] platform::Result<void, SavedPlacesError> add(const Place& place);

    /// Removes every place with this id; an id that no place has is an error.
    [[nodiscard]] platform::Result<void, SavedPlacesError> remove(std::string_view id);

    /// The list as the bytes that are stored for it.
    [[nodiscard]] static platform::Result<std::string, SavedPlacesError> encoded(
        const std::vector<Place>& places);

    /// The list that such bytes hold; the error names the faulty element and key ("[2].name: missing key").
    [[nodiscard]] static platform::Result<std::vector<Place>, SavedPlacesError> decoded(
        const platform::Data& json);

  private:
    template <class Change>
    platform::Result<void, SavedPlacesError> edit(Change change);

    platform::NSUserDefaults& groupStorage_;
};

}  // namespace nimbuscope
