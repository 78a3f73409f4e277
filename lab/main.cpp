// SPDX-License-Identifier: Apache-2.0
#include "lab/commandLine.h"

#include <clocale>

int main(int argc, char** argv) {
    // Names go from documents to the database and back in one encoding, whatever the terminal has.
    std::setlocale(LC_ALL, "C.UTF-8");
    return Zorvane::runZorlab(argc, argv);
}
