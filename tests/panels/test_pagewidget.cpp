// The panel with the list of pages.

#include "src/pagewidget.h"

#include "support/support.h"
#include "support/widgets.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QScopedPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

class TestPageWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void the_panel_has_its_initial_state();
    void the_parent_and_flags_are_the_given_ones();
    void widgets_are_in_their_places();
    void signals_and_slots_are_declared_in_order();
    void the_tab_key_goes_from_the_list_to_the_buttons();

    void a_new_page_is_named_after_its_id();
    void adding_a_page_selects_nothing_and_reports_nothing();
    void the_add_button_only_emits_its_signal();
    void the_remove_button_reports_the_selected_pages();
    void removing_takes_the_first_row_with_the_id();
    void removing_an_unknown_page_does_nothing();
    void removing_a_selected_page_reports_the_selection();
    void the_active_page_is_the_only_selected_one();
    void activating_an_unknown_page_keeps_the_selection();
    void renaming_reaches_the_first_row_and_not_the_editor();
    void an_unknown_page_has_no_name();
    void page_ids_follow_the_rows();
    void page_ids_follow_a_drag();
    void clearing_removes_all_rows();
    void clearing_with_a_selection_reports_it_once();
    void clearing_without_a_selection_reports_nothing();

    void selecting_one_page_shows_its_name();
    void selecting_two_pages_empties_the_name_editor();
    void selecting_nothing_disables_editor_and_button();
    void typing_renames_the_selected_page_at_once();
    void typing_renames_one_page_only();
    void the_page_list_is_a_queued_argument();

private:
    void Add_Pages(const QList<int>& page_ids);

    QScopedPointer<TPageWidget> d_panel;
    QListWidget* d_list = nullptr;
    QLineEdit* d_editor = nullptr;
    QToolButton* d_add = nullptr;
    QToolButton* d_remove = nullptr;
};

void TestPageWidget::initTestCase()
{
    Support::Set_Style();
}

void TestPageWidget::init()
{
    d_panel.reset(new TPageWidget(nullptr, Qt::WindowFlags()));
    d_list = Support::Only<QListWidget>(*d_panel);
    d_editor = Support::By_Tool_Tip<QLineEdit>(*d_panel, QStringLiteral("Page Item Name"));
    d_add = Support::By_Tool_Tip<QToolButton>(*d_panel, QStringLiteral("Add Page"));
    d_remove = Support::By_Tool_Tip<QToolButton>(*d_panel, QStringLiteral("Remove Page"));
    QVERIFY(d_list && d_editor && d_add && d_remove);
    d_panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_panel.data()));
}

void TestPageWidget::cleanup()
{
    d_panel.reset();
}

void TestPageWidget::Add_Pages(const QList<int>& page_ids)
{
    for (const int page_id : page_ids)
        d_panel->Add_Page(page_id);
}

void TestPageWidget::the_panel_has_its_initial_state()
{
    const TPageWidget fresh(nullptr, Qt::WindowFlags());
    QCOMPARE(fresh.size(), QSize(280, 250));
    QCOMPARE(fresh.windowTitle(), QStringLiteral("Page List"));
    QCOMPARE(d_list->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(d_list->dragDropMode(), QAbstractItemView::InternalMove);
    QCOMPARE(d_list->count(), 0);
    QVERIFY(!d_list->isSortingEnabled());
    QCOMPARE(d_add->text(), QStringLiteral("+"));
    QCOMPARE(d_remove->text(), QStringLiteral("-"));
    QCOMPARE(d_editor->alignment(), Qt::AlignCenter);
    QVERIFY(d_add->isEnabled());
    QVERIFY(!d_remove->isEnabled());
    QVERIFY(!d_editor->isEnabled());
    QVERIFY(d_editor->text().isEmpty());
    QVERIFY(d_panel->Page_Ids().isEmpty());
}

void TestPageWidget::the_parent_and_flags_are_the_given_ones()
{
    Support::Compare_Parent_And_Flags<TPageWidget>();
}

void TestPageWidget::widgets_are_in_their_places()
{
    auto* const grid = qobject_cast<QGridLayout*>(d_panel->layout());
    QVERIFY(grid != nullptr);
    QCOMPARE(grid->itemAtPosition(0, 0)->widget(), d_list);
    const auto* const row = qobject_cast<QHBoxLayout*>(grid->itemAtPosition(1, 0)->layout());
    QVERIFY(row != nullptr);
    QCOMPARE(row->count(), 4);
    QCOMPARE(row->itemAt(0)->widget(), d_editor);
    const QSpacerItem* const spacer = row->itemAt(1)->spacerItem();
    QVERIFY(spacer != nullptr);
    QCOMPARE(spacer->sizeHint(), QSize(0, 0));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(row->itemAt(2)->widget(), d_add);
    QCOMPARE(row->itemAt(3)->widget(), d_remove);
}

void TestPageWidget::signals_and_slots_are_declared_in_order()
{
    QCOMPARE(Support::Methods(TPageWidget::staticMetaObject, QMetaMethod::Signal),
             QStringList({QStringLiteral("Add_Page()"), QStringLiteral("Remove_Pages(QList<int>)"),
                          QStringLiteral("Selection_Changed(int)")}));
    QCOMPARE(
        Support::Methods(TPageWidget::staticMetaObject, QMetaMethod::Slot),
        QStringList({QStringLiteral("Page_Selection_Changed()"), QStringLiteral("Remove_Page()"),
                     QStringLiteral("Page_Name_Edited(QString)")}));
}

void TestPageWidget::the_tab_key_goes_from_the_list_to_the_buttons()
{
    Add_Pages({1});
    d_panel->Set_Active_Page(1);
    d_panel->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_panel.data()));
    d_list->setFocus();
    for (QWidget* const next : QList<QWidget*>({d_editor, d_add, d_remove, d_list})) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
        QVERIFY(!next->accessibleName().isEmpty());
    }
}

void TestPageWidget::a_new_page_is_named_after_its_id()
{
    Add_Pages({7, -3, 1000});
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("Page 7"));
    QCOMPARE(d_list->item(0)->data(256), QVariant(7));
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("Page -3"));
    QCOMPARE(d_list->item(2)->text(), QStringLiteral("Page 1000"));
    QCOMPARE(d_panel->Page_Name(7), QStringLiteral("Page 7"));
}

void TestPageWidget::adding_a_page_selects_nothing_and_reports_nothing()
{
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    Add_Pages({1});
    QCOMPARE(selection.count(), 0);
    d_panel->Set_Active_Page(1);
    selection.clear();
    Add_Pages({2});
    QCOMPARE(selection.count(), 0);
    QVERIFY(d_list->item(0)->isSelected());
    QVERIFY(!d_list->item(1)->isSelected());
}

void TestPageWidget::the_add_button_only_emits_its_signal()
{
    QSignalSpy asked(d_panel.data(), SIGNAL(Add_Page()));
    Add_Pages({1, 2});
    QTest::mouseClick(d_add, Qt::LeftButton);
    QCOMPARE(asked.count(), 1);
    Support::Click_Row(d_list, 0);
    Support::Click_Row(d_list, 1, Qt::ControlModifier);
    QTest::mouseClick(d_add, Qt::LeftButton);
    QCOMPARE(asked.count(), 2);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({1, 2}));
    QCOMPARE(d_list->selectedItems().size(), 2);
}

void TestPageWidget::the_remove_button_reports_the_selected_pages()
{
    Add_Pages({4, 5, 6, 7});
    QSignalSpy removal(d_panel.data(), SIGNAL(Remove_Pages(QList<int>)));
    Support::Click_Row(d_list, 3);
    Support::Click_Row(d_list, 0, Qt::ControlModifier);
    Support::Click_Row(d_list, 1, Qt::ControlModifier);
    QList<int> reported;
    for (const QListWidgetItem* const item : d_list->selectedItems())
        reported.append(item->data(Qt::UserRole).toInt());
    QCOMPARE(reported.size(), 3);
    QTest::mouseClick(d_remove, Qt::LeftButton);
    QCOMPARE(removal.count(), 1);
    QCOMPARE(removal.first().first().value<QList<int>>(), reported);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({4, 5, 6, 7}));
}

void TestPageWidget::removing_takes_the_first_row_with_the_id()
{
    Add_Pages({1, 2, 3, 2});
    d_list->item(1)->setText(QStringLiteral("first"));
    d_list->item(3)->setText(QStringLiteral("second"));
    d_panel->Remove_Page(2);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({1, 3, 2}));
    QCOMPARE(d_panel->Page_Name(2), QStringLiteral("second"));
    d_panel->Remove_Page(2);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({1, 3}));
}

void TestPageWidget::removing_an_unknown_page_does_nothing()
{
    d_panel->Remove_Page(1);
    Add_Pages({1});
    d_panel->Remove_Page(2);
    d_panel->Remove_Page(0);
    d_panel->Remove_Page(-1);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({1}));
}

void TestPageWidget::removing_a_selected_page_reports_the_selection()
{
    Add_Pages({1, 2});
    d_panel->Set_Active_Page(2);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    d_panel->Remove_Page(1);
    QCOMPARE(selection.count(), 0);
    d_panel->Remove_Page(2);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), -1);
    QVERIFY(!d_remove->isEnabled());
    QVERIFY(!d_editor->isEnabled());
    QVERIFY(d_editor->text().isEmpty());
}

void TestPageWidget::the_active_page_is_the_only_selected_one()
{
    Add_Pages({1, 2, 3, 2});
    d_list->selectAll();
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    d_panel->Set_Active_Page(2);
    QCOMPARE(d_list->selectedItems(), QList<QListWidgetItem*>({d_list->item(1)}));
    QCOMPARE(d_list->currentRow(), 1);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), 2);
    d_panel->Set_Active_Page(2);
    QCOMPARE(selection.count(), 1);
}

void TestPageWidget::activating_an_unknown_page_keeps_the_selection()
{
    Add_Pages({1, 2});
    d_panel->Set_Active_Page(2);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    d_panel->Set_Active_Page(9);
    d_panel->Set_Active_Page(-1);
    QCOMPARE(selection.count(), 0);
    QVERIFY(d_list->item(1)->isSelected());
}

void TestPageWidget::renaming_reaches_the_first_row_and_not_the_editor()
{
    Add_Pages({1, 2, 2});
    d_panel->Set_Active_Page(2);
    d_panel->Set_Page_Name(2, QStringLiteral("  Cover  "));
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("  Cover  "));
    QCOMPARE(d_list->item(2)->text(), QStringLiteral("Page 2"));
    QCOMPARE(d_panel->Page_Name(2), QStringLiteral("  Cover  "));
    QCOMPARE(d_editor->text(), QStringLiteral("Page 2"));
    d_panel->Set_Page_Name(9, QStringLiteral("Nowhere"));
    QCOMPARE(d_list->count(), 3);
    d_panel->Set_Page_Name(1, QString());
    QCOMPARE(d_panel->Page_Name(1), QString());
}

void TestPageWidget::an_unknown_page_has_no_name()
{
    QVERIFY(d_panel->Page_Name(1).isNull());
    Add_Pages({1});
    QVERIFY(d_panel->Page_Name(2).isNull());
    QVERIFY(!d_panel->Page_Name(1).isNull());
}

void TestPageWidget::page_ids_follow_the_rows()
{
    Add_Pages({5, 3, 9, 3});
    QCOMPARE(d_panel->Page_Ids(), QList<int>({5, 3, 9, 3}));
}

void TestPageWidget::page_ids_follow_a_drag()
{
    Add_Pages({1, 2, 3, 4});
    // A drop within the list has the same effect.
    QVERIFY(d_list->model()->moveRow(QModelIndex(), 0, QModelIndex(), 3));
    QCOMPARE(d_panel->Page_Ids(), QList<int>({2, 3, 1, 4}));
    d_list->insertItem(0, d_list->takeItem(3));
    QCOMPARE(d_panel->Page_Ids(), QList<int>({4, 2, 3, 1}));
    QCOMPARE(d_panel->Page_Name(4), QStringLiteral("Page 4"));
    d_panel->Remove_Page(3);
    QCOMPARE(d_panel->Page_Ids(), QList<int>({4, 2, 1}));
    d_panel->Set_Active_Page(1);
    QCOMPARE(d_list->currentRow(), 2);
}

void TestPageWidget::clearing_removes_all_rows()
{
    Add_Pages({1, 2});
    d_panel->Clear();
    QCOMPARE(d_list->count(), 0);
    QVERIFY(d_panel->Page_Name(1).isNull());
    Add_Pages({2});
    QCOMPARE(d_panel->Page_Ids(), QList<int>({2}));
    QCOMPARE(d_panel->Page_Name(2), QStringLiteral("Page 2"));
}

void TestPageWidget::clearing_with_a_selection_reports_it_once()
{
    Add_Pages({1, 2});
    d_panel->Set_Active_Page(1);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    d_panel->Clear();
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), -1);
    QVERIFY(!d_remove->isEnabled());
    QVERIFY(!d_editor->isEnabled());
    QVERIFY(d_editor->text().isEmpty());
}

void TestPageWidget::clearing_without_a_selection_reports_nothing()
{
    Add_Pages({1, 2});
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    d_panel->Clear();
    d_panel->Clear();
    QCOMPARE(selection.count(), 0);
}

void TestPageWidget::selecting_one_page_shows_its_name()
{
    Add_Pages({4, 5});
    d_panel->Set_Page_Name(5, QStringLiteral("Plan"));
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    Support::Click_Row(d_list, 1);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), 5);
    QVERIFY(d_remove->isEnabled());
    QVERIFY(d_editor->isEnabled());
    QCOMPARE(d_editor->text(), QStringLiteral("Plan"));
    QTest::keyClick(d_list, Qt::Key_Up);
    QCOMPARE(selection.last().first().toInt(), 4);
    QCOMPARE(d_editor->text(), QStringLiteral("Page 4"));
}

void TestPageWidget::selecting_two_pages_empties_the_name_editor()
{
    Add_Pages({4, 5, 6});
    Support::Click_Row(d_list, 0);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    Support::Click_Row(d_list, 2, Qt::ControlModifier);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), -1);
    QVERIFY(d_remove->isEnabled());
    QVERIFY(!d_editor->isEnabled());
    QVERIFY(d_editor->text().isEmpty());
    Support::Click_Row(d_list, 1, Qt::ShiftModifier);
    QCOMPARE(selection.last().first().toInt(), -1);
    Support::Click_Row(d_list, 1);
    QCOMPARE(selection.last().first().toInt(), 5);
    QVERIFY(d_editor->isEnabled());
}

void TestPageWidget::selecting_nothing_disables_editor_and_button()
{
    Add_Pages({4, 5});
    Support::Click_Row(d_list, 0);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    Support::Click_Row(d_list, 0, Qt::ControlModifier);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.first().first().toInt(), -1);
    QVERIFY(!d_remove->isEnabled());
    QVERIFY(!d_editor->isEnabled());
    QVERIFY(d_editor->text().isEmpty());
}

void TestPageWidget::typing_renames_the_selected_page_at_once()
{
    Add_Pages({4, 5});
    Support::Click_Row(d_list, 1);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed(int)));
    QTest::keyClicks(d_editor, QStringLiteral(" a"));
    QCOMPARE(d_panel->Page_Name(5), QStringLiteral("Page 5 a"));
    QTest::keyClicks(d_editor, QStringLiteral("  b "));
    QCOMPARE(d_panel->Page_Name(5), QStringLiteral("Page 5 a  b "));
    Support::Type_Over(d_editor, QString());
    QCOMPARE(d_panel->Page_Name(5), QString());
    QCOMPARE(d_panel->Page_Name(4), QStringLiteral("Page 4"));
    QCOMPARE(selection.count(), 0);
}

void TestPageWidget::typing_renames_one_page_only()
{
    Add_Pages({4, 5});
    const auto type = [this](const QString& text) {
        QMetaObject::invokeMethod(d_panel.data(), "Page_Name_Edited", Q_ARG(QString, text));
    };
    type(QStringLiteral("none"));
    d_list->selectAll();
    type(QStringLiteral("several"));
    QCOMPARE(d_panel->Page_Name(4), QStringLiteral("Page 4"));
    QCOMPARE(d_panel->Page_Name(5), QStringLiteral("Page 5"));
    // The editor is disabled then, and setting its text is not an edit.
    d_panel->Set_Active_Page(4);
    d_editor->setText(QStringLiteral("outside"));
    QCOMPARE(d_panel->Page_Name(4), QStringLiteral("Page 4"));
}

void TestPageWidget::the_page_list_is_a_queued_argument()
{
    QVERIFY(Support::Is_Meta_Type("QList<int>"));
    Add_Pages({4, 5});
    TPageWidget other(nullptr, Qt::WindowFlags());
    QSignalSpy relayed(&other, SIGNAL(Remove_Pages(QList<int>)));
    connect(d_panel.data(), SIGNAL(Remove_Pages(QList<int>)), &other,
            SIGNAL(Remove_Pages(QList<int>)), Qt::QueuedConnection);
    d_panel->Set_Active_Page(5);
    QTest::mouseClick(d_remove, Qt::LeftButton);
    QTRY_COMPARE(relayed.count(), 1);
    QCOMPARE(relayed.first().first().value<QList<int>>(), QList<int>({5}));
}

QTEST_MAIN(TestPageWidget)
#include "test_pagewidget.moc"
