#pragma once

#include <simdjson.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "Platform/Coding/CodingError.hpp"
#include "Platform/Core/Data.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

/// A value inside a parsed document. Valid until its `JSONDocument` parses again or goes.
using JSONElement = simdjson::dom::element;

/// A parser of JSON texts (RFC 8259) that keeps its memory between documents.
///
/// The whole text must be valid JSON in valid UTF-8, one value, nested at most 1,024 levels. Numbers beyond
/// 64-bit integers are read as doubles; a number beyond the range of doubles reads as a value of no type that
/// a field could have, so that it spoils the record that it stands in and nothing else. One thread at a time.
class NIMBUSCOPE_EXPORT JSONDocument {
  public:
    /// Parses `text`, which is not needed afterwards. The error names the byte at which the text goes wrong.
    /// `slack` is how many bytes behind the text may be read as well; with `enough` of them the text need not
    /// be copied first. Throws std::bad_alloc where memory is short.
    [[nodiscard]] Result<JSONElement, DecodingError> parse(std::string_view text, std::size_t slack = 0);

    /// As above; the room that the bytes have to spare is the slack.
    [[nodiscard]] Result<JSONElement, DecodingError> parse(const Data& json) {
        return parse(textOf(json), json.capacity() - json.size());
    }

    static constexpr std::size_t enough = simdjson::SIMDJSON_PADDING;

    /// False where the last text that was parsed has a number beyond 64-bit integers or beyond doubles.
    [[nodiscard]] bool isExact() const { return isExact_; }

  private:
    simdjson::dom::parser parser_;
    bool isExact_ = true;
};

/// What is wrong with a value; null when nothing is. A pointer, so that what is sound costs no more than a
/// test.
using DecodingFault = std::unique_ptr<DecodingError>;

/// A fault at the value itself.
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault fault(std::string_view reason);

/// The fault of a value of the wrong kind: "expected a boolean, found a number".
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault typeMismatch(std::string_view expected, JSONElement found);

/// The fault of a value that no case of an enumeration has.
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault unknownValue(std::int64_t found);
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault unknownValue(std::string_view found);

/// A fault, found inside the value of `key` or inside an element of an array.
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault inKey(std::string_view key, DecodingFault inner);
[[nodiscard]] NIMBUSCOPE_EXPORT DecodingFault inElement(std::size_t index, DecodingFault inner);

/// True when `text` is valid UTF-8 (RFC 3629).
[[nodiscard]] NIMBUSCOPE_EXPORT bool isValidUTF8(std::string_view text);

}  // namespace nimbuscope::platform
