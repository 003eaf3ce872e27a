#pragma once

#include "torture/support/Fuse.hpp"

namespace nimbuscope::torture {

/// Makes SQLite reach files through a layer that fails where the fuse says so: opening, reading, writing,
/// cutting, syncing, locking and deleting, and what the shared memory of the log needs. Nothing fails that
/// gives up a lock or closes. So do `open`, `mkdir` and `link` of the program's own code, where it is linked
/// with `--wrap` for these.
void installFailingFiles();

/// Tells which file operations fail.
[[nodiscard]] Fuse& fileFuse();

}  // namespace nimbuscope::torture
