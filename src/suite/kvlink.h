// SPDX-License-Identifier: Apache-2.0
// The suite's network library: from a host and a service name to a connected socket.
#pragma once

#include <cstddef>

/// Connects to a service; 0 and a close-on-exec socket that the caller closes, else a status. Ports come from
/// the suite's configuration, or from the system's services database.
int kvlink_connect_to_service(const char* host, const char* service, int, int, int, int, int* descriptor);
/// The same on behalf of the suite's network daemon.
int kvn_connect_to_kvlinkd_service(const char* host, const char* service, int* descriptor);
void kvlink_closesocket(int descriptor);

/// Exchanges host credentials with the peer; `role` receives the peer's role word. 0 on success.
int kvlink_verify_peer_creds(int descriptor, unsigned tag, int accept, unsigned* role, int, int,
                             int timeoutSeconds);
/// True if this process runs as a daemon of the suite.
bool kvlink_check_kelvarion_daemon();
/// The credential for a connection into `path`; 0 on success.
int kvlink_get_credential_path(int descriptor, char* path, std::size_t size);
/// Settles the security mode of a connection with the peer; 0 on success.
int kvlink_determine_quss_socket(int descriptor, int, int* mode, const char* path, std::size_t size,
                                 int* first, int* second, int);
/// Sends and checks the opening of a secured connection; 0 on success.
int kvlink_check_quss_client_magic(int descriptor, int, int, int* result,
                                   int (*put)(int, const char*, const char*), int);
