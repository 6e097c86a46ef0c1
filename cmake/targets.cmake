# velo_library(name SOURCES ... USES ... [UI]): one static library of the layer table.
# velo_program(name SOURCES ... USES ... [UI]): one program.
# velo_test(name SOURCES ... USES ... LABELS ... [UI] [RELEASE]): one test program.
# SPDX-License-Identifier: GPL-3.0-or-later

# A precompiled header that many targets share, since building one takes as long as several source
# files. The compiler accepts it only with the definitions that it was built with, so the libraries
# given here are those that all its users have in common.
function(velo_precompiled_header name)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(GENERATE OUTPUT ${source} CONTENT "// Nothing but its precompiled header.\n")
    add_library(velo_${name} OBJECT EXCLUDE_FROM_ALL ${source})
    target_link_libraries(velo_${name} PRIVATE velo_options ${ARGN})
    target_precompile_headers(velo_${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/${name}.h)
endfunction()

# All targets share a header with QImage, though only those from level 6 on may use it:
# scripts/check_layers checks that. Linking Qt Gui would add a definition that prevents the sharing.
target_include_directories(velo_options SYSTEM INTERFACE ${Qt6Gui_INCLUDE_DIRS})
velo_precompiled_header(precompiled_core Qt6::Core)
velo_precompiled_header(precompiled_widgets Qt6::Widgets)
if(VELO_TESTS)
    velo_precompiled_header(precompiled_test Qt6::Widgets GTest::gtest)
    velo_precompiled_header(precompiled_widgets_test Qt6::Widgets GTest::gtest)
    target_include_directories(velo_precompiled_widgets_test SYSTEM PRIVATE ${Qt6Test_INCLUDE_DIRS})
endif()

# A target uses only targets of lower levels; scripts/check_layers compares the includes with the
# table in ARCHITECTURE.md, this function only builds. A form of Qt Designer (.ui) lies beside the
# class that includes its "ui_<form>.h".
function(velo_library name)
    cmake_parse_arguments(ARG "UI" "" "SOURCES;USES" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC velo_options ${ARG_USES})
    if(ARG_UI)
        set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON)
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_widgets)
    else()
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_core)
    endif()
endfunction()

# A program that is not a test: those for users, and the benchmarks.
function(velo_program name)
    cmake_parse_arguments(ARG "UI" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_USES})
    if(ARG_UI)
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_widgets)
    else()
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_core)
    endif()
endfunction()

# A test program runs on the offscreen platform with its own home folder and writes its results as
# JSON. UI: it uses widgets. RELEASE: scripts/test also runs it in a release build.
add_custom_target(release_tests)
function(velo_test name)
    cmake_parse_arguments(ARG "UI;RELEASE" "" "SOURCES;USES;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE test_support ${ARG_USES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    if(ARG_UI)
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_widgets_test)
    else()
        target_precompile_headers(${name} REUSE_FROM velo_precompiled_test)
    endif()
    if(ARG_RELEASE)
        add_dependencies(release_tests ${name})
        list(APPEND ARG_LABELS release)
    endif()
    set(home ${CMAKE_BINARY_DIR}/tests/home/${name})
    file(MAKE_DIRECTORY ${home})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        LABELS "${ARG_LABELS}" TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;OPENBLAS_NUM_THREADS=1;HOME=${home};XDG_RUNTIME_DIR=${home};QT_LOGGING_RULES=qt.qpa.*=false;GTEST_OUTPUT=json:${CMAKE_BINARY_DIR}/tests/results/${name}.json")
endfunction()
