#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Coding/JSONDocument.hpp"

namespace nimbuscope::platform {

/// Parses a text that is one JSON array, a stretch of elements at a time, so that what the parser makes of
/// them stays in the processor's cache and a list of any length takes little memory. One thread at a time.
class JSONArrayReader {
  public:
    /// `text` must stay while this object is used; `slack` as for `JSONDocument::parse`.
    JSONArrayReader(JSONDocument& document, std::string_view text, std::size_t slack)
        : document_(document), text_(text), slack_(slack) {}

    /// The next elements, valid until the next call; none at the end. The error is that of the whole text,
    /// which shows at the latest where the text goes wrong: elements before that place may have been handed
    /// out.
    [[nodiscard]] Result<std::optional<simdjson::dom::array>, DecodingError> next();

    /// About how many elements the array has, judged by the first of them; 0 before `next`.
    [[nodiscard]] std::size_t expectedCount() const { return expectedCount_; }

  private:
    [[nodiscard]] std::optional<simdjson::dom::array> nextStretch();
    [[nodiscard]] Result<std::optional<simdjson::dom::array>, DecodingError> rest();

    JSONDocument& document_;
    std::string_view text_;
    std::size_t slack_;
    std::size_t taken_ = 0;  // of the text, up to and with the comma behind the last element handed out
    std::size_t expectedCount_ = 0;
    bool isAtEnd_ = false;
    std::string stretch_;
};

}  // namespace nimbuscope::platform
