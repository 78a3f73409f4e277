// SPDX-License-Identifier: Apache-2.0
#include "lab/methods.h"

#include "lab/CatalogueCommands.h"
#include "lab/Lab.h"
#include "lab/profileCheck.h"
#include "logging/CZorLog.h"
#include "ops/packets.h"
#include "ops/zoropNames.h"
#include "suite/printable.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Zorvane {

namespace {

ID idOf(const std::string& text) {
    ID id = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, id);
    return error == std::errc() && last == end ? id : 0; // no row has 0
}

// The store's failure in the words of a method: a row that is missing, or whatever the store says.
MethodResult fromStore(const StoreResult& result, const char* operation, MethodMessage missing,
                       const std::string& name) {
    switch (result.status) {
    case STORE_OK:
        return {};
    case STORE_NO_SUCH_ROW:
        return methodFailure(result.status, missing, {name});
    case STORE_IN_USE:
        return methodFailure(result.status, METHOD_IN_USE, {name});
    default:
        return methodFailure(result.status, METHOD_FAILED, {operation, Suite::printable(result.text)});
    }
}

MethodResult startConversion(Lab& lab, const MethodCall& call) {
    const std::string task = call.parameter(0);
    return fromStore(lab.jobs.submit(idOf(task)), "dob2v", METHOD_NO_TASK, task);
}

MethodResult verifyProfile(Lab& lab, const MethodCall& call) {
    const std::string number = call.parameter(1);
    const auto profile = lab.store.findProfile(idOf(number));
    if (!profile)
        return methodFailure(STORE_NO_SUCH_ROW, METHOD_NO_PROFILE, {number});
    const auto missing = findMissing(lab.inventory, *profile);
    if (!missing)
        return {};
    return methodFailure(1, METHOD_NOT_THERE,
                         {profile->getProfileName(), missing->kind, missing->name, serverOf(*profile)});
}

MethodResult deleteProfile(Lab& lab, const MethodCall& call) {
    const std::string name = call.parameter(1);
    return fromStore(lab.store.deleteProfile(name), "delete veprofile", METHOD_NO_PROFILE, name);
}

MethodResult runCommand(Lab& lab, const MethodCall& call) {
    CommandResult result = runCatalogueCommand(lab.catalogue, call.parameter(0));
    return {result.status, std::move(result.output), std::nullopt};
}

struct Method {
    int operation;
    int resource;
    FailPoint point;
    std::size_t detail; ///< the parameter that the detail of a rule means
    MethodResult (*run)(Lab&, const MethodCall&);
};

constexpr std::array METHODS = {
    Method{ZOROP_DOB2V, ZOROP_B2VRESTORETASK, FailPoint::DoB2v, 0, startConversion},
    Method{ZOROP_VERIFYB2V, ZOROP_VEPROFILE, FailPoint::VerifyB2v, 1, verifyProfile},
    Method{ZOROP_DELETE, ZOROP_VEPROFILE, FailPoint::DeleteProfile, 1, deleteProfile},
    Method{ZOROP_PREPARE, ZOROP_CLIENT, FailPoint::Catalogue, 0, runCommand},
};

const Method* findMethod(const MethodCall& call) {
    const auto method = std::ranges::find_if(METHODS, [&](const Method& row) {
        return row.operation == call.operation && row.resource == call.resource;
    });
    return method == METHODS.end() ? nullptr : &*method;
}

} // namespace

MethodCall::MethodCall(const MethodExecute& packet) : operation(packet.operation), resource(packet.resource) {
    // The run ends with the count or with the area, whatever the client says of it.
    const auto& area = packet.parameters.text;
    auto at = area.begin();
    for (int i = 0; i < packet.count && at != area.end(); ++i) {
        const auto end = std::find(at, area.end(), '\0');
        parameters.emplace_back(at, end);
        at = end == area.end() ? end : end + 1;
    }
}

std::string MethodCall::parameter(std::size_t index) const {
    return index < parameters.size() ? parameters[index] : std::string();
}

MethodResult methodFailure(std::int32_t value, MethodMessage message,
                           const std::vector<std::string>& parameters) {
    CErrorMsg error;
    error.setMsg(value, message);
    error.setOriginatorId(ZOR_LIBRARY_ORIGINATOR);
    for (const std::string& parameter : parameters)
        error.setMessageNumber(parameter);
    return {value, {}, error};
}

std::optional<Failure> failureOf(Lab& lab, Connection& connection, const MethodCall& call) {
    const Method* method = findMethod(call);
    if (!method)
        return std::nullopt;
    std::string detail = call.parameter(method->detail);
    if (method->point == FailPoint::Catalogue) // the command of a command line
        detail.resize(std::min(detail.find(' '), detail.size()));
    return lab.failures.check(connection, method->point, detail);
}

MethodResult runMethod(Lab& lab, const MethodCall& call) {
    if (const Method* method = findMethod(call))
        return method->run(lab, call);
    return methodFailure(1, METHOD_NOT_OFFERED,
                         {zorOperationName(call.operation), zorResourceName(call.resource)});
}

} // namespace Zorvane
