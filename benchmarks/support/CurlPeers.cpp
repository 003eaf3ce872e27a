#include "CurlPeers.hpp"

#include <curl/curl.h>

#include <cstdio>
#include <cstdlib>

namespace nimbuscope::benchmarks {
namespace {

void check(CURLcode outcome) {
    if (outcome != CURLE_OK) {
        std::fprintf(stderr, "bare libcurl: %s\n", curl_easy_strerror(outcome));
        std::exit(1);
    }
}

std::size_t append(char* bytes, std::size_t, std::size_t size, void* body) {
    static_cast<std::string*>(body)->append(bytes, size);
    return size;
}

}  // namespace

BareHandle::BareHandle(const std::string& url, const std::string& authorityFile) : handle_(curl_easy_init()) {
    curl_slist* headers = nullptr;
    for (const char* name :
         {"X-Nb-Algorithm", "X-Nb-Credential", "X-Nb-Date", "X-Nb-SignedHeaders", "X-Nb-Signature"}) {
        headers = curl_slist_append(headers, (name + std::string(": ") + std::string(40, 'x')).c_str());
    }
    headers_ = headers;
    curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle_, CURLOPT_CAINFO, authorityFile.c_str());
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle_, CURLOPT_MAXAGE_CONN, 3L);  // the server closes them after 5 s
    curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &body_);
}

BareHandle::~BareHandle() {
    curl_easy_cleanup(handle_);
    curl_slist_free_all(static_cast<curl_slist*>(headers_));
}

std::size_t BareHandle::load() {
    body_.clear();
    check(curl_easy_perform(handle_));
    return body_.size();
}

void BareHandle::load(int count) {
    for (int i = 0; i < count; ++i) {
        load();
    }
}

BareMulti::BareMulti(std::size_t count, const std::string& url, const std::string& authorityFile)
    : multi_(curl_multi_init()) {
    for (std::size_t i = 0; i < count; ++i) {
        handles_.push_back(std::make_unique<BareHandle>(url, authorityFile));
    }
}

BareMulti::~BareMulti() {
    curl_multi_cleanup(multi_);
}

void BareMulti::load() {
    for (const auto& each : handles_) {
        each->body().clear();
        curl_multi_add_handle(multi_, each->handle());
    }
    for (int running = 1; running > 0;) {
        curl_multi_perform(multi_, &running);
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
            check(message->data.result);
        }
        if (running > 0) {
            curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
        }
    }
    for (const auto& each : handles_) {
        curl_multi_remove_handle(multi_, each->handle());
    }
}

}  // namespace nimbuscope::benchmarks
