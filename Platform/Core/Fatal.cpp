#include "Platform/Core/Fatal.hpp"

#include <cstdio>
#include <cstdlib>

namespace nimbuscope::platform {

void fatalError(std::string_view message, std::source_location where) {
    std::fprintf(stderr, "Fatal error: %.*s: %s:%u\n", static_cast<int>(message.size()), message.data(),
                 where.file_name(), where.line());
    std::abort();
}

}  // namespace nimbuscope::platform
