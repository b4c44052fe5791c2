# SPDX-License-Identifier: Apache-2.0
#
# Compiles the headers that nearly every unit includes once, because reading the headers of Qt and GoogleTest takes most
# of the time of compiling a unit. Sources still include what they use, and build without precompiled headers
# (-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON).
#
# zav_precompile(<target> [TEST]): makes the units of a target use the precompiled headers.

# One set for the libraries and the rooms of the program, one for the tests.
add_library(zav_precompiled OBJECT EXCLUDE_FROM_ALL "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
target_link_libraries(zav_precompiled PRIVATE Qt6::Core)
target_precompile_headers(zav_precompiled PRIVATE
    <algorithm> <cmath> <functional> <map> <memory> <optional> <string> <vector>
    <QtCore/QByteArray> <QtCore/QDir> <QtCore/QFile> <QtCore/QFileInfo> <QtCore/QHash> <QtCore/QList> <QtCore/QMap>
    <QtCore/QPointF> <QtCore/QSet> <QtCore/QString> <QtCore/QStringList>)

if(ZAV_BUILD_TESTS)
    add_library(zav_precompiled_test OBJECT EXCLUDE_FROM_ALL "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
    target_link_libraries(zav_precompiled_test PRIVATE Qt6::Core GTest::gtest)
    target_precompile_headers(zav_precompiled_test PRIVATE
        <algorithm> <cmath> <functional> <map> <memory> <optional> <string> <vector>
        <QtCore/QByteArray> <QtCore/QDir> <QtCore/QFile> <QtCore/QFileInfo> <QtCore/QList> <QtCore/QMap>
        <QtCore/QPointF> <QtCore/QProcess> <QtCore/QSet> <QtCore/QString> <QtCore/QStringList>
        <QtCore/QTemporaryDir> <gtest/gtest.h>)
endif()

foreach(donor IN ITEMS zav_precompiled zav_precompiled_test)
    if(TARGET ${donor})
        target_compile_definitions(${donor} PRIVATE QT_NO_KEYWORDS)
        target_compile_options(${donor} PRIVATE ${ZAV_WARNING_FLAGS} ${ZAV_PRECOMPILE_FLAGS})
    endif()
endforeach()

function(zav_precompile target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "TEST" "" "")
    if(arg_TEST)
        target_precompile_headers(${target} REUSE_FROM zav_precompiled_test)
    else()
        target_precompile_headers(${target} REUSE_FROM zav_precompiled)
    endif()
    target_compile_options(${target} PRIVATE ${ZAV_PRECOMPILE_FLAGS})
endfunction()
