#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Core/Export.hpp"

namespace nimbuscope::platform {

/// The fields of an HTTP header section, in order. Names are compared without regard to the case of ASCII
/// letters and keep the spelling they were given.
class NIMBUSCOPE_EXPORT HTTPHeaders {
  public:
    struct Field {
        std::string name;
        std::string value;
        bool operator==(const Field&) const = default;
    };

    HTTPHeaders() = default;
    HTTPHeaders(std::initializer_list<Field> fields) : fields_(fields) {}

    /// The value of the field `name`; where it occurs several times, the values in order, joined with ", ".
    [[nodiscard]] std::optional<std::string> value(std::string_view name) const;

    [[nodiscard]] bool contains(std::string_view name) const;

    /// Puts one field in place of all of that name.
    void set(std::string name, std::string value);

    /// Appends a field beside others of that name.
    void add(std::string name, std::string value);
    void add(HTTPHeaders more);

    void remove(std::string_view name);

    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

    bool operator==(const HTTPHeaders&) const = default;

  private:
    std::vector<Field> fields_;
};

/// True when two texts differ in nothing but the case of ASCII letters.
[[nodiscard]] NIMBUSCOPE_EXPORT bool equalsIgnoringCase(std::string_view left, std::string_view right);

/// The text without the blanks and line ends around it.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view trimmed(std::string_view text);

}  // namespace nimbuscope::platform
