# SPDX-License-Identifier: Apache-2.0
#
# The commands on chromatograms, zav limits and zav split, and what they share with other commands that work on many
# threads.

find_package(Threads REQUIRED)
target_link_libraries(zav_program PUBLIC Threads::Threads)
