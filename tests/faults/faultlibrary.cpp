// A library that tests preload. It makes the n-th system call of a kind on files below given
// folders fail, do only half its work or kill the process. It logs the calls, and passes all
// successful ones to the recorder.
//
// Tests find its functions with dlsym(). Files are identified through /proc/self/fd, so it does not
// matter how they were opened.

#include "faultlibrary.h"

#include "recorder.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
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
    const bool has_size = call == Write || call == Clone || call == Read;
    if (fault.kind == Kill && !has_size)
        Die();
    return has_size ? Halve : Pass;
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

// Transfers half of the bytes; then the disk is full or broken, or the process dies.
template <typename TTransfer>
ssize_t Disturbed_Transfer(TCall call, size_t size, const TTransfer& transfer)
{
    const int reason = call == Read ? EIO : ENOSPC;
    const TVerdict verdict = Judge(call);
    if (verdict == Refuse)
        return call == Clone && fault.is_full ? 0 : Refused(reason);
    if (verdict == Pass)
        return transfer(size);
    if (fault.kind == Kill_After) {
        transfer(size);
        Die();
    }
    const ssize_t done = size > 1 ? transfer(size / 2) : 0;
    if (fault.kind == Kill)
        Die();
    fault.is_full = true;
    return done > 0 || call == Clone ? done : Refused(reason);
}

template <typename TWrite>
ssize_t Disturbed_Write(TCall call, int descriptor, size_t size, const TWrite& write_part)
{
    if (!fault.armed)
        return write_part(size);
    const TPath path = Path_Of(descriptor);
    if (!Is_Watched(path.text))
        return write_part(size);
    Log("write", path.text);
    return Disturbed_Transfer(call, size, write_part);
}

template <typename TRead>
ssize_t Disturbed_Read(int descriptor, size_t size, const TRead& read_part)
{
    if (!fault.armed || fault.call != Read || !Is_Watched(Path_Of(descriptor).text))
        return read_part(size);
    return Disturbed_Transfer(Read, size, read_part);
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

template <typename TRemove>
int Disturbed_Remove(const char* path, const TRemove& remove_it)
{
    if (!fault.armed || !Is_Watched(path))
        return remove_it();
    Log("unlink", path);
    if (Judge(Remove) == Refuse)
        return Refused(EIO);
    const int result = remove_it();
    After(Remove);
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

template <typename TOpen>
int Opened(const char* path, int flags, const TOpen& open_it)
{
    const bool is_new = Recorder::Is_New(path);
    const int descriptor = Disturbed_Open(path, flags, open_it);
    if (descriptor >= 0)
        Recorder::Opened(descriptor, flags, is_new);
    return descriptor;
}

template <typename TResize>
int Truncated(int descriptor, off64_t size, const TResize& resize_it)
{
    // There is no half of a truncation.
    const auto resize_all = [&](size_t part) -> ssize_t { return part > 0 ? resize_it() : 0; };
    const auto result = static_cast<int>(Disturbed_Write(Write, descriptor, 1, resize_all));
    if (result == 0)
        Recorder::Truncated(descriptor, size);
    return result;
}

template <typename TWrite>
ssize_t Written(int descriptor, size_t size, off64_t offset, const TWrite& write_part)
{
    const ssize_t written = Disturbed_Write(Write, descriptor, size, write_part);
    Recorder::Wrote(descriptor, written, offset);
    return written;
}

template <typename TRename>
int Renamed(const char* from, const char* to, const TRename& rename_it)
{
    const int result = Disturbed_Rename("rename", from, to, rename_it);
    if (result == 0)
        Recorder::Renamed(from, to);
    return result;
}

template <typename TLink>
int Linked(const char* from, const char* to, const TLink& link_it)
{
    const int result = Disturbed_Rename("link", from, to, link_it);
    if (result == 0)
        Recorder::Linked(to);
    return result;
}

template <typename TRemove>
int Removed(const char* path, const TRemove& remove_it)
{
    const int result = Disturbed_Remove(path, remove_it);
    if (result == 0)
        Recorder::Unlinked(path);
    return result;
}

template <typename TSync>
int Synced(int descriptor, const TSync& sync_it)
{
    const int result = Disturbed_Sync(descriptor, sync_it);
    if (result == 0)
        Recorder::Synced(descriptor);
    return result;
}

std::time_t clock_lead = 0; // in seconds

mode_t Mode_Of(int flags, va_list arguments)
{
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}

// The mode of an open call, which only files to be created have.
#define QUILLET_READ_MODE(mode)                                                                    \
    va_list arguments;                                                                             \
    va_start(arguments, flags);                                                                    \
    const mode_t mode = Mode_Of(flags, arguments);                                                 \
    va_end(arguments)

// The intercepted function of the C library.
#define QUILLET_NEXT(name) static const auto next = Next<decltype(&name)>(#name)

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

void Quillet_Advance_Clock(int seconds)
{
    clock_lead += seconds;
}

int open(const char* path, int flags, ...)
{
    QUILLET_READ_MODE(mode);
    QUILLET_NEXT(open);
    return Opened(path, flags, [&] { return next(path, flags, mode); });
}

int open64(const char* path, int flags, ...)
{
    QUILLET_READ_MODE(mode);
    QUILLET_NEXT(open64);
    return Opened(path, flags, [&] { return next(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...)
{
    QUILLET_READ_MODE(mode);
    QUILLET_NEXT(openat);
    return Opened(path, flags, [&] { return next(folder, path, flags, mode); });
}

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    QUILLET_NEXT(write);
    return Written(descriptor, size, -1,
                   [&](size_t part) { return next(descriptor, bytes, part); });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset)
{
    QUILLET_NEXT(pwrite);
    return Written(descriptor, size, offset,
                   [&](size_t part) { return next(descriptor, bytes, part, offset); });
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset)
{
    QUILLET_NEXT(pwrite64);
    return Written(descriptor, size, offset,
                   [&](size_t part) { return next(descriptor, bytes, part, offset); });
}

ssize_t read(int descriptor, void* bytes, size_t size)
{
    QUILLET_NEXT(read);
    return Disturbed_Read(descriptor, size,
                          [&](size_t part) { return next(descriptor, bytes, part); });
}

ssize_t pread(int descriptor, void* bytes, size_t size, off_t offset)
{
    QUILLET_NEXT(pread);
    return Disturbed_Read(descriptor, size,
                          [&](size_t part) { return next(descriptor, bytes, part, offset); });
}

ssize_t pread64(int descriptor, void* bytes, size_t size, off64_t offset)
{
    QUILLET_NEXT(pread64);
    return Disturbed_Read(descriptor, size,
                          [&](size_t part) { return next(descriptor, bytes, part, offset); });
}

int close(int descriptor)
{
    QUILLET_NEXT(close);
    if (!fault.armed || fault.call != Close || !Is_Watched(Path_Of(descriptor).text))
        return next(descriptor);
    const bool is_refused = Judge(Close) == Refuse;
    const int result = next(descriptor);
    After(Close);
    return is_refused ? Refused(EIO) : result;
}

ssize_t copy_file_range(int from, off64_t* from_offset, int to, off64_t* to_offset, size_t size,
                        unsigned int flags)
{
    QUILLET_NEXT(copy_file_range);
    const off64_t offset = to_offset ? *to_offset : -1;
    const bool is_counted_apart = fault.call == Clone || fault.call == Read;
    const TCall call = is_counted_apart ? static_cast<TCall>(fault.call) : Write;
    const ssize_t copied = Disturbed_Write(call, to, size, [&](size_t part) {
        return next(from, from_offset, to, to_offset, part, flags);
    });
    Recorder::Wrote(to, copied, offset);
    return copied;
}

int ftruncate(int descriptor, off_t size)
{
    QUILLET_NEXT(ftruncate);
    return Truncated(descriptor, size, [&] { return next(descriptor, size); });
}

int ftruncate64(int descriptor, off64_t size)
{
    QUILLET_NEXT(ftruncate64);
    return Truncated(descriptor, size, [&] { return next(descriptor, size); });
}

int rename(const char* from, const char* to)
{
    QUILLET_NEXT(rename);
    return Renamed(from, to, [&] { return next(from, to); });
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned int flags)
{
    QUILLET_NEXT(renameat2);
    return Renamed(from, to, [&] { return next(from_folder, from, to_folder, to, flags); });
}

int link(const char* from, const char* to)
{
    QUILLET_NEXT(link);
    return Linked(from, to, [&] { return next(from, to); });
}

int linkat(int from_folder, const char* from, int to_folder, const char* to, int flags)
{
    QUILLET_NEXT(linkat);
    return Linked(from, to, [&] { return next(from_folder, from, to_folder, to, flags); });
}

int unlink(const char* path)
{
    QUILLET_NEXT(unlink);
    return Removed(path, [&] { return next(path); });
}

// Clones files by copying them, because the file system of the tests may not support clones.
int ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    QUILLET_NEXT(ioctl);
    if (!fault.armed || request != FICLONE)
        return next(descriptor, request, argument);
    if (Judge(Clone) == Refuse)
        return Refused(EOPNOTSUPP);
    const int source = static_cast<int>(reinterpret_cast<intptr_t>(argument));
    while (syscall(SYS_copy_file_range, source, nullptr, descriptor, nullptr, INT_MAX, 0) > 0) {
    }
    return 0;
}

int mkdir(const char* path, mode_t mode)
{
    QUILLET_NEXT(mkdir);
    const int result = next(path, mode);
    if (result == 0)
        Recorder::Made_Folder(path);
    return result;
}

int fsync(int descriptor)
{
    QUILLET_NEXT(fsync);
    return Synced(descriptor, [&] { return next(descriptor); });
}

int fdatasync(int descriptor)
{
    QUILLET_NEXT(fdatasync);
    return Synced(descriptor, [&] { return next(descriptor); });
}

int clock_gettime(clockid_t clock, struct timespec* time)
{
    QUILLET_NEXT(clock_gettime);
    const int result = next(clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC)
        time->tv_sec += clock_lead;
    return result;
}

} // extern "C"
