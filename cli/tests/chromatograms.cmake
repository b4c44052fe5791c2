# SPDX-License-Identifier: Apache-2.0
#
# Tests of the commands on chromatograms, and of what they share with other commands that work on many threads.

zav_add_test(zav_pipeline_tests SOURCES OrderedPipelineTest.cpp LIBRARIES zav_program)

zav_add_test(zav_chromatogram_tests
    SOURCES
        NetworkSizeTest.cpp
        PeakMeasuresTest.cpp
        PredictorPoolTest.cpp
        RuntimeThreadsTest.cpp
        TraceTallyTest.cpp
        TraceWriterTest.cpp
    LIBRARIES zav_program nlohmann_json::nlohmann_json)
target_compile_definitions(zav_chromatogram_tests PRIVATE ZAV_MODELS="${PROJECT_SOURCE_DIR}/models")

# The program itself, run as a user runs it, with the shipped networks.
set(chromatogram_command_tests
    ChromatogramFailureTest.cpp
    LimitsCommandTest.cpp
    ProgramRun.cpp
    SplitCommandTest.cpp)
if(ZAV_READS_MZML)
    list(APPEND chromatogram_command_tests ChromatogramRunTest.cpp MzMlText.cpp)
endif()
if(ZAV_DRAWS_PICTURES)
    list(APPEND chromatogram_command_tests ChromatogramPictureTest.cpp)
else()
    list(APPEND chromatogram_command_tests NoChromatogramPictureTest.cpp)
endif()
zav_add_test(zav_chromatogram_command_tests
    SOURCES ${chromatogram_command_tests}
    LIBRARIES Qt6::Core nlohmann_json::nlohmann_json)
add_dependencies(zav_chromatogram_command_tests zav)
target_compile_definitions(zav_chromatogram_command_tests PRIVATE
    ZAV_PROGRAM="$<TARGET_FILE:zav>"
    ZAV_VERSION="${PROJECT_VERSION}")
