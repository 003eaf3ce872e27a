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

platform::DecodingResult MapColorScheme::restoreMore(platform::JSONElement json) {
    SchemeRecord record;
    auto read = platform::JSONReader<SchemeRecord>::read(json, record);
    id = record.id;
    return read;
}

}  // namespace nimbuscope
