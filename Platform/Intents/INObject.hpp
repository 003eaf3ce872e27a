#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Coding/JSONDecoder.hpp"
#include "Platform/Coding/JSONWriter.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Core/NSObject.hpp"

namespace nimbuscope::platform {

/// A thing that a person chooses as the value of an intent's parameter. Does not change once made.
class NIMBUSCOPE_EXPORT INObject : public NSObject {
  public:
    INObject(std::optional<std::string> identifier, std::string display,
             std::optional<std::string> pronunciationHint = std::nullopt)
        : identifier_(std::move(identifier)),
          displayString_(std::move(display)),
          pronunciationHint_(std::move(pronunciationHint)) {}

    /// Unarchives an object, or takes it from a request; call `restore` next, once.
    INObject() = default;

    /// Names the thing among its kind; none for one that has no name yet.
    [[nodiscard]] const std::optional<std::string>& identifier() const { return identifier_; }
    /// What a person reads.
    [[nodiscard]] const std::string& displayString() const { return displayString_; }
    /// How to speak the display string where that is not plain.
    [[nodiscard]] const std::optional<std::string>& pronunciationHint() const { return pronunciationHint_; }

    /// Takes the properties from the keyed form that `writeJSON` writes. The class must be this object's.
    [[nodiscard]] DecodingFault restore(JSONElement json);

    /// Writes the keyed form: "class", "identifier", "display", then "pronunciationHint" where there is one,
    /// then what the class adds.
    NIMBUSCOPE_EXPORT friend void writeJSON(JSONWriter& writer, const INObject& object);

  protected:
    /// The keys that a class adds to the keyed form.
    virtual void writeMore(JSONWriter& /*writer*/) const {}
    [[nodiscard]] virtual DecodingFault restoreMore(JSONElement /*json*/) { return nullptr; }

  private:
    std::optional<std::string> identifier_;
    std::string displayString_;
    std::optional<std::string> pronunciationHint_;
};

/// An object as the bytes of its keyed form; fails for text that is not UTF-8.
[[nodiscard]] NIMBUSCOPE_EXPORT Result<std::string, EncodingError> archived(const INObject& object);

/// The object of class T that was archived as `bytes`.
template <std::derived_from<INObject> T>
[[nodiscard]] Result<std::shared_ptr<T>, DecodingError> unarchived(std::string_view bytes) {
    JSONDocument document;
    const auto root = document.parse(bytes);
    if (!root) {
        return std::unexpected(root.error());
    }
    auto object = std::make_shared<T>();
    if (const DecodingFault found = object->restore(*root)) {
        return std::unexpected(*found);
    }
    return object;
}

/// Objects to choose from, in sections. This system makes one section without a title.
template <std::derived_from<INObject> T>
class INObjectCollection : public NSObject {
  public:
    explicit INObjectCollection(std::vector<std::shared_ptr<T>> items) : items_(std::move(items)) {}

    [[nodiscard]] std::string_view className() const override { return "INObjectCollection"; }
    [[nodiscard]] const std::vector<std::shared_ptr<T>>& allItems() const { return items_; }

  private:
    std::vector<std::shared_ptr<T>> items_;
};

/// Writes {"sections": [{"items": […]}]}.
template <class T>
void writeJSON(JSONWriter& writer, const INObjectCollection<T>& collection) {
    writer.beginObject();
    writer.key("sections");
    writer.beginArray();
    writer.beginObject();
    writer.key("items");
    writer.beginArray();
    for (const auto& item : collection.allItems()) {
        writeJSON(writer, *item);
    }
    writer.endArray();
    writer.endObject();
    writer.endArray();
    writer.endObject();
}

}  // namespace nimbuscope::platform
