#include "torture/support/FailingFiles.hpp"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <new>

namespace nimbuscope::torture {
namespace {

constinit Fuse fuse;

sqlite3_vfs* inner() {
    return sqlite3_vfs_find("unix");
}

/// A file of the layer; the file of the layer below lies behind it.
struct File : sqlite3_file {
    [[nodiscard]] sqlite3_file* below() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* below(sqlite3_file* file) {
    return static_cast<File*>(file)->below();
}

/// `code`, where this call must fail, and else what `call` of the file below returns.
template <auto call, class... Arguments>
int unlessBlown(int code, sqlite3_file* file, Arguments... arguments) {
    return fuse.blows() ? code : (below(file)->pMethods->*call)(below(file), arguments...);
}

template <auto call, class... Arguments>
auto always(sqlite3_file* file, Arguments... arguments) {
    return (below(file)->pMethods->*call)(below(file), arguments...);
}

using Methods = sqlite3_io_methods;

constexpr Methods methods{
    .iVersion = 2,  // without memory-mapped files
    .xClose = [](sqlite3_file* file) { return always<&Methods::xClose>(file); },
    .xRead =
        [](sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
            return unlessBlown<&Methods::xRead>(SQLITE_IOERR_READ, file, bytes, count, offset);
        },
    .xWrite =
        [](sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
            return unlessBlown<&Methods::xWrite>(SQLITE_FULL, file, bytes, count, offset);
        },
    .xTruncate =
        [](sqlite3_file* file, sqlite3_int64 size) {
            return unlessBlown<&Methods::xTruncate>(SQLITE_IOERR_TRUNCATE, file, size);
        },
    .xSync = [](sqlite3_file* file,
                int flags) { return unlessBlown<&Methods::xSync>(SQLITE_IOERR_FSYNC, file, flags); },
    .xFileSize =
        [](sqlite3_file* file, sqlite3_int64* size) {
            return unlessBlown<&Methods::xFileSize>(SQLITE_IOERR_FSTAT, file, size);
        },
    .xLock = [](sqlite3_file* file,
                int level) { return unlessBlown<&Methods::xLock>(SQLITE_IOERR_LOCK, file, level); },
    .xUnlock = [](sqlite3_file* file, int level) { return always<&Methods::xUnlock>(file, level); },
    .xCheckReservedLock =
        [](sqlite3_file* file, int* isHeld) {
            return unlessBlown<&Methods::xCheckReservedLock>(SQLITE_IOERR_CHECKRESERVEDLOCK, file, isHeld);
        },
    .xFileControl = [](sqlite3_file* file, int operation,
                       void* argument) { return always<&Methods::xFileControl>(file, operation, argument); },
    .xSectorSize = [](sqlite3_file* file) { return always<&Methods::xSectorSize>(file); },
    .xDeviceCharacteristics =
        [](sqlite3_file* file) { return always<&Methods::xDeviceCharacteristics>(file); },
    .xShmMap =
        [](sqlite3_file* file, int region, int size, int extends, void volatile** memory) {
            return unlessBlown<&Methods::xShmMap>(SQLITE_IOERR_SHMMAP, file, region, size, extends, memory);
        },
    .xShmLock =
        [](sqlite3_file* file, int offset, int count, int flags) {
            return (flags & SQLITE_SHM_UNLOCK) != 0
                       ? always<&Methods::xShmLock>(file, offset, count, flags)
                       : unlessBlown<&Methods::xShmLock>(SQLITE_IOERR_SHMLOCK, file, offset, count, flags);
        },
    .xShmBarrier = [](sqlite3_file* file) { always<&Methods::xShmBarrier>(file); },
    .xShmUnmap = [](sqlite3_file* file, int deletes) { return always<&Methods::xShmUnmap>(file, deletes); },
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

int openFile(sqlite3_vfs* /*layer*/, const char* name, sqlite3_file* memory, int flags, int* outFlags) {
    auto* file = new (memory) File;
    file->pMethods = nullptr;  // nothing to close
    if (fuse.blows()) {
        return SQLITE_CANTOPEN;
    }
    const int code = inner()->xOpen(inner(), name, file->below(), flags, outFlags);
    file->pMethods = file->below()->pMethods != nullptr ? &methods : nullptr;
    return code;
}

int deleteFile(sqlite3_vfs* /*layer*/, const char* name, int syncs) {
    return fuse.blows() ? SQLITE_IOERR_DELETE : inner()->xDelete(inner(), name, syncs);
}

int accessFile(sqlite3_vfs* /*layer*/, const char* name, int flags, int* result) {
    return fuse.blows() ? SQLITE_IOERR_ACCESS : inner()->xAccess(inner(), name, flags, result);
}

}  // namespace

void installFailingFiles() {
    static sqlite3_vfs layer = *inner();
    layer.zName = "failing";
    layer.szOsFile += static_cast<int>(sizeof(File));
    layer.xOpen = openFile;
    layer.xDelete = deleteFile;
    layer.xAccess = accessFile;
    sqlite3_vfs_register(&layer, 1);
}

Fuse& fileFuse() {
    return fuse;
}

}  // namespace nimbuscope::torture

// The linker's --wrap=NAME sends calls of NAME to __wrap_NAME, and __real_NAME is the function itself.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_mkdir(const char* path, mode_t mode);
int __real_link(const char* from, const char* to);

int __wrap_open(const char* path, int flags, ...) {
    if (nimbuscope::torture::fileFuse().blows()) {
        errno = ENOSPC;
        return -1;
    }
    std::va_list rest;
    va_start(rest, flags);
    const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = makesFile ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return __real_open(path, flags, mode);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    if (nimbuscope::torture::fileFuse().blows()) {
        errno = ENOSPC;
        return -1;
    }
    return __real_mkdir(path, mode);
}

int __wrap_link(const char* from, const char* to) {
    if (nimbuscope::torture::fileFuse().blows()) {
        errno = EIO;
        return -1;
    }
    return __real_link(from, to);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
