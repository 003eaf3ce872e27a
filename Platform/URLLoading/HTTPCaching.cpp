#include "Platform/URLLoading/HTTPCaching.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <vector>

namespace nimbuscope::platform {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

/// The members of a comma-separated list; commas inside quotes separate nothing.
std::vector<std::string_view> members(std::string_view list) {
    std::vector<std::string_view> found;
    bool isQuoted = false;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= list.size(); ++i) {
        if (i < list.size() && list[i] == '"') {
            isQuoted = !isQuoted;
        }
        if (i == list.size() || (list[i] == ',' && !isQuoted)) {
            if (const auto member = trimmed(list.substr(begin, i - begin)); !member.empty()) {
                found.push_back(member);
            }
            begin = i + 1;
        }
    }
    return found;
}

template <class Number>
std::optional<Number> number(std::string_view digits) {
    Number value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && !digits.starts_with('-')
               ? std::optional(value)
               : std::nullopt;
}

/// A number of seconds; absent for anything else. What is too large counts as the largest one that RFC 9111
/// asks for.
std::optional<seconds> deltaSeconds(std::string_view text) {
    constexpr std::int64_t largest = 2'147'483'648;
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    return seconds(std::min(number<std::int64_t>(text).value_or(largest), largest));
}

/// What a Cache-Control field says that concerns a private cache.
struct CacheControl {
    bool noStore = false;
    bool noCache = false;
    std::optional<seconds> maxAge;

    explicit CacheControl(const HTTPHeaders& headers) {
        const auto value = headers.value("Cache-Control");
        for (const std::string_view member : members(value ? *value : std::string_view())) {
            const std::size_t equals = member.find('=');
            const std::string_view name = trimmed(member.substr(0, equals));
            noStore = noStore || equalsIgnoringCase(name, "no-store");
            noCache = noCache || equalsIgnoringCase(name, "no-cache");
            if (equalsIgnoringCase(name, "max-age")) {
                const auto argument = equals == std::string_view::npos
                                          ? std::nullopt
                                          : deltaSeconds(trimmed(member.substr(equals + 1)));
                // Of several, or of one that cannot be read, the most careful reading.
                maxAge = std::min(maxAge.value_or(seconds::max()), argument.value_or(seconds(0)));
            }
        }
    }
};

std::optional<sys_seconds> dateField(const HTTPHeaders& headers, std::string_view name) {
    const auto value = headers.value(name);
    return value ? parseHTTPDate(*value) : std::nullopt;
}

seconds freshnessLifetime(const CachedURLResponse& cached) {
    const HTTPHeaders& headers = cached.response.headers;
    if (const auto maxAge = CacheControl(headers).maxAge) {
        return *maxAge;
    }
    const auto expires = dateField(headers, "Expires");
    return expires ? *expires - dateField(headers, "Date").value_or(cached.responseTime) : seconds(0);
}

seconds currentAge(const CachedURLResponse& cached, sys_seconds now) {
    const HTTPHeaders& headers = cached.response.headers;
    const auto age = headers.value("Age");
    const seconds apparent = cached.responseTime - dateField(headers, "Date").value_or(cached.responseTime);
    const seconds corrected = (age ? deltaSeconds(*age).value_or(seconds(0)) : seconds(0)) +
                              (cached.responseTime - cached.requestTime);
    return std::max({apparent, corrected, seconds(0)}) + (now - cached.responseTime);
}

std::optional<int> monthOf(std::string_view name) {
    static constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto* const found = std::ranges::find(months, name);
    return found != months.end() ? std::optional(static_cast<int>(found - months.begin()) + 1) : std::nullopt;
}

std::optional<seconds> timeOfDay(std::string_view text) {
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') {
        return std::nullopt;
    }
    const auto hour = number<int>(text.substr(0, 2));
    const auto minute = number<int>(text.substr(3, 2));
    const auto second = number<int>(text.substr(6, 2));
    if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60) {
        return std::nullopt;
    }
    return seconds((*hour * 60 + *minute) * 60 + *second);
}

}  // namespace

bool isCacheable(const URLRequest& request) {
    static constexpr std::array<std::string_view, 7> excluding{
        "Authorization", "Range",    "If-None-Match",      "If-Modified-Since",
        "If-Match",      "If-Range", "If-Unmodified-Since"};
    return request.httpMethod == "GET" && !request.isAuthorized &&
           std::ranges::none_of(excluding, [&](auto name) { return request.headers.contains(name); }) &&
           !CacheControl(request.headers).noStore;
}

bool isCacheable(const HTTPURLResponse& response) {
    const CacheControl control(response.headers);
    const auto vary = response.headers.value("Vary");
    const bool isReusable = control.maxAge || response.headers.contains("Expires") ||
                            response.headers.contains("ETag") || response.headers.contains("Last-Modified");
    return response.statusCode == 200 && !control.noStore && isReusable &&
           (!vary || vary->find('*') == std::string::npos);
}

bool isUnsafe(std::string_view method) {
    static constexpr std::array<std::string_view, 4> safe{"GET", "HEAD", "OPTIONS", "TRACE"};
    return std::ranges::find(safe, method) == safe.end();
}

HTTPHeaders varyingHeaders(const URLRequest& request, const HTTPURLResponse& response) {
    HTTPHeaders varying;
    const auto vary = response.headers.value("Vary");
    for (const std::string_view name : members(vary ? *vary : std::string_view())) {
        varying.set(std::string(name), request.headers.value(name).value_or(std::string()));
    }
    return varying;
}

bool isFresh(const CachedURLResponse& cached, const URLRequest& request,
             std::chrono::system_clock::time_point now) {
    const CacheControl asked(request.headers);
    const auto instant = std::chrono::floor<seconds>(now);
    if (asked.noCache || CacheControl(cached.response.headers).noCache ||
        instant < cached.responseTime) {  // the clock was set back: no age can be told
        return false;
    }
    const seconds lifetime = std::min(freshnessLifetime(cached), asked.maxAge.value_or(seconds::max()));
    return currentAge(cached, instant) < lifetime;
}

bool addValidators(URLRequest& request, const CachedURLResponse& cached) {
    const auto tag = cached.response.headers.value("ETag");
    const auto modified = cached.response.headers.value("Last-Modified");
    if (tag) {
        request.headers.set("If-None-Match", *tag);
    }
    if (modified) {
        request.headers.set("If-Modified-Since", *modified);
    }
    return tag || modified;
}

void update(CachedURLResponse& cached, const HTTPURLResponse& notModified) {
    // What describes the body as it travelled stays as it was.
    static constexpr std::array<std::string_view, 4> kept{"Content-Length", "Content-Encoding",
                                                          "Content-Type", "Content-Range"};
    const auto isKept = [](std::string_view name) {
        return std::ranges::any_of(kept, [&](auto each) { return equalsIgnoringCase(each, name); });
    };
    HTTPHeaders& headers = cached.response.headers;
    for (const auto& [name, value] : notModified.headers.fields()) {
        if (!isKept(name)) {
            headers.remove(name);
        }
    }
    for (const auto& [name, value] : notModified.headers.fields()) {
        if (!isKept(name)) {
            headers.add(name, value);
        }
    }
}

std::optional<sys_seconds> parseHTTPDate(std::string_view text) {
    // The forms differ in order and separators, but in all of them the day comes before the year.
    std::optional<int> month;
    std::optional<seconds> time;
    std::optional<int> day;
    std::optional<int> year;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" ,-", begin), text.size());
        const std::string_view word = text.substr(begin, end - begin);
        begin = end + 1;
        if (word.find(':') != std::string_view::npos) {
            time = timeOfDay(word);
        } else if (const auto value = number<int>(word)) {
            (day ? year : day) = *value;
            if (year && word.size() == 2) {  // within fifty years, roughly
                year = *value + (*value < 70 ? 2000 : 1900);
            }
        } else if (const auto named = monthOf(word)) {
            month = named;
        }
    }
    if (!month || !time || !day || *day < 1 || *day > 31 || !year || *year > 9999) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(std::chrono::year{*year},
                                           std::chrono::month{static_cast<unsigned>(*month)},
                                           std::chrono::day{static_cast<unsigned>(*day)});
    return date.ok() ? std::optional(std::chrono::sys_days(date) + *time) : std::nullopt;
}

}  // namespace nimbuscope::platform
