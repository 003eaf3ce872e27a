#pragma once

#include <expected>

namespace nimbuscope::platform {

/// What an operation that can fail returns: a value, or an error of type E that says what went wrong and
/// where. E is a small enumeration or struct. Functions that return a Result are marked `[[nodiscard]]`.
template <class T, class E>
using Result = std::expected<T, E>;

}  // namespace nimbuscope::platform
