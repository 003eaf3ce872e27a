#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// libcurl as one uses it by hand, to measure against.
namespace nimbuscope::benchmarks {

/// Loads one URL again and again with five fixed header fields, over a kept connection.
class BareHandle {
  public:
    BareHandle(const std::string& url, const std::string& authorityFile);
    ~BareHandle();
    BareHandle(const BareHandle&) = delete;
    BareHandle& operator=(const BareHandle&) = delete;

    /// Loads the URL once; the size of the body. Stops the program when that fails.
    std::size_t load();
    void load(int count);

    [[nodiscard]] void* handle() const { return handle_; }
    [[nodiscard]] std::string& body() { return body_; }

  private:
    void* handle_;
    void* headers_ = nullptr;
    std::string body_;
};

/// Loads one URL many times at once with the multi interface, over kept connections.
class BareMulti {
  public:
    BareMulti(std::size_t count, const std::string& url, const std::string& authorityFile);
    ~BareMulti();
    BareMulti(const BareMulti&) = delete;
    BareMulti& operator=(const BareMulti&) = delete;

    void load();

  private:
    void* multi_;
    std::vector<std::unique_ptr<BareHandle>> handles_;
};

}  // namespace nimbuscope::benchmarks
