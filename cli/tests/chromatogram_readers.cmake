# SPDX-License-Identifier: Apache-2.0
#
# Tests of the readers of chromatograms; what a build leaves out has tests that it says so.

set(reader_tests TargetListTest.cpp XmlTextTest.cpp)
if(ZAV_READS_GZIP)
    list(APPEND reader_tests ChromatogramTextReaderTest.cpp MzMlText.cpp)
else()
    list(APPEND reader_tests NoGzipReaderTest.cpp)
endif()
if(ZAV_READS_MZML)
    target_sources(zav_observed_spectrum_tests PRIVATE MzMlText.cpp)
    if(ZAV_READS_GZIP)
        list(APPEND reader_tests MzMlChromatogramTest.cpp MzMlExtractionTest.cpp)
    endif()
else()
    list(APPEND reader_tests NoMzMlChromatogramTest.cpp)
endif()
zav_add_test(zav_chromatogram_reader_tests SOURCES ${reader_tests} LIBRARIES zav_program)
