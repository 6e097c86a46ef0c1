# velo_library(name SOURCES ... USES ... [UI]): one static library of the layer table.
# SPDX-License-Identifier: GPL-3.0-or-later

# A target uses only targets of lower levels; scripts/check_layers holds the includes against the
# table in ARCHITECTURE.md, this function only builds.
function(velo_library name)
    cmake_parse_arguments(ARG "UI" "" "SOURCES;USES" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC velo_options ${ARG_USES})
    if(ARG_UI)
        set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON)
        target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/precompiled_widgets.h)
    else()
        target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/precompiled_core.h)
    endif()
endfunction()

# velo_test(name LABELS unit SOURCES ... USES ...): one test program, run by CTest on the offscreen
# platform with a home of its own.
function(velo_test name)
    cmake_parse_arguments(ARG "UI" "" "SOURCES;USES;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE test_support ${ARG_USES})
    set_target_properties(${name} PROPERTIES
        AUTOMOC ${ARG_UI} RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/precompiled_test.h)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        LABELS "${ARG_LABELS}" TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;OPENBLAS_NUM_THREADS=1;HOME=${CMAKE_BINARY_DIR}/tests/home;XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/tests/home;QT_LOGGING_RULES=qt.qpa.*=false")
endfunction()
