# SPDX-License-Identifier: Apache-2.0
#
# The commands on chromatograms, zav limits and zav split, and what they share with other commands that work on many
# threads.

find_package(Threads REQUIRED)
target_include_directories(zav_program PUBLIC src/chromatograms)
target_link_libraries(zav_program PUBLIC Threads::Threads)
target_sources(zav_program PRIVATE
    src/RuntimeThreads.cpp
    src/arguments/LimitsArguments.cpp
    src/arguments/SplitArguments.cpp
    src/arguments/TraceArguments.cpp
    src/chromatograms/LimitsAnalysis.cpp
    src/chromatograms/LimitsCommand.cpp
    src/chromatograms/NetworkSize.cpp
    src/chromatograms/PeakMeasures.cpp
    src/chromatograms/SplitAnalysis.cpp
    src/chromatograms/SplitCommand.cpp
    src/chromatograms/TraceAnalysis.cpp
    src/chromatograms/TraceCommand.cpp
    src/chromatograms/TraceJsonWriter.cpp
    src/chromatograms/TraceOutput.cpp
    src/chromatograms/TracePictures.cpp
    src/chromatograms/TraceRowWriter.cpp
    src/chromatograms/TraceStream.cpp
    src/chromatograms/TraceTable.cpp
    src/chromatograms/TraceTableWriter.cpp
    src/chromatograms/TraceTally.cpp
    src/chromatograms/TraceTsvWriter.cpp
    src/chromatograms/TraceWriter.cpp)
set_property(SOURCE src/chromatograms/TraceJsonWriter.cpp APPEND PROPERTY
    COMPILE_DEFINITIONS ZAV_VERSION="${PROJECT_VERSION}")
