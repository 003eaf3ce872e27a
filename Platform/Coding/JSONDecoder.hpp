#pragma once

#include <algorithm>
#include <concepts>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Coding/JSONArrayReader.hpp"
#include "Platform/Coding/JSONRecordReader.hpp"
#include "Platform/Core/Data.hpp"

namespace nimbuscope::platform {

/// Decodes JSON texts into values. Keeps its memory between texts. One thread at a time.
class JSONDecoder {
  public:
    /// The value of type T that `json` holds.
    /// `slack` is how many bytes behind the text may be read as well (see `JSONDocument::parse`).
    template <class T>
    [[nodiscard]] Result<T, DecodingError> decode(std::string_view json, std::size_t slack = 0) {
        const auto root = document_.parse(json, slack);
        if (!root) {
            return std::unexpected(root.error());
        }
        Result<T, DecodingError> value;
        if (DecodingFault found = JSONReader<T>::read(*root, *value)) {
            return std::unexpected(std::move(*found));
        }
        return value;
    }

    /// Decodes the elements of an array one by one and hands each to `take(T&&)`, in order. For long lists:
    /// takes little memory beside the text. What stands before a fault has been handed out when the error
    /// comes back.
    template <class T, std::invocable<T&&> Take>
    [[nodiscard]] Result<void, DecodingError> decodeEach(const Data& json, Take take) {
        return visitElements(json, [&](JSONElement element, std::size_t /*expected*/) {
            T value{};
            DecodingFault found = JSONReader<T>::read(element, value);
            if (!found) {
                take(std::move(value));
            }
            return found;
        });
    }

    /// The list that `json` holds; takes little memory beside the text and the list.
    template <class T>
    [[nodiscard]] Result<std::vector<T>, DecodingError> decodeList(const Data& json) {
        std::vector<T> values;
        auto visited = visitElements(json, [&](JSONElement element, std::size_t expected) {
            if (values.empty()) {
                values.reserve(
                    std::min(expected, json.size() / sizeof(T)));  // never more memory than the text has
            }
            return JSONReader<T>::read(element, values.emplace_back());
        });
        if (!visited) {
            return std::unexpected(std::move(visited.error()));
        }
        return values;
    }

  private:
    /// Calls `visit(element, expected)`, where `expected` is about how many elements the whole array has.
    template <class Visit>
    [[nodiscard]] Result<void, DecodingError> visitElements(const Data& json, Visit visit) {
        JSONArrayReader reader(document_, textOf(json), json.capacity() - json.size());
        for (std::size_t index = 0;;) {
            const auto elements = reader.next();
            if (!elements) {
                return std::unexpected(elements.error());
            }
            if (!*elements) {
                return {};
            }
            for (const JSONElement element : **elements) {
                if (DecodingFault inner = visit(element, reader.expectedCount())) {
                    return std::unexpected(std::move(*inElement(index, std::move(inner))));
                }
                ++index;
            }
        }
    }

    JSONDocument document_;
};

}  // namespace nimbuscope::platform
