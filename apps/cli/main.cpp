// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/program.h"

int main(int argc, char** argv) {
    return cli::RunProgram(argc, argv);
}
