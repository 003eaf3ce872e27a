// A program's own malloc takes the place of the C library's in all libraries that it loads; the C library's
// stays at hand under the names below.

#include "torture/support/FailingAllocations.hpp"

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the C library's names
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}

namespace nimbuscope::torture {
namespace {

constinit Fuse fuse;
constinit std::atomic<std::int64_t> live = 0;

/// `allocate()`, unless it must fail.
template <class Allocate>
void* counted(Allocate allocate) {
    void* const block = fuse.blows() ? nullptr : allocate();
    if (block == nullptr) {
        errno = ENOMEM;
        return nullptr;
    }
    ++live;
    return block;
}

}  // namespace

Fuse& allocationFuse() {
    return fuse;
}

std::int64_t liveBlocks() {
    return live;
}

}  // namespace nimbuscope::torture

using namespace nimbuscope::torture;

extern "C" {

void* malloc(std::size_t size) {
    return counted([&] { return __libc_malloc(size); });
}

void* calloc(std::size_t count, std::size_t size) {
    return counted([&] { return __libc_calloc(count, size); });
}

void free(void* block) {
    live -= block != nullptr ? 1 : 0;
    __libc_free(block);
}

void* realloc(void* block, std::size_t size) {
    if (block != nullptr && size == 0) {
        free(block);
        return nullptr;
    }
    void* const moved = counted([&] { return __libc_realloc(block, size); });
    live -= block != nullptr && moved != nullptr ? 1 : 0;
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return counted([&] { return __libc_memalign(alignment, size); });
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* const allocated = memalign(alignment, size);
    if (allocated == nullptr) {
        return ENOMEM;
    }
    *block = allocated;
    return 0;
}

}  // extern "C"
