#include "torture/support/Torture.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace nimbuscope::torture {
namespace {

int theCount = 0;
std::uint32_t theSeed = 1;

}  // namespace

int count() {
    return theCount;
}

std::uint32_t seed() {
    return theSeed;
}

Row::~Row() {
    const auto taken = std::chrono::steady_clock::now() - begun_;
    std::printf("| %s | %lld | %lld s | %s%s%s |\n", work_.c_str(), static_cast<long long>(done_),
                static_cast<long long>(std::chrono::round<std::chrono::seconds>(taken).count()),
                ::testing::Test::HasFailure() ? "FAILED" : "clean", note_.empty() ? "" : ", ", note_.c_str());
    std::fflush(stdout);
}

int run(int argumentCount, char** arguments, int usual) {
    ::testing::InitGoogleTest(&argumentCount, arguments);
    theCount = argumentCount > 1 ? std::atoi(arguments[1]) : usual;
    theSeed = argumentCount > 2 ? static_cast<std::uint32_t>(std::atoll(arguments[2])) : theSeed;
    if (theCount <= 0 || argumentCount > 3) {
        std::fprintf(stderr, "%s [COUNT [SEED]]\n", arguments[0]);
        return 2;
    }
    return RUN_ALL_TESTS();
}

}  // namespace nimbuscope::torture
