#include "src/safety/recovery.h"

#include "core/safefile.h"
#include "src/format/projectfile.h"

#include <QFile>
#include <QFileInfo>

bool TCopyPolicy::Is_Due(qint64 now) const
{
    return !d_has_copy || now - d_end >= Rest_Factor * d_duration;
}

void TCopyPolicy::Record_Copy(qint64 begin, qint64 end)
{
    d_has_copy = true;
    d_end = end;
    // Copying a small document may take less than a millisecond.
    d_duration = qMax<qint64>(1, end - begin);
}

TRecovery::TRecovery(const QString& folder)
    : d_folder(folder)
{
}

TRecovery::~TRecovery()
{
    Release();
}

void TRecovery::Release()
{
    // Without a copy the note is useless.
    if (!d_name.isEmpty() && !d_has_copy)
        d_folder.Remove(d_name);
    d_note.Close();
    d_name.clear();
    d_document.clear();
    d_has_copy = false;
}

QString TRecovery::Path() const
{
    return Has_Copy() ? d_folder.Copy_Path(d_name) : QString();
}

bool TRecovery::Write(const TProjectWriter& project, const QString& document)
{
    if (!Is_Possible())
        return false;
    // The name is just the time, so that the path fits into a narrow window.
    if (d_name.isEmpty())
        d_name = d_folder.Claim_Name(QString(), &d_note);
    if (d_name.isEmpty())
        return false;
    // Save As may have changed the document's path since the last copy.
    if (document != d_document && d_note.Write(document))
        d_document = document;

    TSafeFile copy(d_folder.Copy_Path(d_name), TSafeFile::TKind::Private);
    const bool written = copy.Is_Beside() && ProjectFile::Commit(project, &copy);
    d_has_copy = d_has_copy || written;
    return written;
}

void TRecovery::Discard()
{
    d_has_copy = false;
    Release();
}

std::vector<TKeptFile> TRecovery::Abandoned() const
{
    std::vector<TKeptFile> abandoned;
    for (const TKeptFile& file : d_folder.List()) {
        if (Is_Abandoned(file))
            abandoned.push_back(file);
    }
    return abandoned;
}

bool TRecovery::Is_Abandoned(const TKeptFile& file) const
{
    return TKeptFolder::Is_Free(d_folder.Note_Path(TKeptFolder::Name_Of(file.path)));
}

void TRecovery::Remove_Abandoned(const QString& path) const
{
    if (!d_folder.Contains(path))
        return;
    for (const TKeptFile& file : Abandoned()) {
        if (QFileInfo(file.path).fileName() == QFileInfo(path).fileName())
            d_folder.Remove(TKeptFolder::Name_Of(file.path));
    }
}
