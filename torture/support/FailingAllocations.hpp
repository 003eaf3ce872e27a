#pragma once

#include <cstdint>

#include "torture/support/Fuse.hpp"

/// The allocator of a program that links this: every allocation of the process, of whatever library, `new`
/// included.
namespace nimbuscope::torture {

/// Tells which allocations fail.
[[nodiscard]] Fuse& allocationFuse();

/// Blocks that were allocated and not yet freed, since whenever.
[[nodiscard]] std::int64_t liveBlocks();

}  // namespace nimbuscope::torture
