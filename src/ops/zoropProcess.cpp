// SPDX-License-Identifier: Apache-2.0
// The dispatcher: which exchange carries an operation on a resource, and which daemon serves it.
#include "logging/Trace.h"
#include "logging/getMessage.h"
#include "model/enumerations.h"
#include "ops/Socket.h"
#include "ops/client_utils.h"
#include "ops/pullRetry.h"
#include "ops/zorop.h"
#include "platform/returnCodes.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <thread>

namespace Zorvane {

namespace {

struct Free {
    void operator()(unsigned char* buffer) const { std::free(buffer); }
};

// One call on its way to its exchange. The accessors give nothing for a parameter that is missing, null or of
// another kind.
struct Call {
    int operation;
    int resource;
    const ZorOpParameters& parameters;
    unsigned char** out;
    int* outLength;
    std::string* errorText;

    template <class T>
    [[nodiscard]] std::optional<T> get(std::size_t index) const {
        const T* value = index < parameters.size() ? std::get_if<T>(&parameters[index]) : nullptr;
        return value ? std::optional(*value) : std::nullopt;
    }

    [[nodiscard]] const char* text(std::size_t index) const {
        return get<const char*>(index).value_or(nullptr);
    }

    [[nodiscard]] const unsigned char* bytes(std::size_t index) const {
        if (const char* asText = text(index))
            return reinterpret_cast<const unsigned char*>(asText);
        return get<const unsigned char*>(index).value_or(nullptr);
    }

    // True if these parameters are texts.
    template <class... Index>
    [[nodiscard]] bool hasTexts(Index... index) const {
        return (text(index) && ...);
    }
};

int method(const Call& call) {
    return ZorOpMethodExecute(call.operation, call.resource, call.parameters, call.errorText);
}

// The caller frees what an operation puts out in one way, whatever exchange it came from: as an array.
int methodWithOutput(const Call& call) {
    unsigned char* output = nullptr;
    int length = 0;
    const int rc =
        ZorOpMethodExecute(call.operation, call.resource, call.parameters, &output, &length, call.errorText);
    const std::unique_ptr<unsigned char, Free> owner(output);
    if (output && call.out) {
        *call.out = new unsigned char[static_cast<std::size_t>(length) + 1];
        std::copy_n(output, static_cast<std::size_t>(length) + 1, *call.out);
        if (call.outLength)
            *call.outLength = length;
    }
    return rc;
}

int database(const Call& call) {
    const auto length = call.get<int>(1);
    if (!call.bytes(0) || !length)
        return ZOROP_INVALID_PARAMS;
    return SendDbRequest(call.operation, call.bytes(0), *length, call.out, call.outLength);
}

int databaseWithoutOutput(const Call& call) {
    return database({call.operation, call.resource, call.parameters, nullptr, nullptr, call.errorText});
}

int log(const Call& call) {
    return call.hasTexts(0) ? SendLogRequest(call.text(0)) : ZOROP_INVALID_PARAMS;
}

int message(const Call& call) {
    if (!call.hasTexts(0, 2) || (!call.text(1) && !call.get<int>(1)))
        return ZOROP_INVALID_PARAMS;
    // The severity is one byte: of a number the lowest, of a text the first.
    const int severity = call.text(1) ? call.text(1)[0] : *call.get<int>(1);
    return SendMsgRequest(call.text(0), static_cast<std::uint8_t>(severity), call.text(2));
}

int errorReport(const Call& call) {
    const auto status = call.get<int>(2);
    const auto newConnection = call.get<int>(3);
    if (!call.hasTexts(0, 1) || !status || !newConnection)
        return ZOROP_INVALID_PARAMS;
    return SendErrRequest(call.text(0), call.text(1), *status, *newConnection != 0);
}

int pull(const Call& call, PacketType type) {
    // A null destination is the standard output.
    if (!call.get<const char*>(0) || !call.hasTexts(1, 2))
        return ZOROP_INVALID_PARAMS;
    return retryPull([&] { return SendPullRequest(call.text(0), call.text(1), call.text(2), type); },
                     [](std::chrono::seconds pause) { std::this_thread::sleep_for(pause); });
}

int pullFile(const Call& call) {
    return pull(call, PULL_REQUEST);
}

int pullProcedure(const Call& call) {
    return pull(call, PULL_PROCEDURE_REQUEST);
}

int import(const Call& call) {
    const auto size = call.get<int>(3);
    const auto newConnection = call.get<int>(4);
    if (!call.hasTexts(0, 1) || !call.bytes(2) || !size || !newConnection)
        return ZOROP_INVALID_PARAMS;
    return SendImportRequest(call.resource, call.text(0), call.text(1), call.bytes(2), *size,
                             *newConnection != 0);
}

int push(const Call& call) {
    const auto size = call.get<int>(4);
    if (!call.hasTexts(0, 1, 2) || !call.bytes(3) || !size)
        return ZOROP_INVALID_PARAMS;
    return SendPushRequest(call.text(0), call.text(1), call.text(2), call.bytes(3), *size);
}

// A value of an enumeration, given as decimal digits or by name.
template <ModelEnum E>
std::optional<int> enumValue(const Call& call, std::size_t index) {
    const auto number = call.get<int>(index);
    if (!number && !call.text(index))
        return std::nullopt;
    const std::string text = number ? std::to_string(*number) : call.text(index);
    if (text.find_first_not_of("0123456789") == std::string::npos)
        return static_cast<int>(
            std::min<long>(std::strtol(text.c_str(), nullptr, 10), std::numeric_limits<int>::max()));
    E value{};
    return static_cast<int>(fromName(&value, text));
}

int change(const Call& call) {
    const auto state = enumValue<TaskState>(call, 1);
    const auto progress = enumValue<TaskSubState>(call, 2);
    if (!state || !progress)
        return ZOROP_INVALID_PARAMS;
    return SendChangeRequest(call.resource, call.text(0), *state, *progress);
}

// An operation and what its trace says of a resource that it does not know. The wim operations borrow the
// text of another one; readers of traces know it by that.
struct Operation {
    int operation;
    const char* badResource;
};
constexpr Operation operations[] = {
    {ZOROP_CREATE, "Bad resource for create operation"},
    {ZOROP_VERIFY, "Bad resource for verify operation"},
    {ZOROP_ALLOCATE, "Bad resource for allocate operation"},
    {ZOROP_DEALLOCATE, "Bad resource for deallocate operation"},
    {ZOROP_DELETE, "Bad resource for delete operation"},
    {ZOROP_COPY, "Bad resource for copy operation"},
    {ZOROP_PULL, "Bad resource for pull operation"},
    {ZOROP_IMPORT, "Bad resource for import operation"},
    {ZOROP_PREPARE, "Bad resource for prepare operation"},
    {ZOROP_QUERY, "Bad resource for query operation"},
    {ZOROP_TRANSACTION, "Bad resource for transaction operation"},
    {ZOROP_INSERT, "Bad resource for insert operation"},
    {ZOROP_UPDATE, "Bad resource for update operation"},
    {ZOROP_PUSH, "Bad resource for push operation"},
    {ZOROP_COMPLETE, "Bad resource for complete operation"},
    {ZOROP_RETRIEVE, "Bad resource for retrieve operation"},
    {ZOROP_CHANGE, "Bad resource for change operation"},
    {ZOROP_MOUNTWIM, "Bad resource for allocate operation"},
    {ZOROP_UNMOUNTWIM, "Bad resource for allocate operation"},
    {ZOROP_EXPORTWIM, "Bad resource for allocate operation"},
    {ZOROP_DOB2V, "Bad resource for b2v operation."},
    {ZOROP_VERIFYB2V, "Bad resource for b2v operation."},
    {ZOROP_RESTORE, "Bad resource for restore operation."},
};

struct Route {
    int operation;
    int resource;
    int (*handler)(const Call& call);
    const char* service = ZOR_SERVICE;
};
constexpr Route routes[] = {
    {ZOROP_CREATE, ZOROP_LOG, &log},
    {ZOROP_CREATE, ZOROP_MESSAGE, &message},
    {ZOROP_CREATE, ZOROP_BI, &method, ZOR_BOOT_SERVICE},
    {ZOROP_CREATE, ZOROP_ERROR, &errorReport},
    {ZOROP_VERIFY, ZOROP_SRT, &method, ZOR_BOOT_SERVICE},
    {ZOROP_VERIFY, ZOROP_BI, &method, ZOR_BOOT_SERVICE},
    {ZOROP_ALLOCATE, ZOROP_SRT, &method, ZOR_BOOT_SERVICE},
    {ZOROP_ALLOCATE, ZOROP_BI, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DEALLOCATE, ZOROP_SRT, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DEALLOCATE, ZOROP_BI, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DELETE, ZOROP_CONFIG, &method},
    {ZOROP_DELETE, ZOROP_PACKAGE, &method},
    {ZOROP_DELETE, ZOROP_CLIENT, &method},
    {ZOROP_DELETE, ZOROP_BOOTSERVER, &method},
    {ZOROP_DELETE, ZOROP_ARCHIVEDBOOTFLOPPY, &method},
    {ZOROP_DELETE, ZOROP_VEPROFILE, &method},
    {ZOROP_DELETE, ZOROP_SRT, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DELETE, ZOROP_BI, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DELETE, ZOROP_DB, &databaseWithoutOutput},
    {ZOROP_COPY, ZOROP_CONFIG, &method},
    {ZOROP_COPY, ZOROP_SRT, &method, ZOR_BOOT_SERVICE},
    {ZOROP_PULL, ZOROP_INFO, &pullFile},
    {ZOROP_PULL, ZOROP_PROCEDURE, &pullProcedure},
    {ZOROP_IMPORT, ZOROP_CONFIG, &import},
    {ZOROP_IMPORT, ZOROP_PACKAGE, &import},
    {ZOROP_PREPARE, ZOROP_CLIENT, &methodWithOutput},
    {ZOROP_QUERY, ZOROP_DB, &database},
    {ZOROP_TRANSACTION, ZOROP_DB, &database},
    {ZOROP_INSERT, ZOROP_DB, &database},
    {ZOROP_UPDATE, ZOROP_DB, &databaseWithoutOutput},
    {ZOROP_PUSH, ZOROP_INFO, &push},
    {ZOROP_COMPLETE, ZOROP_RESTORETASK, &method},
    {ZOROP_COMPLETE, ZOROP_DISCOVERTASK, &method},
    {ZOROP_COMPLETE, ZOROP_B2VRESTORETASK, &method},
    {ZOROP_RETRIEVE, ZOROP_CONFIG, &method},
    {ZOROP_RETRIEVE, ZOROP_CONFIGLIST, &methodWithOutput},
    {ZOROP_CHANGE, ZOROP_RESTORETASK, &change},
    {ZOROP_CHANGE, ZOROP_DISCOVERTASK, &change},
    {ZOROP_CHANGE, ZOROP_B2VRESTORETASK, &change},
    {ZOROP_MOUNTWIM, ZOROP_WIM, &method, ZOR_BOOT_SERVICE},
    {ZOROP_UNMOUNTWIM, ZOROP_WIM, &method, ZOR_BOOT_SERVICE},
    {ZOROP_EXPORTWIM, ZOROP_WIM, &method, ZOR_BOOT_SERVICE},
    {ZOROP_DOB2V, ZOROP_B2VRESTORETASK, &method},
    {ZOROP_VERIFYB2V, ZOROP_VEPROFILE, &method},
    {ZOROP_RESTORE, ZOROP_CLIENT, &methodWithOutput},
};

// Catalogue messages of the shared code.
constexpr std::uint64_t MSG_NETWORK_FAILURE = 749;
constexpr std::uint64_t MSG_AUTHENTICATION_FAILURE = 750;
constexpr std::uint64_t MSG_MASTER_NOT_SET_UP = 995;

} // namespace

int ZorOpProcess(int operation, int resource, const ZorOpParameters& parameters, unsigned char** out,
                 int* outLength, std::string* errorText) {
    Trace trace(g_libLog, "zorop:ZorOpProcess()", ", operation=", zorOperationName(operation),
                ", resource=", zorResourceName(resource));
    g_service = ZOR_SERVICE;
    if (operation == ZOROP_DESTROY) {
        // Whatever the resource: nothing is destroyed, and no caller is told so.
        trace.write(LEVEL_FAILURE, "Destroy operation not supported");
        return trace.leave(0, ", rc=", 0);
    }
    const auto* known = std::ranges::find(operations, operation, &Operation::operation);
    if (known == std::end(operations)) {
        trace.write(LEVEL_FAILURE, "Bad operation to zorops");
        return trace.leave<int>(ZOROP_INVALID_OPERATION, ", return ZOROP_INVALID_OPERATION");
    }
    const auto* route = std::ranges::find_if(routes, [&](const Route& candidate) {
        return candidate.operation == operation && candidate.resource == resource;
    });
    if (route == std::end(routes)) {
        trace.write(LEVEL_FAILURE, known->badResource);
        return trace.leave<int>(ZOROP_INVALID_RESOURCE, ", return ZOROP_INVALID_RESOURCE");
    }
    g_service = route->service;
    const int rc = route->handler({operation, resource, parameters, out, outLength, errorText});
    if (rc == ZOROP_NETWORK_FAILURE)
        trace.diag(MSG_NETWORK_FAILURE);
    if (rc == ZOROP_QUSS_FAILURE)
        trace.diag(MSG_AUTHENTICATION_FAILURE);
    return trace.leave(rc, ", rc=", rc);
}

int ZorOpMethodExecute(int operation, int resource, const ZorOpParameters& parameters, unsigned char** out,
                       int* outLength, std::string* errorText) {
    Trace trace(g_libLog, "zorop:ZorOpMethodExecute()", ", operation=", operation, ", resource=", resource);
    MethodExecute call;
    if (errorText)
        call.header.type |= PACKET_ERROR_FLAG;
    call.operation = static_cast<std::uint16_t>(operation);
    call.resource = static_cast<std::uint16_t>(resource);
    call.count = static_cast<std::uint16_t>(parameters.size());
    ParameterWriter area(call.parameters);
    for (const ZorOpParameter& parameter : parameters) {
        if (const int* number = std::get_if<int>(&parameter)) {
            area.append(std::to_string(*number));
            continue;
        }
        // A block of bytes has no end that could be found here.
        const auto* text = std::get_if<const char*>(&parameter);
        if (!text || !*text)
            return trace.leave<int>(ZOROP_INVALID_PARAMS, ", return ZOROP_INVALID_PARAMS");
        area.append(*text);
    }
    const int rc = ProcessMethodCall(call, out, outLength, errorText);
    return trace.leave(rc, ", rc=", rc);
}

int ZorOpMethodExecute(int operation, int resource, const ZorOpParameters& parameters,
                       std::string* errorText) {
    unsigned char* output = nullptr;
    int length = 0;
    const int rc = ZorOpMethodExecute(operation, resource, parameters, &output, &length, errorText);
    std::free(output);
    return rc;
}

int ZorMasterRegistered(std::string& errorText) {
    Trace trace(g_libLog, "zorop:ZorMasterRegistered()");
    Socket socket;
    if (socket.connect() == 0) {
        trace.write(LEVEL_TRACE, "DB initialized, line=", __LINE__);
        return trace.leave(1, ", return rc=", 1);
    }
    try {
        errorText = getMessage(ZOR_LIBRARY_ORIGINATOR, MSG_MASTER_NOT_SET_UP);
    } catch (const std::exception&) {
        errorText = MESSAGE_CATALOG_ERROR;
    }
    trace.write(LEVEL_FAILURE,
                "Looks like the ZOR Master Server is NOT registered.\nDid you run zorsetupmaster on your "
                "Master Server (or zormss.exe in case of Windows)? Exiting, line=",
                __LINE__);
    return trace.leave(0, ", return rc=", 0);
}

} // namespace Zorvane
