# SPDX-License-Identifier: Apache-2.0
#
# Tests of the command zav library.

# Its pieces.
zav_add_test(zav_library_tests
    SOURCES
        InterruptionTest.cpp
        LibraryManifestTest.cpp
        LibraryPredictorTest.cpp
        LibraryShardTest.cpp
        PeakFilterTest.cpp
        Sha256Test.cpp
        TextArenaTest.cpp
    LIBRARIES zav_program)
target_compile_definitions(zav_library_tests PRIVATE ZAV_MODELS="${PROJECT_SOURCE_DIR}/models")

# The command as a user runs it, with the shipped networks.
zav_add_test(zav_library_command_tests
    SOURCES
        LibraryCommandTest.cpp
        LibraryMergeTest.cpp
        LibraryRun.cpp
        ProgramRun.cpp
    LIBRARIES Qt6::Core)
add_dependencies(zav_library_command_tests zav)
target_compile_definitions(zav_library_command_tests PRIVATE
    ZAV_PROGRAM="$<TARGET_FILE:zav>"
    ZAV_MODELS="${PROJECT_SOURCE_DIR}/models"
    ZAV_WRITES_SQLITE=$<BOOL:${ZAV_WRITES_SQLITE}>)
