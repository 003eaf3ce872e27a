#pragma once

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

#include "Platform/Coding/Fields.hpp"

/// Precipitation in the neighbourhood of the location. The records are known by the names that
/// `ApiForecastNearest` gives them; clang takes an optional of a record for impossible inside the class that
/// the record is nested in.
namespace nimbuscope {

struct ApiForecastNearestPosition {
    std::int64_t distance = 0;
    double direction = 0;

    static constexpr auto fields =
        std::tuple{platform::key("distance", &ApiForecastNearestPosition::distance),
                   platform::key("direction", &ApiForecastNearestPosition::direction)};
    bool operator==(const ApiForecastNearestPosition&) const = default;
};

struct ApiForecastNearestMovement {
    double speed = 0;
    double direction = 0;

    static constexpr auto fields =
        std::tuple{platform::key("speed", &ApiForecastNearestMovement::speed),
                   platform::key("direction", &ApiForecastNearestMovement::direction)};
    bool operator==(const ApiForecastNearestMovement&) const = default;
};

struct ApiForecastNearestPrecipitationData {
    double time = 0;
    double precipitation = 0;
    std::optional<ApiForecastNearestPosition> position;
    std::optional<ApiForecastNearestMovement> movement;

    static constexpr auto fields = std::tuple{
        platform::key("time", &ApiForecastNearestPrecipitationData::time),
        platform::key("precipitation", &ApiForecastNearestPrecipitationData::precipitation),
        platform::key("position", &ApiForecastNearestPrecipitationData::position),
        platform::key("movement", &ApiForecastNearestPrecipitationData::movement),
    };
    bool operator==(const ApiForecastNearestPrecipitationData&) const = default;
};

struct ApiForecastNearestPrecipitation {
    using Data = ApiForecastNearestPrecipitationData;

    std::int64_t radius = 0;  ///< of the neighbourhood
    std::vector<Data> data;

    static constexpr auto fields =
        std::tuple{platform::key("radius", &ApiForecastNearestPrecipitation::radius),
                   platform::key("data", &ApiForecastNearestPrecipitation::data)};
    bool operator==(const ApiForecastNearestPrecipitation&) const = default;
};

struct ApiForecastNearest {
    using Precipitation = ApiForecastNearestPrecipitation;
    using Position = ApiForecastNearestPosition;
    using Movement = ApiForecastNearestMovement;

    Precipitation precipitation;

    static constexpr auto fields =
        std::tuple{platform::key("precipitation", &ApiForecastNearest::precipitation)};
    bool operator==(const ApiForecastNearest&) const = default;
};

}  // namespace nimbuscope
