// A library that tests preload. It makes the n-th system call of a kind on files below given
// folders fail, fall short or kill the process, and logs the calls.
//
// Tests find its functions with dlsym(). Files are identified through /proc/self/fd, so it does not
// matter how they were opened.

#include "faultlibrary.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

using namespace Faults;

constexpr int maximum_folders = 4;
constexpr size_t log_size = 256 * 1024;

struct TFault
{
    bool armed = false;
    int call = Open;
    int kind = Fail;
    int at = 0;    // counted from 1; 0 only counts
    int count = 0; // calls so far
    bool is_full = false;
    char folders[maximum_folders][PATH_MAX] = {};
};

TFault fault;

// A static buffer: the intercepted calls may come from within malloc().
char call_log[log_size];
size_t log_end = 0;

template <typename TFunction>
TFunction Next(const char* name)
{
    return reinterpret_cast<TFunction>(dlsym(RTLD_NEXT, name));
}

bool Is_Watched(const char* path)
{
    for (const auto& folder : fault.folders) {
        if (folder[0] && std::strncmp(path, folder, std::strlen(folder)) == 0)
            return true;
    }
    return false;
}

struct TPath
{
    char text[PATH_MAX] = {}; // empty if unknown
};

TPath Path_Of(int descriptor)
{
    char link[64];
    TPath path;
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor);
    if (readlink(link, path.text, sizeof(path.text) - 1) < 0)
        path.text[0] = '\0';
    return path;
}

void Log(const char* call, const char* path, const char* second_path = nullptr)
{
    static char line[2 * PATH_MAX + 32];
    static size_t last_start = 0;
    const int length = std::snprintf(line, sizeof(line), "%s %s%s%s\n", call, path,
                                     second_path ? " " : "", second_path ? second_path : "");
    const bool is_repeated_write = std::strcmp(call, "write") == 0 && log_end > 0 &&
                                   std::strcmp(call_log + last_start, line) == 0;
    if (is_repeated_write || log_end + static_cast<size_t>(length) >= log_size)
        return;
    last_start = log_end;
    std::memcpy(call_log + log_end, line, static_cast<size_t>(length) + 1);
    log_end += static_cast<size_t>(length);
}

enum TVerdict { Pass, Refuse, Halve };

void Die()
{
    raise(SIGKILL);
}

TVerdict Judge(TCall call)
{
    if (fault.call != call)
        return Pass;
    ++fault.count;
    if (fault.is_full)
        return Refuse;
    if (fault.count != fault.at)
        return Pass;
    if (fault.kind == Fail)
        return Refuse;
    const bool is_write = call == Write || call == Clone;
    if (fault.kind == Kill && !is_write)
        Die();
    return is_write ? Halve : Pass;
}

void After(TCall call)
{
    if (fault.armed && fault.call == call && fault.count == fault.at && fault.kind == Kill_After)
        Die();
}

int Refused(int reason)
{
    errno = reason;
    return -1;
}

// Writes half of the bytes; then the disk is full, or the process dies.
template <typename TWrite>
ssize_t Disturbed_Write(TCall call, int descriptor, size_t size, const TWrite& write_part)
{
    if (!fault.armed)
        return write_part(size);
    const TPath path = Path_Of(descriptor);
    if (!Is_Watched(path.text))
        return write_part(size);
    Log("write", path.text);
    const TVerdict verdict = Judge(call);
    if (verdict == Refuse)
        return Refused(ENOSPC);
    if (verdict == Pass)
        return write_part(size);
    if (fault.kind == Kill_After) {
        write_part(size);
        Die();
    }
    const ssize_t written = size > 1 ? write_part(size / 2) : 0;
    if (fault.kind == Kill)
        Die();
    fault.is_full = true;
    return written > 0 ? written : Refused(ENOSPC);
}

template <typename TRename>
int Disturbed_Rename(const char* call, const char* from, const char* to, const TRename& rename_it)
{
    if (!fault.armed || !Is_Watched(to))
        return rename_it();
    Log(call, from, to);
    if (Judge(Rename) == Refuse)
        return Refused(EIO);
    const int result = rename_it();
    After(Rename);
    return result;
}

template <typename TSync>
int Disturbed_Sync(int descriptor, const TSync& sync_it)
{
    if (!fault.armed)
        return sync_it();
    const TPath path = Path_Of(descriptor);
    if (!Is_Watched(path.text))
        return sync_it();
    Log("sync", path.text);
    if (Judge(Sync) == Refuse)
        return Refused(EIO);
    const int result = sync_it();
    After(Sync);
    return result;
}

template <typename TOpen>
int Disturbed_Open(const char* path, int flags, const TOpen& open_it)
{
    if (!fault.armed || !path || !Is_Watched(path))
        return open_it();
    if (flags & O_TRUNC)
        Log("truncate", path);
    if (Judge(Open) == Refuse)
        return Refused(EACCES);
    const int result = open_it();
    After(Open);
    return result;
}

mode_t Mode_Of(int flags, va_list arguments)
{
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

void Quillet_Arm_Fault(const char* folders, int call, int kind, int at)
{
    fault = TFault();
    for (auto& folder : fault.folders) {
        const char* const end = std::strchr(folders, ':');
        const size_t length = end ? static_cast<size_t>(end - folders) : std::strlen(folders);
        std::memcpy(folder, folders, length);
        if (!end)
            break;
        folders = end + 1;
    }
    fault.call = call;
    fault.kind = kind;
    fault.at = at;
    fault.armed = true;
    log_end = 0;
    call_log[0] = '\0';
}

int Quillet_Disarm_Fault()
{
    fault.armed = false;
    return fault.count;
}

const char* Quillet_Logged_Calls()
{
    return call_log;
}

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = Mode_Of(flags, arguments);
    va_end(arguments);
    static const auto next = Next<int (*)(const char*, int, mode_t)>("open");
    return Disturbed_Open(path, flags, [&] { return next(path, flags, mode); });
}

int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = Mode_Of(flags, arguments);
    va_end(arguments);
    static const auto next = Next<int (*)(const char*, int, mode_t)>("open64");
    return Disturbed_Open(path, flags, [&] { return next(path, flags, mode); });
}

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    static const auto next = Next<ssize_t (*)(int, const void*, size_t)>("write");
    return Disturbed_Write(Write, descriptor, size,
                           [&](size_t part) { return next(descriptor, bytes, part); });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t place)
{
    static const auto next = Next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
    return Disturbed_Write(Write, descriptor, size,
                           [&](size_t part) { return next(descriptor, bytes, part, place); });
}

ssize_t copy_file_range(int from, off64_t* from_place, int to, off64_t* to_place, size_t size,
                        unsigned int flags)
{
    static const auto next =
        Next<ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned int)>("copy_file_range");
    return Disturbed_Write(fault.call == Clone ? Clone : Write, to, size, [&](size_t part) {
        return next(from, from_place, to, to_place, part, flags);
    });
}

int rename(const char* from, const char* to)
{
    static const auto next = Next<int (*)(const char*, const char*)>("rename");
    return Disturbed_Rename("rename", from, to, [&] { return next(from, to); });
}

int link(const char* from, const char* to)
{
    static const auto next = Next<int (*)(const char*, const char*)>("link");
    return Disturbed_Rename("link", from, to, [&] { return next(from, to); });
}

int linkat(int from_folder, const char* from, int to_folder, const char* to, int flags)
{
    static const auto next = Next<int (*)(int, const char*, int, const char*, int)>("linkat");
    return Disturbed_Rename("link", from, to,
                            [&] { return next(from_folder, from, to_folder, to, flags); });
}

int unlink(const char* path)
{
    static const auto next = Next<int (*)(const char*)>("unlink");
    if (fault.armed && Is_Watched(path))
        Log("unlink", path);
    return next(path);
}

int fsync(int descriptor)
{
    static const auto next = Next<int (*)(int)>("fsync");
    return Disturbed_Sync(descriptor, [&] { return next(descriptor); });
}

int fdatasync(int descriptor)
{
    static const auto next = Next<int (*)(int)>("fdatasync");
    return Disturbed_Sync(descriptor, [&] { return next(descriptor); });
}

} // extern "C"
