#include "Platform/Intents/INIntentResolutionResult.hpp"

namespace nimbuscope::platform {

void writeJSON(JSONWriter& writer, const INObjectResolutionResult& result) {
    writer.beginObject();
    writer.key("resolution");
    writer.value(rawValue(result.resolution()));
    if (result.resolution() == INResolution::success) {
        writer.key("value");
        writeJSON(writer, *result.objects().front());
    }
    writer.endObject();
}

}  // namespace nimbuscope::platform
