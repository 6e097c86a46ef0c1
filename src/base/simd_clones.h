// Loops over voxels that are also compiled for wider registers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Where the compiler and the system can choose between versions of a function at start-up, a
// function marked with this is also compiled for wider registers. Contraction to fused multiply-add
// is off in the whole tree, so every version gives the same bits. The sanitizers can't run the
// choice, which is made before they are set up.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__gnu_linux__) &&   \
    !defined(__SANITIZE_ADDRESS__)
#define VELO_SIMD_CLONES __attribute__((target_clones("default", "avx2")))
#else
#define VELO_SIMD_CLONES
#endif
