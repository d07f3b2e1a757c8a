#include "src/safety/worklog.h"

#include "core/safefile.h"
#include "src/safety/basefile.h"

#include <QFile>
#include <QFileInfo>

TWorkLog::TWorkLog(const QString& folder)
    : d_folder(folder)
{
}

TWorkLog::~TWorkLog()
{
    Release();
}

bool TWorkLog::Create(TBaseFile* base)
{
    if (!d_folder.Prepare())
        return false;
    // The name is just the time, so that the path fits into a narrow window.
    d_name = d_folder.Claim_Name(QString(), &d_note);
    if (d_name.isEmpty())
        return false;
    d_writer = std::make_unique<TLogWriter>();
    if (!d_writer->Create(d_folder.Log_Path(d_name)))
        return false;
    base->Protect(d_folder.Base_Path(d_name));
    // Another program may have replaced the file. The labels are stored at once, the images one by
    // one, since that may take long.
    if (!base->Is_Intact())
        base->Forget_Pages();
    return true;
}

bool TWorkLog::Update(const TWorkState& state, TBaseFile* base, const TWorkDocument& document)
{
    // SQLite goes on writing to a deleted file.
    if (d_writer && !QFile::exists(d_folder.Log_Path(d_name)))
        Discard();
    if (!d_writer && !Create(base)) {
        Discard();
        return false;
    }
    // Save As may have changed the document's path.
    if (document != d_document && d_note.Write(document))
        d_document = document;
    return d_writer->Update(state, *base, document);
}

bool TWorkLog::Store_Reference(const TData& data)
{
    return d_writer && d_writer->Store_Reference(data);
}

bool TWorkLog::Store_Labels(const TData& data)
{
    return d_writer && d_writer->Store_Labels(data);
}

bool TWorkLog::Sync()
{
    if (!d_writer || !d_writer->Sync())
        return !d_writer;
    const QString folder = QFileInfo(d_folder.Log_Path(d_name)).path();
    d_is_folder_synced = d_is_folder_synced || TSafeFile::Sync(folder);
    return d_is_folder_synced;
}

void TWorkLog::Discard()
{
    d_writer.reset();
    if (!d_name.isEmpty())
        d_folder.Remove(d_name);
    Release();
}

void TWorkLog::Release()
{
    // Without a document the files are useless.
    if (d_writer && !d_writer->Has_Document())
        d_folder.Remove(d_name);
    d_writer.reset();
    d_note.Close();
    d_name.clear();
    d_document = TWorkDocument();
    d_is_folder_synced = false;
}
