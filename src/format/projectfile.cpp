#include "src/format/projectfile.h"

#include "core/conversion.h"
#include "core/safefile.h"
#include "core/xmlfile.h"
#include "src/data.h"
#include "src/format/imageencoder.h"
#include "src/format/itemlist.h"
#include "src/model/appearance.h"

#include <QCoreApplication>
#include <QFile>
#include <QIODevice>
#include <QScopeGuard>

#include <algorithm>
#include <cassert>
#include <optional>

namespace {

/// In bytes. Labels of a page, and all fields up to the next image, are mostly one read.
constexpr qint64 window_size = 4096;

} // namespace

TProjectWriter::TProjectWriter()
{
    Write_Integer(ProjectLayout::Magic);
}

void TProjectWriter::Write_Integer(int value)
{
    QByteArray bytes(sizeof(value), '\0');
    Conversion::Set_Integer(0, value, &bytes);
    Append(bytes);
}

void TProjectWriter::Write_Text(const QString& text)
{
    Write_Bytes(text.toLatin1());
}

void TProjectWriter::Write_Bytes(const QByteArray& bytes)
{
    Write_Integer(bytes.size());
    Append(bytes);
}

void TProjectWriter::Write_Image(const TPageImage& image, TImageBytes which)
{
    const TByteSource bytes =
        which == TImageBytes::Png ? image.Stored_Png() : image.Stored_Source();
    Write_Integer(static_cast<int>(bytes.Size()));
    Append(bytes);
}

void TProjectWriter::Write_Page(const QString& name, const TPageItem& page, TImageBytes which,
                                const QByteArray& items)
{
    TPagePlace place;
    place.revision = page.revision;
    place.image_id = page.image.Id();
    Write_Text(name);
    Write_Image(page.image, which);
    place.image = Last_Field();
    place.image_ends = TPagePlace::Ends_Of(d_pieces.back());
    Write_Bytes(items);
    place.items = Last_Field();
    place.items_digest = TPagePlace::Digest_Of(items);
    d_places.push_back(place);
}

TFilePart TProjectWriter::Last_Field() const
{
    const qint64 length = d_pieces.back().Size();
    return {d_size - length, length};
}

void TProjectWriter::Append(const TByteSource& bytes)
{
    d_pieces.push_back(bytes);
    d_size += bytes.Size();
}

qint64 TProjectWriter::Size() const
{
    return d_size;
}

bool TProjectWriter::Write_To(QIODevice* device) const
{
    return std::all_of(d_pieces.cbegin(), d_pieces.cend(),
                       [device](const TByteSource& piece) { return piece.Write_To(device); });
}

bool TProjectWriter::Flush_To(QIODevice* device)
{
    const bool is_written = Write_To(device);
    d_pieces.clear();
    return is_written;
}

TProjectReader::TProjectReader(const TByteSource& file)
    : d_file(file)
{
}

bool TProjectReader::Read_Magic()
{
    return d_file.Size() >= ProjectLayout::Minimum_File && Read_Integer() == ProjectLayout::Magic;
}

int TProjectReader::Read_Integer()
{
    if (!d_valid)
        return 0;
    const QByteArray bytes = Read({d_position, ProjectLayout::Integer_Size});
    if (!d_valid)
        return 0;
    const int value = Conversion::Integer(0, bytes);
    d_position += ProjectLayout::Integer_Size;
    return value;
}

QString TProjectReader::Read_Text()
{
    const QByteArray field = Read_Bytes();
    return QString::fromLatin1(field.constData(),
                               static_cast<int>(qstrnlen(field.constData(), field.size())));
}

QByteArray TProjectReader::Read_Bytes()
{
    return Read(Read_Field());
}

TPageImage TProjectReader::Read_Image()
{
    const TFilePart field = Read_Field();
    return TPageImage::From_Bytes(d_file.Part(field.offset, field.length));
}

/// Reads a part of the file.
QByteArray TProjectReader::Read(const TFilePart& part)
{
    const qint64 end = part.offset + part.length;
    if (part.offset < d_window_offset || end > d_window_offset + d_window.size()) {
        d_window_offset = part.offset;
        d_window = d_file.Read(part.offset, qMax(part.length, window_size));
        d_valid = d_valid && (!d_window.isEmpty() || !d_file.Is_Lost());
    }
    return d_window.mid(static_cast<int>(part.offset - d_window_offset),
                        static_cast<int>(part.length));
}

TFilePart TProjectReader::Read_Field()
{
    const int length = Read_Integer();
    d_valid = d_valid && length >= 0;
    if (!d_valid)
        return {0, 0};
    // The position cannot be past the end: the length before it has just been read.
    d_last_field = {d_position, std::min<qint64>(length, d_file.Size() - d_position)};
    d_position += length;
    return d_last_field;
}

namespace {

void Write_Header(const TAppearance& appearance, int page_count, TProjectWriter* writer)
{
    writer->Write_Integer(appearance.label_size);
    writer->Write_Text(appearance.color_name);
    writer->Write_Text(appearance.header_1);
    writer->Write_Text(appearance.header_2);
    writer->Write_Integer(page_count);
}

void Write_Page(const TPageTexts& texts, const TPageItem& page, TProjectWriter* writer)
{
    writer->Write_Page(texts.name, page, TProjectWriter::TImageBytes::Png,
                       ItemList::Write(page.data_items, ItemList::TBadText::Refuse, texts));
}

/// Returns false if a field has a negative length.
bool Read_Header(TProjectReader* reader, TFileContent* content)
{
    content->label_size = reader->Read_Integer();
    const QString color_name = reader->Read_Text();
    if (!reader->Is_Valid())
        return false;
    content->color_name = color_name;
    const QString header_1 = reader->Read_Text();
    const QString header_2 = reader->Read_Text();
    if (!reader->Is_Valid())
        return false;
    content->header_1 = header_1;
    content->header_2 = header_2;
    return true;
}

/// Returns false if a field has a negative length; such a page is not added.
/// @throws TXmlFileException on bad labels; those before the fault are added.
bool Read_Page(TProjectReader* reader, TFileContent* content)
{
    TFilePage page;
    page.name = reader->Read_Text();
    page.image = reader->Read_Image();
    page.place.image = reader->Last_Field();
    page.place.image_ends = TPagePlace::Ends_Of(page.image.Stored_Source());
    const QByteArray items = reader->Read_Bytes();
    page.place.items = reader->Last_Field();
    page.place.items_digest = TPagePlace::Digest_Of(items);
    if (!reader->Is_Valid())
        return false;
    content->pages->push_back(page);
    TPageTexts texts;
    // Even if the labels have a fault.
    const auto restore = qScopeGuard([content, &texts] {
        PageTexts::Restore(texts.name, &content->pages->back().name);
        if (content->pages->size() > 1)
            return;
        PageTexts::Restore(texts.header_1, &content->header_1);
        PageTexts::Restore(texts.header_2, &content->header_2);
    });
    ItemList::Read(
        items, [content](const TDataItem& item) { content->pages->back().items.push_back(item); },
        &texts);
    return true;
}

bool Read_Pages(TProjectReader* reader, const TProgressReport& report, TFileContent* content)
{
    content->pages.emplace();
    const int page_count = reader->Read_Integer();
    for (int number = 1; number <= page_count; ++number) {
        if (report)
            report(number, page_count);
        if (!Read_Page(reader, content))
            return false;
    }
    return true;
}

/// Reads an integer at a device's position; empty at the device's end.
std::optional<int> Next_Integer(QIODevice* device)
{
    const QByteArray bytes = device->read(ProjectLayout::Integer_Size);
    if (bytes.size() != ProjectLayout::Integer_Size)
        return std::nullopt;
    return Conversion::Integer(0, bytes);
}

/// Skips fields; false when one of them is not complete.
bool Skip_Fields(QIODevice* device, qint64 count)
{
    for (qint64 field = 0; field < count; ++field) {
        const std::optional<int> length = Next_Integer(device);
        if (!length || *length < 0 || *length > device->size() - device->pos() ||
            !device->seek(device->pos() + *length))
            return false;
    }
    return true;
}

} // namespace

bool ProjectFile::Loses_Headers(const TAppearance& appearance, int page_count)
{
    return page_count == 0 && !(PageTexts::Is_Latin1(appearance.header_1) &&
                                PageTexts::Is_Latin1(appearance.header_2));
}

QString ProjectFile::Write(const TAppearance& appearance, const std::vector<TNamedPage>& pages,
                           const TData& data, const TProgressReport& report, TProjectWriter* writer,
                           TImageEncoder* encoder)
{
    assert(writer);
    const int total = static_cast<int>(pages.size());
    std::vector<TPageImage> images;
    images.reserve(pages.size());
    for (const TNamedPage& page : pages)
        images.push_back(data.Page(page.page_id).image);
    // A single image is encoded as fast without another process.
    TImageEncoder own_encoder(qMin(TPngEncoder::Processors(), total));
    encoder = encoder ? encoder : &own_encoder;
    encoder->Set_Images(images);
    Write_Header(appearance, data.Page_Count(), writer);
    try {
        int number = 0;
        for (const TNamedPage& page : pages) {
            ++number;
            if (report)
                report(number, total);
            TPageTexts texts{page.name, QString(), QString()};
            if (number == 1) {
                texts.header_1 = appearance.header_1;
                texts.header_2 = appearance.header_2;
            }
            const TPageItem& item = data.Page(page.page_id);
            encoder->Encode(item.image);
            Write_Page(texts, item, writer);
        }
    } catch (const TXmlFileException& exception) {
        return exception.Message();
    }
    return QString();
}

TFileContent ProjectFile::Read(const TByteSource& file, const TProgressReport& report)
{
    TFileContent content;
    TProjectReader reader(file);
    bool is_valid = reader.Read_Magic() && Read_Header(&reader, &content);
    try {
        if (is_valid)
            is_valid = Read_Pages(&reader, report, &content);
    } catch (const TXmlFileException& exception) {
        content.fault = exception.Message();
    }
    if (!is_valid)
        content.fault = QCoreApplication::translate("TQuillet", "Invalid file.");
    return content;
}

bool ProjectFile::Commit(const TProjectWriter& project, TSafeFile* target)
{
    QFile file(target->Path_To_Write());
    if (!file.open(QIODevice::WriteOnly) || !project.Write_To(&file) || !file.flush())
        return false;
    file.close();
    return target->Commit([&project](const QString& path) {
        return TSafeFile::Is_Complete(path, project.Size(), QByteArray());
    });
}

bool ProjectFile::Is_Whole(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || Next_Integer(&file) != ProjectLayout::Magic ||
        !Next_Integer(&file) || !Skip_Fields(&file, ProjectLayout::Header_Texts))
        return false;
    const std::optional<int> pages = Next_Integer(&file);
    return pages && Skip_Fields(&file, qint64{ProjectLayout::Page_Fields} * *pages) && file.atEnd();
}
