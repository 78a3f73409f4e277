// SPDX-License-Identifier: Apache-2.0
// The client's half of each exchange with the recovery daemons. An exchange connects, makes one request,
// moves the raw bytes that belong to it, closes, and returns the daemon's status or a code of ZorOpResult.
// None of them has a time-out: a silent peer holds the caller.
//
// `newConnection` false: the exchange runs on the process's standard output, which stays open.
#pragma once

#include "ops/packets.h"

#include <string>

namespace Zorvane {

/// The version check on a connection just made: 0 if the daemon is compatible, -1 if not, or 200.
int SendAssertCompat(int descriptor);

/// A document to the database: 0, 200, 203 (no document, or no memory for the answer), or the daemon's
/// status. Of a query and an insert, `*out` is the answer, `*outLength` bytes that the caller frees with
/// array delete; both may be null. Other commands leave them alone.
int SendDbRequest(int command, const unsigned char* xml, int length, unsigned char** out, int* outLength);

/// A method call: the method's return value, or 200, or -1 if the call could not be sent. `*out` is the
/// method's output or null, ended by a NUL that `*outLength` does not count; the caller frees it with free().
/// `errorText`, if not null, receives the text of the daemon's error response; without one it stays as it is.
int ProcessMethodCall(const MethodExecute& call, unsigned char** out, int* outLength, std::string* errorText);

/// Standard input as the client's log. The daemon sees its end when this process ends: after success the
/// connection stays open.
int SendLogRequest(const char* client);
/// A text for the daemon's system log; what is beyond MESSAGE_TEXT_SIZE is cut.
int SendMsgRequest(const char* client, std::uint8_t severity, const char* text);
/// An error report.
int SendErrRequest(const char* first, const char* second, int status, bool newConnection);
/// Fetches `source` into the file `destination`; null is standard output. `packetType` is PULL_REQUEST or
/// PULL_PROCEDURE_REQUEST. -1 if the file can't be opened.
int SendPullRequest(const char* destination, const char* source, const char* client, int packetType);
int SendPushRequest(const char* client, const char* configuration, const char* fileName,
                    const unsigned char* buffer, int length);
/// 204 if the daemon on the standard output is not compatible.
int SendImportRequest(int resource, const char* client, const char* configuration,
                      const unsigned char* buffer, int length, bool newConnection);
/// The progress of a client's restore, discovery or conversion task (resources 11, 13, 20); 203 for others.
int SendChangeRequest(int resource, const char* client, int state, int progress);

/// Not available: says so on standard error and gives 0. The arguments are ignored.
int GetDevPromName(const char* device, const char* name);

} // namespace Zorvane
