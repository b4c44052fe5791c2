# SPDX-License-Identifier: Apache-2.0
#
# Tests of the formats of spectral libraries.

set(library_format_tests
    LibraryFormatTest.cpp
    TextBufferTest.cpp)
if(ZAV_WRITES_SQLITE)
    list(APPEND library_format_tests SqliteLibraryTest.cpp)
else()
    list(APPEND library_format_tests NoSqliteLibraryTest.cpp)
endif()
zav_add_test(zav_library_format_tests SOURCES ${library_format_tests} LIBRARIES zav_program)

# Writes the libraries that scripts/readback has other programs read.
if(ZAV_WRITES_SQLITE)
    add_executable(library_fixture readback/LibraryFixture.cpp)
    target_link_libraries(library_fixture PRIVATE zav_program nlohmann_json::nlohmann_json)
    target_compile_options(library_fixture PRIVATE ${ZAV_WARNING_FLAGS})
endif()
