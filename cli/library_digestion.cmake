# SPDX-License-Identifier: Apache-2.0
#
# The peptides of a spectral library: from proteins or a list to the ordered set with decoys. Without zlib (zlib1g-dev)
# the program reads no compressed FASTA file, and says so.

target_include_directories(zav_program PUBLIC src/library/digestion)
target_sources(zav_program PRIVATE
    src/library/digestion/DecoyGenerator.cpp
    src/library/digestion/DecoyMaker.cpp
    src/library/digestion/Digester.cpp
    src/library/digestion/DigestionOptions.cpp
    src/library/digestion/Enzyme.cpp
    src/library/digestion/FastaHeader.cpp
    src/library/digestion/FastaReader.cpp
    src/library/digestion/GzipLineReader.cpp
    src/library/digestion/PeptideCodec.cpp
    src/library/digestion/PeptideCollector.cpp
    src/library/digestion/PeptideCursor.cpp
    src/library/digestion/PeptideDigest.cpp
    src/library/digestion/PeptideMerge.cpp
    src/library/digestion/PeptidePages.cpp
    src/library/digestion/PeptideSet.cpp
    src/library/digestion/PeptideTableReader.cpp
    src/library/digestion/PeptideUniter.cpp
    src/library/digestion/ProteinTable.cpp
    src/library/digestion/RecordSorter.cpp
    src/library/digestion/RecordStream.cpp
    src/library/digestion/ResidueAlphabet.cpp
    src/library/digestion/RunMerger.cpp
    src/library/digestion/TemporaryStore.cpp)

find_package(ZLIB QUIET)
if(TARGET ZLIB::ZLIB)
    message(STATUS "zav reads compressed FASTA files: zlib found")
    set(ZAV_READS_GZIP TRUE)
    target_sources(zav_program PRIVATE src/library/digestion/GzipDecoder.cpp)
    target_link_libraries(zav_program PRIVATE ZLIB::ZLIB)
else()
    message(STATUS "zav reads no compressed FASTA files: zlib (zlib1g-dev) is missing")
    set(ZAV_READS_GZIP FALSE)
    target_sources(zav_program PRIVATE src/library/digestion/NoGzipDecoder.cpp)
endif()

if(ZAV_BUILD_BENCHMARKS)
    zav_add_benchmark(digestion_benchmark SOURCES benchmarks/DigestionBenchmark.cpp LIBRARIES zav_program)
endif()
