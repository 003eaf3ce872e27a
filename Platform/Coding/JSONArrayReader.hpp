#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Coding/JSONDocument.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// Takes a text that is one JSON array apart into stretches of elements, so that what a parser makes of them
/// stays in the processor's cache and a list of any length takes little memory. One thread at a time.
class NIMBUSCOPE_EXPORT JSONArrayReader {
  public:
    /// Elements as an array of their own, with `JSONDocument::enough` bytes behind it that may be read.
    struct Stretch {
        std::string_view json;
        std::size_t end = std::string_view::npos;  ///< of the text taken by it; npos for all of it
    };

    /// `text` must stay while this object is used; `slack` as for `JSONDocument::parse`.
    JSONArrayReader(JSONDocument& document, std::string_view text, std::size_t slack)
        : document_(document), text_(text), slack_(slack) {}

    [[nodiscard]] bool isAtEnd() const { return isAtEnd_; }

    /// What are most likely the next elements, unparsed: it may end elsewhere than behind an element, and
    /// hold anything. Valid until the next call.
    [[nodiscard]] Stretch likelyStretch();

    /// Goes on behind a stretch that proved to be a valid array.
    void take(const Stretch& stretch);

    /// The next elements, parsed, valid until the next call; not to be called at the end. The error is that
    /// of the whole text, which shows at the latest where the text goes wrong: elements before that place may
    /// have been handed out.
    [[nodiscard]] Result<simdjson::dom::array, DecodingError> next();

  private:
    [[nodiscard]] Stretch stretchUpTo(std::size_t comma);
    [[nodiscard]] Result<simdjson::dom::array, DecodingError> rest();

    JSONDocument& document_;
    std::string_view text_;
    std::size_t slack_;
    std::size_t taken_ = 0;  // of the text, up to and with the comma behind the last element handed out
    bool isAtEnd_ = false;
    std::string stretch_;
};

}  // namespace nimbuscope::platform
