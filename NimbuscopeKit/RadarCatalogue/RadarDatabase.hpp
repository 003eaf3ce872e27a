#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "Platform/Coding/Fields.hpp"

/// The network of radar stations. What status and frequency count is set by the server.
namespace nimbuscope {

/// One station.
struct Radar {
    std::string id;
    std::string location;  ///< name of the place
    std::string country;   ///< code
    std::optional<std::string> state;
    std::int64_t status = 0;
    double latitude = 0;                  ///< degrees
    double longitude = 0;                 ///< degrees
    std::optional<std::string> image_id;  ///< the `Image` that the station feeds

    static constexpr auto fields = std::tuple{
        platform::key("id", &Radar::id),
        platform::key("location", &Radar::location),
        platform::key("country", &Radar::country),
        platform::key("state", &Radar::state),
        platform::key("status", &Radar::status),
        platform::key("latitude", &Radar::latitude),
        platform::key("longitude", &Radar::longitude),
        platform::key("image_id", &Radar::image_id),
    };
    bool operator==(const Radar&) const = default;
};

/// A product composed of the data of stations.
struct Image {
    std::string id;
    std::optional<std::string> providerId;
    std::int64_t status = 0;
    std::string projection;
    std::string products;
    std::int64_t frequency = 0;

    static constexpr auto fields = std::tuple{
        platform::key("id", &Image::id),
        platform::key("provider_id", &Image::providerId),
        platform::key("status", &Image::status),
        platform::key("projection", &Image::projection),
        platform::key("products", &Image::products),
        platform::key("frequency", &Image::frequency),
    };
    bool operator==(const Image&) const = default;
};

/// Who the data come from.
struct Provider {
    std::string id;
    std::string name;
    std::string description;
    std::string url;

    static constexpr auto fields = std::tuple{
        platform::key("id", &Provider::id),
        platform::key("name", &Provider::name),
        platform::key("description", &Provider::description),
        platform::key("url", &Provider::url),
    };
    bool operator==(const Provider&) const = default;
};

struct Database {
    std::vector<Radar> radars;
    std::vector<Image> images;
    std::vector<Provider> providers;

    static constexpr auto fields =
        std::tuple{platform::key("radars", &Database::radars), platform::key("images", &Database::images),
                   platform::key("providers", &Database::providers)};
    bool operator==(const Database&) const = default;
};

}  // namespace nimbuscope
