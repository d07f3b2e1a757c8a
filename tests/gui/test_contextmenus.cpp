// The context menus of the page list and the item list: undo and redo, rotating and duplicating
// pages, renumbering labels by their positions.

#include "support/menu.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QLineEdit>
#include <QTest>

using Support::Choose_From_Menu;
using Support::Label;

class TestContextMenus : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_menus_have_these_entries();
    void undo_and_redo_name_the_step_in_both_menus();
    void choosing_undo_and_redo_shows_the_result();
    void a_new_document_has_nothing_to_undo();

    void rotating_right_turns_image_and_labels();
    void rotating_left_turns_image_and_labels();
    void rotating_keeps_the_selected_labels();
    void all_selected_pages_are_rotated();
    void a_page_without_an_image_is_not_rotated();
    void rotating_is_one_step();

    void a_copy_follows_its_page();
    void each_selected_page_is_duplicated();
    void a_copy_is_independent_of_its_page();
    void without_a_selected_page_nothing_is_duplicated();
    void duplicating_is_one_step();

    void labels_are_renumbered_by_row_or_place_data();
    void labels_are_renumbered_by_row_or_place();
    void renumbering_keeps_the_rows_and_the_selection();
    void renumbering_begins_with_the_smallest_value();
    void the_next_label_continues_the_page();
    void the_next_value_stays_if_it_does_not_continue_the_page();
    void a_typed_text_is_applied_before_renumbering();
    void renumbering_is_one_step();

private:
    QListWidget* Items() const { return Support::Only<QListWidget>(*d_window->d_label_widget); }
    QListWidget* Pages() const { return Support::Only<QListWidget>(*d_window->d_page_widget); }
    QString Line() const { return d_window->statusBar()->currentMessage(); }
    void Add_Pages();
    void Check_Step(QWidget* list, const QString& entry, const QString& name);
    QStringList Rows() const;
    QList<int> Values() const;

    std::unique_ptr<TOpenWindow> d_window;
};

void TestContextMenus::init()
{
    d_window = Support::New_Window(32, Qt::red);
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
}

void TestContextMenus::cleanup()
{
    d_window->d_data_changed = false;
    d_window.reset();
}

/// Adds three pages and shows the first one. The labels of the first are in two lines; the third
/// has no image.
void TestContextMenus::Add_Pages()
{
    Support::Add_Pages(d_window.get(),
                       {{"Plan",
                         Support::Picture(300, 200),
                         {Label(1, 8, "", 1, {250, 40}), Label(2, 5, "door", 2, {50, 150}),
                          Label(3, 9, "", 4, {100, 50})}},
                        {"Roof", Support::Picture(80, 60, 1), {}},
                        {"Empty", QImage(), {}}});
    Support::Show_Page(d_window.get(), 1);
    d_window->Update_Document_Actions();
    d_window->d_history->Clear();
    QCoreApplication::processEvents();
    d_window->d_data_changed = false;
}

/// Chooses an entry, then undoes and redoes it in the menu.
void TestContextMenus::Check_Step(QWidget* list, const QString& entry, const QString& name)
{
    const QStringList before = Support::Describe(d_window.get());
    QCOMPARE(Choose_From_Menu(list, entry), QString());
    const QStringList after = Support::Describe(d_window.get());
    QVERIFY(after != before);
    QVERIFY(d_window->d_data_changed);
    QCOMPARE(Choose_From_Menu(Pages(), "Undo " + name), QString());
    QCOMPARE(Line(), "Undone: " + name);
    QCOMPARE(Support::Describe(d_window.get()), before);
    QVERIFY(!d_window->d_history->Can_Undo());
    QCOMPARE(Choose_From_Menu(Pages(), "Redo " + name), QString());
    QCOMPARE(Support::Describe(d_window.get()), after);
}

QStringList TestContextMenus::Rows() const
{
    QStringList rows;
    for (int row = 0; row < Items()->count(); ++row)
        rows += Items()->item(row)->text();
    return rows;
}

/// The values of the shown page's labels in the order of their ids.
QList<int> TestContextMenus::Values() const
{
    QList<int> values;
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items)
        values += item.value;
    return values;
}

void TestContextMenus::the_menus_have_these_entries()
{
    Add_Pages();
    QCOMPARE(
        Support::Menu_Entries(Pages()),
        QStringList({"(Undo)", "(Redo)", "", "Insert Images Here ...", "Insert pages from PDF ...",
                     "", "Rotate left", "Rotate right", "Duplicate", "", "Export web page ..."}));
    QCOMPARE(
        Support::Menu_Entries(Items()),
        QStringList({"(Undo)", "(Redo)", "", "Renumber in row order", "Renumber in reading order",
                     "Renumber by columns", "", "Move onto the page"}));
}

void TestContextMenus::undo_and_redo_name_the_step_in_both_menus()
{
    Add_Pages();
    d_window->Add_Item(QPointF(20, 20));
    d_window->Change_Item_Border(1, 8);
    for (QWidget* const list : {Items(), Pages()}) {
        QCOMPARE(Support::Menu_Entries(list).mid(0, 3),
                 QStringList({"Undo change border", "(Redo)", ""}));
    }
    QTest::keyClick(d_window.get(), Qt::Key_Z, Qt::ControlModifier);
    for (QWidget* const list : {Items(), Pages()}) {
        QCOMPARE(Support::Menu_Entries(list).mid(0, 3),
                 QStringList({"Undo add label", "Redo change border", ""}));
    }
}

void TestContextMenus::choosing_undo_and_redo_shows_the_result()
{
    Add_Pages();
    d_window->Add_Item(QPointF(20, 20));
    QCOMPARE(Choose_From_Menu(Items(), "Undo add label"), QString());
    QCOMPARE(Line(), QString("Undone: add label"));
    QCOMPARE(Items()->count(), 3);
    QCOMPARE(Choose_From_Menu(Items(), "Redo add label"), QString());
    QCOMPARE(Line(), QString("Redone: add label"));
    QCOMPARE(Items()->count(), 4);
    QCOMPARE(Support::Labels(*d_window->d_display_widget).size(), 4);
}

void TestContextMenus::a_new_document_has_nothing_to_undo()
{
    Add_Pages();
    d_window->Add_Item(QPointF(20, 20));
    d_window->d_data_changed = false;
    d_window->File_New();
    QCOMPARE(Support::Menu_Entries(Pages()).mid(0, 2), QStringList({"(Undo)", "(Redo)"}));
}

// --- rotating ------------------------------------------------------------------------------------

void TestContextMenus::rotating_right_turns_image_and_labels()
{
    Add_Pages();
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate right"), QString());
    const QImage expected = Support::Picture(300, 200).transformed(QTransform().rotate(90));
    QCOMPARE(Support::Difference(d_window->d_data.Page_Image(), expected), QString());
    QCOMPARE(
        Support::Difference(d_window->d_display_widget->Background_Pixmap().toImage(), expected),
        QString());
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(160, 250));
    QCOMPARE(d_window->d_display_widget->Item_Position(1), QPointF(160, 250));
    QCOMPARE(d_window->d_display_widget->Item_Position(2), QPointF(50, 50));
    QVERIFY(d_window->d_data_changed);
}

void TestContextMenus::rotating_left_turns_image_and_labels()
{
    Add_Pages();
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate left"), QString());
    QCOMPARE(Support::Difference(d_window->d_data.Page_Image(),
                                 Support::Picture(300, 200).transformed(QTransform().rotate(-90))),
             QString());
    QCOMPARE(d_window->d_data.Item(0).position, QPointF(40, 50));
    QCOMPARE(d_window->d_display_widget->Item_Position(1), QPointF(40, 50));
}

void TestContextMenus::rotating_keeps_the_selected_labels()
{
    Add_Pages();
    d_window->d_label_widget->Select_Items({1, 3});
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate right"), QString());
    QCOMPARE(d_window->d_label_widget->Selected_Items(), (std::vector<int>{1, 3}));
    QVERIFY(d_window->d_data.Item(0).selected);
    QVERIFY(!d_window->d_data.Item(1).selected);
}

void TestContextMenus::all_selected_pages_are_rotated()
{
    Add_Pages();
    Pages()->selectAll();
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate right"), QString());
    QCOMPARE(d_window->d_data.Page(1).image.size(), QSize(200, 300));
    QCOMPARE(d_window->d_data.Page(2).image.size(), QSize(60, 80));
    QCOMPARE(Support::Menu_Entries(Pages()).first(), QString("Undo rotate 2 pages"));
}

void TestContextMenus::a_page_without_an_image_is_not_rotated()
{
    Add_Pages();
    Support::Show_Page(d_window.get(), 3);
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate right"), QString());
    QCOMPARE(Line(), QString("No page with an image is selected"));
    QVERIFY(!d_window->d_history->Can_Undo());
    QVERIFY(!d_window->d_data_changed);
}

void TestContextMenus::rotating_is_one_step()
{
    Add_Pages();
    Check_Step(Pages(), "Rotate right", "rotate 1 page");
    QCOMPARE(d_window->d_display_widget->Item_Position(1), QPointF(160, 250));
}

// --- duplicating ---------------------------------------------------------------------------------

void TestContextMenus::a_copy_follows_its_page()
{
    Add_Pages();
    d_window->d_label_widget->Select_Items({1});
    QCOMPARE(Choose_From_Menu(Pages(), "Duplicate"), QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1, 4, 2, 3}));
    QCOMPARE(d_window->d_page_widget->Page_Name(4), QString("Plan copy"));
    QCOMPARE(d_window->d_data.Active_Page(), 1);
    const TPageItem& copy = d_window->d_data.Page(4);
    QCOMPARE(Support::Difference(copy.image, Support::Picture(300, 200)), QString());
    QStringList labels;
    for (const TDataItem& item : copy.data_items)
        labels += Support::Describe_Label(item);
    QStringList expected;
    for (TDataItem item : d_window->d_data.Page(1).data_items) {
        item.selected = false;
        expected += Support::Describe_Label(item);
    }
    QCOMPARE(labels, expected);
    QVERIFY(d_window->d_data_changed);
}

void TestContextMenus::each_selected_page_is_duplicated()
{
    Add_Pages();
    Pages()->clearSelection();
    // Selected from the bottom, copied from the top.
    for (const int row : {2, 0})
        Pages()->item(row)->setSelected(true);
    QCOMPARE(Choose_From_Menu(Pages(), "Duplicate"), QString());
    QCOMPARE(d_window->d_page_widget->Page_Ids(), QList<int>({1, 4, 2, 3, 5}));
    QCOMPARE(d_window->d_page_widget->Page_Name(5), QString("Empty copy"));
    QVERIFY(d_window->d_data.Page(5).image.isNull());
    QCOMPARE(Support::Menu_Entries(Pages()).first(), QString("Undo duplicate 2 pages"));
}

void TestContextMenus::a_copy_is_independent_of_its_page()
{
    Add_Pages();
    QCOMPARE(Choose_From_Menu(Pages(), "Duplicate"), QString());
    Support::Show_Page(d_window.get(), 4);
    QCOMPARE(Choose_From_Menu(Pages(), "Rotate left"), QString());
    d_window->Change_Item_Value(1, 77);
    QCOMPARE(d_window->d_data.Page(1).image.size(), QSize(300, 200));
    QCOMPARE(d_window->d_data.Page(1).data_items[0].value, 8);
    QCOMPARE(d_window->d_data.Page(1).data_items[0].position, QPointF(250, 40));
}

void TestContextMenus::without_a_selected_page_nothing_is_duplicated()
{
    Add_Pages();
    Pages()->clearSelection();
    QCOMPARE(Choose_From_Menu(Pages(), "Duplicate"), QString());
    QCOMPARE(Line(), QString("No page is selected"));
    QCOMPARE(d_window->d_data.Page_Count(), 3);
    QVERIFY(!d_window->d_data_changed);
}

void TestContextMenus::duplicating_is_one_step()
{
    Add_Pages();
    Check_Step(Pages(), "Duplicate", "duplicate 1 page");
}

// --- renumbering ---------------------------------------------------------------------------------

void TestContextMenus::labels_are_renumbered_by_row_or_place_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QList<int>>("values");
    QTest::newRow("rows") << "Renumber in row order" << QList<int>({6, 7, 5});
    QTest::newRow("lines") << "Renumber in reading order" << QList<int>({6, 7, 5});
    QTest::newRow("columns") << "Renumber by columns" << QList<int>({7, 5, 6});
}

void TestContextMenus::labels_are_renumbered_by_row_or_place()
{
    QFETCH(QString, entry);
    Add_Pages();
    // The last row becomes the first one.
    Items()->setCurrentRow(2);
    Items()->setFocus();
    QTest::keyClick(Items(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(Items(), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(Choose_From_Menu(Items(), entry), QString());
    QTEST(Values(), "values");
    for (const QGraphicsPixmapItem* const label : Support::Labels(*d_window->d_display_widget)) {
        const int index = label->data(TDisplayWidget::Id_Key).toInt() - 1;
        QCOMPARE(label->data(TDisplayWidget::Value_Key).toInt(), Values()[index]);
    }
    QVERIFY(d_window->d_data_changed);
}

void TestContextMenus::renumbering_keeps_the_rows_and_the_selection()
{
    Add_Pages();
    Items()->setCurrentRow(2);
    Items()->setFocus();
    QTest::keyClick(Items(), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(Rows(), QStringList({"Item [8] ", "Item [9] ", "Item [5] door"}));
    QCOMPARE(Choose_From_Menu(Items(), "Renumber in row order"), QString());
    QCOMPARE(Rows(), QStringList({"Item [5] ", "Item [6] ", "Item [7] door"}));
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>{3});
    QCOMPARE(Support::By_Caption<QLineEdit>(*d_window, "Item Value:")->text(), QString("6"));
}

void TestContextMenus::renumbering_begins_with_the_smallest_value()
{
    Add_Pages();
    d_window->Change_Item_Value(1, -4);
    QCOMPARE(Choose_From_Menu(Items(), "Renumber in row order"), QString());
    QCOMPARE(Values(), QList<int>({-4, -3, -2}));
}

void TestContextMenus::the_next_label_continues_the_page()
{
    Add_Pages();
    Support::Type_Over(Support::By_Caption<QLineEdit>(*d_window, "Item Value:"), "10");
    QCOMPARE(Choose_From_Menu(Items(), "Renumber in row order"), QString());
    QCOMPARE(d_window->d_label_widget->Next_Value(), 8);
    QCOMPARE(Support::By_Caption<QLineEdit>(*d_window, "Item Value:")->text(), QString("8"));
    QCOMPARE(Choose_From_Menu(Pages(), "Undo renumber labels"), QString());
    QCOMPARE(d_window->d_label_widget->Next_Value(), 10);
}

void TestContextMenus::the_next_value_stays_if_it_does_not_continue_the_page()
{
    Add_Pages();
    Support::Type_Over(Support::By_Caption<QLineEdit>(*d_window, "Item Value:"), "300");
    QCOMPARE(Choose_From_Menu(Items(), "Renumber in row order"), QString());
    QCOMPARE(d_window->d_label_widget->Next_Value(), 300);
    QCOMPARE(Support::By_Caption<QLineEdit>(*d_window, "Item Value:")->text(), QString("300"));
}

void TestContextMenus::a_typed_text_is_applied_before_renumbering()
{
    Add_Pages();
    Items()->setCurrentRow(0);
    auto* const editor = Support::By_Caption<QLineEdit>(*d_window, "Item Text:");
    editor->setFocus();
    QTest::keyClicks(editor, "wall");
    QCOMPARE(Choose_From_Menu(Items(), "Renumber in row order"), QString());
    QCOMPARE(d_window->d_data.Item(0).text, QString("wall"));
    QCOMPARE(Support::Menu_Entries(Items()).first(), QString("Undo renumber labels"));
    QCOMPARE(editor->text(), QString("wall"));
}

void TestContextMenus::renumbering_is_one_step()
{
    for (const char* const entry :
         {"Renumber in row order", "Renumber in reading order", "Renumber by columns"}) {
        cleanup();
        init();
        Add_Pages();
        Check_Step(Items(), entry, "renumber labels");
    }
}

QTEST_MAIN(TestContextMenus)
#include "test_contextmenus.moc"
