#pragma once

namespace nimbuscope::platform {

/// The root of classes whose instances have an identity: held by pointer, compared by address, never copied.
class NSObject {
  public:
    virtual ~NSObject() = default;
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

  protected:
    NSObject() = default;
};

}  // namespace nimbuscope::platform
