# SPDX-License-Identifier: Apache-2.0
#
# The formats of spectral libraries.

target_include_directories(zav_program PUBLIC src/library/formats)
target_sources(zav_program PRIVATE
    src/CysteineModification.cpp
    src/TextBuffer.cpp
    src/library/formats/LibraryFileKind.cpp
    src/library/formats/LibraryFormat.cpp
    src/library/formats/MgfLibraryFormat.cpp
    src/library/formats/MspLibraryFormat.cpp
    src/library/formats/MzSpecLibFormat.cpp
    src/library/formats/PeptideNotation.cpp
    src/library/formats/TsvLibraryFormat.cpp
    src/writers/SpectrumEntry.cpp)

# DLIB and BLIB are SQLite databases. Without SQLite or zlib the program writes neither, and says so.
find_package(SQLite3 QUIET)
find_package(ZLIB QUIET)
if(SQLite3_FOUND AND ZLIB_FOUND)
    message(STATUS "zav writes DLIB and BLIB libraries: SQLite and zlib found")
    set(ZAV_WRITES_SQLITE TRUE)
    target_sources(zav_program PRIVATE
        src/library/formats/BlibLibrary.cpp
        src/library/formats/BlibReader.cpp
        src/library/formats/DlibLibrary.cpp
        src/library/formats/EncodedEntry.cpp
        src/library/formats/PeakArrays.cpp
        src/library/formats/SqliteDatabase.cpp
        src/library/formats/SqliteLibrary.cpp)
    target_link_libraries(zav_program PRIVATE SQLite::SQLite3 ZLIB::ZLIB)
else()
    message(STATUS "zav writes no DLIB and BLIB libraries: SQLite (libsqlite3-dev) or zlib (zlib1g-dev) is missing")
    set(ZAV_WRITES_SQLITE FALSE)
    target_sources(zav_program PRIVATE src/library/formats/NoSqliteLibrary.cpp)
endif()

if(ZAV_BUILD_BENCHMARKS AND ZAV_WRITES_SQLITE)
    zav_add_benchmark(library_format_benchmark SOURCES benchmarks/LibraryFormatBenchmark.cpp LIBRARIES zav_program)
endif()
