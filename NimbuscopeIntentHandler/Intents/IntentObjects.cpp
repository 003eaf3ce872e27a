#include "NimbuscopeIntentHandler/Intents/IntentObjects.hpp"

namespace nimbuscope {
namespace {

struct SchemeRecord {
    std::optional<std::int64_t> id;

    static constexpr auto fields = std::tuple{platform::key("id", &SchemeRecord::id)};
};

}  // namespace

void MapColorScheme::writeMore(platform::JSONWriter& writer) const {
    if (id) {
        writer.key("id");
        writer.value(*id);
    }
}

platform::DecodingFault MapColorScheme::restoreMore(platform::JSONElement json) {
    SchemeRecord record;
    platform::DecodingFault found = platform::JSONReader<SchemeRecord>::read(json, record);
    id = record.id;
    return found;
}

}  // namespace nimbuscope
