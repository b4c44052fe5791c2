# SPDX-License-Identifier: Apache-2.0
#
# Debian packages, made by `cpack -G DEB` in a build that was configured with ZAV_DEBIAN_PACKAGES and the prefix /usr;
# scripts/package does that. docs/packages.md says what each package holds.
#
# ZavDebian is included before the first install rule and sets what they depend on; zav_debian_packages() is called
# after the last one.

if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    message(FATAL_ERROR "ZAV_DEBIAN_PACKAGES needs CMAKE_INSTALL_PREFIX=/usr")
endif()
if(ZAV_TENSORFLOW_DIR)
    message(FATAL_ERROR "a package must not name a folder of this machine: leave ZAV_TENSORFLOW_DIR empty")
endif()

# The system's search finds the libraries, and TfApi looks for the folder `zav` beside libzav_ml itself.
set(CMAKE_SKIP_INSTALL_RPATH ON)
# The build ID of a file covers the search path of the build, which therefore must not name the folder of the build.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

set(ZAV_DEBIAN_MAINTAINER "The zav project <zav@example.org>" CACHE STRING "Maintainer that the Debian packages name")

# zav_debian_files(<component> <package>): the copyright and the changelog of a package.
function(zav_debian_files component package)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/copyright" "${PROJECT_BINARY_DIR}/debian/changelog.gz"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
    file(GLOB overrides "${PROJECT_SOURCE_DIR}/cmake/debian/${package}.lintian-overrides")
    if(overrides)
        install(FILES ${overrides}
            DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME ${package} COMPONENT ${component})
    endif()
endfunction()

macro(zav_debian_packages)
    set(soversion "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
    set(library_package "libzav-ml${soversion}")

    string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${PROJECT_BINARY_DIR}/debian/changelog" @ONLY)
    execute_process(COMMAND gzip -9nf changelog
        WORKING_DIRECTORY "${PROJECT_BINARY_DIR}/debian" COMMAND_ERROR_IS_FATAL ANY)
    zav_debian_files(Runtime zav)
    zav_debian_files(Libraries ${library_package})
    zav_debian_files(Development libzav-ml-dev)

    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGE_NAME zav)
    set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
    set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
    set(CPACK_PACKAGE_CONTACT "${ZAV_DEBIAN_MAINTAINER}")
    set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
    set(CPACK_OUTPUT_FILE_PREFIX "${PROJECT_BINARY_DIR}/packages")
    set(CPACK_COMPONENTS_ALL Runtime Libraries Development)
    set(CPACK_DEB_COMPONENT_INSTALL ON)
    # With debug packages, CPack moves the symbols there itself.
    if(NOT ZAV_DEBIAN_DEBUG_PACKAGES)
        set(CPACK_STRIP_FILES ON)
    endif()
    set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ZAV_DEBIAN_MAINTAINER}")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
        "${PROJECT_BINARY_DIR}/common/stable" "${PROJECT_BINARY_DIR}/common/core_mini" "${PROJECT_BINARY_DIR}/ml")
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
    set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ${ZAV_DEBIAN_DEBUG_PACKAGES})

    set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME zav)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
    # `zav runtime install` needs them; a machine with a TensorFlow of its own does not.
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "python3, python3-pip, ca-certificates, fonts-dejavu-core")
    set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "predictions for mass-spectrometry proteomics
Predicts the spectra and the retention times of peptides with trained neural
networks, makes spectral libraries of proteins, and finds and measures the
peaks of chromatograms.

The networks are part of this package. They run on the TensorFlow C library,
which Debian does not have: 'zav runtime install' fetches it.")

    set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME ${library_package})
    set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
    set(CPACK_COMPONENT_LIBRARIES_DESCRIPTION "predictors for mass-spectrometry proteomics, libraries
Predictors of the spectra and the retention times of peptides, and of the
limits of peaks in chromatograms. They run trained neural networks on the
TensorFlow C library, which they open at run time.

This package holds the shared libraries.")

    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzav-ml-dev)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION}), qt6-base-dev (>= 6.4)")
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS zav)
    set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "predictors for mass-spectrometry proteomics, development files
Predictors of the spectra and the retention times of peptides, and of the
limits of peaks in chromatograms. They run trained neural networks on the
TensorFlow C library, which they open at run time.

This package holds the headers, the CMake package zav_ml and the file for
pkg-config. The networks are part of the package zav.")
    include(CPack)
endmacro()
