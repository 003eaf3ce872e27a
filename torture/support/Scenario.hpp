#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace nimbuscope::torture {

/// A piece of work that is made to fail at every point, in a directory of its own.
struct Scenario {
    std::string name;

    /// Makes what is there before; undisturbed.
    std::function<void(const std::string& directory)> prepare;

    /// The work; whether it says that it was done. Expects that what it gives is right.
    std::function<bool(const std::string& directory)> work;

    /// What is in the directory, as text; undisturbed. It must be what it was before the work, or what it is
    /// behind work that nothing disturbs; the latter where the work says that it was done. Expects whatever
    /// else must hold.
    std::function<std::string(const std::string& directory)> state;

    /// Carries out a part of the work, undisturbed, behind which it may stop as well.
    std::function<void(const std::string& directory)> part = nullptr;

    bool tells = true;  ///< whether the work says how it went; else what it returns means nothing

    friend void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }
};

/// Those over the key-value store and what is kept there.
[[nodiscard]] std::vector<Scenario> storeScenarios();

/// Those of the response cache.
[[nodiscard]] std::vector<Scenario> cacheScenarios();

/// Those that keep nothing: reading, writing and signing.
[[nodiscard]] std::vector<Scenario> codingScenarios();

}  // namespace nimbuscope::torture
