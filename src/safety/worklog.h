#pragma once

#include "src/safety/keptfiles.h"
#include "src/safety/logwriter.h"
#include "src/safety/workdocument.h"

#include <QString>

#include <memory>

class TBaseFile;
class TData;
struct TWorkState;

/// The unsaved work of this process on one document, in a database that is created with the first
/// change.
///
/// While the process runs, it holds a lock on the note of the database. If the note is not locked,
/// the process crashed or was killed, and a later process recovers the work.
class TWorkLog
{
public:
    /// @param folder  folder of the databases; created on first use.
    explicit TWorkLog(const QString& folder);
    /// Releases the database.
    ~TWorkLog();
    TWorkLog(const TWorkLog&) = delete;
    TWorkLog& operator=(const TWorkLog&) = delete;

    /// Whether unsaved work is stored.
    bool Exists() const { return d_writer && d_writer->Has_Document(); }

    /// Stores what changed since the last update. On failure, the work as of the last update stays.
    /// @param base      is protected when the database is created.
    bool Update(const TWorkState& state, TBaseFile* base, const TWorkDocument& document);

    /// Whether the stored work refers to the base file.
    bool Has_References() const { return d_writer && d_writer->Has_References(); }
    /// Stores the labels of a page, or an image, instead of a reference to the base file. Fails if
    /// the last update failed, or if the page has changed since.
    bool Store_Reference(const TData& data);
    /// Stores the labels of all pages that have not changed since the last update, instead of
    /// references. Fails if the last update failed.
    bool Store_Labels(const TData& data);

    /// Stores the PNG of an image, if the stored work has this image. Fails if the last update
    /// failed.
    bool Store_Png(const TPageImage& image) { return d_writer && d_writer->Store_Png(image); }

    /// Syncs the stored work to the disk, if something was stored since the last sync.
    bool Sync();
    /// Keeps the size of the database within limits. May take as long as writing the images in it.
    bool Shorten() { return !d_writer || d_writer->Shorten(); }

    /// Deletes the stored work.
    void Discard();
    /// Leaves the stored work to the next start. The next update creates another database.
    void Release();

private:
    bool Create(TBaseFile* base);

    TKeptFolder d_folder;
    QString d_name;   ///< of the database; empty without one
    TKeptNote d_note; ///< open while d_name is set
    std::unique_ptr<TLogWriter> d_writer;
    TWorkDocument d_document;        ///< in the note
    bool d_is_folder_synced = false; ///< since the database was created
};
