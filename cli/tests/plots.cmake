# SPDX-License-Identifier: Apache-2.0
#
# Tests of the readers, the comparison and the pictures; what a build leaves out has tests that it says so.

set(spectrum_tests
    PeakTextReaderTest.cpp
    PeptideMassesTest.cpp
    SpectrumComparisonTest.cpp)
if(ZAV_READS_MZML)
    list(APPEND spectrum_tests MzMlReaderTest.cpp)
else()
    list(APPEND spectrum_tests NoMzMlReaderTest.cpp)
endif()
if(NOT ZAV_DRAWS_PICTURES)
    list(APPEND spectrum_tests NoPicturesTest.cpp)
endif()
zav_add_test(zav_observed_spectrum_tests SOURCES ${spectrum_tests} LIBRARIES zav_program)

if(ZAV_DRAWS_PICTURES)
    zav_add_test(zav_plot_tests
        SOURCES
            ChromatogramPlotTest.cpp
            ChromatogramTraceTest.cpp
            PlotLayoutTest.cpp
            SpectrumPlotTest.cpp
        LIBRARIES zav_program Qt6::Gui)
    zav_add_test(zav_fontless_plot_tests SOURCES FontlessPlotTest.cpp LIBRARIES zav_program Qt6::Gui)
endif()
