// Compiling loops over voxels for several instruction sets.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A function marked with VELO_SIMD_CLONES is also compiled for AVX2, where compiler and system can
// select the version at start-up. Contraction to fused multiply-add is off in the whole tree, so
// both versions give the same bits. The sanitizers don't support the selection, which runs before
// they are initialised.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__gnu_linux__) &&   \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define VELO_SIMD_CLONES __attribute__((target_clones("default", "avx2")))
#else
#define VELO_SIMD_CLONES
#endif
