#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "Platform/Core/Data.hpp"

namespace nimbuscope::platform {

/// Undoes the content encoding of a response's body as it comes in: gzip and deflate, or none.
class ContentDecoder {
  public:
    enum class Outcome {
        good,
        tooLarge,  ///< more than `maximumSize` bytes come out
        damaged,   ///< what came in is not of the encoding
    };

    /// What a request says it accepts.
    static constexpr std::string_view acceptedEncodings = "gzip, deflate";

    /// For a response whose Content-Encoding is `encoding`; absent for one that is not known here.
    [[nodiscard]] static std::optional<ContentDecoder> make(std::string_view encoding,
                                                            std::size_t maximumSize);

    /// Takes the next bytes of the body.
    [[nodiscard]] Outcome take(std::string_view bytes);

    /// Whether the body is whole; one of no bytes at all always is.
    [[nodiscard]] bool isComplete() const { return !inflater_ || isAtEnd_ || !hasBegun_; }

    /// What came out so far.
    [[nodiscard]] Data& body() { return body_; }

  private:
    struct Inflater;
    struct InflaterEnd {
        void operator()(Inflater* inflater) const;
    };

    explicit ContentDecoder(std::size_t maximumSize) : maximumSize_(maximumSize) {}

    std::size_t maximumSize_;
    std::unique_ptr<Inflater, InflaterEnd> inflater_;  // none where nothing is encoded
    Data body_;
    bool hasBegun_ = false;
    bool isAtEnd_ = false;
};

}  // namespace nimbuscope::platform
