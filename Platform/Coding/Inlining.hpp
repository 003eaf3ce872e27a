#pragma once

/// How the reading of records becomes one function per list, without which it is a third slower. Only in
/// optimised builds, since a sanitizer's checks multiply with every copy, and the compiler's time with them.
#ifdef NDEBUG
#define NIMBUSCOPE_INLINED __attribute__((always_inline))
#define NIMBUSCOPE_FLATTENED __attribute__((flatten))
#else
#define NIMBUSCOPE_INLINED
#define NIMBUSCOPE_FLATTENED
#endif
