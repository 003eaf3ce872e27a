#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Coding/CodingError.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/Result.hpp"

namespace nimbuscope::platform {

/// Writes one JSON text (RFC 8259), value by value, without spaces or line breaks.
///
/// Calls must nest as the document does: a key before each value inside an object, as many ends as
/// beginnings. Integers are written in full, doubles with the shortest text that reads back the same,
/// independent of the locale. A value that JSON cannot hold (a text that is not UTF-8, a number that is not
/// finite) is remembered as the error with its path, and `finish` returns it. One thread at a time.
class NIMBUSCOPE_EXPORT JSONWriter {
  public:
    void beginObject() { begin('{', false); }
    void endObject() { end('}'); }
    void beginArray() { begin('[', true); }
    void endArray() { end(']'); }

    /// The key of the value that follows. The characters must stay until that value is written.
    void key(std::string_view name);

    void null();
    void value(bool value);
    void value(std::int64_t value);
    /// How a double without a fraction is written: shortest, or marked as a real by ".0" where it needs it.
    enum class Reals { shortest, marked };
    void value(double value, Reals reals = Reals::shortest);
    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }

    /// A value that is JSON text already, copied as it stands.
    void json(std::string_view text);

    /// The document, or the first error. The writer is empty afterwards.
    [[nodiscard]] Result<std::string, EncodingError> finish();

  private:
    struct Level {
        bool isArray = false;
        std::size_t count = 0;
        std::string_view key;
    };

    void begin(char bracket, bool isArray);
    void end(char bracket);
    void separate();
    void quote(std::string_view text);
    void fail(std::string_view reason);

    std::string text_;
    std::vector<Level> levels_;
    std::optional<EncodingError> error_;
};

}  // namespace nimbuscope::platform
