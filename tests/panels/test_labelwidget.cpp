// The panel with the list of labels and their editors.

#include "src/labelwidget.h"

#include "support/support.h"
#include "support/widgets.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QScopedPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <limits>

namespace {

const int id_role = 256;
const int value_role = 257;
const int text_role = 258;
const int border_role = 259;

const int largest = std::numeric_limits<int>::max();
const int smallest = std::numeric_limits<int>::min();

TDataItem Item(int id, int value, const QString& text = QString(), int border_type = 2)
{
    TDataItem item;
    item.id = id;
    item.value = value;
    item.text = text;
    item.border_type = border_type;
    return item;
}

/// Compares an icon with the picture of a resource. Empty if they are equal.
QString Icon_Difference(const QIcon& icon, const QString& resource)
{
    const QSize size(16, 16);
    const QImage expected = QIcon(resource).pixmap(size).toImage();
    if (expected.isNull())
        return QStringLiteral("no picture ") + resource;
    return Support::Difference(icon.pixmap(size).toImage(), expected);
}

} // namespace

class TestLabelWidget : public QObject
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
    void the_tab_key_goes_from_the_list_to_the_editors();
    void the_combo_box_has_its_entries_data();
    void the_combo_box_has_its_entries();

    void a_row_keeps_what_it_shows_data();
    void a_row_keeps_what_it_shows();
    void rows_follow_the_display_format_data();
    void rows_follow_the_display_format();
    void another_format_does_not_change_existing_rows();
    void adding_an_item_selects_and_reports_nothing();
    void removing_takes_the_first_row_with_the_id();
    void removing_an_unknown_item_does_nothing();
    void removing_a_selected_item_reports_the_selection();
    void setting_the_selection_replaces_it();
    void setting_the_selection_to_an_unknown_item_clears_it();
    void adding_to_the_selection_keeps_it();
    void adding_an_unknown_item_keeps_the_selection();
    void clearing_the_selection_reports_it_once();
    void selected_items_are_in_the_order_of_their_selection();
    void item_ids_are_in_the_order_of_the_rows();
    void showing_a_value_emits_no_signal();
    void operations_follow_a_drag();
    void clearing_removes_all_rows();

    void the_border_type_is_that_of_the_current_entry();
    void setting_the_border_type_emits_no_signal_data();
    void setting_the_border_type_emits_no_signal();
    void blocked_signals_stay_blocked();

    void the_first_label_is_number_one();
    void a_typed_number_is_the_next_value();
    void setting_the_label_index_sets_the_next_value_only();
    void taking_a_value_advances_the_value_shown_without_a_selection();
    void the_largest_value_does_not_overflow();

    void the_buttons_only_emit_signals();
    void one_selected_row_fills_the_editors();
    void several_selected_rows_empty_the_editors();
    void no_selected_row_shows_the_label_index();
    void the_typed_number_is_shown_again_without_a_selection();
    void showing_a_selection_is_not_an_edit();

    void a_typed_value_reaches_the_selected_row_data();
    void a_typed_value_reaches_the_selected_row();
    void every_keystroke_changes_the_value();
    void an_emptied_value_changes_nothing();
    void a_typed_value_does_not_reach_several_rows();
    void setting_a_value_is_not_an_edit();
    void a_typed_text_is_simplified();
    void an_unchanged_editor_keeps_what_it_cannot_show();
    void an_emptied_text_is_a_change();
    void leaving_the_text_editor_finishes_the_edit();
    void clicking_another_row_finishes_the_edit_of_the_first();
    void a_text_reaches_one_selected_row_only();
    void a_chosen_border_reaches_each_selected_row();
    void a_chosen_border_without_selection_is_a_preset();
    void a_chosen_border_reaches_one_selected_row();

private:
    void Add_Three();
    void Type_Value(const QString& text);
    QString Shown_Value() const { return d_value->text(); }

    QScopedPointer<TLabelWidget> d_panel;
    QListWidget* d_list = nullptr;
    QToolButton* d_add = nullptr;
    QToolButton* d_remove = nullptr;
    QLineEdit* d_value = nullptr;
    QLineEdit* d_text = nullptr;
    QComboBox* d_border = nullptr;
};

void TestLabelWidget::initTestCase()
{
    Support::Set_Style();
}

void TestLabelWidget::init()
{
    d_panel.reset(new TLabelWidget(nullptr, Qt::WindowFlags()));
    d_list = Support::Only<QListWidget>(*d_panel);
    d_add = Support::By_Tool_Tip<QToolButton>(*d_panel, QStringLiteral("Add Item"));
    d_remove = Support::By_Tool_Tip<QToolButton>(*d_panel, QStringLiteral("Remove Item"));
    d_value = Support::By_Tool_Tip<QLineEdit>(*d_panel, QStringLiteral("Item Value"));
    d_text = Support::By_Tool_Tip<QLineEdit>(*d_panel, QStringLiteral("Item Text"));
    d_border = Support::By_Tool_Tip<QComboBox>(*d_panel, QStringLiteral("Border Type"));
    QVERIFY(d_list && d_add && d_remove && d_value && d_text && d_border);
    d_panel->show();
    d_panel->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_panel.data()));
}

void TestLabelWidget::cleanup()
{
    d_panel.reset();
}

/// Ids 11, 12 and 13 with the values 1, 2 and 3.
void TestLabelWidget::Add_Three()
{
    d_panel->Add_Item(Item(11, 1, QStringLiteral("one"), 1));
    d_panel->Add_Item(Item(12, 2, QStringLiteral("two"), 4));
    d_panel->Add_Item(Item(13, 3, QStringLiteral("three"), 0));
}

void TestLabelWidget::Type_Value(const QString& text)
{
    Support::Type_Over(d_value, text);
}

void TestLabelWidget::the_panel_has_its_initial_state()
{
    QCOMPARE(d_panel->d_display_format, QStringLiteral("Item [%1] %2"));
    QCOMPARE(d_list->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(d_list->dragDropMode(), QAbstractItemView::InternalMove);
    QVERIFY(d_list->uniformItemSizes());
    QVERIFY(!d_list->isSortingEnabled());
    QCOMPARE(d_list->count(), 0);
    QCOMPARE(d_add->text(), QStringLiteral("+"));
    QCOMPARE(d_remove->text(), QStringLiteral("-"));
    for (const QToolButton* const button : {d_add, d_remove}) {
        QCOMPARE(button->minimumSize(), QSize(22, 22));
        QCOMPARE(button->maximumSize(), QSize(22, 22));
    }
    for (const QLineEdit* const editor : {d_value, d_text}) {
        QCOMPARE(editor->maxLength(), 32);
        QVERIFY(editor->alignment() & Qt::AlignHCenter);
        QVERIFY(editor->validator() == nullptr);
        QVERIFY(editor->isEnabled());
    }
    QVERIFY(d_add->isEnabled());
    QVERIFY(!d_remove->isEnabled());
    QCOMPARE(d_value->text(), QStringLiteral("1"));
    QCOMPARE(d_text->text(), QString());
    QCOMPARE(d_border->currentText(), QStringLiteral("Ellipse"));
    QCOMPARE(d_panel->Border_Type(), 2);
    QVERIFY(d_panel->Selected_Items().empty());
}

void TestLabelWidget::the_parent_and_flags_are_the_given_ones()
{
    Support::Compare_Parent_And_Flags<TLabelWidget>();
}

void TestLabelWidget::widgets_are_in_their_places()
{
    auto* const column = qobject_cast<QVBoxLayout*>(d_panel->layout());
    QVERIFY(column != nullptr);
    QCOMPARE(column->count(), 3);
    QCOMPARE(column->itemAt(0)->widget(), d_list);
    const auto* const buttons = qobject_cast<QHBoxLayout*>(column->itemAt(1)->layout());
    QVERIFY(buttons != nullptr);
    QCOMPARE(buttons->count(), 3);
    const QSpacerItem* const spacer = buttons->itemAt(0)->spacerItem();
    QVERIFY(spacer != nullptr);
    QCOMPARE(spacer->sizeHint(), QSize(0, 0));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(buttons->itemAt(1)->widget(), d_add);
    QCOMPARE(buttons->itemAt(2)->widget(), d_remove);

    const auto* const grid = qobject_cast<QGridLayout*>(column->itemAt(2)->layout());
    QVERIFY(grid != nullptr);
    const QList<QPair<QString, QWidget*>> rows = {{QStringLiteral("Item Value:"), d_value},
                                                  {QStringLiteral("Item Text:"), d_text},
                                                  {QStringLiteral("Border Type:"), d_border}};
    for (int row = 0; row < rows.size(); ++row) {
        QCOMPARE(grid->itemAtPosition(row, 0)->widget(),
                 Support::Caption(*d_panel, rows[row].first));
        QCOMPARE(grid->itemAtPosition(row, 1)->widget(), rows[row].second);
        QCOMPARE(Support::Caption(*d_panel, rows[row].first)->buddy(), rows[row].second);
    }
}

void TestLabelWidget::signals_and_slots_are_declared_in_order()
{
    QCOMPARE(Support::Methods(TLabelWidget::staticMetaObject, QMetaMethod::Signal),
             QStringList({QStringLiteral("Add_Item()"), QStringLiteral("Remove_Item()"),
                          QStringLiteral("Change_Item_Value(int,int)"),
                          QStringLiteral("Change_Item_Text(int,QString)"),
                          QStringLiteral("Change_Item_Border(int,int)"),
                          QStringLiteral("Selection_Changed()")}));
    QCOMPARE(Support::Methods(TLabelWidget::staticMetaObject, QMetaMethod::Slot),
             QStringList({QStringLiteral("Item_Selection_Changed()"),
                          QStringLiteral("Border_Type_Changed()"),
                          QStringLiteral("Current_Value_Changed(QString)"),
                          QStringLiteral("Current_Text_Changed()")}));
}

void TestLabelWidget::the_tab_key_goes_from_the_list_to_the_editors()
{
    Add_Three();
    d_panel->Set_Selection(12);
    d_list->setFocus();
    const QList<QWidget*> order = {d_add, d_remove, d_value, d_text, d_border, d_list};
    for (QWidget* const next : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
        QVERIFY(!next->accessibleName().isEmpty());
    }
}

void TestLabelWidget::the_combo_box_has_its_entries_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<int>("code");
    QTest::newRow("No Border") << 0 << QStringLiteral(":/gui/outline_none.png") << 0;
    QTest::newRow("Ellipse") << 1 << QStringLiteral(":/gui/outline_ellipse.png") << 2;
    QTest::newRow("Square") << 2 << QStringLiteral(":/gui/outline_square.png") << 1;
    QTest::newRow("Triangle") << 3 << QStringLiteral(":/gui/outline_triangle.png") << 4;
    QTest::newRow("Diamond") << 4 << QStringLiteral(":/gui/outline_diamond.png") << 8;
}

void TestLabelWidget::the_combo_box_has_its_entries()
{
    QFETCH(int, index);
    QFETCH(QString, icon);
    QFETCH(int, code);
    QCOMPARE(d_border->count(), 5);
    QCOMPARE(d_border->itemText(index), QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(d_border->itemData(index, Qt::UserRole), QVariant(code));
    QCOMPARE(Icon_Difference(d_border->itemIcon(index), icon), QString());
}

void TestLabelWidget::a_row_keeps_what_it_shows_data()
{
    QTest::addColumn<int>("border_type");
    QTest::addColumn<QString>("icon");
    QTest::newRow("none") << 0 << QStringLiteral(":/gui/outline_none.png");
    QTest::newRow("square") << 1 << QStringLiteral(":/gui/outline_square.png");
    QTest::newRow("ellipse") << 2 << QStringLiteral(":/gui/outline_ellipse.png");
    QTest::newRow("triangle") << 4 << QStringLiteral(":/gui/outline_triangle.png");
    QTest::newRow("diamond") << 8 << QStringLiteral(":/gui/outline_diamond.png");
    QTest::newRow("3") << 3 << QStringLiteral(":/gui/outline_none.png");
    QTest::newRow("16") << 16 << QStringLiteral(":/gui/outline_none.png");
    QTest::newRow("-1") << -1 << QStringLiteral(":/gui/outline_none.png");
}

void TestLabelWidget::a_row_keeps_what_it_shows()
{
    QFETCH(int, border_type);
    QFETCH(QString, icon);
    d_panel->Add_Item(Item(77, -5, QStringLiteral("Pump"), border_type));
    const QListWidgetItem* const row = d_list->item(0);
    QCOMPARE(row->data(Qt::DisplayRole), QVariant(QStringLiteral("Item [-5] Pump")));
    QCOMPARE(Icon_Difference(row->data(Qt::DecorationRole).value<QIcon>(), icon), QString());
    QCOMPARE(row->data(id_role), QVariant(77));
    QCOMPARE(row->data(value_role), QVariant(-5));
    QCOMPARE(row->data(text_role), QVariant(QStringLiteral("Pump")));
    QCOMPARE(row->data(border_role), QVariant(border_type));
}

void TestLabelWidget::rows_follow_the_display_format_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("row_text");
    QTest::newRow("No.%1") << QStringLiteral("Pump") << QStringLiteral("No.3 Pump");
    QTest::newRow("No.%1") << QString() << QStringLiteral("No.3 ");
    QTest::newRow("%2 only") << QStringLiteral("Pump") << QStringLiteral("Item [3] Pump");
    QTest::newRow("%2 and %1") << QStringLiteral("%1") << QStringLiteral("%1 and 3");
}

void TestLabelWidget::rows_follow_the_display_format()
{
    QFETCH(QString, text);
    QFETCH(QString, row_text);
    d_panel->d_display_format = QString::fromLatin1(QTest::currentDataTag());
    d_panel->Add_Item(Item(1, 3, text));
    QCOMPARE(d_list->item(0)->text(), row_text);
}

void TestLabelWidget::another_format_does_not_change_existing_rows()
{
    Add_Three();
    d_panel->d_display_format = QStringLiteral("No.%1");
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("Item [1] one"));
    d_panel->Set_Selection(11);
    Type_Value(QStringLiteral("9"));
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("No.9 one"));
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("Item [2] two"));
}

void TestLabelWidget::adding_an_item_selects_and_reports_nothing()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    QSignalSpy asked(d_panel.data(), SIGNAL(Add_Item()));
    TDataItem item = Item(14, 4);
    item.selected = true;
    d_panel->Add_Item(item);
    QCOMPARE(selection.count(), 0);
    QCOMPARE(asked.count(), 0);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({12}));
    QCOMPARE(d_list->item(3)->data(id_role).toInt(), 14);
}

void TestLabelWidget::removing_takes_the_first_row_with_the_id()
{
    Add_Three();
    d_panel->Add_Item(Item(11, 4, QStringLiteral("again")));
    d_panel->Remove_Item(11);
    QCOMPARE(d_list->count(), 3);
    QCOMPARE(d_list->item(2)->data(text_role).toString(), QStringLiteral("again"));
    d_panel->Remove_Item(11);
    QCOMPARE(d_list->count(), 2);
    QCOMPARE(d_list->item(0)->data(id_role).toInt(), 12);
    QCOMPARE(d_list->item(1)->data(id_role).toInt(), 13);
}

void TestLabelWidget::removing_an_unknown_item_does_nothing()
{
    d_panel->Remove_Item(11);
    Add_Three();
    QSignalSpy asked(d_panel.data(), SIGNAL(Remove_Item()));
    d_panel->Remove_Item(0);
    d_panel->Remove_Item(14);
    QCOMPARE(d_list->count(), 3);
    d_panel->Remove_Item(12);
    QCOMPARE(asked.count(), 0);
}

void TestLabelWidget::removing_a_selected_item_reports_the_selection()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Remove_Item(11);
    QCOMPARE(selection.count(), 0);
    d_panel->Remove_Item(12);
    QCOMPARE(selection.count(), 1);
    QVERIFY(d_panel->Selected_Items().empty());
    QVERIFY(!d_remove->isEnabled());
}

void TestLabelWidget::setting_the_selection_replaces_it()
{
    Add_Three();
    d_panel->Add_Item(Item(12, 9));
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Set_Selection(12);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(d_list->selectedItems(), QList<QListWidgetItem*>({d_list->item(1)}));
    QCOMPARE(d_list->currentRow(), 1);
    d_list->selectAll();
    selection.clear();
    d_panel->Set_Selection(13);
    // Once for the cleared selection and once for the new one.
    QCOMPARE(selection.count(), 2);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({13}));
    QCOMPARE(d_list->currentRow(), 2);
    d_panel->Set_Selection(13);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({13}));
}

void TestLabelWidget::setting_the_selection_to_an_unknown_item_clears_it()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Set_Selection(99);
    QCOMPARE(selection.count(), 1);
    QVERIFY(d_panel->Selected_Items().empty());
    d_panel->Set_Selection(99);
    QCOMPARE(selection.count(), 1);
}

void TestLabelWidget::adding_to_the_selection_keeps_it()
{
    Add_Three();
    d_panel->Set_Selection(13);
    d_panel->Add_Selection(11);
    QCOMPARE(d_list->selectedItems().size(), 2);
    QVERIFY(d_list->item(0)->isSelected());
    QVERIFY(d_list->item(2)->isSelected());
    QCOMPARE(d_list->currentRow(), 0);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Add_Selection(12);
    QCOMPARE(d_list->selectedItems().size(), 3);
    QCOMPARE(d_list->currentRow(), 1);
    QCOMPARE(selection.count(), 1);
    d_panel->Add_Selection(13);
    QCOMPARE(d_list->selectedItems().size(), 3);
    QCOMPARE(d_list->currentRow(), 2);
    QCOMPARE(selection.count(), 1);
    d_panel->Clear_Selection();
    d_panel->Add_Selection(12);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({12}));
}

void TestLabelWidget::adding_an_unknown_item_keeps_the_selection()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Add_Selection(99);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({12}));
    QCOMPARE(selection.count(), 0);
}

void TestLabelWidget::clearing_the_selection_reports_it_once()
{
    Add_Three();
    d_list->selectAll();
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Clear_Selection();
    QCOMPARE(selection.count(), 1);
    QVERIFY(d_panel->Selected_Items().empty());
    d_panel->Clear_Selection();
    QCOMPARE(selection.count(), 1);
    QCOMPARE(d_list->count(), 3);
}

void TestLabelWidget::selected_items_are_in_the_order_of_their_selection()
{
    Add_Three();
    Support::Click_Row(d_list, 2);
    Support::Click_Row(d_list, 0, Qt::ControlModifier);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({13, 11}));
    Support::Click_Row(d_list, 0);
    Support::Click_Row(d_list, 2, Qt::ControlModifier);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({11, 13}));
}

void TestLabelWidget::item_ids_are_in_the_order_of_the_rows()
{
    QVERIFY(d_panel->Item_Ids().empty());
    Add_Three();
    QCOMPARE(d_panel->Item_Ids(), std::vector<int>({11, 12, 13}));
    d_list->setCurrentRow(2);
    QTest::keyClick(d_list, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(d_panel->Item_Ids(), std::vector<int>({11, 13, 12}));
}

void TestLabelWidget::showing_a_value_emits_no_signal()
{
    Add_Three();
    const QSignalSpy changes(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    const QString other = d_list->item(0)->text();
    d_panel->d_display_format = "No. %1 %2";
    d_panel->Show_Value(12, 70);
    d_panel->Show_Value(99, 71);
    QVERIFY(d_list->item(1)->text().startsWith("No. 70"));
    QCOMPARE(d_list->item(0)->text(), other);
    d_panel->Set_Selection(12);
    QCOMPARE(Shown_Value(), QString("70"));
    QCOMPARE(changes.size(), 0);
}

void TestLabelWidget::operations_follow_a_drag()
{
    Add_Three();
    d_panel->Add_Item(Item(11, 4, QStringLiteral("again")));
    // A drop within the list has the same effect.
    QVERIFY(d_list->model()->moveRow(QModelIndex(), 3, QModelIndex(), 0));
    d_panel->Set_Selection(11);
    QCOMPARE(d_list->currentRow(), 0);
    QCOMPARE(d_text->text(), QStringLiteral("again"));
    d_list->insertItem(3, d_list->takeItem(0));
    d_panel->Set_Selection(11);
    QCOMPARE(d_text->text(), QStringLiteral("one"));
    d_panel->Remove_Item(11);
    d_panel->Set_Selection(11);
    QCOMPARE(d_text->text(), QStringLiteral("again"));
    QCOMPARE(d_list->currentRow(), 2);
}

void TestLabelWidget::clearing_removes_all_rows()
{
    Add_Three();
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    d_panel->Clear();
    QCOMPARE(d_list->count(), 0);
    QCOMPARE(selection.count(), 0);
    d_panel->Set_Selection(12);
    QVERIFY(d_panel->Selected_Items().empty());

    Add_Three();
    d_panel->Set_Selection(12);
    selection.clear();
    d_panel->Clear();
    QCOMPARE(selection.count(), 1);
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
    QCOMPARE(d_text->text(), QString());
    QVERIFY(!d_remove->isEnabled());
}

void TestLabelWidget::the_border_type_is_that_of_the_current_entry()
{
    for (int index = 0; index < d_border->count(); ++index) {
        d_border->setCurrentIndex(index);
        QCOMPARE(d_panel->Border_Type(), d_border->itemData(index).toInt());
    }
    d_border->setCurrentIndex(-1);
    QCOMPARE(d_panel->Border_Type(), 0);
}

void TestLabelWidget::setting_the_border_type_emits_no_signal_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("index");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("square") << 1 << 2;
    QTest::newRow("ellipse") << 2 << 1;
    QTest::newRow("triangle") << 4 << 3;
    QTest::newRow("diamond") << 8 << 4;
    QTest::newRow("3 stays") << 3 << -1;
    QTest::newRow("5 stays") << 5 << -1;
    QTest::newRow("16 stays") << 16 << -1;
    QTest::newRow("-1 stays") << -1 << -1;
}

void TestLabelWidget::setting_the_border_type_emits_no_signal()
{
    QFETCH(int, code);
    QFETCH(int, index);
    Add_Three();
    d_list->selectAll();
    QSignalSpy borders(d_panel.data(), SIGNAL(Change_Item_Border(int, int)));
    for (int before = 0; before < d_border->count(); ++before) {
        d_border->blockSignals(true);
        d_border->setCurrentIndex(before);
        d_border->blockSignals(false);
        d_panel->Set_Border_Type(code);
        QCOMPARE(d_border->currentIndex(), index < 0 ? before : index);
        QVERIFY(!d_border->signalsBlocked());
    }
    QCOMPARE(borders.count(), 0);
    QCOMPARE(d_list->item(0)->data(border_role).toInt(), 1);
}

void TestLabelWidget::blocked_signals_stay_blocked()
{
    Add_Three();
    for (QObject* const editor : {static_cast<QObject*>(d_border), static_cast<QObject*>(d_value),
                                  static_cast<QObject*>(d_text)}) {
        editor->blockSignals(true);
        d_panel->Set_Border_Type(8);
        d_panel->Set_Selection(12);
        d_panel->Clear_Selection();
        QVERIFY(editor->signalsBlocked());
        editor->blockSignals(false);
        d_panel->Set_Selection(12);
        QVERIFY(!editor->signalsBlocked());
        d_panel->Clear_Selection();
    }
}

void TestLabelWidget::the_first_label_is_number_one()
{
    QCOMPARE(d_panel->Take_Label_Index(), 1);
    QCOMPARE(d_panel->Take_Label_Index(), 2);
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
}

void TestLabelWidget::a_typed_number_is_the_next_value()
{
    d_panel->Set_Label_Index(4);
    Type_Value(QStringLiteral("7"));
    QCOMPARE(d_panel->Take_Label_Index(), 7);
    QCOMPARE(d_panel->Take_Label_Index(), 8);
    // With a selected row, the number is only that row's value.
    Add_Three();
    d_panel->Set_Selection(12);
    Type_Value(QStringLiteral("70"));
    QCOMPARE(d_panel->Take_Label_Index(), 9);
    d_list->selectAll();
    Type_Value(QStringLiteral("71"));
    QCOMPARE(d_panel->Take_Label_Index(), 10);
    d_panel->Clear_Selection();
    Type_Value(QStringLiteral("x"));
    QCOMPARE(d_panel->Take_Label_Index(), 11);
    Type_Value(QStringLiteral("-3"));
    QCOMPARE(d_panel->Take_Label_Index(), -3);
    QCOMPARE(d_panel->Take_Label_Index(), -2);
}

void TestLabelWidget::setting_the_label_index_sets_the_next_value_only()
{
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    Add_Three();
    d_panel->Set_Selection(12);
    d_panel->Set_Label_Index(11);
    QCOMPARE(Shown_Value(), QStringLiteral("11"));
    QCOMPARE(values.count(), 0);
    QCOMPARE(d_list->item(1)->data(value_role).toInt(), 2);
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
    QCOMPARE(d_panel->Take_Label_Index(), 11);
    d_panel->Set_Label_Index(-4);
    QCOMPARE(Shown_Value(), QStringLiteral("-4"));
    QCOMPARE(d_panel->Take_Label_Index(), -4);
}

void TestLabelWidget::taking_a_value_advances_the_value_shown_without_a_selection()
{
    Add_Three();
    d_panel->Set_Label_Index(4);
    QCOMPARE(d_panel->Take_Label_Index(), 4);
    QCOMPARE(Shown_Value(), QStringLiteral("4"));
    d_panel->Set_Selection(12);
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("5"));
}

void TestLabelWidget::the_largest_value_does_not_overflow()
{
    Type_Value(QString::number(largest));
    QCOMPARE(d_panel->Take_Label_Index(), largest);
    QCOMPARE(d_panel->Take_Label_Index(), smallest);
}

void TestLabelWidget::the_buttons_only_emit_signals()
{
    Add_Three();
    QSignalSpy addition(d_panel.data(), SIGNAL(Add_Item()));
    QSignalSpy removal(d_panel.data(), SIGNAL(Remove_Item()));
    QTest::mouseClick(d_add, Qt::LeftButton);
    QTest::mouseClick(d_remove, Qt::LeftButton);
    QCOMPARE(addition.count(), 1);
    QCOMPARE(removal.count(), 0);
    d_panel->Set_Selection(12);
    QTest::mouseClick(d_remove, Qt::LeftButton);
    QCOMPARE(removal.count(), 1);
    QCOMPARE(d_list->count(), 3);
    QCOMPARE(d_panel->Selected_Items(), std::vector<int>({12}));
}

void TestLabelWidget::one_selected_row_fills_the_editors()
{
    Add_Three();
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    Support::Click_Row(d_list, 1);
    QCOMPARE(selection.count(), 1);
    QVERIFY(d_remove->isEnabled());
    QCOMPARE(Shown_Value(), QStringLiteral("2"));
    QCOMPARE(d_text->text(), QStringLiteral("two"));
    QVERIFY(d_text->isEnabled());
    QCOMPARE(d_border->currentText(), QStringLiteral("Triangle"));
    QTest::keyClick(d_list, Qt::Key_Down);
    QCOMPARE(selection.count(), 2);
    QCOMPARE(d_text->text(), QStringLiteral("three"));
    QCOMPARE(d_border->currentText(), QStringLiteral("No Border"));
    // An unknown code does not change the combo box.
    d_panel->Add_Item(Item(14, 4, QString(), 3));
    d_panel->Set_Selection(14);
    QCOMPARE(d_border->currentText(), QStringLiteral("No Border"));
}

void TestLabelWidget::several_selected_rows_empty_the_editors()
{
    Add_Three();
    Support::Click_Row(d_list, 1);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    Support::Click_Row(d_list, 2, Qt::ShiftModifier);
    QCOMPARE(selection.count(), 1);
    QVERIFY(d_remove->isEnabled());
    QCOMPARE(Shown_Value(), QString());
    QVERIFY(d_value->isEnabled());
    QCOMPARE(d_text->text(), QString());
    QVERIFY(!d_text->isEnabled());
    QCOMPARE(d_border->currentText(), QStringLiteral("Triangle"));
}

void TestLabelWidget::no_selected_row_shows_the_label_index()
{
    Add_Three();
    Support::Click_Row(d_list, 1);
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    Support::Click_Row(d_list, 1, Qt::ControlModifier);
    QCOMPARE(selection.count(), 1);
    QVERIFY(!d_remove->isEnabled());
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
    QVERIFY(d_value->isEnabled());
    QCOMPARE(d_text->text(), QString());
    QVERIFY(!d_text->isEnabled());
    QCOMPARE(d_border->currentText(), QStringLiteral("Triangle"));
}

void TestLabelWidget::the_typed_number_is_shown_again_without_a_selection()
{
    Add_Three();
    Type_Value(QStringLiteral("7"));
    d_panel->Set_Selection(12);
    QCOMPARE(Shown_Value(), QStringLiteral("2"));
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("7"));
    d_panel->Set_Label_Index(9);
    QCOMPARE(Shown_Value(), QStringLiteral("9"));
    d_panel->Set_Selection(12);
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("7"));
}

void TestLabelWidget::showing_a_selection_is_not_an_edit()
{
    Add_Three();
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    QSignalSpy borders(d_panel.data(), SIGNAL(Change_Item_Border(int, int)));
    d_panel->Set_Selection(11);
    d_panel->Add_Selection(12);
    d_panel->Set_Selection(13);
    // Disabling the text editor takes the focus from it, but that does not finish an edit.
    d_text->setFocus();
    QTest::keyClicks(d_text, QStringLiteral(" unfinished"));
    d_panel->Clear_Selection();
    QVERIFY(!d_text->hasFocus());
    QCOMPARE(values.count(), 0);
    QCOMPARE(texts.count(), 0);
    QCOMPARE(borders.count(), 0);
    QCOMPARE(d_list->item(2)->data(text_role).toString(), QStringLiteral("three"));
}

void TestLabelWidget::a_typed_value_reaches_the_selected_row_data()
{
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("value");
    QTest::newRow("-5") << true << -5;
    QTest::newRow("0") << true << 0;
    QTest::newRow("1") << true << 1;
    QTest::newRow("+8") << true << 8;
    QTest::newRow("007") << true << 7;
    QTest::newRow(" 9 ") << true << 9;
    QTest::newRow("2147483647") << true << largest;
    QTest::newRow("-2147483648") << true << smallest;
    QTest::newRow("2147483648") << false << 0;
    QTest::newRow("-2147483649") << false << 0;
    QTest::newRow("12a") << false << 0;
    QTest::newRow("a12") << false << 0;
    QTest::newRow("0x10") << false << 0;
    QTest::newRow("1.5") << false << 0;
    QTest::newRow("1,000") << false << 0;
    QTest::newRow("1 2") << false << 0;
    QTest::newRow("- 5") << false << 0;
    QTest::newRow(" ") << false << 0;
    QTest::newRow("-") << false << 0;
}

void TestLabelWidget::a_typed_value_reaches_the_selected_row()
{
    QFETCH(bool, valid);
    QFETCH(int, value);
    const QString typed = QString::fromLatin1(QTest::currentDataTag());
    Add_Three();
    d_panel->Set_Selection(12);
    // Each keystroke changes the value. The last one is tested.
    Type_Value(typed.left(typed.size() - 1));
    const int before = d_list->item(1)->data(value_role).toInt();
    const QString text_before = d_list->item(1)->text();
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    QTest::keyClicks(d_value, typed.right(1));
    QCOMPARE(Shown_Value(), typed);
    QCOMPARE(values.count(), valid ? 1 : 0);
    QCOMPARE(d_list->item(1)->data(value_role), QVariant(valid ? value : before));
    if (valid) {
        QCOMPARE(values.first(), QVariantList({12, value}));
        QCOMPARE(d_list->item(1)->text(), QStringLiteral("Item [%1] two").arg(value));
    } else {
        QCOMPARE(d_list->item(1)->text(), text_before);
    }
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("Item [1] one"));
    QCOMPARE(d_panel->Take_Label_Index(), 1);
}

void TestLabelWidget::every_keystroke_changes_the_value()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    Type_Value(QStringLiteral("-12"));
    QCOMPARE(values.count(), 2);
    QCOMPARE(values.at(0), QVariantList({12, -1}));
    QCOMPARE(values.at(1), QVariantList({12, -12}));
    QTest::keyClick(d_value, Qt::Key_Backspace);
    QCOMPARE(values.count(), 3);
    QCOMPARE(values.at(2), QVariantList({12, -1}));
    // Values may repeat, and the same value may be typed again.
    Type_Value(QStringLiteral("1"));
    QCOMPARE(values.last(), QVariantList({12, 1}));
    const int count = values.count();
    Type_Value(QStringLiteral("1"));
    QCOMPARE(values.count(), count + 1);
}

void TestLabelWidget::an_emptied_value_changes_nothing()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    Type_Value(QString());
    QCOMPARE(Shown_Value(), QString());
    QCOMPARE(values.count(), 0);
    QCOMPARE(d_list->item(1)->data(value_role).toInt(), 2);
    d_panel->Clear_Selection();
    Type_Value(QString());
    d_panel->Set_Selection(12);
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
}

void TestLabelWidget::a_typed_value_does_not_reach_several_rows()
{
    Add_Three();
    d_list->selectAll();
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    Type_Value(QStringLiteral("7"));
    QCOMPARE(values.count(), 0);
    for (int index = 0; index < 3; ++index)
        QCOMPARE(d_list->item(index)->data(value_role).toInt(), index + 1);
    d_panel->Clear_Selection();
    QCOMPARE(Shown_Value(), QStringLiteral("1"));
}

void TestLabelWidget::setting_a_value_is_not_an_edit()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy values(d_panel.data(), SIGNAL(Change_Item_Value(int, int)));
    d_value->setText(QStringLiteral("55"));
    QCOMPARE(values.count(), 0);
    QCOMPARE(d_list->item(1)->data(value_role).toInt(), 2);
}

void TestLabelWidget::a_typed_text_is_simplified()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    Support::Type_Over(d_text, QStringLiteral("  two   words "));
    QCOMPARE(texts.count(), 0);
    QTest::keyClick(d_text, Qt::Key_Return);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.first(), QVariantList({12, QStringLiteral("two words")}));
    QCOMPARE(d_list->item(1)->data(text_role).toString(), QStringLiteral("two words"));
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("Item [2] two words"));
    QCOMPARE(d_text->text(), QStringLiteral("  two   words "));
    Support::Type_Over(d_text, QStringLiteral("100 %1 %2"));
    QTest::keyClick(d_text, Qt::Key_Return);
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("Item [2] 100 %1 %2"));
}

void TestLabelWidget::an_unchanged_editor_keeps_what_it_cannot_show()
{
    const QString text = QStringLiteral("A text of several lines\nand more than 32 characters");
    d_panel->Add_Item(Item(1, 3, text));
    d_list->setCurrentRow(0);
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    QTest::keyClick(d_text, Qt::Key_Return);
    QCOMPARE(texts.takeFirst(), QVariantList({1, text}));
    QCOMPARE(d_list->item(0)->data(text_role).toString(), text);
    QTest::keyClick(d_text, Qt::Key_Backspace);
    QTest::keyClick(d_text, Qt::Key_Return);
    QCOMPARE(texts.takeFirst(),
             QVariantList({1, QStringLiteral("A text of several lines and mor")}));
}

void TestLabelWidget::an_emptied_text_is_a_change()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    Support::Type_Over(d_text, QStringLiteral("  "));
    QTest::keyClick(d_text, Qt::Key_Enter);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.first(), QVariantList({12, QString()}));
    QCOMPARE(d_list->item(1)->text(), QStringLiteral("Item [2] "));
}

void TestLabelWidget::leaving_the_text_editor_finishes_the_edit()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    d_text->setFocus();
    Support::Type_Over(d_text, QStringLiteral("valve"));
    QTest::keyClick(d_text, Qt::Key_Tab);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.first(), QVariantList({12, QStringLiteral("valve")}));
}

void TestLabelWidget::clicking_another_row_finishes_the_edit_of_the_first()
{
    Add_Three();
    d_panel->Set_Selection(12);
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    d_text->setFocus();
    Support::Type_Over(d_text, QStringLiteral("valve"));
    // The window system moves the focus before the list receives the click.
    d_list->setFocus(Qt::MouseFocusReason);
    Support::Click_Row(d_list, 0);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.first(), QVariantList({12, QStringLiteral("valve")}));
    QCOMPARE(d_list->item(0)->data(text_role).toString(), QStringLiteral("one"));
    QCOMPARE(d_text->text(), QStringLiteral("one"));
}

void TestLabelWidget::a_text_reaches_one_selected_row_only()
{
    Add_Three();
    QSignalSpy texts(d_panel.data(), SIGNAL(Change_Item_Text(int, QString)));
    // Before the first selection, the editor accepts keys although there is no row.
    Support::Type_Over(d_text, QStringLiteral("valve"));
    QTest::keyClick(d_text, Qt::Key_Return);
    d_list->selectAll();
    QMetaObject::invokeMethod(d_panel.data(), "Current_Text_Changed");
    QCOMPARE(texts.count(), 0);
    QCOMPARE(d_list->item(0)->text(), QStringLiteral("Item [1] one"));
}

void TestLabelWidget::a_chosen_border_reaches_each_selected_row()
{
    Add_Three();
    d_panel->Add_Item(Item(14, 4, QString(), 1));
    d_panel->Set_Selection(13);
    d_panel->Add_Selection(11);
    d_panel->Add_Selection(12);
    std::vector<int> ids = d_panel->Selected_Items();
    QSignalSpy borders(d_panel.data(), SIGNAL(Change_Item_Border(int, int)));
    QSignalSpy selection(d_panel.data(), SIGNAL(Selection_Changed()));
    QTest::keyClicks(d_border, QStringLiteral("D"));
    QCOMPARE(d_border->currentText(), QStringLiteral("Diamond"));
    QCOMPARE(borders.count(), 3);
    for (int index = 0; index < 3; ++index) {
        QCOMPARE(borders.at(index), QVariantList({ids[static_cast<std::size_t>(index)], 8}));
        QCOMPARE(d_list->item(index)->data(border_role), QVariant(8));
        QCOMPARE(Icon_Difference(d_list->item(index)->icon(),
                                 QStringLiteral(":/gui/outline_diamond.png")),
                 QString());
    }
    QCOMPARE(d_list->item(3)->data(border_role), QVariant(1));
    QCOMPARE(selection.count(), 0);
    QTest::keyClicks(d_border, QStringLiteral("D"));
    QCOMPARE(borders.count(), 3);
}

void TestLabelWidget::a_chosen_border_without_selection_is_a_preset()
{
    Add_Three();
    QSignalSpy borders(d_panel.data(), SIGNAL(Change_Item_Border(int, int)));
    QTest::keyClick(d_border, Qt::Key_Down);
    QCOMPARE(d_border->currentText(), QStringLiteral("Square"));
    QCOMPARE(d_panel->Border_Type(), 1);
    QCOMPARE(borders.count(), 0);
    QCOMPARE(d_list->item(1)->data(border_role), QVariant(4));
}

void TestLabelWidget::a_chosen_border_reaches_one_selected_row()
{
    Add_Three();
    Support::Click_Row(d_list, 0);
    QSignalSpy borders(d_panel.data(), SIGNAL(Change_Item_Border(int, int)));
    QTest::keyClick(d_border, Qt::Key_Home);
    QCOMPARE(borders.count(), 1);
    QCOMPARE(borders.first(), QVariantList({11, 0}));
    QCOMPARE(d_list->item(0)->data(border_role), QVariant(0));
    QCOMPARE(Icon_Difference(d_list->item(0)->icon(), QStringLiteral(":/gui/outline_none.png")),
             QString());
}

QTEST_MAIN(TestLabelWidget)
#include "test_labelwidget.moc"
