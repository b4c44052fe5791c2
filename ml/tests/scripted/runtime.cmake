# SPDX-License-Identifier: Apache-2.0

# add_scripted_runtime(<name> <definition>...): the library that stands in for TensorFlow's.
function(add_scripted_runtime name)
    add_library(${name} MODULE "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ScriptedRuntime.cpp")
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/ml/src")
    target_compile_definitions(${name} PRIVATE ${ARGN})
    target_compile_options(${name} PRIVATE ${ZAV_WARNING_FLAGS})
endfunction()
