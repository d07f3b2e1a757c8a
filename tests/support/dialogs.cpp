#include "support/dialogs.h"

#include <QAccessible>
#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QTest>

namespace Support {

namespace {

QString Line_In_Words(const QFrame& frame)
{
    const QString shape = frame.frameShape() == QFrame::HLine   ? QStringLiteral("HLine")
                          : frame.frameShape() == QFrame::VLine ? QStringLiteral("VLine")
                                                                : QStringLiteral("frame");
    return frame.frameShadow() == QFrame::Sunken ? shape : shape + QStringLiteral(" not sunken");
}

QString Widget_In_Words(const QWidget& widget)
{
    if (const auto* const label = qobject_cast<const QLabel*>(&widget))
        return label->text();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
        return button->text();
    const QString class_name = QString::fromLatin1(widget.metaObject()->className());
    if (class_name == QLatin1String("QFrame"))
        return Line_In_Words(static_cast<const QFrame&>(widget));
    return class_name;
}

QString Spacer_In_Words(const QSpacerItem& spacer)
{
    const Qt::Orientations grows = spacer.expandingDirections();
    if (grows == Qt::Horizontal)
        return QStringLiteral("horizontal spacer");
    return grows == Qt::Vertical ? QStringLiteral("vertical spacer") : QStringLiteral("spacer");
}

QString Row_In_Words(const QLayout& row)
{
    QStringList words;
    for (int i = 0; i < row.count(); ++i) {
        QLayoutItem* const item = row.itemAt(i);
        words += item->widget() != nullptr ? Widget_In_Words(*item->widget())
                                           : QStringLiteral("stretch");
    }
    return words.join(QStringLiteral(", "));
}

QString In_Words(QLayoutItem* item)
{
    if (item == nullptr)
        return QStringLiteral("nothing");
    if (item->widget() != nullptr)
        return Widget_In_Words(*item->widget());
    if (item->layout() != nullptr)
        return Row_In_Words(*item->layout());
    return Spacer_In_Words(*item->spacerItem());
}

} // namespace

QGridLayout* Grid(const QDialog& dialog)
{
    return qobject_cast<QGridLayout*>(dialog.layout());
}

QLayoutItem* Grid_Cell(const QDialog& dialog, int row, int column)
{
    const QGridLayout* const grid = Grid(dialog);
    for (int i = 0; i < grid->count(); ++i) {
        int its_row, its_column, rows, columns;
        grid->getItemPosition(i, &its_row, &its_column, &rows, &columns);
        if (its_row == row && its_column == column)
            return grid->itemAt(i);
    }
    return nullptr;
}

void Add_Cell_Columns()
{
    QTest::addColumn<QRect>("cells"); // column, row, columns, rows
    QTest::addColumn<QString>("content");
}

void Add_Cell(const char* name, int row, int column, int rows, int columns, const char* content)
{
    QTest::newRow(name) << QRect(column, row, columns, rows) << QString::fromUtf8(content);
}

void Compare_Cell(const QDialog& dialog)
{
    QFETCH(QRect, cells);
    QFETCH(QString, content);
    QLayoutItem* const item = Grid_Cell(dialog, cells.y(), cells.x());
    QCOMPARE(In_Words(item), content);
    const QGridLayout* const grid = Grid(dialog);
    for (int i = 0; i < grid->count(); ++i) {
        if (grid->itemAt(i) != item)
            continue;
        int row, column, rows, columns;
        grid->getItemPosition(i, &row, &column, &rows, &columns);
        QCOMPARE(QRect(column, row, columns, rows), cells);
    }
}

QList<QWidget*> Tab_Order(QDialog* dialog, int count)
{
    dialog->show();
    QApplication::setActiveWindow(dialog);
    QList<QWidget*> order;
    for (int i = 0; i < count; ++i) {
        order += dialog->focusWidget();
        if (dialog->focusWidget() != nullptr)
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    }
    return order;
}

QString Accessible_Label(QWidget* widget)
{
    const auto related =
        QAccessible::queryAccessibleInterface(widget)->relations(QAccessible::Label);
    return related.isEmpty() ? QString() : related.first().first->text(QAccessible::Name);
}

QString Clipped_Widget(const QDialog& dialog)
{
    for (const QWidget* const widget : dialog.findChildren<QWidget*>()) {
        // Parts of a combo box that is not open have no position yet.
        if (!widget->isVisible())
            continue;
        const QSize needed = widget->minimumSizeHint();
        const QRect area(widget->mapTo(&dialog, QPoint(0, 0)), widget->size());
        if (widget->width() < needed.width() || widget->height() < needed.height() ||
            !dialog.rect().contains(area))
            return Widget_In_Words(*widget);
    }
    return QString();
}

} // namespace Support
