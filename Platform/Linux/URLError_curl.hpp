#pragma once

#include <curl/curl.h>

#include "Platform/URLLoading/URLError.hpp"

namespace nimbuscope::platform {

/// What went wrong with the transfer of `handle`, which ended with `outcome`: with libcurl's number, and with
/// its text in `errorText` or, where that is empty, its general one.
[[nodiscard]] URLError errorOf(CURLcode outcome, CURL* handle, const char* errorText);

}  // namespace nimbuscope::platform
