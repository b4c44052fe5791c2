# SPDX-License-Identifier: Apache-2.0

# The prediction of retention times and its calibration, on the real runtime.
zav_add_test(ml_retention_tests
    SOURCES
        MonotoneMapTest.cpp
        RetentionTimeCalibrationTest.cpp
        RetentionTimeFitTest.cpp
        RetentionTimePredictorTest.cpp
        RobustStatisticsTest.cpp
        ShippedRetentionTimeTest.cpp
    LIBRARIES zav_ml_static zav_ml_test_support Eigen3::Eigen)
target_compile_definitions(ml_retention_tests PRIVATE ZAV_MODELS_DIR="${PROJECT_SOURCE_DIR}/models")
