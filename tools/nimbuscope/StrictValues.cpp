#include "StrictValues.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace nimbuscope::tool {
namespace {

template <class Number>
bool isNumber(std::string_view text, Number& number) {
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

std::string found(const char* expected, const std::string& text) {
    return std::string("expected ") + expected + ", found \"" + text + '"';
}

/// Writes the number anew, in figures that the parser takes for no other.
std::string integerFault(std::string& text) {
    std::int64_t number = 0;
    if (!isNumber(text, number)) {
        return found("a whole number of 64 bits", text);
    }
    text = std::to_string(number);
    return {};
}

std::string realFault(std::string& text) {
    double number = 0;
    return isNumber(text, number) ? "" : found("a number", text);
}

std::string booleanFault(std::string& text) {
    constexpr std::array<std::string_view, 8> words{"true", "false", "yes", "no", "on", "off", "1", "0"};
    const std::string lower = CLI::detail::to_lower(text);
    return std::ranges::find(words, lower) != words.end() ? "" : found("true or false", text);
}

std::string nameFault(std::string& text) {
    return text.empty() ? found("a name", text) : "";
}

void refuseLooseValues(CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::string_view kind = std::string_view(type).substr(0, type.find(':'));
    constexpr std::pair<std::string_view, std::string (*)(std::string&)> faults[]{
        {"INT", integerFault}, {"UINT", integerFault}, {"FLOAT", realFault}, {"BOOLEAN", booleanFault},
        {"FILE", nameFault},   {"PNG", nameFault},     {"DIR", nameFault}};
    for (const auto& [name, fault] : faults) {
        if (kind == name) {
            option.transform(CLI::Validator(fault, ""));
        }
    }
}

}  // namespace

void refuseLooseValues(CLI::App& program) {
    for (CLI::Option* option : program.get_options({})) {
        refuseLooseValues(*option);
    }
    for (CLI::App* part : program.get_subcommands({})) {
        refuseLooseValues(*part);
    }
}

}  // namespace nimbuscope::tool
