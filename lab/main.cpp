// SPDX-License-Identifier: Apache-2.0
#include "lab/commandLine.h"
#include "platform/processSetup.h"

#include <clocale>

#include <sys/stat.h>

int main(int argc, char** argv) {
    // A lab is its owner's: its rows may be a copy of a real site's.
    ::umask(S_IRWXG | S_IRWXO);
    Zorvane::SetUpProcess();
    // Names go from documents to the database and back in one encoding, whatever the terminal has.
    std::setlocale(LC_ALL, "C.UTF-8");
    return Zorvane::runZorlab(argc, argv);
}
