#include "src/safety/logreader.h"

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "src/safety/backup.h"
#include "src/safety/keptfiles.h"
#include "src/safety/logschema.h"
#include "src/safety/logtail.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// The single value of a query; none if it fails.
std::optional<qint64> Number(TDatabase* database, const char* query)
{
    TStatement statement(database, query);
    if (!statement.Start() || !statement.Next())
        return std::nullopt;
    return statement.Integer(0);
}

} // namespace

TLogReader::TContent TLogReader::Open(const QString& path, const QString& backup_folder)
{
    const LogTail::TCommits commits = LogTail::Count_Commits(path);
    d_has_ignored_changes = commits.ignored > 0;
    // SQLite takes an empty file for an empty database, and deletes its write-ahead log.
    if (QFileInfo(path).isFile() && QFileInfo(path).size() == 0)
        return Unreadable_Unless(commits.all == 0);
    if (!d_database.Open(path))
        return Unreadable(tr("is not readable: %1").arg(d_database.Error()));
    const std::optional<qint64> tables = Number(&d_database, "SELECT count(*) FROM sqlite_master");
    if (!tables)
        return Unreadable(tr("is not readable: %1").arg(d_database.Error()));
    if (*tables == 0)
        return Unreadable_Unless(commits.all == 0);
    if (Number(&d_database, "PRAGMA application_id") != LogSchema::Application_Id)
        return Unreadable(tr("is not a work log"));
    if (Number(&d_database, "PRAGMA user_version") != LogSchema::Version)
        return Unreadable(tr("is from another version of the program"));
    // The first commit creates the tables.
    if (!Read_Document())
        return Unreadable_Unless(d_is_whole && commits.all <= 1);
    Read_Base(path, backup_folder);
    Read_Pages();
    return TContent::Work;
}

/// Returns what a log without a document is: the process ended before it wrote one, or it is
/// damaged.
TLogReader::TContent TLogReader::Unreadable_Unless(bool is_unfinished)
{
    return is_unfinished ? TContent::Nothing : Unreadable(tr("is damaged"));
}

TLogReader::TContent TLogReader::Unreadable(const QString& problem)
{
    d_problem = problem;
    return TContent::Unreadable;
}

bool TLogReader::Read_Document()
{
    TStatement query(&d_database, "SELECT path, size, seconds, nanoseconds, changed, label_size,"
                                  " color, header_1, header_2 FROM document");
    query.Start();
    const bool is_found = query.Next();
    if (is_found) {
        d_document = {QFile::decodeName(query.Bytes(0)),
                      {query.Integer(1), query.Integer(2), query.Integer(3)}};
        d_changed = QDateTime::fromMSecsSinceEpoch(query.Integer(4));
        d_appearance = {static_cast<int>(query.Integer(5)), query.Text(6), query.Text(7),
                        query.Text(8)};
    }
    End(query);
    return is_found;
}

void TLogReader::Read_Base(const QString& log_path, const QString& backup_folder)
{
    TStatement query(&d_database, "SELECT path, device, inode, size, seconds, nanoseconds"
                                  " FROM base");
    query.Start();
    if (query.Next()) {
        const TFileIdentity file = {QFile::decodeName(query.Bytes(0)),
                                    static_cast<quint64>(query.Integer(1)),
                                    static_cast<quint64>(query.Integer(2)),
                                    {query.Integer(3), query.Integer(4), query.Integer(5)}};
        const TKeptFolder folder(QFileInfo(log_path).path());
        const TBackup backup(backup_folder);
        d_base.emplace(file, QStringList{folder.Base_Path(TKeptFolder::Name_Of(log_path)),
                                         file.path, backup.Path_For(file.path)} +
                                 backup.Separate_Paths_For(file.path));
    }
    End(query);
}

void TLogReader::Read_Pages()
{
    TStatement query(&d_database, "SELECT page_id, position, name, image_id, items_offset,"
                                  " items_length, items_digest FROM pages");
    query.Start();
    while (query.Next()) {
        TLoggedPage page;
        page.page_id = static_cast<int>(query.Integer(0));
        page.position = static_cast<int>(query.Integer(1));
        page.name = query.Text(2);
        page.image_id = static_cast<quint64>(query.Integer(3));
        if (!query.Is_Null(4))
            page.reference = {query.Integer(4), query.Integer(5)};
        page.items_digest = query.Bytes(6);
        d_pages.push_back(page);
    }
    End(query);
    std::sort(d_pages.begin(), d_pages.end(),
              [](const TLoggedPage& left, const TLoggedPage& right) {
                  return left.position < right.position;
              });
}

std::optional<QByteArray> TLogReader::Items(const TLoggedPage& page, const TPageTexts& texts)
{
    if (!page.reference)
        return ItemList::Write(Labels(page.page_id), ItemList::TBadText::Leave_Out, texts);
    const std::optional<QByteArray> document =
        d_base ? d_base->Read_Items(*page.reference, page.items_digest) : std::nullopt;
    if (!document)
        return std::nullopt;
    try {
        return ItemList::With_Texts(*document, texts);
    } catch (const TXmlFileException&) {
        return std::nullopt;
    }
}

std::vector<TDataItem> TLogReader::Labels(int page_id)
{
    TStatement query(&d_database, "SELECT bytes FROM labels WHERE page_id=? ORDER BY first");
    query.Start(page_id);
    std::vector<TDataItem> items;
    while (query.Next())
        d_is_whole = LogSchema::Decode_Labels(query.Bytes(0), &items) && d_is_whole;
    End(query);
    return items;
}

std::optional<QByteArray> TLogReader::Image(const TLoggedPage& page)
{
    if (page.image_id == 0)
        return QByteArray();
    TStatement query(&d_database, "SELECT bytes, offset, length, ends FROM images"
                                  " WHERE image_id=?");
    query.Start(page.image_id);
    std::optional<QByteArray> image;
    if (query.Next()) {
        if (!query.Is_Null(0))
            image = query.Bytes(0);
        else if (d_base)
            image = d_base->Read_Image({query.Integer(1), query.Integer(2)}, query.Bytes(3));
    }
    End(query);
    return image;
}

void TLogReader::End(const TStatement& query)
{
    d_is_whole = d_is_whole && !query.Has_Failed();
}

bool TLogReader::Check()
{
    TStatement query(&d_database, "PRAGMA quick_check(1)");
    d_is_whole = query.Start() && query.Next() && query.Bytes(0) == "ok" && d_is_whole;
    return d_is_whole;
}
