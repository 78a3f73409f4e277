// SPDX-License-Identifier: Apache-2.0
// The single door to the recovery daemons: an operation on a resource, with parameters.
#pragma once

#include "ops/zoropNames.h"

#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace Zorvane {

/// Results beside 0 (done), a daemon's status, which passes through as it came, and -1 (a method call that
/// could not be sent).
enum ZorOpResult : int {
    ZOROP_NETWORK_FAILURE = 200,   ///< connection, send or receive failed
    ZOROP_INVALID_OPERATION = 201, ///< the operation has no handler
    ZOROP_INVALID_RESOURCE = 202,  ///< the operation does not know the resource
    ZOROP_INVALID_PARAMS = 203,    ///< too few parameters, a null one, or a text where a number is due
    ZOROP_VERSION_FAILURE = 204,   ///< the daemon is not compatible
    ZOROP_QUSS_FAILURE = 205,      ///< the connection could not be authenticated
};

// One call is one exchange on a connection of its own; it blocks until the exchange is over. Parameters are
// borrowed for the call. Texts end with NUL; `buffer` is a block of `bufSize` bytes. With `newConnection`
// false the exchange talks on the process's standard output, back to the daemon that started it.
//
// `output` gets the daemon's text appended. `*out` is an array that the caller frees with array delete; it is
// left alone where the operation has no output. `errorText` receives the message text of a method that the
// daemon failed, if it sends one, and asks the daemon for it.
//
// A method call returns the method's return value: the exit status of a command that (prepare, client) runs.

int ZorOps(int operation, int resource, const std::string& p1, std::stringstream& output,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::stringstream& output, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, const std::string& p5, const std::string& p6, std::stringstream& output,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const std::string& p4, const std::string& p5, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text, int number, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text, int number, unsigned char** out, int* outLength,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2,
           const unsigned char* buffer, int bufSize, bool newConnection, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, int p3, int p4,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, const char* text2,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* text3,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, const std::string& p2, const std::string& p3,
           const std::string& p4, std::string* errorText = nullptr);
/// A document and its length.
int ZorOps(int operation, int resource, unsigned char* text, int length, unsigned char** out, int* outLength,
           std::string* errorText = nullptr);
int ZorOps(int operation, int resource, unsigned char* text, int length, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* buffer, int bufSize,
           bool newConnection, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, const std::string& p3,
           const unsigned char* buffer, int bufSize, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const char* text1, const char* text2, const char* text3,
           const unsigned char* buffer, int bufSize, std::string* errorText = nullptr);
int ZorOps(int operation, int resource, const std::string& p1, const std::string& p2, int p3,
           std::string* errorText = nullptr);

/// A parameter: a text that ends with NUL, a block of bytes whose length is another parameter, or a number.
using ZorOpParameter = std::variant<const char*, const unsigned char*, int>;
using ZorOpParameters = std::vector<ZorOpParameter>;

/// The dispatcher behind the overloads. `out` and `outLength` may be null; see above for what they receive.
int ZorOpProcess(int operation, int resource, const ZorOpParameters& parameters, unsigned char** out,
                 int* outLength, std::string* errorText);

/// Sends one method call; numbers go as decimal texts. `*out` comes from malloc: the caller frees it with
/// free(). The short form drops the output.
int ZorOpMethodExecute(int operation, int resource, const ZorOpParameters& parameters, unsigned char** out,
                       int* outLength, std::string* errorText);
int ZorOpMethodExecute(int operation, int resource, const ZorOpParameters& parameters,
                       std::string* errorText);

/// Whether the recovery service can be reached: 1, or 0 with a text for the administrator. Asks the service
/// that the last operation went to.
int ZorMasterRegistered(std::string& errorText);

} // namespace Zorvane
