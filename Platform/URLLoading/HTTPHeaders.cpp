#include "Platform/URLLoading/HTTPHeaders.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace nimbuscope::platform {
namespace {

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

}  // namespace

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerCase, lowerCase);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::optional<std::string> HTTPHeaders::value(std::string_view name) const {
    std::optional<std::string> joined;
    for (const Field& field : fields_) {
        if (equalsIgnoringCase(field.name, name)) {
            joined = joined ? *joined + ", " + field.value : field.value;
        }
    }
    return joined;
}

bool HTTPHeaders::contains(std::string_view name) const {
    return std::ranges::any_of(fields_,
                               [&](const Field& field) { return equalsIgnoringCase(field.name, name); });
}

void HTTPHeaders::set(std::string name, std::string value) {
    remove(name);
    add(std::move(name), std::move(value));
}

void HTTPHeaders::add(std::string name, std::string value) {
    constexpr std::size_t usual = 8;
    if (fields_.empty()) {
        fields_.reserve(usual);
    }
    fields_.push_back({std::move(name), std::move(value)});
}

void HTTPHeaders::add(HTTPHeaders more) {
    fields_.insert(fields_.end(), std::make_move_iterator(more.fields_.begin()),
                   std::make_move_iterator(more.fields_.end()));
}

void HTTPHeaders::remove(std::string_view name) {
    std::erase_if(fields_, [&](const Field& field) { return equalsIgnoringCase(field.name, name); });
}

}  // namespace nimbuscope::platform
