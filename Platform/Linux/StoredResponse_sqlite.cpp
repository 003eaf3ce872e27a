#include "Platform/Linux/StoredResponse_sqlite.hpp"

#include <algorithm>
#include <cstring>
#include <span>

namespace nimbuscope::platform {
namespace {

std::string linesOf(const HTTPHeaders& headers) {
    std::string lines;
    for (const auto& [name, value] : headers.fields()) {
        lines.append(name).append(": ").append(value) += '\n';
    }
    return lines;
}

HTTPHeaders headersOf(std::string_view lines) {
    HTTPHeaders headers;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        const std::size_t colon = std::min(line.find(": "), line.size());
        headers.add(std::string(line.substr(0, colon)),
                    std::string(line.substr(std::min(colon + 2, line.size()))));
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return headers;
}

/// Tells whether bytes are those that were written: the database checks its structure, not its contents.
class Checksum {
  public:
    void add(std::string_view bytes) {
        add(bytes.size());
        for (; bytes.size() >= sizeof(std::uint64_t); bytes.remove_prefix(sizeof(std::uint64_t))) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data(), sizeof word);
            add(word);
        }
        std::uint64_t rest = 0;
        std::ranges::copy(bytes, reinterpret_cast<char*>(&rest));
        add(rest);
    }
    void add(std::uint64_t word) {
        state_ = (state_ ^ word) * 0x9E37'79B9'7F4A'7C15U;  // odd, from the golden ratio
        state_ ^= state_ >> 32U;
    }
    [[nodiscard]] std::int64_t value() const { return static_cast<std::int64_t>(state_); }

  private:
    std::uint64_t state_ = 1;
};

std::int64_t checksumOf(const CachedURLResponse& response) {
    Checksum checksum;
    checksum.add(response.response.url);
    checksum.add(static_cast<std::uint64_t>(response.response.statusCode));
    for (const auto* headers : {&response.response.headers, &response.varyingHeaders}) {
        for (const auto& [name, value] : headers->fields()) {
            checksum.add(name);
            checksum.add(value);
        }
    }
    for (const auto instant : {response.requestTime, response.responseTime}) {
        checksum.add(static_cast<std::uint64_t>(instant.time_since_epoch().count()));
    }
    checksum.add(textOf(response.data));
    return checksum.value();
}

std::chrono::sys_seconds instant(std::int64_t seconds) {
    return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

}  // namespace

StoredResponse::StoredResponse(const CachedURLResponse& response)
    : response_(response),
      headers_(linesOf(response.response.headers)),
      varying_(linesOf(response.varyingHeaders)) {}

std::int64_t StoredResponse::size() const {
    return static_cast<std::int64_t>(response_.response.url.size() + headers_.size() + varying_.size() +
                                     response_.data.size());
}

void StoredResponse::bind(SQLiteStatement& statement) const {
    statement.bind(1, std::string_view(response_.response.url));
    statement.bind(2, response_.response.statusCode);
    statement.bind(3, bytesOf(headers_));
    statement.bind(4, bytesOf(varying_));
    statement.bind(5, std::int64_t{response_.requestTime.time_since_epoch().count()});
    statement.bind(6, std::int64_t{response_.responseTime.time_since_epoch().count()});
    statement.bind(7, checksumOf(response_));
    statement.bind(8, size());
    statement.bind(9, std::span<const std::uint8_t>(response_.data));
}

std::optional<CachedURLResponse> readResponse(const SQLiteStatement& row, std::string_view url) {
    const auto body = row.bytes(6);
    CachedURLResponse response{{std::string(url), row.integer(0), headersOf(row.text(1))},
                               Data(body.begin(), body.end()),
                               headersOf(row.text(2)),
                               instant(row.integer(3)),
                               instant(row.integer(4))};
    return checksumOf(response) == row.integer(5) ? std::optional(std::move(response)) : std::nullopt;
}

}  // namespace nimbuscope::platform
