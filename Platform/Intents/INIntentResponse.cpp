#include "Platform/Intents/INIntentResponse.hpp"

namespace nimbuscope::platform {
namespace {

void writeActivity(JSONWriter& writer, const NSUserActivity& activity) {
    writer.beginObject();
    writer.key("activityType");
    writer.value(activity.activityType);
    writer.key("title");
    writer.value(activity.title);
    writer.key("userInfo");
    writer.beginObject();
    for (const auto& [key, value] : activity.userInfo) {
        writer.key(key);
        writer.value(value);
    }
    writer.endObject();
    writer.endObject();
}

}  // namespace

void writeJSON(JSONWriter& writer, const INIntentResponse& response) {
    writer.beginObject();
    writer.key("class");
    writer.value(response.className());
    writer.key("code");
    writer.value(response.rawCode());
    writer.key("userActivity");
    response.userActivity ? writeActivity(writer, *response.userActivity) : writer.null();
    writer.endObject();
}

}  // namespace nimbuscope::platform
