# SPDX-License-Identifier: Apache-2.0
#
# Tests of the command zav library.

zav_add_test(zav_library_tests SOURCES InterruptionTest.cpp LIBRARIES zav_program)
