# SPDX-License-Identifier: Apache-2.0
#
# Tests of the commands on chromatograms, and of what they share with other commands that work on many threads.

zav_add_test(zav_pipeline_tests SOURCES OrderedPipelineTest.cpp LIBRARIES zav_program)

zav_add_test(zav_chromatogram_tests
    SOURCES
        NetworkSizeTest.cpp
        PeakMeasuresTest.cpp
        TraceTallyTest.cpp
        TraceWriterTest.cpp
    LIBRARIES zav_program nlohmann_json::nlohmann_json)
