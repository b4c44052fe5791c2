# SPDX-License-Identifier: Apache-2.0
#
# The parts of the program that read chromatograms. Two needs are optional: without ProteoWizard's library (looked for in
# plots.cmake, which has to come first) no mzML is read, without zlib (library_digestion.cmake) nothing gzipped; the
# program says so.

target_sources(zav_program PRIVATE
    src/readers/ByteStream.cpp
    src/readers/ChromatogramJsonLines.cpp
    src/readers/ChromatogramSource.cpp
    src/readers/ChromatogramTable.cpp
    src/readers/ExtractedTraces.cpp
    src/readers/LineStream.cpp
    src/readers/MzMlElements.cpp
    src/readers/TableHeading.cpp
    src/readers/TargetList.cpp
    src/readers/XmlTagStream.cpp
    src/readers/XmlText.cpp)

if(ZAV_READS_MZML)
    target_sources(zav_program PRIVATE
        src/readers/MzMlArrays.cpp
        src/readers/MzMlChromatograms.cpp
        src/readers/MzMlExtraction.cpp
        src/readers/ProteoWizard.cpp)
else()
    target_sources(zav_program PRIVATE src/readers/NoMzMlChromatograms.cpp)
endif()
