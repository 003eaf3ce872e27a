#include "NimbuscopeIntentHandler/Places/SavedPlaces.hpp"

#include <algorithm>
#include <optional>

#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"
#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONEncoder.hpp"

namespace nimbuscope {

using platform::DefaultsError;
using platform::DefaultsResult;
using platform::Result;

Result<std::vector<Place>, SavedPlacesError> SavedPlaces::all() const {
    const auto stored = groupStorage_.object(SharedStorage::placesKey);
    if (!stored) {
        return std::unexpected(SavedPlacesError{stored.error().message()});
    }
    if (!*stored) {
        return std::vector<Place>{};
    }
    const auto* data = (*stored)->as<platform::Data>();
    if (data == nullptr) {
        return std::unexpected(SavedPlacesError{"the value under \"places\" is not data"});
    }
    return decoded(*data);
}

Result<void, SavedPlacesError> SavedPlaces::replace(const std::vector<Place>& places) {
    const auto bytes = encoded(places);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    const auto stored = groupStorage_.set(SharedStorage::placesKey, platform::dataOf(*bytes));
    if (!stored) {
        return std::unexpected(SavedPlacesError{stored.error().message()});
    }
    return {};
}

Result<void, SavedPlacesError> SavedPlaces::add(const Place& place) {
    return edit([&](std::vector<Place>& places) -> Result<void, SavedPlacesError> {
        if (std::ranges::find(places, place.id, &Place::id) != places.end()) {
            return std::unexpected(
                SavedPlacesError{"there is a place with the id \"" + place.id + "\" already"});
        }
        places.push_back(place);
        return {};
    });
}

Result<void, SavedPlacesError> SavedPlaces::remove(std::string_view id) {
    return edit([&](std::vector<Place>& places) -> Result<void, SavedPlacesError> {
        if (std::erase_if(places, [&](const Place& place) { return place.id == id; }) == 0) {
            return std::unexpected(SavedPlacesError{"no place has the id \"" + std::string(id) + '"'});
        }
        return {};
    });
}

Result<std::string, SavedPlacesError> SavedPlaces::encoded(const std::vector<Place>& places) {
    auto text = platform::JSONEncoder().encode(places);
    return text ? Result<std::string, SavedPlacesError>(std::move(*text))
                : std::unexpected(SavedPlacesError{text.error().message()});
}

Result<std::vector<Place>, SavedPlacesError> SavedPlaces::decoded(const platform::Data& json) {
    auto places = platform::JSONDecoder().decodeList<Place>(json);
    return places ? Result<std::vector<Place>, SavedPlacesError>(std::move(*places))
                  : std::unexpected(SavedPlacesError{places.error().message()});
}

/// Reads the list, changes it and stores it, as one transaction.
template <class Change>
Result<void, SavedPlacesError> SavedPlaces::edit(Change change) {
    std::optional<SavedPlacesError> fault;
    const auto done = groupStorage_.transaction([&]() -> DefaultsResult<void> {
        auto places = all();
        auto changed = places ? change(*places) : std::unexpected(places.error());
        changed = changed ? replace(*places) : changed;
        if (!changed) {
            fault = std::move(changed.error());
            return std::unexpected(DefaultsError{});
        }
        return {};
    });
    if (fault) {
        return std::unexpected(std::move(*fault));
    }
    if (!done) {
        return std::unexpected(SavedPlacesError{done.error().message()});
    }
    return {};
}

}  // namespace nimbuscope
