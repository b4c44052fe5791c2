# SPDX-License-Identifier: Apache-2.0
#
# Installs what a host needs to find the libraries: the CMake package zav_ml and the pkg-config file. Both find
# everything relative to themselves, so the prefix may be moved after installation.

include(CMakePackageConfigHelpers)

set(ZAV_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/zav_ml")
set(ZAV_INSTALL_PKGCONFIGDIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(ZAV_INSTALL_MODELSDIR "${CMAKE_INSTALL_DATADIR}/zav/models")

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/zav_mlConfig.cmake.in" "${PROJECT_BINARY_DIR}/zav_mlConfig.cmake"
    INSTALL_DESTINATION "${ZAV_INSTALL_CMAKEDIR}"
    PATH_VARS ZAV_INSTALL_MODELSDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/zav_mlConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/zav_mlConfig.cmake" "${PROJECT_BINARY_DIR}/zav_mlConfigVersion.cmake"
    DESTINATION "${ZAV_INSTALL_CMAKEDIR}" COMPONENT Development)
install(EXPORT zav_mlTargets NAMESPACE zav:: DESTINATION "${ZAV_INSTALL_CMAKEDIR}" COMPONENT Development)

file(RELATIVE_PATH ZAV_PREFIX_FROM_PKGCONFIG
    "${CMAKE_INSTALL_PREFIX}/${ZAV_INSTALL_PKGCONFIGDIR}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" ZAV_PREFIX_FROM_PKGCONFIG "${ZAV_PREFIX_FROM_PKGCONFIG}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/zav_ml.pc.in" "${PROJECT_BINARY_DIR}/zav_ml.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zav_ml.pc" DESTINATION "${ZAV_INSTALL_PKGCONFIGDIR}" COMPONENT Development)

# Debian packages have a file of another form for it.
if(NOT ZAV_DEBIAN_PACKAGES)
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT Runtime)
endif()
