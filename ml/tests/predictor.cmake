# SPDX-License-Identifier: Apache-2.0

# The steps of the fragmentation prediction, on the real runtime.
zav_add_test(ml_fragmentation_tests
    SOURCES
        FragmentBatchTest.cpp
        FragmentLadderTest.cpp
        FragmentSpectrumTest.cpp
        FragmentationComparisonTest.cpp
        FragmentationLifecycleTest.cpp
        FragmentationPredictionTest.cpp
        IndependentObjectsTest.cpp
        PeptideVocabularyTest.cpp
        ShippedFragmentationTest.cpp
        support/FragmentationNetwork.cpp
        support/NaiveSpectrum.cpp
    LIBRARIES zav_ml_static zav_ml_test_support)
target_compile_definitions(ml_fragmentation_tests PRIVATE ZAV_MODELS_DIR="${PROJECT_SOURCE_DIR}/models")

# The prediction of peptidoforms, on networks that the tests build and on the one that is shipped.
zav_add_test(ml_peptidoform_spectrum_tests
    SOURCES
        PeptidoformIonsTest.cpp
        PeptidoformSpectrumPredictorTest.cpp
        ShippedPeptidoformSpectrumTest.cpp
        support/NaiveSpectrum.cpp
        support/PeptidoformNetwork.cpp
    LIBRARIES zav_ml_static zav_ml_test_support)
target_compile_definitions(ml_peptidoform_spectrum_tests PRIVATE ZAV_MODELS_DIR="${PROJECT_SOURCE_DIR}/models")
