// A record is a line, followed by the bytes if it is a write:
//
//   create INODE PATH     rename INODE TO<tab>FROM     write INODE PLACE LENGTH
//   link INODE PATH       mkdir INODE PATH             truncate INODE SIZE
//   unlink 0 PATH         sync INODE PATH              mark 0 TEXT
//
// Paths are relative to the folder. That of "create" is empty for a file without a name.

#include "recorder.h"

#include "faultlibrary.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// The folder with a slash at its end; empty if nothing is recorded. It is never destroyed, because
/// files are still closed and opened after the destructors of static objects.
const std::string& Folder()
{
    static const std::string& folder = *[] {
        const char* const path = std::getenv("QUILLET_RECORD_FOLDER");
        return new std::string(path ? std::string(path) + '/' : std::string());
    }();
    return folder;
}

/// The path below the folder; null for others.
const char* Relative(const char* path)
{
    const std::string& folder = Folder();
    const bool is_below =
        !folder.empty() && path && std::strncmp(path, folder.c_str(), folder.size()) == 0;
    return is_below ? path + folder.size() : nullptr;
}

// The system calls themselves, since the functions of the C library lead back to the fault library.
int Open(const char* path, int flags)
{
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC, 0600));
}

void Write_All(const char* bytes, size_t size)
{
    static const int target =
        Open(std::getenv("QUILLET_RECORD"), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
    while (size > 0) {
        const auto written = static_cast<ssize_t>(syscall(SYS_write, target, bytes, size));
        if (written <= 0)
            std::abort();
        bytes += written;
        size -= static_cast<size_t>(written);
    }
}

__attribute__((format(printf, 1, 2))) void Write_Line(const char* format, ...)
{
    char line[2 * PATH_MAX + 64];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    Write_All(line, static_cast<size_t>(length));
}

unsigned long Inode_Of(const char* path)
{
    struct stat state = {};
    return lstat(path, &state) == 0 ? state.st_ino : 0;
}

/// The inode of an open file below the folder; 0 for others.
unsigned long Watched_Inode(int descriptor, std::string* path = nullptr)
{
    if (Folder().empty())
        return 0;
    char link[64];
    char target[PATH_MAX] = {};
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor);
    if (readlink(link, target, sizeof(target) - 1) < 0)
        return 0;
    const char* relative = Relative(target);
    // The folder itself.
    if (!relative && Folder() == std::string(target) + '/')
        relative = "";
    struct stat state = {};
    if (!relative || fstat(descriptor, &state) != 0)
        return 0;
    if (path)
        *path = relative;
    return state.st_ino;
}

} // namespace

bool Recorder::Is_New(const char* path)
{
    return Relative(path) && Inode_Of(path) == 0;
}

void Recorder::Opened(int descriptor, int flags, bool is_new)
{
    std::string path;
    const unsigned long inode = Watched_Inode(descriptor, &path);
    if (inode == 0)
        return;
    // A temporary file gets its name by link().
    if ((flags & O_TMPFILE) == O_TMPFILE)
        Write_Line("create %lu \n", inode);
    else if (is_new)
        Write_Line("create %lu %s\n", inode, path.c_str());
    else if (flags & O_TRUNC)
        Write_Line("truncate %lu 0\n", inode);
}

void Recorder::Wrote(int descriptor, ssize_t size, off64_t place)
{
    const unsigned long inode = size > 0 ? Watched_Inode(descriptor) : 0;
    if (inode == 0)
        return;
    if (place < 0)
        place = lseek64(descriptor, 0, SEEK_CUR) - size;
    // Read the bytes from the file, since not every call has them as an argument. The descriptor
    // may be for writing only, so open another one.
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const int readable = Open(link.c_str(), O_RDONLY);
    std::string bytes(static_cast<size_t>(size), '\0');
    if (pread64(readable, &bytes.front(), bytes.size(), place) != size)
        std::abort();
    close(readable);
    Write_Line("write %lu %lld %zd\n", inode, static_cast<long long>(place), size);
    Write_All(bytes.data(), bytes.size());
}

void Recorder::Truncated(int descriptor, off64_t size)
{
    if (const unsigned long inode = Watched_Inode(descriptor))
        Write_Line("truncate %lu %lld\n", inode, static_cast<long long>(size));
}

void Recorder::Synced(int descriptor)
{
    std::string path;
    if (const unsigned long inode = Watched_Inode(descriptor, &path))
        Write_Line("sync %lu %s\n", inode, path.c_str());
}

void Recorder::Linked(const char* to)
{
    if (const char* const path = Relative(to))
        Write_Line("link %lu %s\n", Inode_Of(to), path);
}

void Recorder::Renamed(const char* from, const char* to)
{
    const char* const old_path = Relative(from);
    const char* const path = Relative(to);
    if (old_path && path)
        Write_Line("rename %lu %s\t%s\n", Inode_Of(to), path, old_path);
}

void Recorder::Unlinked(const char* path)
{
    if (const char* const relative = Relative(path))
        Write_Line("unlink 0 %s\n", relative);
}

void Recorder::Made_Folder(const char* path)
{
    if (const char* const relative = Relative(path))
        Write_Line("mkdir %lu %s\n", Inode_Of(path), relative);
}

extern "C" void Quillet_Record_Mark(const char* text)
{
    if (!Folder().empty())
        Write_Line("mark 0 %s\n", text);
}
