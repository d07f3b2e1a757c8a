#include "core/openfile.h"

#include "core/workwatch.h"

#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

/// In bytes. TWorkWatch is notified of each block.
constexpr qint64 copy_size = 8 * 1024 * 1024;

/// All open files that have a name. The list is never destroyed, since static objects may close
/// files at the end of the program.
std::vector<TOpenFile*>& Named_Files()
{
    static auto* const files = new std::vector<TOpenFile*>;
    return *files;
}

/// Removes a file from that list.
void Remove_From_Named(TOpenFile* file)
{
    std::vector<TOpenFile*>& files = Named_Files();
    files.erase(std::remove(files.begin(), files.end(), file), files.end());
}

int Open_Unnamed()
{
    const QByteArray temporary = qgetenv("TMPDIR");
    const QByteArray folder = temporary.isEmpty() ? QByteArray("/var/tmp") : temporary;
    const int descriptor =
        open(folder.constData(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0)
        return descriptor;
    // Some file systems do not support files without names.
    QByteArray name = folder + "/quillet-XXXXXX";
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0)
        unlink(name.constData());
    return named;
}

/// Reads exactly that many bytes.
bool Read_All(int descriptor, qint64 offset, qint64 length, char* bytes)
{
    while (length > 0) {
        const ssize_t count =
            pread(descriptor, bytes, static_cast<std::size_t>(std::min(length, copy_size)), offset);
        if (count <= 0)
            return false;
        TWorkWatch::Notify();
        bytes += count;
        offset += count;
        length -= count;
    }
    return true;
}

} // namespace

TOpenFile::TOpenFile(int descriptor)
    : d_descriptor(descriptor)
{
}

TOpenFile::~TOpenFile()
{
    Remove_From_Named(this);
    close(d_descriptor);
}

std::shared_ptr<TOpenFile> TOpenFile::Open(const QString& path)
{
    // O_NONBLOCK: do not wait for the writer of a FIFO.
    const int descriptor =
        open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return nullptr;
    std::shared_ptr<TOpenFile> file(new TOpenFile(descriptor));
    struct stat state = {};
    if (fstat(descriptor, &state) != 0 || !S_ISREG(state.st_mode))
        return nullptr;
    file->d_stamp = TFileStamp::Of(state);
    Named_Files().push_back(file.get());
    return file;
}

std::shared_ptr<TOpenFile> TOpenFile::Create_Unnamed()
{
    const int descriptor = Open_Unnamed();
    return descriptor < 0 ? nullptr : std::shared_ptr<TOpenFile>(new TOpenFile(descriptor));
}

bool TOpenFile::Is_Changed() const
{
    struct stat state = {};
    return d_stamp && (fstat(d_descriptor, &state) != 0 || TFileStamp::Of(state) != *d_stamp);
}

QByteArray TOpenFile::Read(qint64 offset, qint64 length) const
{
    if (length <= 0 || length > Largest_Read || Is_Changed())
        return QByteArray();
    QByteArray bytes(static_cast<int>(length), Qt::Uninitialized);
    // The file may change while it is read.
    return Read_All(d_descriptor, offset, length, bytes.data()) && !Is_Changed() ? bytes
                                                                                 : QByteArray();
}

bool TOpenFile::Copy_To(QFileDevice* file, qint64 offset, qint64 length) const
{
    if (Is_Changed() || !file->flush())
        return false;
    const qint64 end = offset + length;
    while (offset < end) {
        loff_t position = offset;
        const ssize_t count =
            copy_file_range(d_descriptor, &position, file->handle(), nullptr,
                            static_cast<std::size_t>(std::min(end - offset, copy_size)), 0);
        // Not every pair of file systems supports it.
        if (count <= 0)
            break;
        TWorkWatch::Notify();
        offset += count;
    }
    return Copy_Blocks(file, offset, end - offset) && !Is_Changed();
}

bool TOpenFile::Copy_Blocks(QFileDevice* file, qint64 offset, qint64 length) const
{
    while (length > 0) {
        const QByteArray block = Read(offset, std::min(length, copy_size));
        if (block.isEmpty() || file->write(block) != block.size())
            return false;
        offset += block.size();
        length -= block.size();
    }
    return true;
}

bool TOpenFile::Write(qint64 offset, const QByteArray& bytes)
{
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    while (next < end) {
        const ssize_t count =
            pwrite(d_descriptor, next, static_cast<std::size_t>(end - next), offset);
        if (count <= 0)
            return false;
        next += count;
        offset += count;
    }
    return true;
}

void TOpenFile::Discard(qint64 offset, qint64 length)
{
    // Where the file system cannot do that, the space is returned when the file is closed.
    fallocate(d_descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, offset, length);
}

bool TOpenFile::Copy_Before_Overwriting(const QString& path)
{
    struct stat target = {};
    if (stat(QFile::encodeName(path).constData(), &target) != 0)
        return true;
    const std::vector<TOpenFile*> files = Named_Files();
    return std::all_of(files.cbegin(), files.cend(), [&target](TOpenFile* file) {
        struct stat state = {};
        const bool is_target = fstat(file->d_descriptor, &state) == 0 &&
                               state.st_dev == target.st_dev && state.st_ino == target.st_ino;
        // What another program has changed is lost already.
        return !is_target || file->Is_Changed() || file->Copy_Into_Unnamed();
    });
}

bool TOpenFile::Copy_Into_Unnamed()
{
    QFile copy;
    const int descriptor = Open_Unnamed();
    if (descriptor < 0)
        return false;
    // The device does not close the descriptor, which this object keeps.
    if (!copy.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        !Copy_To(&copy, 0, Size())) {
        close(descriptor);
        return false;
    }
    Remove_From_Named(this);
    close(d_descriptor);
    d_descriptor = descriptor;
    d_stamp.reset();
    return true;
}
