/* What the shared library exports. Velqua is compiled with hidden symbols, so
 * that the shared library offers exactly its public interface: the C++
 * classes and functions of include/velqua marked VELQUA_EXPORT and the C
 * interface (velqua_c.h). Plain preprocessor, so that C includes it too. */
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define VELQUA_EXPORT __attribute__((visibility("default")))
#else
#define VELQUA_EXPORT
#endif
