# SPDX-License-Identifier: Apache-2.0
#
# Tests of the digestion for spectral libraries.

zav_add_test(zav_digestion_tests
    SOURCES
        DecoyGenerationTest.cpp
        DecoyMakerTest.cpp
        DigesterTest.cpp
        DigestionFuzzTest.cpp
        EnzymeTest.cpp
        FastaReaderTest.cpp
        PeptideDigestTest.cpp
        PeptideOrderTest.cpp
        PeptideTableReaderTest.cpp
        ProteinTableTest.cpp
        RecordSorterTest.cpp
    LIBRARIES zav_program)
