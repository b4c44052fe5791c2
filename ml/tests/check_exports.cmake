# SPDX-License-Identifier: Apache-2.0
#
# cmake -DNM=<nm> -DLIBRARY=<libzav_ml> -P check_exports.cmake: fails unless the library exports each promised class,
# and nothing but their own members.

cmake_minimum_required(VERSION 3.25)
set(CLASSES
    MsMsFragmentationPredictomatic
    PeptidoformSpectrumPredictor
    RetentionTimeCalibration
    RetentionTimePredictor
    TensorFlowRuntime
    XicBaselineLimitsDetector
    XicPeakSplitter)

execute_process(COMMAND "${NM}" --dynamic --demangle --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," output "${output}")
string(REGEX REPLACE "\n$" "" output "${output}")
string(REPLACE "\n" ";" lines "${output}")

foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+ . " "" symbol "${line}")
    if(NOT symbol MATCHES "^zav::([A-Za-z]+)::~?([A-Za-z0-9]+)\\(" OR NOT CMAKE_MATCH_1 IN_LIST CLASSES)
        message(SEND_ERROR "${symbol} is exported")
    endif()
    list(APPEND found "${CMAKE_MATCH_1}")
endforeach()

foreach(class IN LISTS CLASSES)
    if(NOT class IN_LIST found)
        message(SEND_ERROR "zav::${class} is not exported")
    endif()
endforeach()
