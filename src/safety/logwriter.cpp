#include "src/safety/logwriter.h"

#include "src/data.h"
#include "src/safety/basefile.h"
#include "src/safety/logschema.h"
#include "src/safety/workstate.h"

#include <QDateTime>
#include <QFile>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {

/// The write-ahead log may have this size, in bytes, besides the images.
constexpr qint64 log_limit = 4LL * 1024 * 1024;

bool Is_Same(const TDataItem& left, const TDataItem& right)
{
    return Has_Same_Content(left, right);
}

template <typename TItems>
auto Iterator_At(TItems& items, std::size_t index)
{
    return items.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

struct TLogWriter::TStatements
{
    explicit TStatements(TDatabase* database)
        : set_document(database,
                       "INSERT OR REPLACE INTO document VALUES(1, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        , set_base(database, "INSERT INTO base VALUES(1, ?, ?, ?, ?, ?, ?)")
        , refer_to_image(database, "INSERT INTO images VALUES(?, NULL, ?, ?, ?)")
        , set_image(database, "INSERT OR REPLACE INTO images VALUES(?, ?, NULL, NULL, NULL)")
        , set_page(database, "INSERT OR REPLACE INTO pages VALUES(?, ?, ?, ?, NULL, NULL, NULL)")
        , refer_to_page(database, "INSERT OR REPLACE INTO pages VALUES(?, ?, ?, ?, ?, ?, ?)")
        , remove_page(database, "DELETE FROM pages WHERE page_id=?")
        , set_labels(database, "INSERT OR REPLACE INTO labels VALUES(?, ?, ?)")
        , remove_labels(database, "DELETE FROM labels WHERE page_id=? AND first>=?")
    {
    }

    TStatement set_document;
    TStatement set_base;
    TStatement refer_to_image;
    TStatement set_image;
    TStatement set_page;
    TStatement refer_to_page;
    TStatement remove_page;
    TStatement set_labels;
    TStatement remove_labels;
};

TLogWriter::TLogWriter() = default;

TLogWriter::~TLogWriter() = default;

bool TLogWriter::Create(const QString& path)
{
    const QByteArray identification =
        QStringLiteral("PRAGMA application_id=%1; PRAGMA user_version=%2")
            .arg(LogSchema::Application_Id)
            .arg(LogSchema::Version)
            .toLatin1();
    if (!d_database.Create(path) || !d_database.Execute("BEGIN") ||
        !d_database.Execute(identification) || !d_database.Execute(LogSchema::Tables) ||
        !d_database.Execute("COMMIT"))
        return false;
    d_statements = std::make_unique<TStatements>(&d_database);
    return true;
}

bool TLogWriter::Update(const TWorkState& state, const TBaseFile& base,
                        const TWorkDocument& document)
{
    return End((d_is_known || Start_Over()) && Remove_Other_Pages(state) && Write_Base(base) &&
               Write_Pages(state, base) && Write_Document(state.appearance, document));
}

/// Runs a statement in a transaction, which begins with the first statement.
template <typename... TValue>
bool TLogWriter::Run(TStatement* statement, const TValue&... values)
{
    return (d_database.Is_In_Transaction() || d_database.Execute("BEGIN")) &&
           statement->Run(values...);
}

/// Ends the transaction, if one began.
/// @param is_complete  whether to commit it.
bool TLogWriter::End(bool is_complete)
{
    if (is_complete && !d_database.Is_In_Transaction())
        return true;
    if (is_complete && d_database.Execute("COMMIT")) {
        d_has_document = true;
        d_is_synced = false;
        return true;
    }
    // SQLite may have rolled back already.
    if (d_database.Is_In_Transaction())
        d_database.Execute("ROLLBACK");
    d_is_known = false;
    return false;
}

/// Removes all pages, so that they are written again. Images stay.
bool TLogWriter::Start_Over()
{
    d_pages.clear();
    d_images.clear();
    d_appearance = TAppearance();
    d_document = TWorkDocument();
    TStatement images(&d_database, "SELECT image_id, bytes IS NULL FROM images");
    images.Start();
    while (images.Next())
        d_images.insert(static_cast<quint64>(images.Integer(0)), images.Integer(1) != 0);
    TStatement base(&d_database, "SELECT id FROM base");
    base.Start();
    d_has_base = base.Next();
    const bool has_failed = images.Has_Failed() || base.Has_Failed();
    base.Reset();
    images.Reset();
    d_is_known = !has_failed && d_database.Execute("BEGIN") &&
                 d_database.Execute("DELETE FROM pages; DELETE FROM labels");
    return d_is_known;
}

/// Writes the document's row if it differs. Also writes it if anything else was written, because it
/// contains the time.
bool TLogWriter::Write_Document(const TAppearance& appearance, const TWorkDocument& document)
{
    if (d_has_document && !d_database.Is_In_Transaction() && appearance == d_appearance &&
        document == d_document)
        return true;
    d_appearance = appearance;
    d_document = document;
    return Run(&d_statements->set_document, QFile::encodeName(document.path), document.stamp.size,
               document.stamp.seconds, document.stamp.nanoseconds,
               QDateTime::currentMSecsSinceEpoch(), appearance.label_size, appearance.color_name,
               appearance.header_1, appearance.header_2);
}

bool TLogWriter::Write_Base(const TBaseFile& base)
{
    if (d_has_base || !base.Exists())
        return true;
    d_has_base = true;
    const TFileIdentity& file = base.Identity();
    return Run(&d_statements->set_base, QFile::encodeName(file.path), file.device, file.inode,
               file.stamp.size, file.stamp.seconds, file.stamp.nanoseconds);
}

bool TLogWriter::Remove_Other_Pages(const TWorkState& state)
{
    QSet<int> present;
    present.reserve(static_cast<int>(state.pages.size()));
    for (const TNamedPage& row : state.pages)
        present.insert(row.page_id);
    for (auto page = d_pages.begin(); page != d_pages.end();) {
        if (present.contains(page->first)) {
            ++page;
            continue;
        }
        if (!Run(&d_statements->remove_page, page->first) ||
            !Run(&d_statements->remove_labels, page->first, 0))
            return false;
        page = d_pages.erase(page);
    }
    return true;
}

bool TLogWriter::Write_Pages(const TWorkState& state, const TBaseFile& base)
{
    QHash<int, const TPageItem*> pages;
    pages.reserve(state.data->Page_Count());
    for (const TPageItem& page : state.data->Pages())
        pages.insert(page.page_id, &page);
    int position = 0;
    for (const TNamedPage& row : state.pages) {
        // While a page is added or removed, the page list may have rows that the document has not.
        const TPageItem* const page = pages.value(row.page_id);
        if (page && !Write_Page(row, position++, *page, base))
            return false;
    }
    return true;
}

bool TLogWriter::Write_Page(const TNamedPage& named, int position, const TPageItem& page,
                            const TBaseFile& base)
{
    TPage& logged = d_pages[named.page_id];
    TRow row = logged.row;
    row.position = position;
    row.name = named.name;
    return (logged.revision == page.revision || Write_Content(page, base, &logged, &row)) &&
           Write_Row(named.page_id, row, &logged);
}

/// Writes labels and image of a changed page, or refers to those in the base file.
bool TLogWriter::Write_Content(const TPageItem& page, const TBaseFile& base, TPage* logged,
                               TRow* row)
{
    logged->revision = page.revision;
    row->image_id = page.image.Id();
    if (row->image_id != 0 && !d_images.contains(row->image_id) && !Write_Image(page.image, base))
        return false;
    const TPagePlace* const place = base.Find_Page(page.revision);
    row->reference = place ? place->items : TFilePart();
    row->items_digest = place ? place->items_digest : QByteArray();
    if (!place)
        return Write_Labels(page, logged);
    if (logged->items.empty())
        return true;
    logged->items.clear();
    return Run(&d_statements->remove_labels, page.page_id, 0);
}

/// Writes the rows of labels that differ from those in the database.
bool TLogWriter::Write_Labels(const TPageItem& page, TPage* logged)
{
    const std::size_t old_count = logged->items.size();
    const std::size_t count = page.data_items.size();
    logged->items.resize(count);
    for (std::size_t first = 0; first < count; first += LogSchema::Labels_Per_Row) {
        const std::size_t last = std::min(first + LogSchema::Labels_Per_Row, count);
        const std::size_t old_last = std::min(first + LogSchema::Labels_Per_Row, old_count);
        const auto begin = Iterator_At(page.data_items, first);
        const auto end = Iterator_At(page.data_items, last);
        if (last == old_last && std::equal(begin, end, Iterator_At(logged->items, first), Is_Same))
            continue;
        std::copy(begin, end, Iterator_At(logged->items, first));
        if (!Run(&d_statements->set_labels, page.page_id, static_cast<qint64>(first),
                 LogSchema::Encode_Labels(begin, end)))
            return false;
    }
    return count >= old_count ||
           Run(&d_statements->remove_labels, page.page_id, static_cast<qint64>(count));
}

/// Writes an image, or a reference to it.
bool TLogWriter::Write_Image(const TPageImage& image, const TBaseFile& base)
{
    const quint64 id = image.Id();
    if (const TPagePlace* const place = base.Find_Image(id)) {
        d_images.insert(id, true);
        return Run(&d_statements->refer_to_image, id, place->image.offset, place->image.length,
                   place->image_ends);
    }
    // A row that refers to the base file stays: a backup may have the image.
    if (image.Is_Lost()) {
        d_images.insert(id, false);
        return true;
    }
    const TByteSource source = image.Needs_Encoding() ? image.Stored_Source() : image.Stored_Png();
    const QByteArray bytes = source.Read();
    // Keep that row after a read error, too. Store_Reference() may replace it later.
    if (bytes.size() != source.Size()) {
        d_images.insert(id, d_images.value(id, true));
        return true;
    }
    d_images.insert(id, false);
    d_image_bytes += bytes.size();
    return Run(&d_statements->set_image, id, bytes);
}

bool TLogWriter::Write_Row(int page_id, const TRow& row, TPage* logged)
{
    if (row == logged->row)
        return true;
    logged->row = row;
    if (row.Is_Reference())
        return Run(&d_statements->refer_to_page, page_id, row.position, row.name, row.image_id,
                   row.reference.offset, row.reference.length, row.items_digest);
    return Run(&d_statements->set_page, page_id, row.position, row.name, row.image_id);
}

bool TLogWriter::Has_References() const
{
    return !d_is_known || std::any_of(d_pages.cbegin(), d_pages.cend(), [this](const auto& page) {
        return page.second.row.Is_Reference() || d_images.value(page.second.row.image_id);
    });
}

bool TLogWriter::Store_Reference(const TData& data)
{
    if (!d_is_known)
        return false;
    // Labels first: they are small, and may be in no other file.
    auto found = std::find_if(d_pages.begin(), d_pages.end(),
                              [](const auto& page) { return page.second.row.Is_Reference(); });
    const bool has_labels = found != d_pages.end();
    if (!has_labels)
        found = std::find_if(d_pages.begin(), d_pages.end(), [this](const auto& page) {
            return d_images.value(page.second.row.image_id);
        });
    if (found == d_pages.end())
        return true;
    auto& [page_id, logged] = *found;
    if (data.Page_Index(page_id) < 0 || data.Page(page_id).revision != logged.revision)
        return false;
    const TPageItem& page = data.Page(page_id);
    if (has_labels)
        return End(Replace_Reference(page, &logged));
    return End(Write_Image(page.image, TBaseFile())) && !d_images.value(page.image.Id());
}

bool TLogWriter::Store_Labels(const TData& data)
{
    if (!d_is_known)
        return false;
    bool is_written = true;
    for (const TPageItem& page : data.Pages()) {
        const auto found = d_pages.find(page.page_id);
        // The next update writes the labels of a page that has changed.
        if (found != d_pages.end() && found->second.row.Is_Reference() &&
            found->second.revision == page.revision)
            is_written = is_written && Replace_Reference(page, &found->second);
    }
    return End(is_written);
}

/// Writes the labels of a page whose row refers to the base file.
bool TLogWriter::Replace_Reference(const TPageItem& page, TPage* logged)
{
    TRow row = logged->row;
    row.reference = TFilePart();
    row.items_digest.clear();
    return Write_Labels(page, logged) && Write_Row(page.page_id, row, logged);
}

bool TLogWriter::Store_Png(const TPageImage& image)
{
    return d_is_known && (!d_images.contains(image.Id()) || End(Write_Image(image, TBaseFile())));
}

bool TLogWriter::Sync()
{
    d_is_synced = d_is_synced || d_database.Sync();
    return d_is_synced;
}

bool TLogWriter::Shorten()
{
    if (d_database.Log_Size() <= log_limit + 2 * d_image_bytes)
        return true;
    d_image_bytes = 0;
    return d_database.Checkpoint();
}
