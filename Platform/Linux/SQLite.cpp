#include "Platform/Linux/SQLite.hpp"

#include <utility>

namespace nimbuscope::platform {
namespace {

SQLiteError lastError(sqlite3* database, int code) {
    return {code & 0xFF, database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code)};
}

}  // namespace

void SQLiteStatement::bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(statement_.get(), parameter, value);
}

void SQLiteStatement::bind(int parameter, double value) {
    sqlite3_bind_double(statement_.get(), parameter, value);
}

void SQLiteStatement::bind(int parameter, std::string_view text) {
    // A null pointer would bind NULL, not the empty text.
    const char* characters = text.empty() ? "" : text.data();
    sqlite3_bind_text64(statement_.get(), parameter, characters, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void SQLiteStatement::bind(int parameter, std::span<const std::uint8_t> bytes) {
    const void* data = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
    sqlite3_bind_blob64(statement_.get(), parameter, data, bytes.size(), SQLITE_STATIC);
}

SQLiteResult<bool> SQLiteStatement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW || code == SQLITE_DONE) {
        return code == SQLITE_ROW;
    }
    return std::unexpected(lastError(sqlite3_db_handle(statement_.get()), code));
}

void SQLiteStatement::reset() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
}

int SQLiteStatement::storageClass(int column) const {
    return sqlite3_column_type(statement_.get(), column);
}

std::int64_t SQLiteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double SQLiteStatement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::string_view SQLiteStatement::text(int column) const {
    const auto characters = bytes(column);
    return {reinterpret_cast<const char*>(characters.data()), characters.size()};
}

std::span<const std::uint8_t> SQLiteStatement::bytes(int column) const {
    // The pointer first: asking for the size may convert, and with it move, what it points to.
    const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_.get(), column));
    return {data, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

SQLiteResult<SQLiteConnection> SQLiteConnection::open(const std::string& path, int busyTimeout) {
    SQLiteConnection connection;
    sqlite3* database = nullptr;
    const int code =
        sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    connection.database_.reset(database);
    if (code != SQLITE_OK) {
        return std::unexpected(lastError(database, code));
    }
    sqlite3_busy_timeout(database, busyTimeout);
    return connection;
}

SQLiteResult<SQLiteStatement> SQLiteConnection::prepare(std::string_view sql) {
    sqlite3_stmt* compiled = nullptr;
    const int code = sqlite3_prepare_v3(database_.get(), sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &compiled, nullptr);
    if (code != SQLITE_OK) {
        return std::unexpected(lastError(database_.get(), code));
    }
    SQLiteStatement statement;
    statement.statement_.reset(compiled);
    return statement;
}

SQLiteResult<void> SQLiteConnection::execute(const std::string& sql) {
    const int code = sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        return std::unexpected(lastError(database_.get(), code));
    }
    return {};
}

SQLiteResult<std::int64_t> SQLiteConnection::integer(std::string_view sql) {
    auto statement = prepare(sql);
    if (!statement) {
        return std::unexpected(std::move(statement.error()));
    }
    const auto row = statement->step();
    if (!row) {
        return std::unexpected(row.error());
    }
    return *row ? statement->integer(0) : 0;
}

}  // namespace nimbuscope::platform
