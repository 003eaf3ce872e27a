#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// Measures speed as ratios to peers, in a way that holds on a busy machine: contenders take turns in short
/// samples, each ratio is taken inside one round, and the median of the rounds counts.
namespace nimbuscope::benchmarks {

struct Contender {
    std::string name;
    std::function<void()> work;
    double perUnit = 1;  ///< how many units of work one call does
};

/// What the first contender, the subject, must keep to against another: its time at most `limit` times the
/// peer's.
struct Limit {
    std::size_t peer;  ///< index of the contender
    double limit;
};

[[nodiscard]] inline double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

/// Seconds per unit of one sample of about `seconds`, at least one call.
[[nodiscard]] inline double sample(const Contender& contender, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    double elapsed = 0;
    int calls = 0;
    do {
        contender.work();
        ++calls;
        elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    } while (elapsed < seconds);
    return elapsed / (calls * contender.perUnit);
}

/// Prints one line per limit: the subject's time per unit, the ratio to the peer and whether it keeps the
/// limit. Returns false when one is not kept.
inline bool compare(const std::string& title, const std::vector<Contender>& contenders,
                    const std::vector<Limit>& limits, int rounds = 31, double seconds = 0.002) {
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = -1; round < rounds; ++round) {  // the first only warms up
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            const double time = sample(contenders[i], seconds);
            if (round >= 0) {
                times[i].push_back(time);
            }
        }
    }
    bool isKept = true;
    for (const auto& [peer, limit] : limits) {
        std::vector<double> ratios(times[0].size());
        std::ranges::transform(times[0], times[peer], ratios.begin(), std::divides<>());
        const double ratio = median(ratios);
        isKept = isKept && ratio <= limit;
        std::printf("| %s | %s | %.3g ns | %.3g × %s | ≤ %.3g | %s |\n", title.c_str(),
                    contenders[0].name.c_str(), median(times[0]) * 1e9, ratio, contenders[peer].name.c_str(),
                    limit, ratio <= limit ? "kept" : "MISSED");
    }
    return isKept;
}

}  // namespace nimbuscope::benchmarks
