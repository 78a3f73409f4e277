// SPDX-License-Identifier: Apache-2.0
#include "ops/zoropNames.h"

#include "logging/Trace.h"
#include "platform/returnCodes.h"

#include <algorithm>
#include <iterator>
#include <span>

#include <strings.h>

namespace Zorvane {

namespace {

struct NamedValue {
    int value;
    const char* name;
};

// In lookup order.
constexpr NamedValue operations[] = {
    {ZOROP_CREATE, "create"},
    {ZOROP_VERIFY, "verify"},
    {ZOROP_ALLOCATE, "allocate"},
    {ZOROP_DEALLOCATE, "deallocate"},
    {ZOROP_DELETE, "delete"},
    {ZOROP_COPY, "copy"},
    {ZOROP_PULL, "pull"},
    {ZOROP_IMPORT, "import"},
    {ZOROP_PREPARE, "prepare"},
    {ZOROP_QUERY, "query"},
    {ZOROP_TRANSACTION, "transaction"},
    {ZOROP_INSERT, "insert"},
    {ZOROP_UPDATE, "update"},
    {ZOROP_DESTROY, "destroy"},
    {ZOROP_QUERYTREE, "querytree"},
    {ZOROP_CANCEL, "cancel"},
    {ZOROP_PUSH, "push"},
    {ZOROP_COMPLETE, "complete"},
    {ZOROP_RETRIEVE, "retrieve"},
    {ZOROP_CHANGE, "change"},
    {ZOROP_LIST, "list"},
    {ZOROP_MOUNTWIM, "mountwim"},
    {ZOROP_UNMOUNTWIM, "unmountwim"},
    {ZOROP_EXPORTWIM, "exportwim"},
    {ZOROP_DOB2V, "dob2v"},
    {ZOROP_VERIFYB2V, "verifyb2v"},
    {ZOROP_RESTORE, "restore"},
};
static_assert(std::size(operations) == 27);

constexpr NamedValue resources[] = {
    {ZOROP_DB, "database"},
    {ZOROP_CONFIG, "config"},
    {ZOROP_SRT, "srt"},
    {ZOROP_PACKAGE, "package"},
    {ZOROP_BI, "bi"},
    {ZOROP_LOG, "log"},
    {ZOROP_MESSAGE, "message"},
    {ZOROP_CLIENT, "client"},
    {ZOROP_RESTORETASK, "restoretask"},
    {ZOROP_DISCOVERTASK, "discovertask"},
    {ZOROP_RESTORETASKLOG, "restoretasklog"},
    {ZOROP_DISCOVERTASKLOG, "discovertasklog"},
    {ZOROP_BOOTSERVER, "bootserver"},
    {ZOROP_PROCEDURE, "procedure"},
    {ZOROP_INFO, "info"},
    {ZOROP_ARCHIVEDBOOTFLOPPY, "archivedbootfloppy"},
    {ZOROP_MASTERSERVER, "masterserver"},
    {ZOROP_B2VRESTORETASK, "b2vrestoretask"},
    {ZOROP_B2VRESTORETASKLOG, "b2vrestoretasklog"},
    {ZOROP_VEPROFILE, "veprofile"},
    {ZOROP_CONFIGLIST, "configlist"},
};
static_assert(std::size(resources) == 21, "all but the two that have no name");

int lookUp(std::span<const NamedValue> table, const char* name, int* value) {
    if (!name || !value)
        return ZOR_FAIL;
    const auto found = std::ranges::find_if(
        table, [name](const NamedValue& row) { return ::strcasecmp(row.name, name) == 0; });
    if (found == table.end())
        return ZOR_FAIL;
    *value = found->value;
    return ZOR_SUCCESS;
}

std::string nameOf(std::span<const NamedValue> table, int value) {
    const auto found = std::ranges::find(table, value, &NamedValue::value);
    return found == table.end() ? std::to_string(value) : found->name;
}

} // namespace

int LookupZorOperationName(const char* name, int* value) {
    Trace trace(g_libLog, "zoropNames:LookupZorOperationName()", ", name=", orNull(name));
    const int rc = lookUp(operations, name, value);
    return trace.leave(rc, ", return rc=", rc);
}

int LookupZorResourceName(const char* name, int* value) {
    Trace trace(g_libLog, "zoropNames:LookupZorResourceName()", ", name=", orNull(name));
    const int rc = lookUp(resources, name, value);
    return trace.leave(rc, ", return rc=", rc);
}

std::string zorOperationName(int operation) {
    return nameOf(operations, operation);
}

std::string zorResourceName(int resource) {
    return nameOf(resources, resource);
}

} // namespace Zorvane
