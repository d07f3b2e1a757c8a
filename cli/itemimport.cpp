#include "cli/itemimport.h"

#include "cli/translate.h"
#include "core/xmlguard.h"
#include "src/format/document.h"
#include "src/model/imagecheck.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Labels farther away are mistakes. The factor is that of the image's size.
constexpr int largest_distance = 10;

/// Replaces line breaks with blanks: a label has one line.
QString In_One_Line(QString text)
{
    static const QRegularExpression line_break(QStringLiteral("\\r\\n|\\r|\\n"));
    return text.replace(line_break, QStringLiteral(" "));
}

/// A label in one line.
QString Description(const TDataItem& label)
{
    const QString text =
        label.text.isEmpty() ? QString() : QStringLiteral(" \"%1\"").arg(label.text);
    return QStringLiteral("%1%2 %3 ")
               .arg(label.value)
               .arg(text, ItemTable::Border_Text(label.border_type)) +
           Tr("at ") + ItemTable::Position_Text(label.position);
}

/// The label that a row makes of another one.
TDataItem Changed(TDataItem label, const TItemRow& row)
{
    label.value = row.item.value;
    label.position = row.item.position;
    if (row.has_text)
        label.text = In_One_Line(row.item.text);
    if (row.has_border)
        label.border_type = row.item.border_type;
    return label;
}

bool Is_Far_Away(double coordinate, int size)
{
    return std::abs(coordinate) > static_cast<double>(size) * largest_distance;
}

} // namespace

TItemImport::TItemImport(std::vector<TItemRow> rows, TOthers others)
    : d_rows(std::move(rows))
    , d_others(others)
{
}

void TItemImport::Check_Positions(const TDocument& document) const
{
    const std::vector<TPageRows> pages = Rows_By_Page(document.pages.size());
    for (std::size_t index = 0; index < pages.size(); ++index) {
        if (pages[index].empty())
            continue;
        const QSize size =
            ImageCheck::Size(document.Content(document.pages[index]).image.Stored_Source());
        if (size.isEmpty())
            continue;
        for (const TItemRow* const row : pages[index]) {
            const QPointF& position = row->item.position;
            if (Is_Far_Away(position.x(), size.width()) || Is_Far_Away(position.y(), size.height()))
                throw TCsvException(
                    Tr("the position %1 is far outside the image of %2 x %3 pixels; use "
                       "--any-place to accept it")
                        .arg(ItemTable::Position_Text(position))
                        .arg(size.width())
                        .arg(size.height()),
                    row->place);
        }
    }
}

QStringList TItemImport::Apply(TDocument* document)
{
    const std::vector<TPageRows> pages = Rows_By_Page(document->pages.size());
    for (const TPageRows& rows : pages) {
        const TNamedPage& page = document->pages[static_cast<std::size_t>(d_page++)];
        const TPageItem& content = document->Content(page);
        const TPageImage image = content.image;
        document->data.Replace_Content(page.page_id, image, Merged(content.data_items, rows));
    }
    return d_changes + QStringList{Tr("labels added: %1, changed: %2, removed: %3, unchanged: %4")
                                       .arg(d_added_count)
                                       .arg(d_changed_count)
                                       .arg(d_removed_count)
                                       .arg(d_label_count - d_added_count - d_changed_count)};
}

std::vector<TItemImport::TPageRows> TItemImport::Rows_By_Page(std::size_t page_count) const
{
    std::vector<TPageRows> pages(page_count);
    for (const TItemRow& row : d_rows) {
        if (static_cast<std::size_t>(row.page) > page_count)
            throw TCsvException(Tr("there is no page %1").arg(row.page), row.place);
        if (!XmlGuard::Is_Text(row.item.text))
            throw TCsvException(Tr("the text has a character that a project cannot store"),
                                row.place);
        pages[static_cast<std::size_t>(row.page) - 1].push_back(&row);
    }
    return pages;
}

/// The ids in the rows of a page.
QSet<int> TItemImport::Named_Ids(const TPageRows& rows)
{
    QSet<int> ids;
    for (const TItemRow* const row : rows) {
        if (!row->has_id)
            continue;
        if (ids.contains(row->item.id))
            throw TCsvException(Tr("an earlier row has the same id %1").arg(row->item.id),
                                row->place);
        ids.insert(row->item.id);
    }
    return ids;
}

/// Returns the labels of a page with its rows.
std::vector<TDataItem> TItemImport::Merged(const std::vector<TDataItem>& old, const TPageRows& rows)
{
    const QSet<int> named = Named_Ids(rows);
    std::vector<TDataItem> labels;
    QHash<int, std::size_t> places; // of the old labels
    for (const TDataItem& label : old) {
        if (d_others == TOthers::Keep || named.contains(label.id)) {
            places.insert(label.id, labels.size());
            labels.push_back(label);
        } else {
            ++d_removed_count;
            Note(Tr("remove ") + Description(label));
        }
    }
    int next_id = 1;
    for (const TItemRow* const row : rows) {
        const auto place = row->has_id ? places.constFind(row->item.id) : places.constEnd();
        if (place != places.constEnd()) {
            Change(*row, &labels[*place]);
            continue;
        }
        while (places.contains(next_id) || named.contains(next_id))
            ++next_id;
        labels.push_back(Changed(TDataItem(), *row));
        labels.back().id = row->has_id ? row->item.id : next_id++;
        ++d_added_count;
        Note(Tr("add ") + Description(labels.back()));
    }
    d_label_count += static_cast<int>(labels.size());
    return labels;
}

void TItemImport::Change(const TItemRow& row, TDataItem* label)
{
    const TDataItem changed = Changed(*label, row);
    if (Has_Same_Content(*label, changed))
        return;
    ++d_changed_count;
    Note(Tr("change ") + Description(*label) + Tr(" to ") + Description(changed));
    *label = changed;
}

void TItemImport::Note(const QString& change)
{
    // A text may contain "%1".
    d_changes += Tr("page %1: ").arg(d_page) + change;
}
