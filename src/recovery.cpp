#include "src/recovery.h"

#include "src/projectfile.h"
#include "src/safefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

int Open_File(const QString& path, int flags)
{
    return open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
}

} // namespace

bool TCopyPolicy::Is_Due(qint64 now) const
{
    return !d_has_copy || now - d_end >= Rest_Factor * d_duration;
}

void TCopyPolicy::Note_Copy(qint64 begin, qint64 end)
{
    d_has_copy = true;
    d_end = end;
    // A clock of milliseconds sees nothing of a small document's copy.
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
    if (d_lock >= 0)
        close(d_lock);
    d_lock = -1;
    d_name.clear();
}

QString TRecovery::Path() const
{
    return Has_Copy() ? d_folder.Copy_Path(d_name) : QString();
}

bool TRecovery::Write(const TProjectWriter& project, const QString& document)
{
    if (!d_folder.Prepare() || (!Has_Copy() && !Claim_Name(document)))
        return false;
    // The document may have got a name since the first copy.
    d_folder.Write_Note(d_name, document);

    TSafeFile copy(Path());
    copy.Set_Private();
    QFile file(copy.Path_To_Write());
    if (!file.open(QIODevice::WriteOnly) || !project.Write_To(&file) || !file.flush())
        return false;
    file.close();
    return copy.Commit([&project](const QString& path) {
        return TSafeFile::Is_Complete(path, project.Size(), QByteArray());
    });
}

/// Takes a name that no run ever had and locks its note, before there is a copy of that name.
bool TRecovery::Claim_Name(const QString& document)
{
    const QString name =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-hhmmsszzz-")) +
        QString::number(QCoreApplication::applicationPid());
    if (!d_folder.Write_Note(name, document))
        return false;
    const int lock = Open_File(d_folder.Note_Path(name), O_RDONLY);
    if (lock < 0)
        return false;
    if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
        close(lock);
        return false;
    }
    d_lock = lock;
    d_name = name;
    return true;
}

void TRecovery::Discard()
{
    if (!Has_Copy())
        return;
    d_folder.Remove(d_name);
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
    const QString name = TKeptFolder::Name_Of(file.path);
    if (name == d_name)
        return false;
    const int note = Open_File(d_folder.Note_Path(name), O_RDONLY);
    if (note < 0)
        return true;
    const bool is_free = flock(note, LOCK_SH | LOCK_NB) == 0;
    close(note);
    return is_free;
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
