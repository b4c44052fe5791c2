# SPDX-License-Identifier: Apache-2.0
#
# zav_add_room(<name>
#     SOURCES <file>...       # relative to the calling folder
#     ROOMS <room>...         # the rooms that it uses, all of lower lines
#     LIBRARIES <target>...)  # of other projects, for its own sources only
#
# Adds a room of the program: the static library zav_room_<name>. It sees its own headers, those of the rooms in ROOMS
# and of their rooms, and the installed headers of the libraries. `.ci/check-layers` knows the lines of the rooms.
function(zav_add_room name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;ROOMS;LIBRARIES")
    add_library(zav_room_${name} STATIC ${arg_SOURCES})
    list(TRANSFORM arg_ROOMS PREPEND zav_room_)
    target_include_directories(zav_room_${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(zav_room_${name} PUBLIC zav::ml Qt6::Core ${arg_ROOMS} PRIVATE ${arg_LIBRARIES})
    target_compile_definitions(zav_room_${name} PUBLIC QT_NO_KEYWORDS PRIVATE ZAV_VERSION="${PROJECT_VERSION}")
    target_compile_options(zav_room_${name} PRIVATE ${ZAV_WARNING_FLAGS})
    zav_precompile(zav_room_${name})
endfunction()
