# find_package(VeloCortivoPlugin): what a plug-in of Velo-Cortivo is built with.
#
#   VeloCortivo::Plugin                         target with the folder of velo_cortivo_plugin.h
#   velo_cortivo_add_plugin(<name> <source>...) makes the library <name>.so, which "cmake --install"
#                                               puts into VELO_CORTIVO_PLUGINS_FOLDER
#   VELO_CORTIVO_PLUGINS_FOLDER                 where the program looks for plug-ins; empty: they
#                                               are not installed
#
# SPDX-License-Identifier: GPL-3.0-or-later

set(VELO_CORTIVO_PLUGIN_SYMBOLS "${CMAKE_CURRENT_LIST_DIR}/plugin_symbols.map")

# The header lies beside this file in the source tree of the program, and below include/ where the
# kit is installed.
if(NOT TARGET VeloCortivo::Plugin)
    add_library(VeloCortivo::Plugin INTERFACE IMPORTED)
    if(EXISTS "${CMAKE_CURRENT_LIST_DIR}/velo_cortivo_plugin.h")
        set_target_properties(VeloCortivo::Plugin PROPERTIES
            INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_CURRENT_LIST_DIR}")
    else()
        get_filename_component(_velo_cortivo_prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
        set_target_properties(VeloCortivo::Plugin PROPERTIES
            INTERFACE_INCLUDE_DIRECTORIES "${_velo_cortivo_prefix}/include/velo-cortivo")
        unset(_velo_cortivo_prefix)
    endif()
endif()

# The documents folder of the user, found as the program finds it: as the desktop's settings name
# it, else ~/Documents.
function(_velo_cortivo_documents_folder result)
    set(settings "$ENV{XDG_CONFIG_HOME}")
    if(settings STREQUAL "")
        set(settings "$ENV{HOME}/.config")
    endif()
    set(documents "$ENV{HOME}/Documents")
    if(EXISTS "${settings}/user-dirs.dirs")
        file(STRINGS "${settings}/user-dirs.dirs" line REGEX "^XDG_DOCUMENTS_DIR=")
        if(line MATCHES "^XDG_DOCUMENTS_DIR=\"(.+)\"$")
            string(REGEX REPLACE "^\\$HOME" "$ENV{HOME}" documents "${CMAKE_MATCH_1}")
        endif()
    endif()
    set(${result} "${documents}" PARENT_SCOPE)
endfunction()

if(NOT DEFINED VELO_CORTIVO_PLUGINS_FOLDER)
    _velo_cortivo_documents_folder(_velo_cortivo_documents)
    set(VELO_CORTIVO_PLUGINS_FOLDER "${_velo_cortivo_documents}/VCOExtensions/Plugins_64"
        CACHE PATH "Folder in which the program looks for plug-ins")
    unset(_velo_cortivo_documents)
endif()

function(velo_cortivo_add_plugin name)
    add_library(${name} MODULE ${ARGN})
    target_link_libraries(${name} PRIVATE VeloCortivo::Plugin)
    target_compile_features(${name} PRIVATE cxx_std_11)
    set_target_properties(${name} PROPERTIES
        PREFIX "" SUFFIX ".so" CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    # The functions of the interface are in the program: they stay undefined here, also where the
    # user's flags ask for libraries without undefined symbols.
    target_link_libraries(${name} PRIVATE -Wl,-z,undefs
        "-Wl,--version-script,${VELO_CORTIVO_PLUGIN_SYMBOLS}")
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${VELO_CORTIVO_PLUGIN_SYMBOLS}")
    if(VELO_CORTIVO_PLUGINS_FOLDER)
        install(TARGETS ${name} LIBRARY DESTINATION "${VELO_CORTIVO_PLUGINS_FOLDER}")
    endif()
endfunction()
