#pragma once

#include "src/format/fileplaces.h"
#include "src/model/appearance.h"
#include "src/model/pageitem.h"
#include "src/safety/database.h"
#include "src/safety/workdocument.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

class TBaseFile;
class TData;
struct TNamedPage;
struct TWorkState;

/// Writes the database of a work log: the document with all unsaved changes.
///
/// Pages and images that the base file has are references to it. Each update compares the document
/// with what the database holds, page by page, and writes the difference in one transaction. After
/// a failure the database still holds the document of the last successful update.
class TLogWriter
{
public:
    TLogWriter();
    ~TLogWriter();
    TLogWriter(const TLogWriter&) = delete;
    TLogWriter& operator=(const TLogWriter&) = delete;

    /// Creates a database without a document. The file must not exist.
    bool Create(const QString& path);
    bool Is_Open() const { return d_database.Is_Open(); }
    /// Whether the database holds a document.
    bool Has_Document() const { return d_has_document; }

    /// Writes what changed since the last update.
    bool Update(const TWorkState& state, const TBaseFile& base, const TWorkDocument& document);

    /// Whether the document refers to the base file, or may do so after a failure.
    bool Has_References() const;
    /// Replaces one reference, if there is one, by the labels of the page or by the image.
    /// Fails if the last update failed, if the page has changed since, or if the image cannot be
    /// read.
    bool Store_Reference(const TData& data);
    /// Replaces all references to labels of pages that have not changed since the last update.
    /// Fails if the last update failed.
    bool Store_Labels(const TData& data);

    /// Replaces the bytes of an image that the document has by its PNG, so that it need not be
    /// encoded again. Fails if the last update failed.
    bool Store_Png(const TPageImage& image);

    /// Syncs everything written so far to the disk.
    bool Sync();
    /// Shortens the write-ahead log if that is much longer than what the last transactions wrote.
    bool Shorten();

    /// Number of rows written so far.
    qint64 Written_Rows() const { return d_database.Changed_Rows(); }

private:
    /// The row of a page.
    struct TRow
    {
        int position = -1; ///< in the page list; negative if there is no row
        QString name;
        quint64 image_id = 0;
        TFilePart reference;     ///< to the labels in the base file; a negative offset for none
        QByteArray items_digest; ///< as in TPagePlace; empty without a reference

        bool Is_Reference() const { return reference.offset >= 0; }
        bool operator==(const TRow& other) const
        {
            return position == other.position && name == other.name && image_id == other.image_id &&
                   reference.offset == other.reference.offset;
        }
    };
    /// The row of a page and those of its labels.
    struct TPage
    {
        TRow row;
        quint64 revision = 0;
        std::vector<TDataItem> items; ///< empty if the row is a reference
    };
    struct TStatements;

    template <typename... TValue>
    bool Run(TStatement* statement, const TValue&... values);
    bool End(bool is_complete);
    bool Start_Over();
    bool Write_Document(const TAppearance& appearance, const TWorkDocument& document);
    bool Write_Base(const TBaseFile& base);
    bool Remove_Other_Pages(const TWorkState& state);
    bool Write_Pages(const TWorkState& state, const TBaseFile& base);
    bool Write_Page(const TNamedPage& named, int position, const TPageItem& page,
                    const TBaseFile& base);
    bool Write_Content(const TPageItem& page, const TBaseFile& base, TPage* logged, TRow* row);
    bool Write_Labels(const TPageItem& page, TPage* logged);
    bool Replace_Reference(const TPageItem& page, TPage* logged);
    bool Write_Image(const TPageImage& image, const TBaseFile& base);
    bool Write_Row(int page_id, const TRow& row, TPage* logged);

    TDatabase d_database;
    std::unique_ptr<TStatements> d_statements;

    // What the database holds, or will hold after the transaction.
    bool d_is_known = true; ///< false after a failure: the rest is out of date
    bool d_has_document = false;
    bool d_has_base = false;
    bool d_is_synced = true;
    TAppearance d_appearance;
    TWorkDocument d_document;
    std::unordered_map<int, TPage> d_pages; ///< by page id
    QHash<quint64, bool> d_images; ///< by id; true for a reference, or if it could not be read
    qint64 d_image_bytes = 0;      ///< stored since the write-ahead log was shortened
};
