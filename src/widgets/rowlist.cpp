#include "src/widgets/rowlist.h"

#include <QEvent>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <QtMath>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>

namespace {

// Texts of letters in this range stand in one line as high as the font.
const ushort first_letter = 0x20;
const ushort last_letter = 0xff;

/// Whether a change of these roles can make a row larger or smaller, its text apart; no roles at
/// all stand for any of them.
bool May_Change_Size(const QVector<int>& roles)
{
    return roles.isEmpty() || std::any_of(roles.cbegin(), roles.cend(), [](int role) {
               return role < TRowList::Id_Role && role != Qt::DisplayRole && role != Qt::EditRole;
           });
}

} // namespace

/// Gives all rows the size that the largest needs.
///
/// A list with uniform rows asks for the size of one row and cuts the others to it. This delegate
/// keeps in mind what the rows need as they come, and answers for all of them.
class TRowDelegate : public QStyledItemDelegate
{
public:
    explicit TRowDelegate(const QFont& font, QObject* parent)
        : QStyledItemDelegate(parent)
    {
        Set_Font(font);
    }

    /// Starts anew with another font.
    void Set_Font(const QFont& font)
    {
        Forget();
        d_font = font;
        d_knows_letters = false;
    }

    /// Starts anew.
    void Forget()
    {
        d_widest_text.clear();
        d_widest_text_width = 0.0;
        d_unusual_size = QSize();
    }

    /// Takes a text into account by the widths of its letters, which is a hundred times quicker
    /// than to lay it out; kerning and ligatures only make it narrower.
    /// @return false when that is no measure for the text.
    bool Measure_Letters(const QString& text)
    {
        if (!d_knows_letters)
            Learn_Letters();
        qreal width = 0.0;
        for (const QChar letter : text) {
            if (letter.unicode() < first_letter || letter.unicode() > last_letter)
                return false;
            width += d_letter_widths[letter.unicode() - first_letter];
        }
        if (width > d_widest_text_width) {
            d_widest_text_width = width;
            d_widest_text = text;
            ++d_growths;
        }
        return true;
    }

    /// Takes a row into account by laying it out.
    void Measure_Row(const QStyleOptionViewItem& option, const QModelIndex& row)
    {
        const QSize size = d_unusual_size.expandedTo(QStyledItemDelegate::sizeHint(option, row));
        if (size != d_unusual_size)
            ++d_growths;
        d_unusual_size = size;
    }

    /// How often a text or a row has turned out to be the largest so far.
    int Growths() const { return d_growths; }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& row) const override
    {
        QStyleOptionViewItem widest = option;
        initStyleOption(&widest, row);
        widest.text = d_widest_text;
        widest.features |= QStyleOptionViewItem::HasDisplay;
        const QSize size = option.widget->style()->sizeFromContents(
            QStyle::CT_ItemViewItem, &widest, QSize(), option.widget);
        const qreal kerning =
            d_widest_text_width - widest.fontMetrics.horizontalAdvance(d_widest_text);
        return (size + QSize(qCeil(std::max(kerning, 0.0)), 0)).expandedTo(d_unusual_size);
    }

private:
    /// Not done before there is a row: it would take a tenth of the time in which the program
    /// starts.
    void Learn_Letters()
    {
        const QFontMetricsF metrics(d_font);
        for (ushort letter = first_letter; letter <= last_letter; ++letter)
            d_letter_widths[letter - first_letter] = metrics.horizontalAdvance(QChar(letter));
        d_knows_letters = true;
    }

    QFont d_font;
    bool d_knows_letters = false;
    std::array<qreal, last_letter - first_letter + 1> d_letter_widths; ///< pixels
    QString d_widest_text;
    qreal d_widest_text_width = 0.0; ///< pixels, without kerning
    int d_growths = 0;
    QSize d_unusual_size; ///< what the rows need that were laid out
};

TRowList::TRowList(QWidget* parent)
    : QListWidget(parent)
    , d_delegate(new TRowDelegate(font(), this))
{
    setItemDelegate(d_delegate);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragDropMode(QAbstractItemView::InternalMove);
}

QListWidgetItem* TRowList::Row(int id) const
{
    if (d_rows_outdated)
        Index_Rows();
    if (d_rows.count(id) < 2)
        return d_rows.value(id);
    // Which of several rows comes first depends on how the user dragged them.
    int place = 0;
    while (item(place)->data(Id_Role).toInt() != id)
        ++place;
    return item(place);
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
    std::vector<int> places;
    for (const int id : ids) {
        if (const QListWidgetItem* const found = Row(id))
            places.push_back(row(found));
    }
    const QModelIndex current = places.empty() ? QModelIndex() : model()->index(places.back(), 0);
    std::sort(places.begin(), places.end());

    // One selection for all, so that the list reports one change; rows that follow each other are
    // one range in it, since the toolkit compares ranges one by one.
    QItemSelection selection;
    for (auto first = places.cbegin(); first != places.cend();) {
        auto end = std::next(first);
        while (end != places.cend() && *end <= *std::prev(end) + 1)
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
    d_rows_outdated = true;
    d_delegate->Forget();
    Measure_Rows(0, count() - 1);
}

void TRowList::keyPressEvent(QKeyEvent* event)
{
    // Keys of the number pad are the same keys.
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if (key == Qt::Key_Delete && modifiers == Qt::NoModifier) {
        // A key that is held down longer than needed does not ask a second time.
        if (!event->isAutoRepeat())
            Q_EMIT Delete_Pressed();
    } else if ((key == Qt::Key_Up || key == Qt::Key_Down) && modifiers == Qt::AltModifier) {
        Move_Selected_Rows(key == Qt::Key_Up ? -1 : 1);
    } else {
        QListWidget::keyPressEvent(event);
    }
}

/// Moves each selected row by one place, as far as all of them can.
/// @param step  -1 towards the top, 1 towards the end.
void TRowList::Move_Selected_Rows(int step)
{
    std::vector<int> places;
    const QModelIndexList selected = selectionModel()->selectedRows();
    for (const QModelIndex& row : selected)
        places.push_back(row.row());
    // The row that goes ahead first, so that each finds its goal free.
    std::sort(places.begin(), places.end(),
              [step](int left, int right) { return step < 0 ? left < right : left > right; });
    if (places.empty() || places.front() + step < 0 || places.front() + step >= count())
        return;
    // The same operation by which the list moves rows that are dragged.
    for (const int place : places)
        model()->moveRow(QModelIndex(), place, QModelIndex(), step < 0 ? place - 1 : place + 2);
    scrollTo(currentIndex());
}

void TRowList::rowsInserted(const QModelIndex& parent, int first, int last)
{
    for (int place = first; place <= last; ++place)
        d_rows.insert(item(place)->data(Id_Role).toInt(), item(place));
    Measure_Rows(first, last);
    QListWidget::rowsInserted(parent, first, last);
}

void TRowList::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last)
{
    QListWidget::rowsAboutToBeRemoved(parent, first, last);
    for (int place = first; place <= last; ++place)
        d_rows.remove(item(place)->data(Id_Role).toInt(), item(place));
}

void TRowList::dataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                           const QVector<int>& roles)
{
    // No roles at all means that any of them may have changed.
    if (roles.isEmpty() || roles.contains(Id_Role))
        d_rows_outdated = true;
    const bool have_grown = (roles.isEmpty() || roles.contains(Qt::DisplayRole)) &&
                            Measure_Rows(top_left.row(), bottom_right.row());
    // A list view lays all rows out anew whenever one changes. Rows of one size need that only when
    // the size changes; otherwise what any view does is enough.
    if (have_grown || May_Change_Size(roles))
        QListWidget::dataChanged(top_left, bottom_right, roles);
    else // The list view's own step is what is left out.
         // NOLINTNEXTLINE(bugprone-parent-virtual-call)
        QAbstractItemView::dataChanged(top_left, bottom_right, roles);
}

void TRowList::changeEvent(QEvent* event)
{
    QListWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        d_delegate->Set_Font(font());
        Measure_Rows(0, count() - 1);
    }
}

void TRowList::Index_Rows() const
{
    d_rows.clear();
    for (int place = 0; place < count(); ++place)
        d_rows.insert(item(place)->data(Id_Role).toInt(), item(place));
    d_rows_outdated = false;
}

/// Takes rows into account; true when the size of all rows has become another.
bool TRowList::Measure_Rows(int first, int last)
{
    const int growths = d_delegate->Growths();
    for (int place = first; place <= last; ++place) {
        const QListWidgetItem* const row = item(place);
        if (!d_delegate->Measure_Letters(row->text()))
            d_delegate->Measure_Row(viewOptions(), indexFromItem(row));
    }
    return d_delegate->Growths() != growths;
}
