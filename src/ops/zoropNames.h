// SPDX-License-Identifier: Apache-2.0
// The vocabulary of operations and resources: shared with the recovery daemons, which see the numbers.
#pragma once

#include <string>

namespace Zorvane {

enum ZorOperation : int {
    ZOROP_CREATE = 1,
    ZOROP_VERIFY = 2,
    ZOROP_ALLOCATE = 3,
    ZOROP_DEALLOCATE = 4,
    ZOROP_DELETE = 5,
    ZOROP_COPY = 6,
    ZOROP_PULL = 7,
    ZOROP_IMPORT = 8,
    ZOROP_PREPARE = 9,
    ZOROP_QUERY = 10,
    ZOROP_TRANSACTION = 11,
    ZOROP_INSERT = 12,
    ZOROP_UPDATE = 13,
    ZOROP_DESTROY = 14,
    ZOROP_QUERYTREE = 15, ///< a name without a handler, as are "cancel" and "list"
    ZOROP_CANCEL = 16,
    ZOROP_PUSH = 17,
    ZOROP_COMPLETE = 18,
    ZOROP_RETRIEVE = 19,
    ZOROP_CHANGE = 20,
    ZOROP_LIST = 21,
    ZOROP_MOUNTWIM = 22,
    ZOROP_UNMOUNTWIM = 23,
    ZOROP_EXPORTWIM = 24,
    ZOROP_DOB2V = 25,
    ZOROP_VERIFYB2V = 26,
    ZOROP_RESTORE = 27,
};

enum ZorResource : int {
    ZOROP_LOG = 1,
    ZOROP_MESSAGE = 2,
    ZOROP_INFO = 3,
    ZOROP_CONFIG = 4,
    ZOROP_SRT = 5,
    ZOROP_BI = 6,
    ZOROP_PROCEDURE = 7,
    ZOROP_PACKAGE = 8,
    ZOROP_CLIENT = 9,
    ZOROP_DB = 10, ///< named "database"
    ZOROP_RESTORETASK = 11,
    ZOROP_RESTORETASKLOG = 12,
    ZOROP_DISCOVERTASK = 13,
    ZOROP_DISCOVERTASKLOG = 14,
    ZOROP_BOOTSERVER = 15,
    ZOROP_ERROR = 16, ///< an error report; has no name
    ZOROP_ARCHIVEDBOOTFLOPPY = 17,
    ZOROP_MASTERSERVER = 18,
    ZOROP_WIM = 19, ///< has no name
    ZOROP_B2VRESTORETASK = 20,
    ZOROP_B2VRESTORETASKLOG = 21,
    ZOROP_VEPROFILE = 22,
    ZOROP_CONFIGLIST = 23,
};

/// From name to value, without regard to case: ZOR_SUCCESS, or ZOR_FAIL for a name that is unknown or null,
/// or for a null place.
int LookupZorOperationName(const char* name, int* value);
int LookupZorResourceName(const char* name, int* value);

/// From value to name, for traces; the number itself where there is no name.
std::string zorOperationName(int operation);
std::string zorResourceName(int resource);

} // namespace Zorvane
