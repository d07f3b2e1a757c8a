#include "src/format/recordfinder.h"

#include "core/conversion.h"
#include "src/format/projectlayout.h"

#include <QByteArrayMatcher>

#include <algorithm>

namespace {

using ProjectLayout::Integer_Size;
using ProjectLayout::Least_Page;

constexpr char png_signature[] = "\x89PNG\r\n\x1a\n";
constexpr char root_begin[] = "<Quillet_Data";
constexpr char root_end[] = "</Quillet_Data>";
constexpr char item_end[] = "</Item>";
constexpr char declaration_begin[] = "<?xml";
constexpr int longest_declaration = 128; ///< bytes between a document's beginning and its root
constexpr int longest_tag = 16384;       ///< bytes of a root's begin tag, with the page's texts
constexpr qint64 longest_name = 1024;    ///< bytes of a page name that is looked for backwards

/// The first of ascending places that is not before an offset; -1 if there is none.
qint64 First_From(const std::vector<int>& places, qint64 offset)
{
    const auto found = std::lower_bound(places.cbegin(), places.cend(), offset);
    return found == places.cend() ? -1 : *found;
}

} // namespace

/// Where a label document was found.
struct TRecordFinder::TDocument
{
    qint64 begin = 0;
    qint64 end = 0;
    bool is_closed = true; ///< whether its end is certain
};

qint64 TFileField::Length_Place() const
{
    return begin - Integer_Size;
}

TRecordFinder::TRecordFinder(const QByteArray& bytes)
    : d_bytes(bytes)
{
}

std::optional<int> TRecordFinder::Integer_At(qint64 offset) const
{
    if (offset < 0 || Size() - offset < Integer_Size)
        return std::nullopt;
    return Conversion::Integer(static_cast<unsigned int>(offset), d_bytes);
}

std::optional<TFileField> TRecordFinder::Field_At(qint64 offset) const
{
    const std::optional<int> length = Integer_At(offset);
    if (!length || *length < 0 || *length > Size() - offset - Integer_Size)
        return std::nullopt;
    return TFileField{offset + Integer_Size, *length};
}

/// The record that the lengths describe; empty when they lead past the end of the file.
std::optional<TPageRecord> TRecordFinder::Chain_At(qint64 offset) const
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

bool TRecordFinder::Is_Document(const TFileField& field) const
{
    return field.length > 0 && d_bytes.at(static_cast<int>(field.begin)) == '<';
}

bool TRecordFinder::Is_Boundary(qint64 offset) const
{
    if (offset == Size())
        return true;
    const std::optional<TPageRecord> record = Chain_At(offset);
    if (!record)
        return false;
    const QByteArray image_head =
        d_bytes.mid(static_cast<int>(record->image->begin), static_cast<int>(Least_Page));
    return Is_Document(*record->items) ||
           (record->image->length > 0 && image_head.startsWith(png_signature));
}

bool TRecordFinder::Has_Record_After(qint64 offset) const
{
    return offset < Size() && (Is_Boundary(offset) || Document_After(offset));
}

TPageRecord TRecordFinder::Find(qint64 offset) const
{
    std::optional<TPageRecord> record = Chain_At(offset);
    if (!record)
        return Rebuilt(offset, true);
    if (Is_Document(*record->items)) {
        if (!Is_Boundary(record->end)) {
            record->items = Fitted(*record->items);
            record->end = record->items->End();
        }
        return *record;
    }
    // Lengths that lead to the next record are right, whatever the labels are.
    if (Is_Boundary(record->end) || !Document_After(offset))
        return *record;
    return Rebuilt(offset, true);
}

TPageRecord TRecordFinder::Find_After(qint64 offset) const
{
    return Rebuilt(offset, false);
}

/// A label field, ended where its document ends.
TFileField TRecordFinder::Fitted(const TFileField& items) const
{
    const std::optional<TDocument> document = Document_After(items.begin);
    if (document && document->is_closed && document->begin == items.begin)
        return {items.begin, document->end - items.begin};
    return items;
}

/// The first label document after an offset.
std::optional<TRecordFinder::TDocument> TRecordFinder::Document_After(qint64 offset) const
{
    const qint64 root = First_From(Roots(), offset);
    if (root < 0)
        return std::nullopt;
    const qint64 next_root = First_From(Roots(), root + 1);
    const QByteArray head =
        d_bytes.mid(static_cast<int>(qMax(offset, root - longest_declaration)),
                    static_cast<int>(qMin<qint64>(root - offset, longest_declaration)));
    const int declaration = head.lastIndexOf(declaration_begin);
    TDocument document;
    document.begin = declaration < 0 ? root : root - head.size() + declaration;

    const qint64 limit = next_root < 0 ? Size() : next_root;
    const QByteArray body =
        QByteArray::fromRawData(d_bytes.constData() + root, static_cast<int>(limit - root));
    const int tag_end = body.left(longest_tag).indexOf('>');
    const int close = body.indexOf(root_end);
    if (tag_end > 0 && body.at(tag_end - 1) == '/') {
        document.end = root + tag_end + 1;
    } else if (close >= 0) {
        document.end = root + close + static_cast<int>(sizeof(root_end)) - 1;
    } else {
        document.is_closed = false;
        const int last_item = body.lastIndexOf(item_end);
        document.end = next_root < 0   ? Size()
                       : last_item < 0 ? root + static_cast<int>(sizeof(root_begin)) - 1
                                       : root + last_item + static_cast<int>(sizeof(item_end)) - 1;
    }
    return document;
}

/// A record with a wrong length, rebuilt around the next label document.
TPageRecord TRecordFinder::Rebuilt(qint64 offset, bool begins_here) const
{
    const std::optional<TDocument> document = Document_After(offset);
    if (!document)
        return Remainder(offset);
    const std::optional<TFileField> stored = Field_At(document->begin - Integer_Size);
    TPageRecord record;
    record.begin = offset;
    if (stored && stored->length > 0 && Is_Boundary(stored->End())) {
        record.items = stored;
    } else {
        record.items = TFileField{document->begin, document->end - document->begin};
        record.is_end_sure = document->is_closed || document->end == Size();
    }
    record.end = record.items->End();
    record.image = Image_Before(offset, *document, begins_here);
    if (!record.image)
        return record;
    const qint64 name_end = record.image->Length_Place();
    record.name = Name_Before(offset, name_end);
    const qint64 found = record.name ? record.name->Length_Place() : offset;
    if (!begins_here)
        record.begin = record.name ? found : name_end;
    else if (found - offset >= Least_Page)
        return Lost_Page(offset, found);
    else if (name_end - offset - Integer_Size <= longest_name)
        record.name = TFileField{offset + Integer_Size, name_end - offset - Integer_Size};
    return record;
}

/// A record without a label document: the fields to which its lengths lead, up to the file's end.
TPageRecord TRecordFinder::Remainder(qint64 offset) const
{
    TPageRecord record;
    record.begin = offset;
    record.end = Size();
    qint64 place = offset;
    for (std::optional<TFileField>* field : {&record.name, &record.image, &record.items}) {
        const std::optional<int> length = Integer_At(place);
        if (!length || *length < 0)
            break;
        const qint64 begin = place + Integer_Size;
        *field = TFileField{begin, qMin<qint64>(*length, Size() - begin)};
        place = begin + *length;
    }
    return record;
}

/// What is left of a record whose label document was not found, up to the next record.
TPageRecord TRecordFinder::Lost_Page(qint64 offset, qint64 end) const
{
    TPageRecord record;
    record.begin = offset;
    record.end = end;
    const auto inside = [this, end](qint64 place) {
        const std::optional<TFileField> field = Field_At(place);
        return field && field->End() <= end ? field : std::nullopt;
    };
    record.name = inside(offset);
    if (record.name)
        record.image = inside(record.name->End());
    const qint64 items_begin = record.image ? record.image->End() + Integer_Size : end + 1;
    if (items_begin <= end)
        record.items = TFileField{items_begin, end - items_begin};
    return record;
}

/// The image that ends where the length of a label document begins.
std::optional<TFileField> TRecordFinder::Image_Before(qint64 offset, const TDocument& document,
                                                      bool begins_here) const
{
    const qint64 end = document.begin - Integer_Size;
    const std::optional<TFileField> name = begins_here ? Field_At(offset) : std::nullopt;
    const std::optional<TFileField> chained = name ? Field_At(name->End()) : std::nullopt;
    if (chained && chained->End() == end)
        return chained;
    std::optional<TFileField> image;
    const std::vector<int>& images = Images();
    for (auto place = std::lower_bound(images.cbegin(), images.cend(), offset + Integer_Size);
         place != images.cend() && *place < end; ++place) {
        image = TFileField{*place, end - *place};
        if (Integer_At(*place - Integer_Size) == end - *place)
            return image;
    }
    if (image)
        return image;
    if (end - Integer_Size >= offset && Integer_At(end - Integer_Size) == 0)
        return TFileField{end, 0};
    if (name && name->End() + Integer_Size <= end)
        return TFileField{name->End() + Integer_Size, end - name->End() - Integer_Size};
    return std::nullopt;
}

/// The shortest name that ends at a place, begins after an offset and has a matching length.
std::optional<TFileField> TRecordFinder::Name_Before(qint64 offset, qint64 end) const
{
    const qint64 longest = qMin(longest_name, end - offset - Integer_Size);
    for (qint64 length = 0; length <= longest; ++length) {
        if (Integer_At(end - length - Integer_Size) == length)
            return TFileField{end - length, length};
    }
    return std::nullopt;
}

const std::vector<int>& TRecordFinder::Roots() const
{
    return Places(&d_roots, root_begin);
}

const std::vector<int>& TRecordFinder::Images() const
{
    return Places(&d_images, png_signature);
}

const std::vector<int>& TRecordFinder::Places(std::optional<std::vector<int>>* places,
                                              const QByteArray& what) const
{
    if (*places)
        return **places;
    places->emplace();
    const QByteArrayMatcher matcher(what);
    for (int place = matcher.indexIn(d_bytes); place >= 0;
         place = matcher.indexIn(d_bytes, place + what.size()))
        (*places)->push_back(place);
    return **places;
}
