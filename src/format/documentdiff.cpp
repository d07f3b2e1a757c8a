#include "src/format/documentdiff.h"

#include "src/format/document.h"
#include "src/format/itemtable.h"
#include "src/model/imagecheck.h"

#include <QCoreApplication>
#include <QHash>
#include <QImage>
#include <QSet>

#include <algorithm>
#include <cstring>

namespace {

using TKind = TDifference::TKind;

constexpr int No_Page = -1; ///< index of a page that the other document does not have

/// For each page of the left document, the index of the corresponding one on the right.
using TPairs = std::vector<int>;

TPairs Pairs_By_Name(const TDocument& left, const TDocument& right)
{
    QHash<QString, QList<int>> unused;
    for (std::size_t index = 0; index < right.pages.size(); ++index)
        unused[right.pages[index].name].append(static_cast<int>(index));
    TPairs pairs;
    for (const TNamedPage& page : left.pages) {
        QList<int>& indexes = unused[page.name];
        pairs.push_back(indexes.isEmpty() ? No_Page : indexes.takeFirst());
    }
    return pairs;
}

bool Have_Same_Image(const TPageItem& left, const TPageItem& right)
{
    return !left.image.Source_Bytes().isEmpty() && left.image.Is_Same(right.image);
}

/// The indexes of the pages on the right that are in no pair.
std::vector<int> Unpaired(const TPairs& pairs, const TDocument& right)
{
    const QSet<int> paired(pairs.cbegin(), pairs.cend());
    std::vector<int> unpaired;
    for (int index = 0; index < static_cast<int>(right.pages.size()); ++index) {
        if (!paired.contains(index))
            unpaired.push_back(index);
    }
    return unpaired;
}

/// Pairs renamed pages, which still have the same image.
void Pair_By_Image(const TDocument& left, const TDocument& right, TPairs* pairs)
{
    std::vector<int> unpaired = Unpaired(*pairs, right);
    for (std::size_t index = 0; index < pairs->size(); ++index) {
        if ((*pairs)[index] != No_Page)
            continue;
        const TPageItem& content = left.Content(left.pages[index]);
        const auto found = std::find_if(unpaired.begin(), unpaired.end(), [&](int candidate) {
            return Have_Same_Image(content,
                                   right.Content(right.pages[static_cast<std::size_t>(candidate)]));
        });
        if (found == unpaired.end())
            continue;
        (*pairs)[index] = *found;
        unpaired.erase(found);
    }
}

/// Left indexes of the fewest pages that have to move to get from one order to the other: all but
/// a longest ascending sequence.
QSet<int> Moved_Pages(const TPairs& pairs)
{
    std::vector<int> ends;                      // left index of the last page of each length
    std::vector<int> previous(pairs.size(), 0); // left index of the page before, in the sequence
    QSet<int> moved;
    for (int index = 0; index < static_cast<int>(pairs.size()); ++index) {
        const int place = pairs[static_cast<std::size_t>(index)];
        if (place == No_Page)
            continue;
        const auto end = std::lower_bound(ends.begin(), ends.end(), place, [&](int other, int at) {
            return pairs[static_cast<std::size_t>(other)] < at;
        });
        previous[static_cast<std::size_t>(index)] = end == ends.begin() ? No_Page : *(end - 1);
        if (end == ends.end())
            ends.push_back(index);
        else
            *end = index;
        moved.insert(index);
    }
    for (int index = ends.empty() ? No_Page : ends.back(); index != No_Page;
         index = previous[static_cast<std::size_t>(index)])
        moved.remove(index);
    return moved;
}

/// Number of pixels that differ in two images of the same size.
qint64 Different_Pixels(const QImage& left, const QImage& right)
{
    constexpr int four_bytes = 32; // bits
    const bool is_deep = left.depth() > four_bytes || right.depth() > four_bytes;
    // Invisible pixels have no colour.
    const QImage::Format format =
        is_deep ? QImage::Format_RGBA64_Premultiplied : QImage::Format_ARGB32_Premultiplied;
    const QImage first = left.convertToFormat(format);
    const QImage second = right.convertToFormat(format);
    const auto pixel_size = static_cast<std::size_t>(first.depth() / 8);
    qint64 count = 0;
    for (int y = 0; y < first.height(); ++y) {
        const uchar* const first_line = first.constScanLine(y);
        const uchar* const second_line = second.constScanLine(y);
        const std::size_t line_size = static_cast<std::size_t>(first.width()) * pixel_size;
        if (std::memcmp(first_line, second_line, line_size) == 0)
            continue;
        for (std::size_t offset = 0; offset < line_size; offset += pixel_size)
            count +=
                std::memcmp(first_line + offset, second_line + offset, pixel_size) != 0 ? 1 : 0;
    }
    return count;
}

/// The pixels of an image, or those before its first defect.
QImage Readable_Pixels(const TPageImage& image)
{
    const QByteArray bytes = image.Source_Bytes();
    return bytes.isEmpty() || ImageCheck::Fault(bytes).isEmpty() ? image
                                                                 : ImageCheck::Rest(bytes).image;
}

QString Size_Text(const QImage& image)
{
    return image.isNull() ? QCoreApplication::translate("DocumentDiff", "no image")
                          : QStringLiteral("%1 x %2").arg(image.width()).arg(image.height());
}

/// A property of a label and its value.
struct TProperty
{
    const char* name;
    QJsonValue (*value)(const TDataItem&);
};

constexpr TProperty properties[] = {
    {"value", [](const TDataItem& item) { return QJsonValue(item.value); }},
    {"text", [](const TDataItem& item) { return QJsonValue(item.text); }},
    {"border",
     [](const TDataItem& item) { return QJsonValue(ItemTable::Border_Text(item.border_type)); }},
    {"x", [](const TDataItem& item) { return QJsonValue(item.position.x()); }},
    {"y", [](const TDataItem& item) { return QJsonValue(item.position.y()); }},
};

class TComparison
{
public:
    TComparison(const TDocument& left, const TDocument& right)
        : d_left(left)
        , d_right(right)
    {
    }

    std::vector<TDifference> Compare();

private:
    void Compare_Settings();
    void Compare_Pages(const TPageItem& left, const TPageItem& right);
    void Compare_Images(const TPageImage& left, const TPageImage& right);
    void Compare_Labels(const TPageItem& left, const TPageItem& right);
    void Compare_Label(const TDataItem& left, const TDataItem& right);
    void Compare_Values(const char* property, const QJsonValue& left, const QJsonValue& right);
    TDifference& Add(TKind kind);

    const TDocument& d_left;
    const TDocument& d_right;
    TDifference d_place; ///< page and label of the next differences
    std::vector<TDifference> d_differences;
};

std::vector<TDifference> TComparison::Compare()
{
    Compare_Settings();
    TPairs pairs = Pairs_By_Name(d_left, d_right);
    Pair_By_Image(d_left, d_right, &pairs);
    const QSet<int> moved = Moved_Pages(pairs);
    for (int index = 0; index < static_cast<int>(pairs.size()); ++index) {
        const TNamedPage& page = d_left.pages[static_cast<std::size_t>(index)];
        const int pair = pairs[static_cast<std::size_t>(index)];
        d_place.left_page = index + 1;
        d_place.right_page = pair + 1;
        d_place.page_name = page.name;
        if (pair == No_Page) {
            Add(TKind::Removed);
            continue;
        }
        const TNamedPage& other = d_right.pages[static_cast<std::size_t>(pair)];
        if (moved.contains(index))
            Add(TKind::Moved);
        Compare_Values("name", page.name, other.name);
        Compare_Pages(d_left.Content(page), d_right.Content(other));
    }
    for (const int index : Unpaired(pairs, d_right)) {
        d_place.left_page = 0;
        d_place.right_page = index + 1;
        d_place.page_name = d_right.pages[static_cast<std::size_t>(index)].name;
        Add(TKind::Added);
    }
    return std::move(d_differences);
}

void TComparison::Compare_Settings()
{
    const TAppearance& left = d_left.appearance;
    const TAppearance& right = d_right.appearance;
    Compare_Values("label_size", left.label_size, right.label_size);
    Compare_Values("label_color", left.color_name, right.color_name);
    Compare_Values("header_1", left.header_1, right.header_1);
    Compare_Values("header_2", left.header_2, right.header_2);
}

void TComparison::Compare_Pages(const TPageItem& left, const TPageItem& right)
{
    Compare_Images(left.image, right.image);
    Compare_Labels(left, right);
}

void TComparison::Compare_Images(const TPageImage& left, const TPageImage& right)
{
    if (left.Is_Same(right))
        return;
    const QImage left_image = Readable_Pixels(left);
    const QImage right_image = Readable_Pixels(right);
    if (left_image.size() != right_image.size()) {
        Compare_Values("image", Size_Text(left_image), Size_Text(right_image));
        return;
    }
    const qint64 pixels = Different_Pixels(left_image, right_image);
    if (pixels == 0 && !left_image.isNull())
        return;
    TDifference& difference = Add(TKind::Changed);
    difference.property = QStringLiteral("image");
    difference.pixels = pixels;
}

void TComparison::Compare_Labels(const TPageItem& left, const TPageItem& right)
{
    QHash<int, int> indexes; // of the labels on the right, by id
    for (const TDataItem& label : right.data_items)
        indexes.insert(label.id, indexes.size());
    bool is_sorted = true;
    int last_index = -1;
    for (const TDataItem& label : left.data_items) {
        const int index = indexes.value(label.id, -1);
        indexes.remove(label.id);
        d_place.label_id = label.id;
        d_place.label_value = label.value;
        if (index < 0) {
            Add(TKind::Removed);
            continue;
        }
        is_sorted = is_sorted && index > last_index;
        last_index = index;
        Compare_Label(label, right.data_items[static_cast<std::size_t>(index)]);
    }
    for (const TDataItem& label : right.data_items) {
        d_place.label_id = label.id;
        d_place.label_value = label.value;
        if (indexes.contains(label.id))
            Add(TKind::Added);
    }
    d_place.label_id.reset();
    if (!is_sorted)
        Add(TKind::Moved).property = QStringLiteral("labels");
}

void TComparison::Compare_Label(const TDataItem& left, const TDataItem& right)
{
    for (const TProperty& property : properties)
        Compare_Values(property.name, property.value(left), property.value(right));
}

void TComparison::Compare_Values(const char* property, const QJsonValue& left,
                                 const QJsonValue& right)
{
    if (left == right)
        return;
    TDifference& difference = Add(TKind::Changed);
    difference.property = QLatin1String(property);
    difference.left = left;
    difference.right = right;
}

TDifference& TComparison::Add(TKind kind)
{
    d_differences.push_back(d_place);
    d_differences.back().kind = kind;
    return d_differences.back();
}

} // namespace

std::vector<TDifference> DocumentDiff::Compare(const TDocument& left, const TDocument& right)
{
    return TComparison(left, right).Compare();
}
