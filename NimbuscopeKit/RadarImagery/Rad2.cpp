#include "NimbuscopeKit/RadarImagery/Rad2.hpp"

#include <limits>

#include "NimbuscopeKit/RadarImagery/Composition.hpp"
#include "Platform/Core/Fatal.hpp"

namespace nimbuscope {
namespace {

/// The value, where it is the caller's word that there is one.
template <class T>
T valueOrStop(platform::Result<T, Rad2Error> result) {
    if (!result) {
        platform::fatalError(result.error().message());
    }
    return std::move(*result);
}

}  // namespace

Rad2::Rad2(platform::Data data) {
    if (!Rad2File::hasMagic(data)) {
        return;
    }
    source_ = std::move(data);
    const Rad2File parsed = file();
    size_ = parsed.size();
    width_ = parsed.width();
    height_ = parsed.height();
    bpp_ = parsed.bpp();
    dataHeaderPos_ = parsed.dataHeaderPos();
    dataBlock_ = parsed.rad2Block();
}

Rad2File Rad2::file() const {
    return valueOrStop(Rad2File::parse(source_));
}

std::optional<platform::Data> Rad2::bytes(DataBlockType type) const {
    if (source_.empty()) {
        return std::nullopt;
    }
    const auto payload = valueOrStop(file().payload(type));
    return payload ? std::optional(platform::Data(payload->begin(), payload->end())) : std::nullopt;
}

platform::Data Rad2::bytes(std::span<const std::uint8_t> colors, bool inversed, double /*alpha*/) const {
    if (!dataBlock_) {
        return {};
    }
    return valueOrStop(file().decode(colors, inversed, std::numeric_limits<std::uint64_t>::max()));
}

std::optional<platform::CGImage> Rad2::cgImage(std::int64_t width, std::int64_t height, platform::Data bytes,
                                               std::optional<std::span<const std::uint8_t>> withOverlay) {
    constexpr std::int64_t maximalSide = 0x7FFFFFFF;
    if (withOverlay && !bytes.empty()) {
        if (const auto done = layOver(bytes, *withOverlay); !done) {
            platform::fatalError(done.error().reason);
        }
    }
    if (width < 0 || height < 0 || width > maximalSide || height > maximalSide ||
        bytes.size() / imageBpp < static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height)) {
        return std::nullopt;
    }
    return platform::CGImage{
        .width = static_cast<std::size_t>(width),
        .height = static_cast<std::size_t>(height),
        .bitsPerComponent = 8,
        .bitsPerPixel = 8 * imageBpp,
        .bytesPerRow = static_cast<std::size_t>(width * imageBpp),
        .bitmapInfo = platform::CGImage::alphaPremultipliedLast | platform::CGImage::byteOrder32Big,
        .data = std::move(bytes)};
}

}  // namespace nimbuscope
