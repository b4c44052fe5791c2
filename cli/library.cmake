# SPDX-License-Identifier: Apache-2.0
#
# The command zav library.

target_include_directories(zav_program PUBLIC src/library)
target_sources(zav_program PRIVATE
    src/Interruption.cpp
    src/arguments/ChargeList.cpp
    src/arguments/LibraryArguments.cpp
    src/library/EntryNumbering.cpp
    src/library/FileDigest.cpp
    src/library/LibraryCommand.cpp
    src/library/LibraryManifest.cpp
    src/library/LibraryMergeCommand.cpp
    src/library/LibraryPredictor.cpp
    src/library/LibrarySettings.cpp
    src/library/LibraryShard.cpp
    src/library/LibraryWriter.cpp
    src/library/PeakFilter.cpp
    src/library/SkippedList.cpp
    src/library/SpectrumMaker.cpp
    src/library/SqliteLibraryWriter.cpp
    src/library/TextArena.cpp
    src/library/TextLibraryWriter.cpp)
set_property(SOURCE src/library/LibrarySettings.cpp APPEND PROPERTY
    COMPILE_DEFINITIONS ZAV_VERSION="${PROJECT_VERSION}")

find_package(OpenSSL QUIET COMPONENTS Crypto)
if(TARGET OpenSSL::Crypto)
    message(STATUS "zav library computes SHA-256 with OpenSSL")
    target_sources(zav_program PRIVATE src/library/Sha256.cpp)
    target_link_libraries(zav_program PRIVATE OpenSSL::Crypto)
else()
    message(STATUS "zav library computes SHA-256 with Qt, slowly: OpenSSL (libssl-dev) is missing")
    target_sources(zav_program PRIVATE src/library/Sha256OfQt.cpp)
endif()
