// SPDX-License-Identifier: Apache-2.0
#include "frontend/zorPreMain.h"
#include "frontend/zorb2v.h"
#include "logging/CZorLog.h"
#include "platform/processSetup.h"

#include <new>

#include <sys/stat.h>

int main(int argc, char** argv) {
    // First of all, so that the log files are subject to it.
    umask(S_IWGRP | S_IWOTH);
    Zorvane::SetUpProcess();
    std::set_new_handler(Zorvane::zorNewHandler);
    return Zorvane::ZorPreMain(argc, argv, Zorvane::ZOR_PRODUCT_ID, Zorvane::ZOR_COMMAND_ORIGINATOR,
                               Zorvane::zormain);
}
