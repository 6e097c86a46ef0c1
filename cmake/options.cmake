# Build options as interface targets: warnings, sanitizers, floating point, compiler cache.
# SPDX-License-Identifier: GPL-3.0-or-later

option(VELO_TESTS "Build the tests" ON)
option(VELO_BENCHMARKS "Build the benchmarks" ON)
option(VELO_EXAMPLES "Build the example plug-ins" ON)
option(VELO_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ON)
option(VELO_SANITIZERS "Address and undefined behaviour sanitizers" OFF)
option(VELO_THREAD_SANITIZER "Thread sanitizer, which excludes the others" OFF)
option(VELO_FUZZERS "Build the fuzz targets (needs clang)" OFF)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    # Precompiled headers can be cached only when their time stamps and macros are ignored.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
endif()

# Use a fast linker if one is installed: there are many statically linked test programs.
include(CheckLinkerFlag)
foreach(linker mold lld)
    check_linker_flag(CXX -fuse-ld=${linker} VELO_HAS_${linker})
    if(VELO_HAS_${linker})
        add_link_options(-fuse-ld=${linker})
        break()
    endif()
endforeach()

add_library(velo_options INTERFACE)
target_include_directories(velo_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(velo_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_STRICT_ITERATORS
    VELO_VERSION="${PROJECT_VERSION}")
# Sums are kept in the order in which they are written: a saved map must not depend on whether the
# compiler found a fused multiply-add.
target_compile_options(velo_options INTERFACE -ffp-contract=off)
target_compile_options(velo_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With precompiled headers the compiler must keep what ccache needs.
    target_compile_options(velo_options INTERFACE -fpch-preprocess)
    # Garbage collection takes 5 % of the compile time and is seldom needed.
    target_compile_options(velo_options INTERFACE --param=ggc-min-heapsize=400000)
endif()
if(VELO_WARNINGS_AS_ERRORS)
    target_compile_options(velo_options INTERFACE -Werror)
endif()
if(VELO_SANITIZERS)
    target_compile_options(velo_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
        # The sanitizers' own checks confuse these flow analyses.
        -Wno-null-dereference -Wno-maybe-uninitialized)
    target_link_options(velo_options INTERFACE -fsanitize=address,undefined)
endif()
if(VELO_THREAD_SANITIZER)
    if(VELO_SANITIZERS)
        message(FATAL_ERROR "VELO_THREAD_SANITIZER and VELO_SANITIZERS exclude each other")
    endif()
    target_compile_options(velo_options INTERFACE
        -fsanitize=thread -fno-omit-frame-pointer
        -Wno-null-dereference -Wno-maybe-uninitialized)
    target_link_options(velo_options INTERFACE -fsanitize=thread)
endif()
if(VELO_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "VELO_FUZZERS needs clang++: use the preset \"fuzz\"")
    endif()
    # Converting a number from a file that does not fit its type is undefined too.
    target_compile_options(velo_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(velo_options INTERFACE -fsanitize=address,undefined)
endif()
