#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// What the torture programs share. Each is a GoogleTest program with two arguments of its own:
/// `PROGRAM [COUNT [SEED]]`.
namespace nimbuscope::torture {

/// How often the whole program injures something; the tests divide it among them.
[[nodiscard]] int count();

/// What the random numbers of a run grow from: the same seed gives the same injuries, though processes do not
/// meet them at the same moments.
[[nodiscard]] std::uint32_t seed();

/// A line of the table that the program leaves on standard output when the test ends:
/// `| WORK | COUNT | SECONDS s | clean |`, or `FAILED` behind it.
class Row {
  public:
    explicit Row(std::string work) : work_(std::move(work)) {}
    ~Row();
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    /// Counts injuries.
    void operator++() { ++done_; }
    void operator+=(std::int64_t injuries) { done_ += injuries; }

    /// Something to be said behind "clean".
    void note(std::string text) { note_ = std::move(text); }

  private:
    std::string work_;
    std::string note_;
    std::int64_t done_ = 0;
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};

/// Runs the tests with `argumentCount` and `arguments` of `main`; COUNT is `usual` where it is not given.
[[nodiscard]] int run(int argumentCount, char** arguments, int usual);

}  // namespace nimbuscope::torture
