#include "NimbuscopeIntentHandler/Places/SharedStorage.hpp"

#include <algorithm>

#include "NimbuscopeIntentHandler/Places/SharedDecodable.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

std::shared_ptr<platform::NSUserDefaults> openGroup(platform::NSUserDefaultsSuites& suites) {
    auto group = suites.suite(SharedStorage::appGroupIdentifier);
    if (!group) {
        platform::fatalError("the application group's store is missing: " + group.error().message());
    }
    return std::move(*group);
}

}  // namespace

SharedStorage::SharedStorage(platform::NSUserDefaultsSuites& suites) : groupStorage_(openGroup(suites)) {}

std::vector<Place> SharedStorage::places() const {
    const auto stored = groupStorage_->object(placesKey);
    const auto* data = stored && *stored ? (*stored)->as<platform::Data>() : nullptr;
    return data != nullptr ? decodePlaces(*data) : std::vector<Place>{};
}

std::optional<Place> SharedStorage::currentPlace() const {
    auto all = places();
    const auto found = std::ranges::find_if(all, &Place::current);
    return found != all.end() ? std::optional(std::move(*found)) : std::nullopt;
}

void SharedStorage::addObserver(const std::shared_ptr<SharedStorageObserver>& observer) {
    observers_.push_back(observer);
}

void SharedStorage::removeObserver(const SharedStorageObserver& observer) {
    std::erase_if(observers_, [&](const auto& held) { return held.lock().get() == &observer; });
}

std::vector<std::shared_ptr<SharedStorageObserver>> SharedStorage::observers() const {
    std::vector<std::shared_ptr<SharedStorageObserver>> alive;
    for (const auto& observer : observers_) {
        if (auto held = observer.lock()) {
            alive.push_back(std::move(held));
        }
    }
    return alive;
}

std::vector<Place> decodePlaces(const platform::Data& json) {
    std::vector<Place> places;
    platform::JSONDecoder decoder;
    const auto decoded =
        decoder.decodeEach<SharedDecodable<Place>>(json, [&](SharedDecodable<Place>&& element) {
            if (element.base) {
                places.push_back(std::move(*element.base));
            }
        });
    // Elements never fail: this is a text that is no list, of which nothing counts.
    if (!decoded) {
        return {};
    }
    if (!std::ranges::is_partitioned(places, &Place::current)) {
        std::ranges::stable_partition(places, &Place::current);
    }
    return places;
}

}  // namespace nimbuscope
