# SPDX-License-Identifier: Apache-2.0
#
# Tests of the digestion for spectral libraries.

zav_add_test(zav_digestion_tests
    SOURCES
        DecoyMakerTest.cpp
        DigesterTest.cpp
        EnzymeTest.cpp
        FastaReaderTest.cpp
        PeptideDigestTest.cpp
        PeptideTableReaderTest.cpp
        ProteinTableTest.cpp
        RecordSorterTest.cpp
    LIBRARIES zav_program)
