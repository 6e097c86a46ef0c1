# velo_exports_plugin_functions(target): the program or test exports the functions for plug-ins, and
# nothing else, to the libraries that it opens. scripts/check_exports looks whether it does.
# SPDX-License-Identifier: GPL-3.0-or-later

function(velo_exports_plugin_functions target)
    set(list ${CMAKE_SOURCE_DIR}/src/plugin/functions/exported_functions.list)
    # Nothing in the program calls them, so that the linker would leave their objects out.
    target_link_libraries(${target} PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,plugin_functions>)
    target_link_options(${target} PRIVATE -Wl,--dynamic-list=${list})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${list})
endfunction()
