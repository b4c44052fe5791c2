# SPDX-License-Identifier: Apache-2.0
#
# The command zav library.

target_include_directories(zav_program PUBLIC src/library)
target_sources(zav_program PRIVATE
    src/Interruption.cpp)
