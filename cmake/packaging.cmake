# Install rules and the Debian packages: velo-cortivo, and velo-cortivo-plugin-dev for those who
# write plug-ins (the component plugin_kit).
# SPDX-License-Identifier: GPL-3.0-or-later
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME program)
install(TARGETS velo-cortivo scanner-simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES src/resources/velo-cortivo.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES src/resources/art/velo-cortivo.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 128 256)
    install(FILES src/resources/images/velo-cortivo-${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME velo-cortivo.png)
endforeach()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

set(kit_doc ${CMAKE_INSTALL_DATAROOTDIR}/doc/velo-cortivo-plugin-dev)
install(FILES LICENSE DESTINATION ${kit_doc} RENAME copyright COMPONENT plugin_kit)
install(FILES docs/plugins.md docs/plugins_menu.png docs/plugins_run.png DESTINATION ${kit_doc}
        COMPONENT plugin_kit)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velo-cortivo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_CONTACT "Velo-Cortivo developers <velo-cortivo@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program plugin_kit)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_CONTACT})
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME velo-cortivo)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PLUGIN_KIT_PACKAGE_NAME velo-cortivo-plugin-dev)
set(CPACK_DEBIAN_PLUGIN_KIT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PLUGIN_KIT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PLUGIN_KIT_PACKAGE_RECOMMENDS "g++, cmake, make")
set(CPACK_DEBIAN_PLUGIN_KIT_DESCRIPTION
    "What plug-ins of Velo-Cortivo are written with: header, CMake package, template, examples.")
include(CPack)
