#pragma once

#include "src/format/fileplaces.h"
#include "src/format/pagetexts.h"
#include "src/model/appearance.h"
#include "src/model/pageitem.h"
#include "src/safety/basefile.h"
#include "src/safety/database.h"
#include "src/safety/workdocument.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

/// A page in a work log.
struct TLoggedPage
{
    int page_id = 0;
    int position = 0;
    QString name;
    quint64 image_id = 0;               ///< 0 for a page without an image
    std::optional<TFilePart> reference; ///< to the labels in the base file
    QByteArray items_digest;            ///< as in TPagePlace; empty without a reference
};

/// Reads the work log of a process that has ended, and does not change it.
///
/// Of a damaged log, reads what is readable.
class TLogReader
{
    Q_DECLARE_TR_FUNCTIONS(TLogReader)

public:
    enum class TContent {
        Work,      ///< a document
        Nothing,   ///< the process ended before it wrote the document
        Unreadable ///< see Problem()
    };

    /// Opens a log and reads everything but labels and images.
    /// @param backup_folder  where the base file may be after a save.
    TContent Open(const QString& path, const QString& backup_folder);
    /// Why the log is not readable.
    QString Problem() const { return d_problem; }

    const TAppearance& Appearance() const { return d_appearance; }
    const TWorkDocument& Document() const { return d_document; }
    /// Time of the last change.
    const QDateTime& Changed() const { return d_changed; }
    /// The pages in the order of the page list.
    const std::vector<TLoggedPage>& Pages() const { return d_pages; }

    /// The document of a page's labels; none if neither the log nor a base file has it.
    /// @param texts  stored in the document where Latin-1 cannot represent them.
    std::optional<QByteArray> Items(const TLoggedPage& page, const TPageTexts& texts);
    /// The bytes of a page's image, empty without one; none if neither the log nor a base file has
    /// it.
    std::optional<QByteArray> Image(const TLoggedPage& page);

    /// Whether nothing was unreadable so far.
    bool Is_Whole() const { return d_is_whole; }
    /// Whether the write-ahead log has changes that damage makes unreadable.
    bool Has_Ignored_Changes() const { return d_has_ignored_changes; }
    /// Checks the structure of the whole database.
    bool Check();

private:
    TContent Unreadable(const QString& problem);
    TContent Unreadable_Unless(bool is_unfinished);
    bool Read_Document();
    void Read_Base(const QString& log_path, const QString& backup_folder);
    void Read_Pages();
    std::vector<TDataItem> Labels(int page_id);
    void End(const TStatement& query);

    TDatabase d_database;
    std::optional<TBaseReader> d_base;
    QString d_problem;
    TAppearance d_appearance;
    TWorkDocument d_document;
    QDateTime d_changed;
    std::vector<TLoggedPage> d_pages;
    bool d_is_whole = true;
    bool d_has_ignored_changes = false;
};
