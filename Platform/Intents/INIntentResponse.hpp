#pragma once

#include <optional>

#include "Platform/Coding/JSONWriter.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSObject.hpp"
#include "Platform/Intents/NSUserActivity.hpp"

namespace nimbuscope::platform {

/// The answer to an intent that was handled. Each class adds its code.
class NIMBUSCOPE_EXPORT INIntentResponse : public NSObject {
  public:
    /// What the application goes on with; none unless the code says so.
    std::optional<NSUserActivity> userActivity;

    /// The raw value of the response's code.
    [[nodiscard]] virtual std::int64_t rawCode() const = 0;
};

/// Writes {"class": …, "code": …, "userActivity": {"activityType", "title", "userInfo"} or null}.
NIMBUSCOPE_EXPORT void writeJSON(JSONWriter& writer, const INIntentResponse& response);

}  // namespace nimbuscope::platform
