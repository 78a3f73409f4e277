// SPDX-License-Identifier: Apache-2.0
// Stands in the place of the HTTP client that the archive of the XML library asks for. Nothing that the
// programs read may fetch anything, so every call fails: a document that names an address gets nowhere.

extern "C" {

int curl_global_init(long) {
    return 2; // the client's "could not be set up"
}
void curl_global_cleanup() {}
void* curl_easy_init() {
    return nullptr;
}
int curl_easy_setopt(void*, int, ...) {
    return 2;
}
int curl_easy_getinfo(void*, int, ...) {
    return 2;
}
void curl_easy_cleanup(void*) {}
void* curl_multi_init() {
    return nullptr;
}
int curl_multi_add_handle(void*, void*) {
    return 1; // "no such handle", and so for its sisters
}
int curl_multi_remove_handle(void*, void*) {
    return 1;
}
int curl_multi_perform(void*, int* running) {
    *running = 0;
    return 1;
}
int curl_multi_fdset(void*, void*, void*, void*, int* highest) {
    *highest = -1;
    return 1;
}
int curl_multi_timeout(void*, long* milliseconds) {
    *milliseconds = 0;
    return 1;
}
void* curl_multi_info_read(void*, int* left) {
    *left = 0;
    return nullptr;
}
int curl_multi_cleanup(void*) {
    return 1;
}
void* curl_slist_append(void*, const char*) {
    return nullptr;
}
void curl_slist_free_all(void*) {}

} // extern "C"
