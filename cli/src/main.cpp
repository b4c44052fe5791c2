// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

int main(int argc, char **argv)
{
    return zav::runProgram(argc, argv);
}
