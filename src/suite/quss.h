// SPDX-License-Identifier: Apache-2.0
// The suite's security service.
#pragma once

/// A security context; made by the Init calls. The local suite layer has no security service: they fail.
struct quss_context {
    void* session = nullptr;
};

/// Initialise the service for a daemon (QssInit) or for any other process (QssInitExEx); 0 on success.
int QssInit(int version, const char* name, int, quss_context* context, int);
int QssInitExEx(int version, const char* name, int, quss_context* context, int, int);
int QssImportCredential(const char* path, quss_context* context);
int QssSetSocket(int descriptor, quss_context* context);
