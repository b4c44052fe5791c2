# SPDX-License-Identifier: Apache-2.0
#
# zav_add_library(<name>
#     EXPORT_NAME <name behind zav::>
#     SOURCES <file>...            # relative to the calling folder
#     SOURCE_DIRS <folder>...      # of the private headers
#     LAYERS <zav library>...      # the layers directly below
#     PRIVATE_LIBRARIES <target>...)
#
# Compiles the sources once and links them twice: into the shared library <name>, and into the static twin
# <name>_static, which tests of private parts link. The headers in include/zav are installed and promised to hosts. A
# layer sees its own folders (include and SOURCE_DIRS) and those of the layers below it.

set(ZAV_WARNING_FLAGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    $<$<BOOL:${ZAV_WARNINGS_AS_ERRORS}>:-Werror>)

# With these a compiler cache can tell one precompiled header from another.
set(ZAV_PRECOMPILE_FLAGS
    $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")

# Old-style DT_RPATH: glibc ignores DT_RUNPATH when Qt opens a library for us.
set(ZAV_RPATH_LINK_OPTIONS $<$<PLATFORM_ID:Linux>:-Wl,--disable-new-dtags>)

function(zav_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "EXPORT_NAME" "SOURCES;SOURCE_DIRS;LAYERS;PRIVATE_LIBRARIES")
    string(TOUPPER "${name}" upper)

    add_library(${name}_objects OBJECT ${arg_SOURCES})
    list(PREPEND arg_SOURCE_DIRS include)
    list(TRANSFORM arg_SOURCE_DIRS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    list(TRANSFORM arg_LAYERS APPEND _objects OUTPUT_VARIABLE lower_objects)
    set(include_dirs ${arg_SOURCE_DIRS})
    foreach(lower IN LISTS lower_objects)
        get_target_property(lower_dirs ${lower} ZAV_INCLUDE_DIRS)
        list(APPEND include_dirs ${lower_dirs})
    endforeach()
    list(REMOVE_DUPLICATES include_dirs)
    set_target_properties(${name}_objects PROPERTIES ZAV_INCLUDE_DIRS "${include_dirs}")
    target_include_directories(${name}_objects PRIVATE ${include_dirs})
    target_compile_definitions(${name}_objects PRIVATE ${upper}_BUILD QT_NO_KEYWORDS)
    target_compile_options(${name}_objects PRIVATE ${ZAV_WARNING_FLAGS})
    zav_precompile(${name}_objects)
    target_link_libraries(${name}_objects PRIVATE Qt6::Core ${arg_PRIVATE_LIBRARIES})

    add_library(${name} SHARED $<TARGET_OBJECTS:${name}_objects>)
    add_library(zav::${arg_EXPORT_NAME} ALIAS ${name})
    target_link_libraries(${name} PUBLIC Qt6::Core ${arg_LAYERS})
    target_include_directories(${name} INTERFACE
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${name} INTERFACE cxx_std_17)
    target_link_options(${name} PRIVATE ${ZAV_RPATH_LINK_OPTIONS})
    set_target_properties(${name} PROPERTIES
        EXPORT_NAME ${arg_EXPORT_NAME}
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        INSTALL_RPATH "$ORIGIN")

    add_library(${name}_static STATIC $<TARGET_OBJECTS:${name}_objects>)
    list(TRANSFORM arg_LAYERS APPEND _static OUTPUT_VARIABLE lower_static)
    target_link_libraries(${name}_static PUBLIC Qt6::Core ${lower_static} ${CMAKE_DL_LIBS})
    target_include_directories(${name}_static INTERFACE ${include_dirs})
    set_target_properties(${name}_static PROPERTIES LINKER_LANGUAGE CXX)

    install(TARGETS ${name} EXPORT zav_mlTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Libraries NAMELINK_COMPONENT Development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Libraries
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
    install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
endfunction()

# zav_add_test(<name> SOURCES <file>... LIBRARIES <target>...): one GoogleTest program, each suite of its tests a ctest. A
# process for each test would load TensorFlow a thousand times.
function(zav_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS ZAV_TEST_DATA_DIR="${CMAKE_CURRENT_SOURCE_DIR}/data")
    target_compile_options(${name} PRIVATE ${ZAV_WARNING_FLAGS})
    zav_precompile(${name} TEST)
    zav_list_suites(suites ${arg_SOURCES})
    foreach(suite IN LISTS suites)
        # The patterns of a plain suite, of one with parameters, and of one with types.
        add_test(NAME ${name}.${suite}
            COMMAND ${name} "--gtest_filter=${suite}.*:*/${suite}.*:${suite}/?.*" --gtest_brief=1)
    endforeach()
    list(TRANSFORM suites PREPEND ${name}.)
    set_tests_properties(${suites} PROPERTIES TIMEOUT 900 FAIL_REGULAR_EXPRESSION "0 tests from 0 test suites")
endfunction()

# zav_list_suites(<variable> <source>...): the test suites that the sources define.
function(zav_list_suites variable)
    set(suites)
    foreach(source IN LISTS ARGN)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
        file(STRINGS "${source}" lines REGEX "^(TYPED_)?TEST(_F|_P)?\\(")
        list(TRANSFORM lines REPLACE "^[A-Z_]+\\(([A-Za-z0-9]+).*" "\\1")
        list(APPEND suites ${lines})
    endforeach()
    list(REMOVE_DUPLICATES suites)
    set(${variable} ${suites} PARENT_SCOPE)
endfunction()

# zav_add_benchmark(<name> SOURCES <file>... LIBRARIES <target>...): a Google Benchmark program.
function(zav_add_benchmark name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} benchmark::benchmark)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
    target_compile_options(${name} PRIVATE ${ZAV_WARNING_FLAGS})
    zav_precompile(${name})
endfunction()
