# The version of the interface, which tGetVersionOfVCO() gives too. A plug-in that asks for an older
# one of the same major version can be built.
# SPDX-License-Identifier: GPL-3.0-or-later
set(PACKAGE_VERSION 3.2.5)
if(PACKAGE_VERSION VERSION_EQUAL PACKAGE_FIND_VERSION)
    set(PACKAGE_VERSION_EXACT TRUE)
endif()
if(PACKAGE_FIND_VERSION_MAJOR EQUAL 3 AND PACKAGE_VERSION VERSION_GREATER_EQUAL PACKAGE_FIND_VERSION)
    set(PACKAGE_VERSION_COMPATIBLE TRUE)
endif()
