#include "Platform/Linux/ContentDecoder_zlib.hpp"

#include <zlib.h>

#include <array>

#include "Platform/Core/Fatal.hpp"
#include "Platform/URLLoading/HTTPHeaders.hpp"

namespace nimbuscope::platform {

struct ContentDecoder::Inflater {
    z_stream stream{};
};

void ContentDecoder::InflaterEnd::operator()(Inflater* inflater) const {
    inflateEnd(&inflater->stream);
    delete inflater;
}

std::optional<ContentDecoder> ContentDecoder::make(std::string_view encoding, std::size_t maximumSize) {
    ContentDecoder decoder(maximumSize);
    if (encoding.empty() || equalsIgnoringCase(encoding, "identity")) {
        return decoder;
    }
    if (!equalsIgnoringCase(encoding, "gzip") && !equalsIgnoringCase(encoding, "x-gzip") &&
        !equalsIgnoringCase(encoding, "deflate")) {
        return std::nullopt;
    }
    constexpr int eitherHeader = 32;  // of gzip or zlib, whichever comes
    decoder.inflater_.reset(new Inflater);
    const int made = inflateInit2(&decoder.inflater_->stream, MAX_WBITS + eitherHeader);
    precondition(made == Z_OK, "zlib cannot be used");
    return decoder;
}

ContentDecoder::Outcome ContentDecoder::take(std::string_view bytes) {
    const auto append = [this](const auto* begin, std::size_t size) {
        if (size > maximumSize_ - body_.size()) {
            return false;
        }
        body_.insert(body_.end(), begin, begin + size);
        return true;
    };
    if (!inflater_) {
        return append(bytes.data(), bytes.size()) ? Outcome::good : Outcome::tooLarge;
    }
    hasBegun_ = hasBegun_ || !bytes.empty();
    z_stream& stream = inflater_->stream;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::array<Bytef, std::size_t{16} << 10U> chunk;
    do {
        if (isAtEnd_) {
            return stream.avail_in == 0 ? Outcome::good : Outcome::damaged;
        }
        stream.next_out = chunk.data();
        stream.avail_out = static_cast<uInt>(chunk.size());
        const int done = inflate(&stream, Z_NO_FLUSH);
        if (done != Z_OK && done != Z_STREAM_END && done != Z_BUF_ERROR) {
            return Outcome::damaged;
        }
        isAtEnd_ = done == Z_STREAM_END;
        if (!append(chunk.data(), chunk.size() - stream.avail_out)) {
            return Outcome::tooLarge;
        }
    } while (stream.avail_in > 0 || stream.avail_out == 0);
    return Outcome::good;
}

}  // namespace nimbuscope::platform
