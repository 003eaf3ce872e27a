#pragma once

#include <memory>
#include <vector>

#include "NimbuscopeIntentHandler/Places/Place.hpp"
#include "Platform/Intents/INObject.hpp"

namespace nimbuscope {

/// The option of class Object that stands for a saved place.
template <class Object>
[[nodiscard]] std::shared_ptr<Object> locationOption(const Place& place) {
    return std::make_shared<Object>(place.id, place.name);
}

/// One option per place, in the order of the places.
template <class Object>
[[nodiscard]] std::shared_ptr<platform::INObjectCollection<Object>> locationOptions(
    const std::vector<Place>& places) {
    std::vector<std::shared_ptr<Object>> options;
    options.reserve(places.size());
    for (const Place& place : places) {
        options.push_back(locationOption<Object>(place));
    }
    return std::make_shared<platform::INObjectCollection<Object>>(std::move(options));
}

}  // namespace nimbuscope
