#include "NimbuscopeKit/RadarImagery/MapGeometry.hpp"

#include <cmath>
#include <numbers>

#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

using std::numbers::pi;

// Web Mercator in pixels of zoom level 20, in a space 2^29 pixels wide.
constexpr std::int64_t referenceZoom = 20;
constexpr double offset = 268435456;  // pixel of longitude 0 and of latitude 0
constexpr double radius = offset / pi;

static_assert(radius == 85445659.44705395);

double xOf(double longitude) {
    return std::round(longitude * radius * pi / 180 + offset);
}

double yOf(double latitude) {
    const double s = std::sin(latitude * pi / 180);
    return std::round(offset - std::log((1 + s) / (1 - s)) * radius * 0.5);
}

double longitudeOf(double x) {
    return (std::round(x) - offset) / radius * 180 / pi;
}

double latitudeOf(double y) {
    return (pi / 2 - 2 * std::atan(std::exp((std::round(y) - offset) / radius))) * 180 / pi;
}

bool levelsBelowReference(std::int64_t zoomLevel, std::int64_t& levels) {
    return !__builtin_sub_overflow(referenceZoom, zoomLevel, &levels);
}

}  // namespace

MKCoordinateSpan::MKCoordinateSpan(platform::CGSize size, platform::CLLocationCoordinate2D centerCoordinate,
                                   std::int64_t zoomLevel) {
    std::int64_t levels = 0;
    platform::precondition(levelsBelowReference(zoomLevel, levels), "The zoom level is out of range");
    const double scale = std::pow(2.0, static_cast<double>(levels));
    const double scaledWidth = scale * size.width;
    const double scaledHeight = scale * size.height;
    const double left = xOf(centerCoordinate.longitude) - scaledWidth * 0.5;
    const double top = yOf(centerCoordinate.latitude) - scaledHeight * 0.5;
    longitudeDelta = longitudeOf(left + scaledWidth) - longitudeOf(left);
    latitudeDelta = latitudeOf(top) - latitudeOf(top + scaledHeight);
}

platform::Result<MKCoordinateSpan, MapGeometryError> MKCoordinateSpan::make(
    platform::CGSize size, platform::CLLocationCoordinate2D centerCoordinate, std::int64_t zoomLevel) {
    if (std::int64_t levels = 0; !levelsBelowReference(zoomLevel, levels)) {
        return std::unexpected(MapGeometryError{"the zoom level " + std::to_string(zoomLevel) +
                                                " is too far from " + std::to_string(referenceZoom)});
    }
    if (!std::isfinite(yOf(centerCoordinate.latitude))) {
        return std::unexpected(
            MapGeometryError{"the projection has no place for the latitude of the centre"});
    }
    const MKCoordinateSpan span(size, centerCoordinate, zoomLevel);
    if (!std::isfinite(span.latitudeDelta) || !std::isfinite(span.longitudeDelta)) {
        return std::unexpected(
            MapGeometryError{"the span at zoom level " + std::to_string(zoomLevel) + " is not finite"});
    }
    return span;
}

std::string Country::countryName(std::string_view from, const platform::Locale& locale) {
    return locale.displayNameOfCountry(from).value_or(std::string(from));
}

}  // namespace nimbuscope
