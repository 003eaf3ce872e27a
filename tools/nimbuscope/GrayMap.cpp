#include "GrayMap.hpp"

#include <algorithm>
#include <limits>

namespace nimbuscope::tool {
namespace {

using platform::Result;

bool isSpace(std::uint8_t byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

bool isFigure(std::uint8_t byte) {
    return byte >= '0' && byte <= '9';
}

class Header {
  public:
    explicit Header(std::span<const std::uint8_t> file) : file_(file) {}

    [[nodiscard]] std::size_t position() const { return position_; }

    /// A number from 1 to `most`, after white space and comments.
    [[nodiscard]] Result<std::uint32_t, GrayMapError> number(const char* what, std::uint64_t most) {
        skipSpace();
        const std::size_t begin = position_;
        std::uint64_t value = 0;
        for (; position_ < file_.size() && isFigure(file_[position_]); ++position_) {
            value = std::min(value * 10 + (file_[position_] - std::uint64_t{'0'}), most + 1);
        }
        if (position_ == begin || value < 1 || value > most) {
            return fault(begin, std::string("expected ") + what + " from 1 to " + std::to_string(most));
        }
        return static_cast<std::uint32_t>(value);
    }

    /// The one white space character that ends the header.
    [[nodiscard]] Result<void, GrayMapError> end() {
        if (position_ >= file_.size() || !isSpace(file_[position_])) {
            return fault(position_, "expected one white space character before the samples");
        }
        ++position_;
        return {};
    }

    static std::unexpected<GrayMapError> fault(std::size_t offset, std::string reason) {
        return std::unexpected(GrayMapError{offset, std::move(reason)});
    }

  private:
    void skipSpace() {
        bool isComment = false;
        for (; position_ < file_.size(); ++position_) {
            const std::uint8_t byte = file_[position_];
            isComment = isComment ? byte != '\n' && byte != '\r' : byte == '#';
            if (!isComment && !isSpace(byte)) {
                return;
            }
        }
    }

    std::span<const std::uint8_t> file_;
    std::size_t position_ = 2;  // behind the magic number
};

}  // namespace

bool isGrayMap(std::span<const std::uint8_t> file) {
    return file.size() >= 2 && file[0] == 'P' && file[1] == '5';
}

Result<GrayMap, GrayMapError> parseGrayMap(std::span<const std::uint8_t> file) {
    if (!isGrayMap(file)) {
        return Header::fault(0, "expected P5");
    }
    constexpr std::uint64_t maximalSide = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint64_t maximalSample = std::numeric_limits<std::uint8_t>::max();
    Header header(file);
    const auto width = header.number("a width", maximalSide);
    const auto height = width ? header.number("a height", maximalSide) : width;
    const auto maximum = height ? header.number("a maximum", maximalSample) : height;
    if (!maximum) {
        return std::unexpected(maximum.error());
    }
    if (const auto end = header.end(); !end) {
        return std::unexpected(end.error());
    }
    const auto samples = file.subspan(header.position());
    const std::uint64_t count = std::uint64_t{*width} * *height;
    if (samples.size() != count) {
        return Header::fault(
            std::min<std::uint64_t>(header.position() + count, file.size()),
            "expected " + std::to_string(count) + " samples, found " + std::to_string(samples.size()));
    }
    const auto tooLarge =
        std::ranges::find_if(samples, [&](std::uint8_t sample) { return sample > *maximum; });
    if (tooLarge != samples.end()) {
        return Header::fault(
            static_cast<std::size_t>(&*tooLarge - file.data()),
            "expected a sample up to " + std::to_string(*maximum) + ", found " + std::to_string(*tooLarge));
    }
    return GrayMap{.width = *width, .height = *height, .samples = samples};
}

}  // namespace nimbuscope::tool
