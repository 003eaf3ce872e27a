#pragma once

#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// The root of classes whose instances have an identity: held by pointer, compared by address, never copied.
class NIMBUSCOPE_EXPORT NSObject {
  public:
    virtual ~NSObject() = default;
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    /// The name of the object's class, as other processes know it.
    [[nodiscard]] virtual std::string_view className() const = 0;

  protected:
    NSObject() = default;
};

}  // namespace nimbuscope::platform
