#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "tests/support/Process.hpp"
#include "tests/support/TemporaryDirectory.hpp"

namespace nimbuscope::testing {
namespace {

TEST(Layering, onlyTheAdaptersIncludeTheLibrariesOfTheOperatingSystem) {
    const std::regex foreign(
        R"(#include <(sqlite3\.h|zlib\.h|curl/|openssl/|spng\.h|unicode/|sdbus-c\+\+/|libintl\.h))");
    const std::filesystem::path root(NIMBUSCOPE_SOURCE_DIRECTORY);
    int adapters = 0;
    for (const char* part :
         {"Platform", "NimbuscopeKit", "NimbuscopeIntentHandler", "colorschemes", "tools"}) {
        for (const auto& file : std::filesystem::recursive_directory_iterator(root / part)) {
            if (file.is_regular_file() && std::regex_search(readFile(file.path()), foreign)) {
                EXPECT_TRUE(file.path().string().starts_with(root.string() + "/Platform/Linux/"))
                    << file.path();
                ++adapters;
            }
        }
    }
    EXPECT_GE(adapters, 2) << "the search finds nothing at all";
}

TEST(Layering, theExtensionLoadsNoMoreThanItNeeds) {
    const std::string listed =
        run({"ldd", NIMBUSCOPE_BINARY_DIRECTORY "/NimbuscopeIntentHandler/NimbuscopeIntentHandler"}).output;
    const std::regex library(R"(\b(lib[\w+-]+|ld-linux[\w-]+)\.so)");
    const std::regex allowed(
        "libc|libm|libgcc_s|libstdc\\+\\+|libsqlite3|libsimdjson|ld-linux.*|lib(a|ub|t)san|libdl|libpthread|"
        "librt|libresolv");
    for (std::sregex_iterator it(listed.begin(), listed.end(), library), end; it != end; ++it) {
        EXPECT_TRUE(std::regex_match((*it)[1].str(), allowed)) << (*it)[1];
    }
    EXPECT_NE(listed.find("libsqlite3"), std::string::npos) << listed;
}

}  // namespace
}  // namespace nimbuscope::testing
