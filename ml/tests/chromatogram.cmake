# SPDX-License-Identifier: Apache-2.0
zav_add_test(ml_chromatogram_tests
    SOURCES
        XicBaselineLimitsDetectorComparisonTest.cpp
        XicBaselineLimitsDetectorHostileTest.cpp
        XicBaselineLimitsDetectorLifecycleTest.cpp
        XicBaselineLimitsDetectorTest.cpp
        XicHostileSizeTest.cpp
        XicInputVectorTest.cpp
        XicPeakSplitterHostileTest.cpp
        XicPeakSplitterTest.cpp
        XicPeakWalkTest.cpp
    LIBRARIES zav_ml_static zav_ml_test_support Eigen3::Eigen)
