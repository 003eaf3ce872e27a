#pragma once

#include <optional>

#include "Platform/Coding/JSONDecoder.hpp"

namespace nimbuscope {

/// An element of a list that tolerates bad elements: a malformed one decodes as absent and fails nothing.
template <class T>
struct SharedDecodable {
    std::optional<T> base;
};

}  // namespace nimbuscope

template <class T>
struct nimbuscope::platform::JSONReader<nimbuscope::SharedDecodable<T>> {
    static DecodingFault read(JSONElement json, SharedDecodable<T>& element) {
        if (JSONReader<T>::read(json, element.base.emplace())) {
            element.base.reset();
        }
        return nullptr;
    }
    static bool readStraight(JSONToken json, SharedDecodable<T>& element) {
        return JSONReader<T>::readStraight(json, element.base.emplace());
    }
};
