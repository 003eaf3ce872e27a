#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Linux/SQLite.hpp"
#include "Platform/URLLoading/URLCache.hpp"

namespace nimbuscope::platform {

/// A cached response on its way into the table `responses`, described in docs/formats/response-cache.md.
/// Borrows the response.
class StoredResponse {
  public:
    static constexpr const char* schema =
        "CREATE TABLE IF NOT EXISTS responses (url TEXT PRIMARY KEY NOT NULL, status INTEGER NOT NULL,"
        " headers BLOB NOT NULL, varying BLOB NOT NULL, request_time INTEGER NOT NULL,"
        " response_time INTEGER NOT NULL, checksum INTEGER NOT NULL, size INTEGER NOT NULL,"
        " used INTEGER NOT NULL, body BLOB NOT NULL);"
        "CREATE INDEX IF NOT EXISTS uses ON responses (used, size);";

    static constexpr const char* insert =
        "INSERT OR REPLACE INTO responses (url, status, headers, varying, request_time, response_time,"
        " checksum, size, body, used) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)";
    static constexpr int useParameter = 10;

    /// Its rows are for `readResponse`.
    static constexpr const char* select =
        "SELECT status, headers, varying, request_time, response_time, checksum, body FROM responses"
        " WHERE url = ?1";

    explicit StoredResponse(const CachedURLResponse& response);

    /// What counts towards the cache's capacity, in bytes.
    [[nodiscard]] std::int64_t size() const;

    /// Binds all parameters of `insert` but the last; they borrow from this object until the next reset.
    void bind(SQLiteStatement& statement) const;

  private:
    const CachedURLResponse& response_;
    std::string headers_;
    std::string varying_;
};

/// The response under `url` in the current row of `select`; absent when it is not what was stored.
[[nodiscard]] std::optional<CachedURLResponse> readResponse(const SQLiteStatement& row, std::string_view url);

}  // namespace nimbuscope::platform
