#include "Platform/Intents/INObject.hpp"

#include <tuple>

namespace nimbuscope::platform {
namespace {

struct ObjectRecord {
    std::string className;
    std::optional<std::string> identifier;
    std::string display;
    std::optional<std::string> pronunciationHint;

    static constexpr auto fields = std::tuple{
        key("class", &ObjectRecord::className), key("identifier", &ObjectRecord::identifier),
        key("display", &ObjectRecord::display), key("pronunciationHint", &ObjectRecord::pronunciationHint)};
};

}  // namespace

DecodingFault INObject::restore(JSONElement json) {
    ObjectRecord record;
    if (DecodingFault found = JSONReader<ObjectRecord>::read(json, record)) {
        return found;
    }
    if (record.className != className()) {
        return inKey("class", fault("expected \"" + std::string(className()) + "\", found \"" +
                                    record.className + '"'));
    }
    identifier_ = std::move(record.identifier);
    displayString_ = std::move(record.display);
    pronunciationHint_ = std::move(record.pronunciationHint);
    return restoreMore(json);
}

void writeJSON(JSONWriter& writer, const INObject& object) {
    writer.beginObject();
    writer.key("class");
    writer.value(object.className());
    writer.key("identifier");
    object.identifier_ ? writer.value(*object.identifier_) : writer.null();
    writer.key("display");
    writer.value(object.displayString_);
    if (object.pronunciationHint_) {
        writer.key("pronunciationHint");
        writer.value(*object.pronunciationHint_);
    }
    object.writeMore(writer);
    writer.endObject();
}

Result<std::string, EncodingError> archived(const INObject& object) {
    JSONWriter writer;
    writeJSON(writer, object);
    return writer.finish();
}

}  // namespace nimbuscope::platform
