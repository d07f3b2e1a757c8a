// Labels are copied, cut, pasted and duplicated with keys.

#include "support/modal.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>

using Support::Label;

namespace {

constexpr int label_size = 30;

} // namespace

class TestClipboard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void labels_are_pasted_at_the_same_positions_on_another_page();
    void labels_are_pasted_with_an_offset_on_the_same_page();
    void pasting_again_moves_the_labels_further();
    void cut_labels_are_pasted_where_they_were();
    void duplicating_does_not_change_the_clipboard();
    void new_labels_get_the_next_values_in_the_order_of_the_document();
    void pasted_labels_are_selected();
    void labels_can_be_pasted_beyond_the_random_ids_of_a_second();
    void each_command_is_one_step_data();
    void each_command_is_one_step();
    void the_keys_work_in_the_lists_data();
    void the_keys_work_in_the_lists();
    void in_an_editor_the_keys_are_for_its_text();
    void a_typed_text_is_copied();
    void without_a_selection_the_clipboard_stays();
    void cells_of_a_spreadsheet_become_labels();
    void other_texts_are_refused_with_a_reason();
    void labels_outside_the_page_are_counted();
    void nothing_is_pasted_without_a_page();

private:
    void Press(int key) const;
    int Show(const QSize& size = QSize(600, 800), const std::vector<TDataItem>& labels = {});
    QStringList Labels() const;
    QString Line() const { return d_window->statusBar()->currentMessage(); }
    static QString Clip() { return QApplication::clipboard()->text(); }

    std::unique_ptr<TOpenWindow> d_window;
};

/// Shows a page with three labels of which the first and the last are selected.
void TestClipboard::init()
{
    QApplication::clipboard()->clear();
    d_window = Support::New_Window(label_size, Qt::red);
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    Show(QSize(600, 800), {Label(1, 5, "Pump", 1, {50, 50}), Label(2, 6, "", 2, {90, 50}),
                           Label(3, 9, "", 8, {100.5, 70})});
    d_window->d_label_widget->Set_Label_Index(20);
    d_window->d_label_widget->Select_Items({3, 1});
    d_window->d_display_widget->setFocus();
}

void TestClipboard::cleanup()
{
    d_window.reset();
}

/// Presses Ctrl with a key where the focus is.
void TestClipboard::Press(int key) const
{
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), Qt::ControlModifier);
    QCoreApplication::processEvents();
}

/// Adds a page and shows it; returns its id.
int TestClipboard::Show(const QSize& size, const std::vector<TDataItem>& labels)
{
    const int page =
        Support::Add_Page(d_window.get(), Support::Picture(size.width(), size.height()), labels);
    Support::Show_Page(d_window.get(), page);
    d_window->d_history->Clear();
    d_window->d_data_changed = false;
    return page;
}

/// The labels of the page, as document, view and list agree on them.
QStringList TestClipboard::Labels() const
{
    QStringList lines;
    for (const TDataItem& item : d_window->d_data.Active_Page_Item()->data_items) {
        lines += QString("%1 '%2' %3 at %4,%5")
                     .arg(item.value)
                     .arg(item.text)
                     .arg(item.border_type)
                     .arg(item.position.x())
                     .arg(item.position.y());
        if (d_window->d_display_widget->Item_Position(item.id) != item.position)
            lines += "elsewhere in the view";
    }
    if (Support::Only<QListWidget>(*d_window->d_label_widget)->count() != lines.size())
        lines += "the list differs";
    return lines;
}

void TestClipboard::labels_are_pasted_at_the_same_positions_on_another_page()
{
    Press(Qt::Key_C);
    QCOMPARE(Line(), QString("Copied 2 labels"));
    QVERIFY(!d_window->d_data_changed);
    Show();
    Press(Qt::Key_V);
    QCOMPARE(Labels(), QStringList({"20 'Pump' 1 at 50,50", "21 '' 8 at 100.5,70"}));
    QCOMPARE(Line(), QString("Pasted 2 labels"));
    QVERIFY(d_window->d_data_changed);
}

void TestClipboard::labels_are_pasted_with_an_offset_on_the_same_page()
{
    Press(Qt::Key_C);
    Press(Qt::Key_V);
    QCOMPARE(Labels().mid(3), QStringList({"20 'Pump' 1 at 80,80", "21 '' 8 at 130.5,100"}));
}

void TestClipboard::pasting_again_moves_the_labels_further()
{
    Press(Qt::Key_C);
    Press(Qt::Key_V);
    Press(Qt::Key_V);
    QCOMPARE(Labels().mid(5), QStringList({"22 'Pump' 1 at 110,110", "23 '' 8 at 160.5,130"}));
}

void TestClipboard::cut_labels_are_pasted_where_they_were()
{
    // No question: the labels are on the clipboard.
    QCOMPARE(Support::Run_Answering([this] { Press(Qt::Key_X); }, {}), QString());
    QCOMPARE(Labels(), QStringList{"6 '' 2 at 90,50"});
    QCOMPARE(Line(), QString("Cut 2 labels"));
    Press(Qt::Key_V);
    QCOMPARE(Labels().mid(1), QStringList({"20 'Pump' 1 at 50,50", "21 '' 8 at 100.5,70"}));
}

void TestClipboard::duplicating_does_not_change_the_clipboard()
{
    QApplication::clipboard()->setText("Pump");
    Press(Qt::Key_D);
    QCOMPARE(Labels().mid(3), QStringList({"20 'Pump' 1 at 80,80", "21 '' 8 at 130.5,100"}));
    QCOMPARE(Line(), QString("Duplicated 2 labels"));
    QCOMPARE(Clip(), QString("Pump"));
}

void TestClipboard::new_labels_get_the_next_values_in_the_order_of_the_document()
{
    // The list reports the label that was selected last at the end.
    auto* const list = Support::Only<QListWidget>(*d_window->d_label_widget);
    Support::Click_Row(list, 2);
    Support::Click_Row(list, 0, Qt::ControlModifier);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>({3, 1}));
    Press(Qt::Key_D);
    QCOMPARE(Labels().mid(3), QStringList({"20 'Pump' 1 at 80,80", "21 '' 8 at 130.5,100"}));
    QTest::mouseClick(d_window->d_display_widget->viewport(), Qt::RightButton, {},
                      d_window->d_display_widget->mapFromScene(QPointF(50, 200)));
    QCOMPARE(Labels().last().left(2), QString("22"));
}

void TestClipboard::pasted_labels_are_selected()
{
    Press(Qt::Key_D);
    const std::vector<TDataItem>& items = d_window->d_data.Active_Page_Item()->data_items;
    QCOMPARE(d_window->d_label_widget->Selected_Items(),
             std::vector<int>({items[3].id, items[4].id}));
    QVERIFY(items[3].selected && items[4].selected && !items[0].selected);
}

void TestClipboard::labels_can_be_pasted_beyond_the_random_ids_of_a_second()
{
    std::vector<TDataItem> many;
    for (int id = 1; id <= 300; ++id)
        many.push_back(Label(id, id, "", 1, {id * 2.0, 40}));
    Show(QSize(700, 100), many);
    Support::Only<QListWidget>(*d_window->d_label_widget)->selectAll();
    Press(Qt::Key_D);
    QCOMPARE(Labels().size(), 600);
    QCOMPARE(Labels().last(), QString("319 '' 1 at 630,70"));
}

void TestClipboard::each_command_is_one_step_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("message");
    QTest::newRow("cut") << int{Qt::Key_X} << "Undone: cut 2 labels";
    QTest::newRow("paste") << int{Qt::Key_V} << "Undone: paste 2 labels";
    QTest::newRow("duplicate") << int{Qt::Key_D} << "Undone: duplicate 2 labels";
}

void TestClipboard::each_command_is_one_step()
{
    QFETCH(int, key);
    QFETCH(QString, message);
    Press(Qt::Key_C);
    QVERIFY(!d_window->d_history->Can_Undo());
    const QStringList before = Labels();
    Press(key);
    const QStringList after = Labels();
    const std::vector<int> selected = d_window->d_label_widget->Selected_Items();
    QVERIFY(after != before);

    Press(Qt::Key_Z);
    QCOMPARE(Line(), message);
    QCOMPARE(Labels(), before);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), std::vector<int>({1, 3}));
    QCOMPARE(d_window->d_label_widget->Next_Value(), 20);
    QVERIFY(!d_window->d_history->Can_Undo());
    Press(Qt::Key_Y);
    QCOMPARE(Labels(), after);
    QCOMPARE(d_window->d_label_widget->Selected_Items(), selected);
}

void TestClipboard::the_keys_work_in_the_lists_data()
{
    QTest::addColumn<bool>("in_pages");
    QTest::newRow("item list") << false;
    QTest::newRow("page list") << true;
}

void TestClipboard::the_keys_work_in_the_lists()
{
    QFETCH(bool, in_pages);
    const QWidget& panel = in_pages ? static_cast<QWidget&>(*d_window->d_page_widget)
                                    : static_cast<QWidget&>(*d_window->d_label_widget);
    Support::Only<QListWidget>(panel)->setFocus();
    Press(Qt::Key_C);
    QVERIFY(Clip().startsWith("page\tvalue"));
    Press(Qt::Key_V);
    QCOMPARE(Labels().size(), 5);
    Press(Qt::Key_D);
    QCOMPARE(Labels().size(), 7);
    Press(Qt::Key_X);
    QCOMPARE(Labels().size(), 5);
}

void TestClipboard::in_an_editor_the_keys_are_for_its_text()
{
    d_window->d_label_widget->Set_Selection(1);
    auto* const editor = Support::By_Tool_Tip<QLineEdit>(*d_window, "Item Text");
    editor->setFocus();
    editor->selectAll();
    Press(Qt::Key_X);
    QCOMPARE(Clip(), QString("Pump"));
    Press(Qt::Key_V);
    Press(Qt::Key_V);
    QCOMPARE(editor->text(), QString("PumpPump"));
    QCOMPARE(Labels().size(), 3);
}

void TestClipboard::a_typed_text_is_copied()
{
    d_window->d_label_widget->Set_Selection(2);
    auto* const editor = Support::By_Tool_Tip<QLineEdit>(*d_window, "Item Text");
    editor->setFocus();
    QTest::keyClicks(editor, "Valve");
    Press(Qt::Key_D);
    QCOMPARE(Labels().mid(3), QStringList{"20 'Valve' 2 at 120,80"});
}

void TestClipboard::without_a_selection_the_clipboard_stays()
{
    QApplication::clipboard()->setText("Pump");
    d_window->d_label_widget->Clear_Selection();
    for (const int key : {Qt::Key_C, Qt::Key_X, Qt::Key_D}) {
        d_window->statusBar()->clearMessage();
        Press(key);
        QCOMPARE(Line(), QString("No label is selected"));
    }
    QCOMPARE(Clip(), QString("Pump"));
    QCOMPARE(Labels().size(), 3);
    QVERIFY(!d_window->d_data_changed);
}

void TestClipboard::cells_of_a_spreadsheet_become_labels()
{
    QApplication::clipboard()->setText("page\tvalue\ttext\tborder\tx\ty\n"
                                       "7\t3\tTank\ttriangle\t200\t300.5\n");
    Press(Qt::Key_V);
    QCOMPARE(Labels().mid(3), QStringList{"20 'Tank' 4 at 200,300.5"});
}

void TestClipboard::other_texts_are_refused_with_a_reason()
{
    QApplication::clipboard()->setText("page\tvalue\tx\n1\t2\t3\n");
    Press(Qt::Key_V);
    QCOMPARE(Line(), QString("The clipboard contains no labels: there is no column \"y\""));
    QApplication::clipboard()->clear();
    Press(Qt::Key_V);
    QCOMPARE(Line(), QString("The clipboard contains no labels: the table is empty"));
    QCOMPARE(Labels().size(), 3);
    QVERIFY(!d_window->d_data_changed);
}

void TestClipboard::labels_outside_the_page_are_counted()
{
    Press(Qt::Key_C);
    Show(QSize(80, 80));
    Press(Qt::Key_V);
    QCOMPARE(Line(), QString("Pasted 2 labels; 1 of them outside the page"));
    // The last label, which is the one outside.
    Press(Qt::Key_D);
    QVERIFY2(Line().startsWith("Duplicated 2 labels; "), qPrintable(Line()));
}

void TestClipboard::nothing_is_pasted_without_a_page()
{
    Press(Qt::Key_C);
    Support::Only<QListWidget>(*d_window->d_page_widget)->clearSelection();
    Press(Qt::Key_V);
    QCOMPARE(Line(), QString("There is no page to paste labels on"));
    QVERIFY(!d_window->d_data_changed);
}

QTEST_MAIN(TestClipboard)
#include "test_clipboard.moc"
