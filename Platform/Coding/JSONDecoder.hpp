#pragma once

#include <algorithm>
#include <concepts>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Coding/Inlining.hpp"
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
        if (Result<T, DecodingError> value; slack >= JSONDocument::enough && decodeStraight(json, *value)) {
            return value;
        }
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

    /// As above; the room that the bytes have to spare is the slack.
    template <class T>
    [[nodiscard]] Result<T, DecodingError> decode(const Data& json) {
        return decode<T>(textOf(json), json.capacity() - json.size());
    }

    /// Decodes the elements of an array one by one and hands each to `take(T&&)`, in order. For long lists:
    /// takes little memory beside the text. What stands before a fault has been handed out when the error
    /// comes back.
    template <class T, std::invocable<T&&> Take>
    [[nodiscard]] Result<void, DecodingError> decodeEach(const Data& json, Take take) {
        T value{};
        return visitElements<T>(
            json, [&](std::size_t /*expected*/) -> T& { return value = T{}; },
            [&] { take(std::move(value)); });
    }

    /// The list that `json` holds; takes little memory beside the text and the list.
    template <class T>
    [[nodiscard]] Result<std::vector<T>, DecodingError> decodeList(const Data& json) {
        std::vector<T> values;
        std::size_t sound = 0;
        auto visited = visitElements<T>(
            json,
            [&](std::size_t expected) -> T& {
                values.resize(sound);  // without one that was given up
                if (sound == 1) {
                    // never more memory than the text has
                    values.reserve(std::min(expected, json.size() / sizeof(T)));
                }
                return values.emplace_back();
            },
            [&] { ++sound; });
        if (!visited) {
            return std::unexpected(std::move(visited.error()));
        }
        return values;
    }

  private:
    /// A text as a document to walk through once; it must have `JSONDocument::enough` bytes behind it.
    [[nodiscard]] simdjson::error_code walk(std::string_view json, simdjson::ondemand::document& document) {
        return straight_.iterate(json.data(), json.size(), json.size() + JSONDocument::enough).get(document);
    }

    /// Whether the walk has come to the end of the text, exactly.
    [[nodiscard]] static bool isAtEnd(simdjson::ondemand::document& document) {
        return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    }

    template <class T>
    [[nodiscard]] bool decodeStraight(std::string_view json, T& value) {
        simdjson::ondemand::document document;
        JSONToken root;
        return walk(json, document) == simdjson::SUCCESS &&
               document.get_value().get(root) == simdjson::SUCCESS &&
               JSONReader<T>::readStraight(root, value) && isAtEnd(document);
    }

    /// Reads each element of the array that `json` holds into `place(expected)`, a T as it is made by
    /// default, and calls `done()` when it is sound; `expected` is about how many elements the array has,
    /// once known.
    template <class T, class Place, class Done>
    [[nodiscard]] Result<void, DecodingError> visitElements(const Data& json, Place place, Done done) {
        JSONArrayReader reader(document_, textOf(json), json.capacity() - json.size());
        auto [index, visited] = visitStraight<T>(json, reader, place, done);
        while (!reader.isAtEnd()) {
            const auto elements = reader.next();
            if (!elements) {
                return std::unexpected(elements.error());
            }
            for (const JSONElement element : *elements) {
                if (index++ < visited) {
                    continue;
                }
                if (DecodingFault inner = JSONReader<T>::read(element, place(0))) {
                    return std::unexpected(std::move(*inElement(index - 1, std::move(inner))));
                }
                done();
            }
        }
        return {};
    }

    struct Progress {
        std::size_t taken = 0;    ///< elements behind which the reader stands
        std::size_t visited = 0;  ///< elements that were read, some of which may follow
    };

    /// As `visitElements`, straight from the text, up to the first element that is out of the ordinary.
    /// Flattened, so that the place of the walk stays in registers: the calls would cost a third of the time.
    template <class T, class Place, class Done>
    NIMBUSCOPE_FLATTENED Progress visitStraight(const Data& json, JSONArrayReader& reader, Place& place,
                                                Done& done) {
        Progress progress;
        std::size_t expected = 0;
        while (!reader.isAtEnd()) {
            const JSONArrayReader::Stretch stretch = reader.likelyStretch();
            simdjson::ondemand::document document;
            simdjson::ondemand::array elements;
            if (walk(stretch.json, document) != simdjson::SUCCESS ||
                document.get_array().get(elements) != simdjson::SUCCESS) {
                return progress;
            }
            for (auto element : elements) {
                JSONToken token;
                if (std::move(element).get(token) != simdjson::SUCCESS ||
                    !JSONReader<T>::readStraight(token, place(expected))) {
                    return progress;
                }
                done();
                ++progress.visited;
                if (const char* end = nullptr;
                    expected == 0 && document.current_location().get(end) == simdjson::SUCCESS) {
                    expected = json.size() / static_cast<std::size_t>(end - stretch.json.data()) + 1;
                }
            }
            if (!isAtEnd(document)) {
                return progress;
            }
            reader.take(stretch);
            progress.taken = progress.visited;
        }
        return progress;
    }

    simdjson::ondemand::parser straight_;
    JSONDocument document_;
};

}  // namespace nimbuscope::platform
