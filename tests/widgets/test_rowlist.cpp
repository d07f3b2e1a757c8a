// TRowList: rows that are found by id and have one size.

#include "src/widgets/rowlist.h"

#include "support/widgets.h"

#include <QMimeData>
#include <QScopedPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>

#include <memory>

namespace {

QListWidgetItem* New_Row(const QString& text, int id)
{
    auto* const row = new QListWidgetItem(text);
    row->setData(TRowList::Id_Role, id);
    return row;
}

/// The topmost row with an id, by a linear search.
QListWidgetItem* Linear_Search(const TRowList& list, int id)
{
    for (int index = 0; index < list.count(); ++index) {
        if (list.item(index)->data(Qt::UserRole).toInt() == id)
            return list.item(index);
    }
    return nullptr;
}

} // namespace

class TestRowList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void rows_are_found_by_id();
    void a_search_finds_the_topmost_of_rows_with_the_same_id();
    void rows_are_found_after_moves();
    void rows_are_found_after_a_drop_that_recreates_them();
    void rows_are_found_after_ids_change();
    void removed_rows_are_not_found();
    void the_index_agrees_with_a_linear_search();
    void thousands_of_rows_are_found();
    void remove_row_removes_one_row();
    void selected_ids_are_in_the_order_of_selection();
    void only_selected_row_is_null_unless_one_row_is_selected();
    void the_widest_row_can_be_scrolled_into_view_data();
    void the_widest_row_can_be_scrolled_into_view();
    void a_row_that_becomes_wider_can_be_scrolled_into_view();
    void every_row_has_room_for_its_text();
    void another_font_changes_the_row_size();
    void the_widest_row_decides_the_size_in_another_font();
    void the_tallest_row_decides_the_size();
    void clearing_the_list_resets_the_row_size();
    void rows_without_text_have_a_height();

private:
    void Fill(const QList<int>& ids);

    QScopedPointer<QWidget> d_window;
    TRowList* d_list = nullptr;
};

void TestRowList::initTestCase()
{
    Support::Set_Style();
}

void TestRowList::init()
{
    d_window.reset(new QWidget);
    d_window->resize(300, 200);
    d_list = new TRowList(d_window.data());
    d_list->resize(150, 200);
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.data()));
}

void TestRowList::cleanup()
{
    d_window.reset();
}

void TestRowList::Fill(const QList<int>& ids)
{
    for (const int id : ids)
        d_list->addItem(New_Row(QStringLiteral("Row %1").arg(id), id));
}

void TestRowList::rows_are_found_by_id()
{
    QVERIFY(d_list->Row(0) == nullptr);
    Fill({5, -1, 0});
    QCOMPARE(d_list->Row(5), d_list->item(0));
    QCOMPARE(d_list->Row(-1), d_list->item(1));
    QCOMPARE(d_list->Row(0), d_list->item(2));
    QVERIFY(d_list->Row(6) == nullptr);
}

void TestRowList::a_search_finds_the_topmost_of_rows_with_the_same_id()
{
    Fill({1, 7, 2, 7, 7});
    QCOMPARE(d_list->Row(7), d_list->item(1));
    d_list->insertItem(0, d_list->takeItem(3));
    QCOMPARE(d_list->Row(7), d_list->item(0));
    d_list->Remove_Row(7);
    QCOMPARE(d_list->count(), 4);
    QCOMPARE(d_list->Row(7), d_list->item(1));
    d_list->Remove_Row(7);
    QCOMPARE(d_list->Row(7), d_list->item(2));
    d_list->Remove_Row(7);
    QVERIFY(d_list->Row(7) == nullptr);
    QCOMPARE(d_list->count(), 2);
}

void TestRowList::rows_are_found_after_moves()
{
    Fill({1, 2, 3, 4, 2});
    QVERIFY(d_list->model()->moveRow(QModelIndex(), 1, QModelIndex(), 5));
    for (const int id : {1, 2, 3, 4})
        QCOMPARE(d_list->Row(id), Linear_Search(*d_list, id));
    d_list->sortItems(Qt::DescendingOrder);
    for (const int id : {1, 2, 3, 4})
        QCOMPARE(d_list->Row(id), Linear_Search(*d_list, id));
}

void TestRowList::rows_are_found_after_a_drop_that_recreates_them()
{
    Fill({1, 2, 3});
    const std::unique_ptr<QMimeData> dragged(
        d_list->model()->mimeData({d_list->model()->index(0, 0)}));
    QVERIFY(d_list->model()->dropMimeData(dragged.get(), Qt::MoveAction, 3, 0, QModelIndex()));
    QCOMPARE(d_list->count(), 4);
    QCOMPARE(d_list->Row(1), d_list->item(0));
    delete d_list->takeItem(0);
    QCOMPARE(d_list->Row(1), d_list->item(2));
    QCOMPARE(d_list->Row(1)->text(), QStringLiteral("Row 1"));
}

void TestRowList::rows_are_found_after_ids_change()
{
    Fill({1, 2, 3});
    d_list->item(1)->setData(Qt::UserRole, 9);
    QVERIFY(d_list->Row(2) == nullptr);
    QCOMPARE(d_list->Row(9), d_list->item(1));
    d_list->item(2)->setData(Qt::UserRole, 1);
    delete d_list->takeItem(0);
    QCOMPARE(d_list->Row(1), d_list->item(1));
    QVERIFY(d_list->Row(3) == nullptr);
}

void TestRowList::removed_rows_are_not_found()
{
    Fill({1, 2, 3});
    delete d_list->item(0);
    QVERIFY(d_list->Row(1) == nullptr);
    delete d_list->takeItem(0);
    QVERIFY(d_list->Row(2) == nullptr);
    QVERIFY(d_list->model()->removeRows(0, 1));
    QVERIFY(d_list->Row(3) == nullptr);
    Fill({4, 4});
    d_list->clear();
    QVERIFY(d_list->Row(4) == nullptr);
    Fill({4});
    QCOMPARE(d_list->Row(4), d_list->item(0));
}

void TestRowList::the_index_agrees_with_a_linear_search()
{
    const int ids = 12;
    unsigned state = 1;
    const auto draw = [&state](int below) {
        state = state * 1103515245u + 12345u;
        return static_cast<int>((state >> 16) % static_cast<unsigned>(below));
    };
    for (int round = 0; round < 2000; ++round) {
        const int count = d_list->count();
        switch (draw(6)) {
        case 0:
        case 1:
            d_list->insertItem(draw(count + 1), New_Row(QStringLiteral("new"), draw(ids)));
            break;
        case 2:
            d_list->Remove_Row(draw(ids));
            break;
        case 3:
            if (count > 1)
                d_list->insertItem(draw(count), d_list->takeItem(draw(count)));
            break;
        case 4:
            if (count > 1)
                d_list->model()->moveRow(QModelIndex(), draw(count), QModelIndex(),
                                         draw(count + 1));
            break;
        default:
            if (count > 0)
                d_list->item(draw(count))->setData(Qt::UserRole, draw(ids));
        }
        for (int id = 0; id < ids; ++id)
            QCOMPARE(d_list->Row(id), Linear_Search(*d_list, id));
    }
}

void TestRowList::thousands_of_rows_are_found()
{
    const int count = 20000;
    for (int id = 0; id < count; ++id)
        d_list->addItem(New_Row(QStringLiteral("Row"), id));
    for (int id = 0; id < count; ++id)
        QCOMPARE(d_list->row(d_list->Row(id)), id);
    for (int id = 0; id < count; id += 2)
        d_list->Remove_Row(id);
    QCOMPARE(d_list->count(), count / 2);
    QCOMPARE(d_list->Row(count - 1), d_list->item(count / 2 - 1));
}

void TestRowList::remove_row_removes_one_row()
{
    d_list->Remove_Row(1);
    Fill({1, 2});
    d_list->Remove_Row(3);
    QCOMPARE(d_list->count(), 2);
    d_list->Remove_Row(1);
    QCOMPARE(d_list->count(), 1);
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("Row 2"));
}

void TestRowList::selected_ids_are_in_the_order_of_selection()
{
    Fill({4, 5, 6, 7});
    QVERIFY(d_list->Selected_Ids().empty());
    Support::Click_Row(d_list, 3);
    Support::Click_Row(d_list, 0, Qt::ControlModifier);
    QCOMPARE(d_list->Selected_Ids(), std::vector<int>({7, 4}));
}

void TestRowList::only_selected_row_is_null_unless_one_row_is_selected()
{
    Fill({4, 5});
    QVERIFY(d_list->Only_Selected_Row() == nullptr);
    Support::Click_Row(d_list, 1);
    QCOMPARE(d_list->Only_Selected_Row(), d_list->item(1));
    Support::Click_Row(d_list, 0, Qt::ControlModifier);
    QVERIFY(d_list->Only_Selected_Row() == nullptr);
}

void TestRowList::the_widest_row_can_be_scrolled_into_view_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Latin") << QStringLiteral("Item [4] a text that needs a lot of room");
    QTest::newRow("kerned") << QStringLiteral("AVAVAVAVAVAVAVAVAVAV ToToToToTo fififi");
    QTest::newRow("Cyrillic") << QString::fromUtf8("Насос, который нагнетает очень много воды");
}

void TestRowList::the_widest_row_can_be_scrolled_into_view()
{
    QFETCH(QString, text);
    d_list->addItem(QStringLiteral("short"));
    d_list->addItem(text);
    d_list->addItem(QStringLiteral("short"));
    QCoreApplication::processEvents();
    const QRect rect = d_list->visualItemRect(d_list->item(1));
    QVERIFY(rect.width() > d_list->viewport()->width());
    QCOMPARE(d_list->horizontalScrollBar()->maximum(), rect.width() - d_list->viewport()->width());

    // A plain list measures each row.
    QListWidget plain;
    plain.addItem(text);
    const int needed = plain.sizeHintForColumn(0);
    QVERIFY(rect.width() >= needed);
    QVERIFY(rect.width() < needed + needed / 8);
}

void TestRowList::a_row_that_becomes_wider_can_be_scrolled_into_view()
{
    Fill({1, 2, 3});
    QCoreApplication::processEvents();
    QCOMPARE(d_list->horizontalScrollBar()->maximum(), 0);
    d_list->item(0)->setText(QStringLiteral("Item [4] a text that needs a lot of room"));
    QCoreApplication::processEvents();
    QVERIFY(d_list->horizontalScrollBar()->maximum() > 0);
}

void TestRowList::every_row_has_room_for_its_text()
{
    const QStringList texts = {QStringLiteral("one line"), QStringLiteral("two\nlines"),
                               QString::fromUtf8("漢字 กำ"), QStringLiteral("last")};
    for (const QString& text : texts) {
        auto* const row = new QListWidgetItem(text);
        row->setIcon(QIcon(QPixmap(16, 16)));
        d_list->addItem(row);
    }
    QListWidget plain;
    plain.addItems(texts);
    QCoreApplication::processEvents();
    for (int index = 0; index < texts.size(); ++index) {
        const int height = d_list->visualItemRect(d_list->item(index)).height();
        QVERIFY(height >= plain.sizeHintForRow(index));
        QCOMPARE(height, d_list->visualItemRect(d_list->item(0)).height());
    }
}

void TestRowList::another_font_changes_the_row_size()
{
    d_list->addItem(QStringLiteral("Item [4] a text"));
    d_list->addItem(QStringLiteral("short"));
    QCoreApplication::processEvents();
    const QRect before = d_list->visualItemRect(d_list->item(0));
    QFont larger = d_list->font();
    larger.setPointSize(40);
    d_list->setFont(larger);
    QCoreApplication::processEvents();
    const QRect after = d_list->visualItemRect(d_list->item(0));
    QVERIFY(after.height() > before.height());
    QVERIFY(after.width() >= QFontMetrics(larger).horizontalAdvance(d_list->item(0)->text()));
}

void TestRowList::the_widest_row_decides_the_size_in_another_font()
{
    const QString widest = QStringLiteral("Item [4] a text that needs a lot of room");
    d_list->addItems({QStringLiteral("short"), widest, QStringLiteral("short")});
    QFont larger = d_list->font();
    larger.setPointSize(40);
    d_list->setFont(larger);
    QCoreApplication::processEvents();
    const int needed = QFontMetrics(larger).horizontalAdvance(widest);
    for (int index = 0; index < d_list->count(); ++index)
        QVERIFY(d_list->visualItemRect(d_list->item(index)).width() >= needed);
}

/// A wide row after the tallest one must not reduce the height of the rows.
void TestRowList::the_tallest_row_decides_the_size()
{
    const QString two_lines = QStringLiteral("a\nb");
    d_list->addItems({two_lines, QStringLiteral("Item [4] a text that needs a lot of room")});
    QListWidget plain;
    plain.addItem(two_lines);
    QCoreApplication::processEvents();
    QVERIFY(d_list->visualItemRect(d_list->item(1)).height() >= plain.sizeHintForRow(0));
}

void TestRowList::clearing_the_list_resets_the_row_size()
{
    d_list->addItem(QStringLiteral("Item [4] a text that needs a lot of room"));
    d_list->addItem(QString::fromUtf8("Насос, который нагнетает\nочень много воды"));
    QCoreApplication::processEvents();
    const int height = d_list->visualItemRect(d_list->item(0)).height();
    d_list->clear();
    Fill({1});
    QCoreApplication::processEvents();
    QCOMPARE(d_list->horizontalScrollBar()->maximum(), 0);
    QVERIFY(d_list->visualItemRect(d_list->item(0)).height() < height);
}

void TestRowList::rows_without_text_have_a_height()
{
    d_list->clear();
    d_list->addItem(QString());
    QVERIFY(d_list->sizeHintForRow(0) > 0);
}

QTEST_MAIN(TestRowList)
#include "test_rowlist.moc"
