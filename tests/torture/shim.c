// SPDX-License-Identifier: Apache-2.0
// Preloaded into a program: counts its fallible calls by class, lets one of them fail, and tells at the end
// what was counted and which descriptors were left open.
//
//   TORTURE_REPORT=file    where to tell it: lines "count <class> <n>", "open <what>", "end", and
//                          "failed <class> <connections>": how many had been asked for by then
//   TORTURE_FAIL=class:n:errno    the n-th call of the class fails, from 1, with this errno
//   TORTURE_SHORT=documents|all   sends and receives move one byte a call; with "documents" the packets of
//                                 the recovery daemons (which begin with a NUL byte) go whole
//
// A child process is not for it: its environment has none of these, and what it does before it executes its
// program counts as the parent's.
#define _GNU_SOURCE
#include "torture/shim.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <iconv.h>
#include <limits.h>
#include <locale.h>
#include <netdb.h>
#include <nl_types.h>
#include <poll.h>
#include <signal.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wchar.h>

#undef fwrite_unlocked

static const char* const names[] = {
#define CLASS(name) #name,
#include "classes.def"
#undef CLASS
};

static long counts[CLASSES];
static bool stopped; ///< the report is being written
/// The resolver of the C library is at work. It does not survive every lack of memory (an assertion of its
/// own, a null pointer), which is nothing that its callers could mend, so it fails as a whole or not at all.
static bool resolving;
static int failClass = -1;
static long failNumber;
static int failError;
static bool hasFailed;
static long failedAt; ///< the connections that had been asked for by then

enum { WHOLE, SHORT_DOCUMENTS, SHORT_ALL };
static int pieces = WHOLE;

static char reportFile[PATH_MAX];
static pid_t self;
enum { DESCRIPTORS = 256 };
static bool openBefore[DESCRIPTORS];

bool tortureFails(int class) {
    if (stopped || (resolving && class == CLASS_memory))
        return false;
    const long number = __atomic_add_fetch(&counts[class], 1, __ATOMIC_RELAXED);
    if (class != failClass || number != failNumber)
        return false;
    hasFailed = true;
    failedAt = counts[CLASS_connect];
    return true;
}

static bool target(int descriptor, char* text, size_t size) {
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const long length = syscall(SYS_readlink, link, text, size - 1);
    text[length > 0 ? length : 0] = '\0';
    return length > 0;
}

// Before main, and before the first call that may fail.
static void setUp(void) {
    static bool done;
    if (done || !environ) // the C library itself may not be set up yet
        return;
    done = true;
    self = getpid();
    const char* const report = getenv("TORTURE_REPORT");
    snprintf(reportFile, sizeof reportFile, "%s", report ? report : "");
    const char* const mode = getenv("TORTURE_SHORT");
    pieces = !mode ? WHOLE : strcmp(mode, "all") == 0 ? SHORT_ALL : SHORT_DOCUMENTS;
    const char* const rule = getenv("TORTURE_FAIL");
    char class[32];
    if (rule && sscanf(rule, "%31[a-z]:%ld:%d", class, &failNumber, &failError) == 3)
        for (int i = 0; i < CLASSES; ++i)
            if (strcmp(names[i], class) == 0)
                failClass = i;
}

__attribute__((constructor)) static void begin(void) {
    setUp();
    unsetenv("LD_PRELOAD");
    unsetenv("TORTURE_REPORT");
    unsetenv("TORTURE_FAIL");
    unsetenv("TORTURE_SHORT");
    char text[PATH_MAX];
    for (int i = 0; i < DESCRIPTORS; ++i)
        openBefore[i] = target(i, text, sizeof text);
}

__attribute__((destructor)) static void tell(void) {
    if (stopped || !*reportFile || getpid() != self)
        return;
    stopped = true;
    const long file = syscall(SYS_open, reportFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0)
        return;
    for (int i = 0; i < CLASSES; ++i)
        dprintf((int)file, "count %s %ld\n", names[i], counts[i]);
    if (hasFailed)
        dprintf((int)file, "failed %s %ld\n", names[failClass], failedAt);
    char text[PATH_MAX];
    for (int i = 0; i < DESCRIPTORS; ++i)
        if (i != file && target(i, text, sizeof text) && !openBefore[i])
            dprintf((int)file, "open %s\n", text);
    dprintf((int)file, "end\n");
    syscall(SYS_close, file);
}

// The real call. Resolved at its first use; that of an allocation must not allocate, and does not.
#define REAL(name)                                                                                           \
    static __typeof__(&name) real;                                                                           \
    if (!real)                                                                                               \
    *(void**)&real = dlsym(RTLD_NEXT, #name)

// A call that fails with errno and a result.
#define CALL(class, result, name, parameters, arguments, failure)                                            \
    result name parameters {                                                                                 \
        REAL(name);                                                                                          \
        if (FAILS(class)) {                                                                                  \
            errno = failError;                                                                               \
            return failure;                                                                                  \
        }                                                                                                    \
        return real arguments;                                                                               \
    }

#define FAILS(class) (setUp(), tortureFails(CLASS_##class))

CALL(memory, void*, malloc, (size_t size), (size), NULL)
CALL(memory, void*, calloc, (size_t count, size_t size), (count, size), NULL)
CALL(memory, void*, realloc, (void* memory, size_t size), (memory, size), NULL)
CALL(memory, void*, aligned_alloc, (size_t alignment, size_t size), (alignment, size), NULL)
CALL(memory, int, posix_memalign, (void** memory, size_t alignment, size_t size), (memory, alignment, size),
     ENOMEM)

static mode_t modeOf(int flags, va_list rest) {
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
}
#define OPEN(name, first, parameters, arguments)                                                             \
    int name parameters {                                                                                    \
        REAL(name);                                                                                          \
        va_list rest;                                                                                        \
        va_start(rest, flags);                                                                               \
        const mode_t mode = modeOf(flags, rest);                                                             \
        va_end(rest);                                                                                        \
        if (FAILS(open)) {                                                                                   \
            errno = failError;                                                                               \
            return -1;                                                                                       \
        }                                                                                                    \
        return real arguments;                                                                               \
    }
OPEN(open, path, (const char* path, int flags, ...), (path, flags, mode))
OPEN(open64, path, (const char* path, int flags, ...), (path, flags, mode))
OPEN(openat, path, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
CALL(open, FILE*, fopen, (const char* path, const char* mode), (path, mode), NULL)
CALL(open, FILE*, fopen64, (const char* path, const char* mode), (path, mode), NULL)
CALL(open, FILE*, fdopen, (int descriptor, const char* mode), (descriptor, mode), NULL)
CALL(open, DIR*, opendir, (const char* path), (path), NULL)

CALL(read, size_t, fread, (void* to, size_t size, size_t count, FILE* file), (to, size, count, file), 0)
CALL(read, ssize_t, pread, (int descriptor, void* to, size_t size, off_t at), (descriptor, to, size, at), -1)
CALL(read, ssize_t, readv, (int descriptor, const struct iovec* to, int count), (descriptor, to, count), -1)
CALL(read, struct dirent*, readdir, (DIR * folder), (folder), NULL)

// getc and its kin refill their buffer with it.
extern int __uflow(FILE* file);
int __uflow(FILE* file) {
    REAL(__uflow);
    if (FAILS(read)) {
        enum { ERROR_SEEN = 0x20 };
        file->_flags |= ERROR_SEEN;
        errno = failError;
        return EOF;
    }
    return real(file);
}

CALL(write, ssize_t, pwrite, (int descriptor, const void* from, size_t size, off_t at),
     (descriptor, from, size, at), -1)
CALL(write, ssize_t, writev, (int descriptor, const struct iovec* from, int count), (descriptor, from, count),
     -1)
CALL(write, size_t, fwrite, (const void* from, size_t size, size_t count, FILE* file),
     (from, size, count, file), 0)
CALL(write, size_t, fwrite_unlocked, (const void* from, size_t size, size_t count, FILE* file),
     (from, size, count, file), 0)
CALL(write, int, fputs, (const char* text, FILE* file), (text, file), EOF)
CALL(write, int, fputc, (int character, FILE* file), (character, file), EOF)
CALL(write, int, putc, (int character, FILE* file), (character, file), EOF)
CALL(write, int, puts, (const char* text), (text), EOF)
CALL(write, int, fflush, (FILE * file), (file), EOF)
CALL(write, int, vfprintf, (FILE * file, const char* format, va_list arguments), (file, format, arguments),
     -1)
int fprintf(FILE* file, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int rc = vfprintf(file, format, arguments);
    va_end(arguments);
    return rc;
}
int __fprintf_chk(FILE* file, int flag, const char* format, ...);
int __fprintf_chk(FILE* file, int flag, const char* format, ...) {
    (void)flag;
    va_list arguments;
    va_start(arguments, format);
    const int rc = vfprintf(file, format, arguments);
    va_end(arguments);
    return rc;
}

// A close that fails has closed all the same.
#define CLOSE(result, name, parameter, argument)                                                             \
    result name(parameter) {                                                                                 \
        REAL(name);                                                                                          \
        const bool fails = FAILS(close);                                                                     \
        const result rc = real(argument);                                                                    \
        if (!fails)                                                                                          \
            return rc;                                                                                       \
        errno = failError;                                                                                   \
        return -1;                                                                                           \
    }
CLOSE(int, close, int descriptor, descriptor)
CLOSE(int, fclose, FILE* file, file)
CLOSE(int, closedir, DIR* folder, folder)

CALL(stat, int, stat, (const char* path, struct stat* facts), (path, facts), -1)
CALL(stat, int, lstat, (const char* path, struct stat* facts), (path, facts), -1)
CALL(stat, int, fstat, (int descriptor, struct stat* facts), (descriptor, facts), -1)
CALL(stat, int, fstatat, (int folder, const char* path, struct stat* facts, int flags),
     (folder, path, facts, flags), -1)
CALL(stat, int, access, (const char* path, int mode), (path, mode), -1)
CALL(stat, ssize_t, readlink, (const char* path, char* to, size_t size), (path, to, size), -1)
CALL(stat, char*, realpath, (const char* path, char* to), (path, to), NULL)
CALL(seek, int, fseek, (FILE * file, long by, int from), (file, by, from), -1)
CALL(seek, long, ftell, (FILE * file), (file), -1)
CALL(seek, off_t, lseek, (int descriptor, off_t by, int from), (descriptor, by, from), -1)
CALL(folder, int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
CALL(folder, int, rename, (const char* from, const char* to), (from, to), -1)
CALL(folder, int, remove, (const char* path), (path), -1)
CALL(folder, int, unlink, (const char* path), (path), -1)

CALL(socket, int, socket, (int family, int type, int protocol), (family, type, protocol), -1)
CALL(connect, int, connect, (int socket, const struct sockaddr* to, socklen_t size), (socket, to, size), -1)
CALL(option, int, setsockopt, (int socket, int level, int name, const void* value, socklen_t size),
     (socket, level, name, value, size), -1)
CALL(option, int, getsockopt, (int socket, int level, int name, void* value, socklen_t* size),
     (socket, level, name, value, size), -1)
CALL(poll, int, poll, (struct pollfd * waiting, nfds_t count, int time), (waiting, count, time), -1)
int getaddrinfo(const char* host, const char* service, const struct addrinfo* hints,
                struct addrinfo** found) {
    REAL(getaddrinfo);
    if (FAILS(resolve))
        return EAI_AGAIN;
    resolving = true;
    const int rc = real(host, service, hints, found);
    resolving = false;
    return rc;
}
CALL(resolve, int, getnameinfo,
     (const struct sockaddr* address, socklen_t size, char* host, socklen_t hostSize, char* service,
      socklen_t serviceSize, int flags),
     (address, size, host, hostSize, service, serviceSize, flags), EAI_AGAIN)
CALL(resolve, struct servent*, getservbyname, (const char* name, const char* protocol), (name, protocol),
     NULL)
CALL(resolve, int, gethostname, (char* name, size_t size), (name, size), -1)

static size_t shortened(size_t size, bool isPacket) {
    return size == 0 || pieces == WHOLE || (pieces == SHORT_DOCUMENTS && isPacket) ? size : 1;
}

// A peer that is gone, asked again and again: where the protocol has a client spin, it is stopped here.
static ssize_t notSpinning(ssize_t got, size_t size) {
    static long ends;
    ends = got == 0 && size > 0 ? ends + 1 : 0;
    if (ends > SPINS) {
        tell();
        _exit(TORTURE_SPINNING);
    }
    return got;
}

#define TRANSFER(class, result, name, parameters, arguments, isPacket)                                       \
    result name parameters {                                                                                 \
        REAL(name);                                                                                          \
        if (FAILS(class)) {                                                                                  \
            errno = failError;                                                                               \
            return -1;                                                                                       \
        }                                                                                                    \
        size = shortened(size, isPacket);                                                                    \
        return real arguments;                                                                               \
    }
TRANSFER(read, ssize_t, read, (int descriptor, void* to, size_t size), (descriptor, to, size), false)
TRANSFER(write, ssize_t, write, (int descriptor, const void* from, size_t size), (descriptor, from, size),
         false)
TRANSFER(send, ssize_t, send, (int socket, const void* from, size_t size, int flags),
         (socket, from, size, flags), *(const char*)from == '\0')
ssize_t recv(int socket, void* to, size_t size, int flags) {
    REAL(recv);
    if (FAILS(receive)) {
        errno = failError;
        return -1;
    }
    return notSpinning(real(socket, to, shortened(size, false), flags), size);
}

// Not pipe(): nobody but a sanitizer calls it, to see whether memory may be read.
CALL(pipe, int, pipe2, (int ends[2], int flags), (ends, flags), -1)
CALL(dup, int, dup, (int descriptor), (descriptor), -1)
CALL(dup, int, dup2, (int descriptor, int as), (descriptor, as), -1)
CALL(dup, int, dup3, (int descriptor, int as, int flags), (descriptor, as, flags), -1)
int fcntl(int descriptor, int command, ...) {
    REAL(fcntl);
    va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    // What only asks fails for a closed descriptor alone.
    const bool asks = command == F_GETFD || command == F_GETFL || command == F_GETOWN || command == F_GETSIG;
    if (!asks && FAILS(dup)) {
        errno = failError;
        return -1;
    }
    return real(descriptor, command, argument);
}
CALL(dup, int, close_range, (unsigned first, unsigned last, int flags), (first, last, flags), -1)
CALL(fork, pid_t, fork, (void), (), -1)
CALL(exec, int, execve, (const char* file, char* const arguments[], char* const environment[]),
     (file, arguments, environment), -1)
CALL(exec, int, execv, (const char* file, char* const arguments[]), (file, arguments), -1)
CALL(exec, long, sysconf, (int name), (name), -1)
CALL(wait, pid_t, waitpid, (pid_t child, int* status, int options), (child, status, options), -1)

// The child of vfork returns from it first and would overwrite the frame of a wrapper, which has therefore
// none: the stack is the caller's again when the real one is jumped to.
void* tortureVfork(void);
void* tortureVfork(void) {
    REAL(vfork);
    if (!FAILS(fork))
        return *(void**)&real;
    errno = failError;
    return NULL;
}
#if defined(__x86_64__)
__asm__(".text\n.globl vfork\n.type vfork, @function\nvfork:\n"
        "  endbr64\n"
        "  subq $8, %rsp\n"
        "  call tortureVfork@PLT\n"
        "  addq $8, %rsp\n"
        "  testq %rax, %rax\n"
        "  je 1f\n"
        "  jmp *%rax\n"
        "1: movl $-1, %eax\n"
        "  ret\n"
        ".size vfork, .-vfork\n");
#endif

CALL(watch, int, inotify_init1, (int flags), (flags), -1)
CALL(watch, int, inotify_add_watch, (int queue, const char* path, uint32_t events), (queue, path, events), -1)
CALL(watch, int, statfs, (const char* path, struct statfs* facts), (path, facts), -1)
CALL(watch, int, sigaction, (int number, const struct sigaction* action, struct sigaction* before),
     (number, action, before), -1)

CALL(locale, char*, setlocale, (int category, const char* name), (category, name), NULL)
CALL(locale, locale_t, newlocale, (int categories, const char* name, locale_t base), (categories, name, base),
     NULL)
CALL(locale, nl_catd, catopen, (const char* name, int flag), (name, flag), (nl_catd)-1)
CALL(locale, char*, catgets, (nl_catd catalog, int set, int number, const char* other),
     (catalog, set, number, other), (char*)other)
CALL(convert, iconv_t, iconv_open, (const char* to, const char* from), (to, from), (iconv_t)-1)
CALL(convert, size_t, iconv, (iconv_t how, char** from, size_t* fromLeft, char** to, size_t* toLeft),
     (how, from, fromLeft, to, toLeft), (size_t)-1)
CALL(convert, size_t, mbsrtowcs, (wchar_t * to, const char** from, size_t size, mbstate_t* state),
     (to, from, size, state), (size_t)-1)
CALL(convert, size_t, wcsrtombs, (char* to, const wchar_t** from, size_t size, mbstate_t* state),
     (to, from, size, state), (size_t)-1)
