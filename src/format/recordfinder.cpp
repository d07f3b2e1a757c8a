#include "src/format/recordfinder.h"

#include "core/conversion.h"
#include "src/format/itemxml.h"
#include "src/format/projectlayout.h"
#include "src/model/pageimage.h"

namespace {

using ProjectLayout::Integer_Size;
using ProjectLayout::Minimum_Page;

constexpr auto& png_signature = TPageImage::Png_Signature;
constexpr char root_end[] = "</Quillet_Data>";
constexpr char declaration_begin[] = "<?xml";
constexpr int longest_declaration = 128; ///< bytes between a document's beginning and its root
constexpr int longest_tag = 16384;       ///< bytes of a root's begin tag, with the page's texts
constexpr qint64 longest_name = 1024;    ///< bytes of a page name whose length is damaged

/// Length of a string constant.
template <std::size_t Size>
constexpr int Length(const char (&)[Size])
{
    return static_cast<int>(Size) - 1;
}

} // namespace

qint64 TFileField::Length_Offset() const
{
    return begin - Integer_Size;
}

TRecordFinder::TRecordFinder(const TByteSource& file)
    : d_file(file)
    , d_last_root(file.Last_Index_Of(ItemXml::Root_Begin))
{
}

std::optional<int> TRecordFinder::Integer_At(qint64 offset) const
{
    if (offset < 0)
        return std::nullopt;
    const QByteArray bytes = d_file.Read(offset, Integer_Size);
    if (bytes.size() < Integer_Size)
        return std::nullopt;
    return Conversion::Integer(0, bytes);
}

std::optional<TFileField> TRecordFinder::Field_At(qint64 offset) const
{
    const std::optional<int> length = Integer_At(offset);
    if (!length || *length < 0 || *length > Size() - offset - Integer_Size)
        return std::nullopt;
    return TFileField{offset + Integer_Size, *length};
}

bool TRecordFinder::Is_Boundary(qint64 offset) const
{
    if (offset == Size())
        return true;
    const std::optional<TPageRecord> record = Record_At(offset);
    return record &&
           (Begins_With(*record->items, "<") || Begins_With(*record->image, png_signature));
}

bool TRecordFinder::Has_Record_After(qint64 offset) const
{
    return offset < Size() && (Is_Boundary(offset) || offset <= d_last_root);
}

TPageRecord TRecordFinder::Find(qint64 offset) const
{
    std::optional<TPageRecord> record = Record_At(offset);
    if (record && (Is_Boundary(record->end) || offset > d_last_root))
        return *record;
    if (!record || !Begins_With(*record->items, "<"))
        return Rebuilt(offset, true);
    // Only the length of the labels can be wrong.
    const std::optional<TPageRecord> document = Document_After(record->items->begin);
    if (document && document->is_end_sure && document->items->begin == record->items->begin) {
        record->items = document->items;
        record->end = document->end;
    }
    return *record;
}

TPageRecord TRecordFinder::Find_After(qint64 offset) const
{
    return Rebuilt(offset, false);
}

bool TRecordFinder::Begins_With(const TFileField& field, const QByteArray& what) const
{
    return field.length > 0 && d_file.Read(field.begin, what.size()) == what;
}

/// The record that the lengths describe; empty when they point past the end of the file.
std::optional<TPageRecord> TRecordFinder::Record_At(qint64 offset) const
{
    TPageRecord record;
    record.begin = record.end = offset;
    for (std::optional<TFileField>* field : {&record.name, &record.image, &record.items}) {
        *field = Field_At(record.end);
        if (!*field)
            return std::nullopt;
        record.end = (*field)->End();
    }
    return record;
}

/// A record that ends at a known offset. Its lengths locate the name and the image; the rest is the
/// labels.
TPageRecord TRecordFinder::Record_Up_To(qint64 end, qint64 offset) const
{
    TPageRecord record;
    record.begin = offset;
    record.end = end;
    qint64 begin = offset + Integer_Size;
    for (std::optional<TFileField>* field : {&record.name, &record.image}) {
        const int length = Integer_At(begin - Integer_Size).value_or(-1);
        if (length < 0 || begin > end)
            return record;
        *field = TFileField{begin, qMin<qint64>(length, end - begin)};
        begin += qint64{length} + Integer_Size;
    }
    if (begin < end)
        record.items = TFileField{begin, end - begin};
    return record;
}

/// The first label document after an offset, as a record without a name and an image.
std::optional<TPageRecord> TRecordFinder::Document_After(qint64 offset) const
{
    if (offset > d_last_root)
        return std::nullopt;
    const qint64 root = d_file.Index_Of(ItemXml::Root_Begin, offset);
    const qint64 head = qMax(offset, root - longest_declaration);
    const int declaration = d_file.Read(head, root - head).lastIndexOf(declaration_begin);
    const qint64 begin = declaration < 0 ? root : head + declaration;
    TPageRecord record;
    record.items = Field_At(begin - Integer_Size);
    if (!record.items || record.items->length == 0 || !Is_Boundary(record.items->End())) {
        record.items = TFileField{begin, Document_End(root, &record.is_end_sure) - begin};
    }
    record.end = record.items->End();
    return record;
}

/// Where a label document ends.
/// @param is_sure  set to false if the document is not closed and another one follows.
qint64 TRecordFinder::Document_End(qint64 root, bool* is_sure) const
{
    const bool is_last = root == d_last_root;
    const qint64 limit = is_last ? Size() : d_file.Index_Of(ItemXml::Root_Begin, root + 1);
    const TByteSource body = d_file.Part(root, limit - root);
    const QByteArray tag = body.Read(0, longest_tag);
    const int tag_end = tag.indexOf('>');
    if (tag_end > 0 && tag.at(tag_end - 1) == '/')
        return root + tag_end + 1;
    const qint64 close = body.Index_Of(root_end);
    if (close >= 0)
        return root + close + Length(root_end);
    *is_sure = is_last;
    if (is_last)
        return limit;
    const qint64 last_item = body.Last_Index_Of(ItemXml::Item_End);
    return root +
           (last_item < 0 ? Length(ItemXml::Root_Begin) : last_item + Length(ItemXml::Item_End));
}

/// A record with a wrong length, rebuilt around the next label document.
TPageRecord TRecordFinder::Rebuilt(qint64 offset, bool begins_here) const
{
    const std::optional<TPageRecord> document = Document_After(offset);
    if (!document)
        return Record_Up_To(Size(), offset);
    TPageRecord record = *document;
    record.begin = offset;
    record.image = Image_Before(record.items->Length_Offset(), offset);
    if (!record.image)
        return record;
    const qint64 name_end = record.image->Length_Offset();
    record.name = Name_Before(name_end, offset);
    const qint64 found = record.name ? record.name->Length_Offset() : offset;
    if (!begins_here)
        record.begin = record.name ? found : name_end;
    else if (found - offset >= Minimum_Page)
        return Record_Up_To(found, offset); // The document belongs to a later page.
    else if (name_end - offset - Integer_Size <= longest_name)
        record.name = TFileField{offset + Integer_Size, name_end - offset - Integer_Size};
    return record;
}

/// The image that begins after an offset and ends at `end`.
std::optional<TFileField> TRecordFinder::Image_Before(qint64 end, qint64 offset) const
{
    const std::optional<TFileField> name = Field_At(offset);
    const std::optional<TFileField> image = name ? Field_At(name->End()) : std::nullopt;
    if (image && image->End() == end)
        return image;
    std::optional<TFileField> last;
    const TByteSource before = d_file.Part(0, end);
    for (qint64 begin = before.Index_Of(png_signature, offset + Integer_Size); begin >= 0;
         begin = before.Index_Of(png_signature, begin + 1)) {
        last = TFileField{begin, end - begin};
        if (Integer_At(last->Length_Offset()) == last->length)
            return last;
    }
    if (last)
        return last;
    if (end - Integer_Size >= offset && Integer_At(end - Integer_Size) == 0)
        return TFileField{end, 0};
    if (name && name->End() + Integer_Size <= end)
        return TFileField{name->End() + Integer_Size, end - name->End() - Integer_Size};
    return std::nullopt;
}

/// The shortest name that begins after an offset, ends at `end` and has a matching length.
std::optional<TFileField> TRecordFinder::Name_Before(qint64 end, qint64 offset) const
{
    const qint64 longest = qMin(longest_name, end - offset - Integer_Size);
    for (qint64 length = 0; length <= longest; ++length) {
        if (Integer_At(end - length - Integer_Size) == length)
            return TFileField{end - length, length};
    }
    return std::nullopt;
}
