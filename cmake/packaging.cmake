# Install rules and the Debian package.
# SPDX-License-Identifier: GPL-3.0-or-later
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

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velo-cortivo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_CONTACT "Velo-Cortivo developers <velo-cortivo@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_CONTACT})
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
