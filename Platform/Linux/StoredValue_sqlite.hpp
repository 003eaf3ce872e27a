#pragma once

#include <optional>
#include <string>

#include "Platform/Defaults/DefaultsValue.hpp"
#include "Platform/Linux/SQLite.hpp"

namespace nimbuscope::platform {

/// How a value of the key-value store stands in the columns `type` and `value` of a row.
class StoredValue {
  public:
    /// `value` must outlive this object.
    explicit StoredValue(const DefaultsValue& value) : value_(value) {}

    /// Binds type and value as parameters 2 and 3 of `insert`, which borrows them from this object until it
    /// is reset. What is wrong with a value that cannot be stored, or none.
    [[nodiscard]] std::optional<std::string> bind(SQLiteStatement& insert) const;

    /// The value in columns 0 (type) and 1 (value) of the current row; none when it is not of its type.
    [[nodiscard]] static std::optional<DefaultsValue> read(const SQLiteStatement& row);

  private:
    const DefaultsValue& value_;
    mutable std::string json_;  // of a container, while it is bound
};

}  // namespace nimbuscope::platform
