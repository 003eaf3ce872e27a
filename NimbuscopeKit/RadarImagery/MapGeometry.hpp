#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"
#include "Platform/CoreLocation/CLLocation.hpp"
#include "Platform/Graphics/CGGeometry.hpp"
#include "Platform/Locale/Locale.hpp"
#include "Platform/MapKit/MKCoordinateSpan.hpp"

namespace nimbuscope {

/// The projection of the maps. The arithmetic is in `MKCoordinateSpan`.
class SphericalMercator {};

/// Why there is no span.
struct MapGeometryError {
    std::string reason;
};

/// The platform's span, with a way to make it from a map view.
struct NIMBUSCOPE_EXPORT MKCoordinateSpan : platform::MKCoordinateSpan {
    /// What a view of `size` pixels around a centre shows at a zoom level, in the Web Mercator projection. At
    /// zoom 0 the world is 512 pixels wide; each level doubles that. The centre and the edges lie on whole
    /// pixels of zoom level 20, rounded half away from zero. Latitudes are not kept from the poles, and what
    /// is too large for a double is infinite or no number. Stops the process when 20 - `zoomLevel` overflows.
    MKCoordinateSpan(platform::CGSize size, platform::CLLocationCoordinate2D centerCoordinate,
                     std::int64_t zoomLevel);

    /// As the constructor, with an error where that stops the process, for a centre at a pole, and where the
    /// span would not be finite.
    [[nodiscard]] static platform::Result<MKCoordinateSpan, MapGeometryError> make(
        platform::CGSize size, platform::CLLocationCoordinate2D centerCoordinate, std::int64_t zoomLevel);
};

class NIMBUSCOPE_EXPORT Country {
  public:
    /// The country's name in the language of `locale`; the code itself where the locale has none.
    [[nodiscard]] static std::string countryName(std::string_view from, const platform::Locale& locale);
};

}  // namespace nimbuscope
