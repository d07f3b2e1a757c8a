#include "core/spool.h"

#include "core/openfile.h"

namespace {

/// The file, which exists while it is used, and its end.
struct TSpoolFile
{
    std::weak_ptr<TOpenFile> file;
    qint64 end = 0;
};

} // namespace

TByteSource Spool::Keep(const QByteArray& bytes)
{
    static TSpoolFile spool;
    if (bytes.size() < Smallest_Array)
        return bytes;
    std::shared_ptr<TOpenFile> file = spool.file.lock();
    if (!file) {
        file = TOpenFile::Create_Unnamed();
        spool = {file, 0};
    }
    const qint64 offset = spool.end;
    const qint64 length = bytes.size();
    if (!file || !file->Write(offset, bytes))
        return bytes;
    spool.end += length;
    const std::shared_ptr<const TOpenFile> part(
        file.get(), [file, offset, length](TOpenFile*) { file->Discard(offset, length); });
    return {part, offset, length};
}
