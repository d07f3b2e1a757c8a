#include "support/worklogs.h"

#include "core/safefile.h"
#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "src/safety/logconversion.h"
#include "src/safety/logreader.h"
#include "support/support.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>

namespace {

QByteArray Bytes_Of(const TProjectWriter& writer)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writer.Write_To(&buffer);
    return buffer.data();
}

} // namespace

TWorkState Support::State_Of(const TDocument& document)
{
    return {document.appearance, document.pages, &document.data};
}

QByteArray Support::Project_Of(const TDocument& document)
{
    TProjectWriter writer;
    const TAppearance& appearance = document.appearance;
    writer.Write_Integer(appearance.label_size);
    for (const QString& text : {appearance.color_name, appearance.header_1, appearance.header_2})
        writer.Write_Text(text);
    std::vector<TNamedPage> rows = document.pages;
    const auto is_unknown = [&document](const TNamedPage& row) {
        return document.data.Page_Index(row.page_id) < 0;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), is_unknown), rows.end());
    writer.Write_Integer(static_cast<int>(rows.size()));
    TPageTexts texts{QString(), appearance.header_1, appearance.header_2};
    for (const TNamedPage& row : rows) {
        const TPageItem& page = document.data.Page(row.page_id);
        texts.name = row.name;
        writer.Write_Page(row.name, page, TProjectWriter::TImageBytes::Source,
                          ItemList::Write(page.data_items, ItemList::TBadText::Leave_Out, texts));
        texts = TPageTexts();
    }
    return Bytes_Of(writer);
}

int Support::Add_Page(TDocument* document, const QString& name, const TPageImage& image, int labels)
{
    const int page_id = document->Add_Page(name, image);
    document->data.Set_Active_Page(page_id);
    for (int label = 1; label <= labels; ++label)
        document->data.Add_Item({label, label, QString("Label %1").arg(label), label % 9,
                                 QPointF(label, 0.25 * label), false});
    return page_id;
}

QByteArray Support::Saved(const TDocument& document, TFilePlaces* places)
{
    TProjectWriter writer;
    ProjectFile::Write(document.appearance, document.pages, document.data, nullptr, &writer);
    *places = writer.Places();
    return Bytes_Of(writer);
}

TBaseFile Support::Save_As_Base(const TDocument& document, const QString& path)
{
    TFilePlaces places;
    Write_File(path, Saved(document, &places));
    return TBaseFile(path, TFileStamp::Of(path), places);
}

QByteArray Support::Recovered(const QString& log_path, int* missing_images)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("copy.log");
    QFile::copy(log_path, path);
    QFile::copy(log_path + "-wal", path + "-wal");
    QFile::copy(QString(log_path).replace(".log", ".base"), folder.filePath("copy.base"));
    TLogReader log;
    const QString backup_folder = QFileInfo(log_path).path() + "/../backup";
    if (log.Open(path, backup_folder) != TLogReader::TContent::Work)
        return QByteArray();
    TSafeFile target(folder.filePath("a.quillet"));
    const LogConversion::TResult result =
        LogConversion::Write(&log, LogConversion::TDamage::Refuse, &target, nullptr);
    if (missing_images)
        *missing_images = result.missing_images;
    return Read_File(folder.filePath("a.quillet"));
}
