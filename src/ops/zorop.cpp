// SPDX-License-Identifier: Apache-2.0
// The overloads of ZorOps: each gathers its parameters and calls the dispatcher.
#include "ops/zorop.h"

#include "logging/Trace.h"

#include <memory>
#include <new>

namespace Zorvane {

namespace {

void traceParameters(Trace& trace, const ZorOpParameters& parameters) {
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (const auto* text = std::get_if<const char*>(&parameters[i]))
            trace.write(LEVEL_TRACE, ", param", i + 1, "=", orNull(*text));
        else if (const auto* number = std::get_if<int>(&parameters[i]))
            trace.write(LEVEL_TRACE, ", param", i + 1, "=", *number);
        else
            trace.write(LEVEL_TRACE, ", param", i + 1, "=(data)");
    }
}

int call(int operation, int resource, const ZorOpParameters& parameters, std::string* errorText,
         unsigned char** out = nullptr, int* outLength = nullptr) {
    Trace trace(g_libLog, "zorop:ZorOps()", ", operation=", zorOperationName(operation),
                ", resource=", zorResourceName(resource));
    traceParameters(trace, parameters);
    const int rc = ZorOpProcess(operation, resource, parameters, out, outLength, errorText);
    return trace.leave(rc, ", rc=", rc);
}

int callForText(int operation, int resource, const ZorOpParameters& parameters, std::stringstream& output,
                std::string* errorText) {
    unsigned char* out = nullptr;
    int length = 0;
    const int rc = call(operation, resource, parameters, errorText, &out, &length);
    const std::unique_ptr<unsigned char[]> text(out);
    if (text)
        output.write(reinterpret_cast<const char*>(text.get()), length);
    if (!output) // the stream keeps the exception to itself, and half an output reads like a whole one
        throw std::bad_alloc();
    return rc;
}

// A parameter for the dispatcher.
const char* of(const std::string& text) {
    return text.c_str();
}

} // namespace

int ZorOps(int operation, int resource, const std::string& p1, std::stringstream& output,
           std::string* errorText) {
    return callForText(operation, resource, {of(p1)}, output, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, std::string* errorText) {
    return call(operation, resource, {of(p1)}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2,
           std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2)}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), of(p3)}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::stringstream& output, std::string* errorText) {
    return callForText(operation, resource, {of(p1), of(p2), of(p3), of(p4)}, output, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), of(p3), of(p4)}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, const std::string& p5, const std::string& p6, std::stringstream& output,
           std::string* errorText) {
    return callForText(operation, resource, {of(p1), of(p2), of(p3), of(p4), of(p5), of(p6)}, output,
                       errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, const std::string& p5, std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), of(p3), of(p4), of(p5)}, errorText);
}

int ZorOps(int operation, int resource, const char* text, int number, std::string* errorText) {
    return call(operation, resource, {text, number}, errorText);
}

int ZorOps(int operation, int resource, const char* text, int number, unsigned char** out, int* outLength,
           std::string* errorText) {
    return call(operation, resource, {text, number}, errorText, out, outLength);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2,
           const unsigned char* buffer, int bufSize, bool newConnection, std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), buffer, bufSize, int{newConnection}}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, int p3, int p4,
           std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), p3, p4}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, std::string* errorText) {
    return call(operation, resource, {text1}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, const char* text2, std::string* errorText) {
    return call(operation, resource, {text1, text2}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* text3,
           std::string* errorText) {
    return call(operation, resource, {text1, text2, text3}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::string* errorText) {
    return call(operation, resource, {text1, of(p2), of(p3), of(p4)}, errorText);
}

int ZorOps(int operation, int resource, unsigned char* text, int length, unsigned char** out, int* outLength,
           std::string* errorText) {
    return call(operation, resource, {static_cast<const unsigned char*>(text), length}, errorText, out,
                outLength);
}

int ZorOps(int operation, int resource, unsigned char* text, int length, std::string* errorText) {
    return call(operation, resource, {static_cast<const unsigned char*>(text), length}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* buffer, int bufSize,
           bool newConnection, std::string* errorText) {
    return call(operation, resource, {text1, text2, buffer, bufSize, int{newConnection}}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const unsigned char* buffer, int bufSize, std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), of(p3), buffer, bufSize}, errorText);
}

int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* text3,
           const unsigned char* buffer, int bufSize, std::string* errorText) {
    return call(operation, resource, {text1, text2, text3, buffer, bufSize}, errorText);
}

int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, int p3,
           std::string* errorText) {
    return call(operation, resource, {of(p1), of(p2), p3}, errorText);
}

} // namespace Zorvane
