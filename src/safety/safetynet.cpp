#include "src/safety/safetynet.h"

#include "core/safefile.h"
#include "src/format/projectfile.h"

#include <QFileInfo>

#include <cstdio>

TSafetyNet::TSafetyNet(const QString& settings_folder, TWriteProject write_project)
    : d_backup(Backup_Folder(settings_folder))
    , d_recovery(Recovery_Folder(settings_folder))
    , d_write_project(std::move(write_project))
    , d_found(d_recovery.Abandoned())
{
    d_recovery.Clean_Up();
    d_backup.Clean_Up();
    d_clock.start();
}

QString TSafetyNet::Backup_Folder(const QString& settings_folder)
{
    return settings_folder + QStringLiteral("/backup");
}

QString TSafetyNet::Recovery_Folder(const QString& settings_folder)
{
    return settings_folder + QStringLiteral("/recovery");
}

void TSafetyNet::Note_Change(const QString& document)
{
    d_is_dirty = true;
    if (d_policy.Is_Due(d_clock.elapsed()))
        Copy(document);
}

void TSafetyNet::Keep_Now(const QString& document)
{
    if (d_is_dirty)
        Copy(document);
}

void TSafetyNet::Copy(const QString& document)
{
    const qint64 begin = d_clock.elapsed();
    // Where nothing can be kept, the document is not put together in vain either.
    const bool is_possible = d_recovery.Is_Possible();
    TProjectWriter project;
    if (is_possible)
        d_write_project(&project);
    if (is_possible && d_recovery.Write(project, document))
        d_is_dirty = false;
    else
        Complain(QStringLiteral("unsaved work cannot be kept"));
    d_policy.Note_Copy(begin, d_clock.elapsed());
}

void TSafetyNet::Before_Save(const QString& document)
{
    // What a save that came short has left is no version that anybody wants back, and would take
    // the place of one.
    if (document == d_short_path && !ProjectFile::Is_Whole(document))
        return;
    // While the work is in a recovery copy on the disk, the backup need not be waited for.
    if (!d_backup.Keep(document, !d_recovery.Has_Copy()))
        Complain(QStringLiteral("the version before a save cannot be kept"));
}

void TSafetyNet::After_Save(const QString& document, qint64 size)
{
    const bool is_whole = QFileInfo(document).size() == size && ProjectFile::Is_Whole(document);
    // The copy may go only when the saved file is on the disk as firmly as the copy is.
    if (!is_whole || (d_recovery.Has_Copy() && !TSafeFile::Sync(document))) {
        d_short_path = document;
        Copy(document);
        return;
    }
    d_short_path.clear();
    d_recovery.Discard();
    Forget_Work();
    if (QFileInfo(d_opened_path) != QFileInfo(document))
        d_recovery.Remove_Abandoned(d_opened_path);
    d_opened_path = document;
}

void TSafetyNet::Give_Up()
{
    d_recovery.Discard();
    Set_Aside();
}

void TSafetyNet::Set_Aside()
{
    d_recovery.Release();
    d_opened_path.clear();
    Forget_Work();
}

void TSafetyNet::Forget_Work()
{
    d_policy.Reset();
    d_is_dirty = false;
}

void TSafetyNet::Complain(const QString& what)
{
    // Not as a warning of the toolkit: those can be switched off or sent elsewhere.
    if (!d_has_complained)
        std::fprintf(stderr, "quillet: %s in the settings folder\n", qPrintable(what));
    d_has_complained = true;
}
