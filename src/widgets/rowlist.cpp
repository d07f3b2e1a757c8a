#include "src/widgets/rowlist.h"

#include <QEvent>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <QtMath>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

namespace {

// A text of letters in this range is one line, exactly as high as the font.
const ushort first_letter = 0x20;
const ushort last_letter = 0xff;

} // namespace

/// Gives every row the size of the largest.
///
/// A list with uniform rows asks for the size of one row only. This delegate keeps the largest size
/// that any row has needed.
class TRowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Discards all measurements.
    void Reset()
    {
        d_letter_widths.clear();
        d_widest_text = 0.0;
        d_size = QSize();
    }

    /// Whether a row with this text certainly fits. A quick test before Measure.
    bool Fits(const QString& text) const
    {
        return d_size.isValid() && Sum_Of_Letters(text).value_or(qInf()) <= d_widest_text;
    }

    /// Measures a row. Returns whether the size of the rows has changed.
    bool Measure(const QStyleOptionViewItem& option, const QModelIndex& row)
    {
        // Only when there is a row: measuring earlier would slow down the start of the program.
        if (d_letter_widths.empty())
            Measure_Letters(option.font);
        QSize size = QStyledItemDelegate::sizeHint(option, row);
        const QString text = row.data().toString();
        if (const std::optional<qreal> width = Sum_Of_Letters(text)) {
            d_widest_text = std::max(d_widest_text, *width);
            // Kerning makes this text narrower, but perhaps not the next one.
            const qreal kerning = *width - option.fontMetrics.horizontalAdvance(text);
            size.rwidth() += qCeil(std::max(kerning, 0.0));
        }
        size = size.expandedTo(d_size);
        return std::exchange(d_size, size) != size;
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return d_size;
    }

private:
    /// The width of a text without kerning, a hundred times faster than a layout. Null for a text
    /// with letters out of range.
    std::optional<qreal> Sum_Of_Letters(const QString& text) const
    {
        qreal width = 0.0;
        for (const QChar letter : text) {
            if (letter.unicode() < first_letter || letter.unicode() > last_letter)
                return std::nullopt;
            width += d_letter_widths[letter.unicode() - first_letter];
        }
        return width;
    }

    void Measure_Letters(const QFont& font)
    {
        const QFontMetricsF metrics(font);
        for (ushort letter = first_letter; letter <= last_letter; ++letter)
            d_letter_widths.push_back(metrics.horizontalAdvance(QChar(letter)));
    }

    std::vector<qreal> d_letter_widths; ///< pixels; empty before the first row
    qreal d_widest_text = 0.0;          ///< pixels, without kerning
    QSize d_size;                       ///< of all rows
};

TRowList::TRowList(QWidget* parent)
    : QListWidget(parent)
    , d_delegate(new TRowDelegate(this))
{
    setItemDelegate(d_delegate);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragDropMode(QAbstractItemView::InternalMove);
}

QListWidgetItem* TRowList::Row(int id) const
{
    if (d_rows.size() != count()) {
        d_rows.clear();
        for (int index = 0; index < count(); ++index)
            d_rows.insert(item(index)->data(Id_Role).toInt(), item(index));
    }
    if (d_rows.count(id) < 2)
        return d_rows.value(id);
    // The order of rows with the same id depends on how the user moved them.
    int index = 0;
    while (item(index)->data(Id_Role).toInt() != id)
        ++index;
    return item(index);
}

void TRowList::Remove_Row(int id)
{
    if (const QListWidgetItem* const found = Row(id))
        const std::unique_ptr<QListWidgetItem> taken(takeItem(row(found)));
}

QListWidgetItem* TRowList::Only_Selected_Row() const
{
    const QList<QListWidgetItem*> selected = selectedItems();
    return selected.size() == 1 ? selected.first() : nullptr;
}

std::vector<int> TRowList::Selected_Ids() const
{
    const QList<QListWidgetItem*> selected = selectedItems();
    std::vector<int> ids;
    ids.reserve(static_cast<std::size_t>(selected.size()));
    for (const QListWidgetItem* const one : selected)
        ids.push_back(one->data(Id_Role).toInt());
    return ids;
}

void TRowList::Select_Rows(const std::vector<int>& ids)
{
    std::vector<int> rows;
    for (const int id : ids) {
        if (const QListWidgetItem* const found = Row(id))
            rows.push_back(row(found));
    }
    const QModelIndex current = rows.empty() ? QModelIndex() : model()->index(rows.back(), 0);
    std::sort(rows.begin(), rows.end());

    // One selection, so that the list reports one change. Adjacent rows form one range, since Qt
    // compares each range with each other.
    QItemSelection selection;
    for (auto first = rows.cbegin(); first != rows.cend();) {
        auto end = std::next(first);
        while (end != rows.cend() && *end <= *std::prev(end) + 1)
            ++end;
        selection.select(model()->index(*first, 0), model()->index(*std::prev(end), 0));
        first = end;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (current.isValid())
        selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
}

void TRowList::reset()
{
    QListWidget::reset();
    d_rows.clear();
    d_delegate->Reset();
    Measure_Rows(0, count() - 1);
}

void TRowList::keyPressEvent(QKeyEvent* event)
{
    // The keys of the number pad do the same.
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if (key == Qt::Key_Delete && modifiers == Qt::NoModifier) {
        // Holding the key down must not emit the signal again.
        if (!event->isAutoRepeat())
            Q_EMIT Delete_Pressed();
    } else if ((key == Qt::Key_Up || key == Qt::Key_Down) && modifiers == Qt::AltModifier) {
        Move_Selected_Rows(key == Qt::Key_Up ? -1 : 1);
    } else {
        QListWidget::keyPressEvent(event);
    }
}

/// Moves each selected row up or down by one. Does nothing when one of them cannot move.
/// @param direction  -1 to move up, 1 to move down.
void TRowList::Move_Selected_Rows(int direction)
{
    std::vector<int> rows;
    const QModelIndexList selected = selectionModel()->selectedRows();
    for (const QModelIndex& row : selected)
        rows.push_back(row.row());
    // Start at the end towards which the rows move, so that no selected row passes another.
    std::sort(rows.begin(), rows.end(),
              [direction](int left, int right) { return left * direction > right * direction; });
    if (rows.empty() || rows.front() + direction < 0 || rows.front() + direction >= count())
        return;
    // The list moves dragged rows with the same operation.
    for (const int index : rows)
        model()->moveRow(QModelIndex(), index, QModelIndex(),
                         direction < 0 ? index - 1 : index + 2);
    scrollTo(currentIndex());
}

void TRowList::rowsInserted(const QModelIndex& parent, int first, int last)
{
    for (int index = first; index <= last; ++index)
        d_rows.insert(item(index)->data(Id_Role).toInt(), item(index));
    Measure_Rows(first, last);
    QListWidget::rowsInserted(parent, first, last);
}

void TRowList::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last)
{
    QListWidget::rowsAboutToBeRemoved(parent, first, last);
    for (int index = first; index <= last; ++index)
        d_rows.remove(item(index)->data(Id_Role).toInt(), item(index));
}

void TRowList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QListWidget::selectionChanged(selected, deselected);
    if (!selected.isEmpty() || !deselected.isEmpty())
        Q_EMIT Selected_Rows_Changed();
}

void TRowList::dataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                           const QVector<int>& roles)
{
    // An empty list of roles means that any may have changed.
    if (roles.isEmpty() || roles.contains(Id_Role))
        d_rows.clear();
    // A list view lays out all rows again whenever one changes. That is needed only when their size
    // changes.
    if (Measure_Rows(top_left.row(), bottom_right.row()))
        QListWidget::dataChanged(top_left, bottom_right, roles);
    else // NOLINTNEXTLINE(bugprone-parent-virtual-call): skips the layout by the list view.
        QAbstractItemView::dataChanged(top_left, bottom_right, roles);
}

void TRowList::changeEvent(QEvent* event)
{
    QListWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        d_delegate->Reset();
        Measure_Rows(0, count() - 1);
    }
}

QStyleOptionViewItem TRowList::Row_Options() const
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStyleOptionViewItem options;
    initViewItemOption(&options);
    return options;
#else
    return viewOptions();
#endif
}

/// Measures rows. Returns whether the size of all rows has changed.
bool TRowList::Measure_Rows(int first, int last)
{
    bool has_changed = false;
    for (int index = first; index <= last; ++index) {
        if (!d_delegate->Fits(item(index)->text()))
            has_changed |= d_delegate->Measure(Row_Options(), model()->index(index, 0));
    }
    return has_changed;
}
