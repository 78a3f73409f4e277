// SPDX-License-Identifier: Apache-2.0
#include "frontend/zorPreMain.h"
#include "info/commandLine.h"
#include "logging/CZorLog.h"
#include "platform/processSetup.h"

#include <sys/stat.h>

int main(int argc, char** argv) {
    umask(S_IWGRP | S_IWOTH);
    Zorvane::SetUpProcess();
    return Zorvane::ZorPreMain(argc, argv, Zorvane::ZOR_PRODUCT_ID, Zorvane::ZOR_COMMAND_ORIGINATOR,
                               Zorvane::runZorinfo);
}
