#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "Platform/Coding/Fields.hpp"

/// What one radar station offers. Times, frequencies and the order of bounds are set by the server.
namespace nimbuscope {

struct RadarScan {
    std::int64_t timestamp = 0;
    std::string name;
    std::int64_t size = 0;
    std::int64_t width = 0;
    std::int64_t heigth = 0;

    static constexpr auto fields = std::tuple{
        platform::key("timestamp", &RadarScan::timestamp), platform::key("name", &RadarScan::name),
        platform::key("size", &RadarScan::size),           platform::key("width", &RadarScan::width),
        platform::key("heigth", &RadarScan::heigth),
    };
    bool operator==(const RadarScan&) const = default;
};

struct RadarProduct {
    std::string id;
    std::string name;
    std::int64_t frequency = 0;
    std::int64_t lastUpdate = 0;
    std::vector<double> boundingBox;
    std::vector<RadarScan> scans;

    static constexpr auto fields = std::tuple{
        platform::key("id", &RadarProduct::id),
        platform::key("name", &RadarProduct::name),
        platform::key("frequency", &RadarProduct::frequency),
        platform::key("lastUpdate", &RadarProduct::lastUpdate),
        platform::key("boundingBox", &RadarProduct::boundingBox),
        platform::key("scans", &RadarProduct::scans),
    };
    bool operator==(const RadarProduct&) const = default;
};

/// The products of a station.
struct RadarProducts {
    std::string id;    ///< of the station
    std::string host;  ///< serves the scans
    std::string dir;   ///< of the station's files on the host
    std::vector<RadarProduct> products;
    std::string default_;  ///< id of the product shown first

    static constexpr auto fields = std::tuple{
        platform::key("id", &RadarProducts::id),
        platform::key("host", &RadarProducts::host),
        platform::key("dir", &RadarProducts::dir),
        platform::key("products", &RadarProducts::products),
        platform::key("default", &RadarProducts::default_),
    };
    bool operator==(const RadarProducts&) const = default;
};

}  // namespace nimbuscope
