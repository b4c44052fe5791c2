# SPDX-License-Identifier: Apache-2.0

# What the predictors of peptidoforms share.
zav_add_test(ml_peptidoform_tests
    SOURCES
        PeptidoformRowsTest.cpp
        UntrainedModificationsTest.cpp
    LIBRARIES zav_ml_static zav_ml_test_support)
