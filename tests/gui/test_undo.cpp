// Undo and redo with the keyboard: each kind of step, which changes form one step or none, what the
// window shows afterwards, and what steps do not change.

#include "support/modal.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/view.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/format/projectfile.h"
#include "src/labelwidget.h"
#include "src/model/pixelstore.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QGraphicsPixmapItem>
#include <QKeySequence>
#include <QLineEdit>
#include <QListWidget>
#include <QListWidgetItem>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <csignal>

class TestUndo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // Each kind of step.
    void adding_a_label_by_the_button_is_one_step();
    void adding_a_label_by_a_right_click_is_one_step();
    void removing_labels_is_one_step();
    void changing_a_value_is_one_step();
    void changing_a_text_is_one_step();
    void changing_borders_is_one_step();
    void dragging_a_label_is_one_step();
    void nudging_labels_is_one_step();
    void adding_a_page_is_one_step();
    void removing_pages_is_one_step();
    void naming_a_page_is_one_step();
    void dragging_a_page_is_one_step();
    void moving_pages_by_keys_is_one_step();
    void importing_an_image_is_one_step();
    void importing_into_an_empty_page_is_one_step();
    void renumbering_the_page_is_one_step();
    void renumbering_all_pages_is_one_step();
    void changing_the_label_size_is_one_step();
    void changing_the_label_color_is_one_step();

    // Which changes form one step, and which form none.
    void keystrokes_in_one_editor_on_one_label_are_one_step();
    void keystrokes_in_the_name_editor_on_one_page_are_one_step();
    void the_same_editor_on_another_label_is_another_step();
    void focusing_an_editor_again_begins_another_step();
    void a_selection_ends_a_run_of_nudges();
    void dragging_the_size_slider_is_one_step();
    void importing_several_images_is_one_step();
    void a_command_that_changes_nothing_is_not_a_step_data();
    void a_command_that_changes_nothing_is_not_a_step();
    void typing_and_restoring_a_text_is_not_a_step();
    void two_hundred_steps_can_be_undone();
    void a_new_step_clears_the_steps_to_redo();

    // The keys.
    void both_keys_redo_data();
    void both_keys_redo();
    void the_keys_work_anywhere_in_the_window();
    void an_editor_undoes_text_that_is_not_applied_yet();
    void applied_text_is_undone_by_the_document();
    void the_editor_undoes_the_value_of_the_next_label();
    void redo_keeps_text_that_is_not_applied_yet();
    void undo_keeps_the_keyboard_focus_data();
    void undo_keeps_the_keyboard_focus();
    void the_keys_work_in_a_floating_dock();
    void undo_without_steps_does_nothing();

    // What the window shows.
    void model_view_and_panels_agree();
    void the_changed_page_is_shown();
    void a_restored_page_is_shown();
    void the_selection_is_restored();
    void the_scroll_position_is_kept();
    void undo_during_a_drag_restores_the_position();
    void text_pending_when_its_page_is_removed_is_a_separate_step();
    void a_page_without_a_picture_is_restored_without_one();
    void a_label_size_outside_the_sliders_range_is_restored();
    void undoing_a_label_restores_the_next_value();
    void other_steps_keep_a_typed_next_value();
    void the_status_bar_names_the_step();

    // The document.
    void ids_are_restored();
    void the_changed_flag_is_set();
    void the_document_actions_are_updated();
    void a_new_document_clears_the_steps();
    void opening_clears_the_steps();
    void a_refused_file_keeps_the_steps();
    void a_truncated_file_clears_the_steps();
    void saving_keeps_the_steps();
    void a_removed_page_keeps_only_its_encoded_image();
    void nothing_appears_in_menus_and_tool_bar();
    void signals_are_the_same_while_recording();
    void the_page_view_describes_the_undo_keys();

    // Safety.
    void the_recovery_copy_after_a_kill_contains_the_undone_document();
    void undo_never_changes_a_saved_file();

private:
    QString In(const QString& name) const { return d_folder.filePath(name); }
    static QString Recovery() { return QDir::homePath() + "/.quillet/recovery"; }
    TOpenWindow& Window() const { return *d_window; }
    QLineEdit* Value_Editor() const { return Editor(*Window().d_label_widget, "Item Value"); }
    QLineEdit* Text_Editor() const { return Editor(*Window().d_label_widget, "Item Text"); }
    QLineEdit* Name_Editor() const { return Editor(*Window().d_page_widget, "Page Item Name"); }
    static QLineEdit* Editor(const QWidget& panel, const QString& tool_tip);
    QListWidget* Labels() const { return Window().d_label_widget->findChild<QListWidget*>(); }
    QListWidget* Pages() const { return Window().d_page_widget->findChild<QListWidget*>(); }
    QSlider* Size_Slider() const { return Window().d_settings_widget->findChild<QSlider*>(); }
    void Press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Undo() { Press(Window().d_display_widget, Qt::Key_Z, Qt::ControlModifier); }
    void Redo();
    QStringList Document();
    QStringList Shown() const;
    void Check(const std::function<void()>& command, const QString& name);
    void Answer(const std::function<void()>& command, QMessageBox::StandardButton button);
    void Import(const QStringList& paths);
    void Renumber(int option);
    void Drop_Page(int from, int to);
    void Drag(int id, const QPoint& way);
    int Value_Of(int index) const { return Window().d_data.Item(index).value; }

    QTemporaryDir d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

Q_DECLARE_METATYPE(std::function<void(TestUndo*)>)

QLineEdit* TestUndo::Editor(const QWidget& panel, const QString& tool_tip)
{
    return Support::By_Tool_Tip<QLineEdit>(panel, tool_tip);
}

/// Three pages with pictures, "Page 1" to "Page 3"; the second has three labels and is shown.
void TestUndo::init()
{
    QDir(Recovery()).removeRecursively();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    for (int number = 1; number <= 3; ++number) {
        const QString path = In(QString("%1.png").arg(number));
        if (!QFile::exists(path))
            QVERIFY(Support::Picture(400, 300, number).save(path));
        Window().Load_Image(path);
    }
    Window().d_data.Set_Active_Page(2);
    for (int id = 11; id <= 13; ++id)
        Window().d_data.Add_Item(Support::Label(id, id - 10, "", 2, QPointF(50 * (id - 10), 60)));
    Window().d_page_widget->Set_Active_Page(2);
    Window().d_label_widget->Set_Label_Index(4);
    Window().Update_Document_Actions();
    Window().d_history->Clear();
    Window().d_history->Record_Page_List();
    Window().d_data_changed = false;
}

void TestUndo::cleanup()
{
    if (!d_window)
        return;
    d_window->d_safety_net->Discard();
    d_window.reset();
}

/// Presses a key in a widget. Activates the window first: without a window manager, it stays
/// inactive after a dialog.
void TestUndo::Press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QApplication::setActiveWindow(d_window.get());
    widget->setFocus();
    QTest::keyClick(widget, key, modifiers);
}

void TestUndo::Redo()
{
    Press(Window().d_display_widget, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
}

/// Describes the document without the selection.
QStringList TestUndo::Document()
{
    QStringList lines = Support::Describe(&Window());
    lines.replaceInStrings(" selected", "");
    for (const int page_id : Window().d_page_widget->Page_Ids())
        lines += QString("row %1").arg(page_id);
    return lines << Support::Describe_Appearance(Window());
}

/// Describes what the view and the panels show.
QStringList TestUndo::Shown() const
{
    QStringList lines = Support::View_In_Words(Window());
    for (int row = 0; row < Labels()->count(); ++row)
        lines += Labels()->item(row)->text() + (Labels()->item(row)->isSelected() ? " *" : "");
    for (int row = 0; row < Pages()->count(); ++row)
        lines += Pages()->item(row)->text() + (Pages()->item(row)->isSelected() ? " *" : "");
    return lines << Value_Editor()->text() << Text_Editor()->text() << Name_Editor()->text();
}

/// Checks that a command is one step that can be undone and redone repeatedly.
void TestUndo::Check(const std::function<void()>& command, const QString& name)
{
    const QStringList before = Document();
    const QStringList shown_before = Shown();
    Window().d_data_changed = false;
    command();
    QCoreApplication::processEvents();
    const bool marks = Window().d_data_changed;
    const QStringList after = Document();
    QVERIFY(before != after);
    for (int round = 0; round < 2; ++round) {
        Window().d_data_changed = false;
        Undo();
        QCOMPARE(Document(), before);
        QCOMPARE(Shown(), shown_before);
        QCOMPARE(Window().statusBar()->currentMessage(), "Undone: " + name);
        // Undo marks the document as changed if the change itself does.
        QCOMPARE(Window().d_data_changed, marks);
        QVERIFY(!Window().d_history->Can_Undo());
        Redo();
        QCOMPARE(Document(), after);
        QCOMPARE(Window().statusBar()->currentMessage(), "Redone: " + name);
        QVERIFY(!Window().d_history->Can_Redo());
    }
}

void TestUndo::Answer(const std::function<void()>& command, QMessageBox::StandardButton button)
{
    QCOMPARE(Support::Run_Answering(command, {Support::Press(button)}), QString());
}

void TestUndo::Import(const QStringList& paths)
{
    QCOMPARE(Support::Run_Answering([this] { Window().File_Import(); }, {Support::Choose(paths)}),
             QString());
}

/// @param option  index of the dialog's radio button.
void TestUndo::Renumber(int option)
{
    const auto choose = [option](QWidget* dialog) {
        dialog->findChildren<QRadioButton*>()[option]->click();
    };
    QCOMPARE(Support::Run_Answering([this] { Window().Edit_Reindex(); },
                                    {Support::Click("Apply", choose)}),
             QString());
}

/// Moves a page as dragging it does: the row is removed and inserted again.
void TestUndo::Drop_Page(int from, int to)
{
    QListWidgetItem* const row = Pages()->takeItem(from);
    Pages()->insertItem(to, row);
    Pages()->setCurrentItem(row);
    QCoreApplication::processEvents();
}

/// Drags a label with the mouse, by a distance in pixels at the original zoom.
void TestUndo::Drag(int id, const QPoint& way)
{
    TDisplayWidget* const view = Window().d_display_widget;
    const QPoint begin = view->mapFromScene(view->Item_Position(id));
    const auto send = [view](QEvent::Type type, const QPoint& point, Qt::MouseButtons buttons) {
        QMouseEvent event(type, point, view->viewport()->mapToGlobal(point),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    };
    send(QEvent::MouseButtonPress, begin, Qt::LeftButton);
    send(QEvent::MouseMove, begin + way / 2, Qt::LeftButton);
    send(QEvent::MouseMove, begin + way, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, begin + way, Qt::NoButton);
}

void TestUndo::adding_a_label_by_the_button_is_one_step()
{
    auto* const button = Support::By_Tool_Tip<QToolButton>(*Window().d_label_widget, "Add Item");
    Check([button] { QTest::mouseClick(button, Qt::LeftButton); }, "add label");
}

void TestUndo::adding_a_label_by_a_right_click_is_one_step()
{
    const auto click = [this] {
        QTest::mousePress(Window().d_display_widget->viewport(), Qt::RightButton, Qt::NoModifier,
                          QPoint(90, 80));
    };
    Check(click, "add label");
}

void TestUndo::removing_labels_is_one_step()
{
    Support::Click_Row(Labels(), 0);
    Support::Click_Row(Labels(), 2, Qt::ControlModifier);
    auto* const button = Support::By_Tool_Tip<QToolButton>(*Window().d_label_widget, "Remove Item");
    Check([&] { Answer([button] { button->click(); }, QMessageBox::Yes); }, "remove 2 labels");
}

void TestUndo::changing_a_value_is_one_step()
{
    Support::Click_Row(Labels(), 1);
    Check([this] { Support::Type_Over(Value_Editor(), "57"); }, "change value");
}

void TestUndo::changing_a_text_is_one_step()
{
    Support::Click_Row(Labels(), 1);
    const auto type = [this] {
        Support::Type_Over(Text_Editor(), "Pump");
        QTest::keyClick(Text_Editor(), Qt::Key_Return);
    };
    Check(type, "change text");
}

void TestUndo::changing_borders_is_one_step()
{
    Labels()->selectAll();
    auto* const box = Support::Only<QComboBox>(*Window().d_label_widget);
    Check([&] { Press(box, Qt::Key_End); }, "change border");
}

void TestUndo::dragging_a_label_is_one_step()
{
    Support::Click_Row(Labels(), 0);
    Check([this] { Drag(11, QPoint(30, 20)); }, "move label");
}

void TestUndo::nudging_labels_is_one_step()
{
    Labels()->selectAll();
    const auto nudge = [this] {
        for (int i = 0; i < 3; ++i)
            Press(Window().d_display_widget, Qt::Key_Right, Qt::ControlModifier);
        Press(Window().d_display_widget, Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(Window().d_data.Item(2).position, QPointF(153, 70));
    };
    Check(nudge, "move 3 labels");
}

void TestUndo::adding_a_page_is_one_step()
{
    auto* const button = Support::By_Tool_Tip<QToolButton>(*Window().d_page_widget, "Add Page");
    Check([button] { QTest::mouseClick(button, Qt::LeftButton); }, "add page");
}

void TestUndo::removing_pages_is_one_step()
{
    auto* const button = Support::By_Tool_Tip<QToolButton>(*Window().d_page_widget, "Remove Page");
    Check([&] { Answer([button] { button->click(); }, QMessageBox::Yes); }, "remove 1 page");
}

void TestUndo::naming_a_page_is_one_step()
{
    Check([this] { Support::Type_Over(Name_Editor(), "Roof"); }, "rename page");
}

void TestUndo::dragging_a_page_is_one_step()
{
    Check([this] { Drop_Page(1, 0); }, "move 1 page");
}

void TestUndo::moving_pages_by_keys_is_one_step()
{
    // Only the selection shows which of two neighbours was moved.
    Check([this] { Press(Pages(), Qt::Key_Down, Qt::AltModifier); }, "move 1 page");
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{1, 3, 2}));
    Undo();
    QCOMPARE(Window().d_page_widget->Selected_Pages(), std::vector<int>{2});

    Support::Click_Row(Pages(), 2, Qt::ControlModifier);
    Check([this] { Press(Pages(), Qt::Key_Up, Qt::AltModifier); }, "move 2 pages");
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{2, 3, 1}));
    QCOMPARE(Window().d_page_widget->Selected_Pages(), (std::vector<int>{2, 3}));
}

void TestUndo::importing_an_image_is_one_step()
{
    Check([this] { Import({In("1.png")}); }, "import 1 image");
}

void TestUndo::importing_into_an_empty_page_is_one_step()
{
    Window().Add_Page();
    Support::Click_Row(Pages(), 3);
    Window().d_history->Clear();
    Check([this] { Import({In("1.png")}); }, "import 1 image");
}

void TestUndo::renumbering_the_page_is_one_step()
{
    Check([this] { Renumber(1); }, "renumber labels");
}

void TestUndo::renumbering_all_pages_is_one_step()
{
    Window().d_data.Set_Active_Page(3);
    Window().d_data.Add_Item(Support::Label(5, 70, "", 1, QPointF(20, 20)));
    Window().d_data.Set_Active_Page(2);
    Check([this] { Renumber(0); }, "renumber labels");
}

void TestUndo::changing_the_label_size_is_one_step()
{
    Check([this] { Press(Size_Slider(), Qt::Key_PageUp); }, "change label size");
    QCOMPARE(Support::View_Difference(Window(), Size_Slider()->value(), QColor("#f79741")),
             QString());
    Undo();
    QCOMPARE(Support::View_Difference(Window(), 32, QColor("#f79741")), QString());
}

void TestUndo::changing_the_label_color_is_one_step()
{
    auto* const button = Window().d_settings_widget->findChild<QToolButton*>();
    const auto choose = [](QWidget* dialog) {
        qobject_cast<QColorDialog*>(dialog)->setCurrentColor(QColor("#102030"));
        QTest::keyClick(dialog, Qt::Key_Return);
    };
    const auto command = [&] {
        QCOMPARE(Support::Run_Answering([button] { button->click(); }, {choose}), QString());
    };
    Check(command, "change label color");
    QCOMPARE(Support::View_Difference(Window(), 32, QColor("#102030")), QString());
    Undo();
    QCOMPARE(Support::View_Difference(Window(), 32, QColor("#f79741")), QString());
}

void TestUndo::keystrokes_in_one_editor_on_one_label_are_one_step()
{
    Support::Click_Row(Labels(), 0);
    Press(Value_Editor(), Qt::Key_End);
    QTest::keyClicks(Value_Editor(), "5");
    QTest::keyClick(Value_Editor(), Qt::Key_Backspace);
    QTest::keyClicks(Value_Editor(), "78");
    QCOMPARE(Value_Of(0), 178);
    Press(Value_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Value_Of(0), 1);
    QCOMPARE(Value_Editor()->text(), QString("1"));
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestUndo::keystrokes_in_the_name_editor_on_one_page_are_one_step()
{
    Press(Name_Editor(), Qt::Key_End);
    for (const char letter : {'a', 'b', 'c'}) {
        QTest::keyClick(Name_Editor(), letter);
        QCoreApplication::processEvents();
    }
    QCOMPARE(Window().d_page_widget->Page_Name(2), QString("Page 2abc"));
    Press(Name_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Window().d_page_widget->Page_Name(2), QString("Page 2"));
    QCOMPARE(Name_Editor()->text(), QString("Page 2"));
}

void TestUndo::the_same_editor_on_another_label_is_another_step()
{
    Support::Click_Row(Labels(), 0);
    Support::Type_Over(Value_Editor(), "7");
    Support::Click_Row(Labels(), 1);
    Support::Type_Over(Value_Editor(), "7");
    Undo();
    QCOMPARE(Value_Of(0), 7);
    QCOMPARE(Value_Of(1), 2);
    Undo();
    QCOMPARE(Value_Of(0), 1);
}

void TestUndo::focusing_an_editor_again_begins_another_step()
{
    Support::Click_Row(Labels(), 0);
    Press(Value_Editor(), Qt::Key_7);
    Window().d_display_widget->setFocus();
    Press(Value_Editor(), Qt::Key_8);
    QCOMPARE(Value_Of(0), 178);
    Undo();
    QCOMPARE(Value_Of(0), 17);
    Undo();
    QCOMPARE(Value_Of(0), 1);
}

void TestUndo::a_selection_ends_a_run_of_nudges()
{
    const auto nudge = [this] {
        Press(Window().d_display_widget, Qt::Key_Right, Qt::ControlModifier);
    };
    Support::Click_Row(Labels(), 0);
    nudge();
    nudge();
    Support::Click_Row(Labels(), 1);
    Support::Click_Row(Labels(), 0);
    nudge();
    QCOMPARE(Window().d_data.Item(0).position, QPointF(53, 60));
    Undo();
    QCOMPARE(Window().d_data.Item(0).position, QPointF(52, 60));
    nudge();
    Undo();
    Undo();
    QCOMPARE(Window().d_data.Item(0).position, QPointF(50, 60));
    QVERIFY(!Window().d_history->Can_Undo());
    nudge();
    Press(Window().d_display_widget, Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestUndo::dragging_the_size_slider_is_one_step()
{
    const auto drag = [this](int size) {
        Size_Slider()->setSliderDown(true);
        for (int value = Size_Slider()->value(); value <= size; ++value)
            Size_Slider()->setSliderPosition(value);
        Size_Slider()->setSliderDown(false);
    };
    drag(40);
    QTest::mousePress(Size_Slider(), Qt::LeftButton, Qt::NoModifier, QPoint(-1, -1));
    QTest::mouseRelease(Size_Slider(), Qt::LeftButton, Qt::NoModifier, QPoint(-1, -1));
    const int between = Size_Slider()->value();
    drag(60);
    Undo();
    QCOMPARE(Size_Slider()->value(), between);
    Undo();
    QCOMPARE(Size_Slider()->value(), 32);
}

void TestUndo::importing_several_images_is_one_step()
{
    Check([this] { Import({In("1.png"), In("2.png"), In("3.png")}); }, "import 3 images");
}

void TestUndo::a_command_that_changes_nothing_is_not_a_step_data()
{
    QTest::addColumn<std::function<void(TestUndo*)>>("command");
    const auto add = [](const char* name, const std::function<void(TestUndo*)>& command) {
        QTest::newRow(name) << command;
    };
    add("a click on a label", [](TestUndo* test) { test->Drag(12, QPoint(0, 0)); });
    add("the same value", [](TestUndo* test) {
        Support::Click_Row(test->Labels(), 0);
        test->Press(test->Value_Editor(), Qt::Key_Home);
        QTest::keyClick(test->Value_Editor(), Qt::Key_0);
    });
    add("the same text", [](TestUndo* test) {
        Support::Click_Row(test->Labels(), 0);
        test->Press(test->Text_Editor(), Qt::Key_Return);
    });
    add("the same numbers", [](TestUndo* test) { test->Window().Change_Item_Value(11, 1); });
    add("the same color", [](TestUndo* test) { test->Window().Color_Changed("#f79741"); });
    add("declined removals", [](TestUndo* test) {
        Support::Click_Row(test->Labels(), 0);
        test->Answer([&] { test->Window().Remove_Item(); }, QMessageBox::No);
        test->Answer([&] { test->Window().Remove_Pages({1}); }, QMessageBox::No);
    });
    add("a page that is shown", [](TestUndo* test) { Support::Click_Row(test->Pages(), 0); });
    add("a selection", [](TestUndo* test) { test->Labels()->selectAll(); });
    add("no image", [](TestUndo* test) { test->Window().Load_Image(test->In("none.png")); });
    add("an unknown label", [](TestUndo* test) { test->Window().Change_Item_Text(99, "x"); });
}

void TestUndo::a_command_that_changes_nothing_is_not_a_step()
{
    using TCommand = std::function<void(TestUndo*)>;
    QFETCH(TCommand, command);
    const QStringList before = Document();
    command(this);
    QCoreApplication::processEvents();
    QCOMPARE(Document(), before);
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestUndo::typing_and_restoring_a_text_is_not_a_step()
{
    Support::Click_Row(Labels(), 0);
    Press(Value_Editor(), Qt::Key_End);
    QTest::keyClicks(Value_Editor(), "5");
    QVERIFY(Window().d_history->Can_Undo());
    QTest::keyClick(Value_Editor(), Qt::Key_Backspace);
    QCOMPARE(Value_Of(0), 1);
    QVERIFY(!Window().d_history->Can_Undo());
    Press(Name_Editor(), Qt::Key_End);
    QTest::keyClicks(Name_Editor(), "x");
    QTest::keyClick(Name_Editor(), Qt::Key_Backspace);
    QCoreApplication::processEvents();
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestUndo::two_hundred_steps_can_be_undone()
{
    const QStringList before = Document();
    for (int i = 0; i < 250; ++i)
        Window().Add_Item(QPointF(i, i));
    const QStringList after = Document();
    for (int i = 0; i < 250; ++i)
        Undo();
    QCOMPARE(Document(), before);
    for (int i = 0; i < 250; ++i)
        Redo();
    QCOMPARE(Document(), after);
}

void TestUndo::a_new_step_clears_the_steps_to_redo()
{
    Window().Add_Item(QPointF(10, 10));
    Undo();
    Window().Change_Item_Value(11, 99);
    QVERIFY(!Window().d_history->Can_Redo());
    Undo();
    QCOMPARE(Value_Of(0), 1);
}

void TestUndo::both_keys_redo_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Ctrl+Shift+Z") << int(Qt::Key_Z) << int(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Ctrl+Y") << int(Qt::Key_Y) << int(Qt::ControlModifier);
}

void TestUndo::both_keys_redo()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    Window().Add_Item(QPointF(10, 10));
    const QStringList after = Document();
    Undo();
    QVERIFY(Document() != after);
    Press(Window().d_display_widget, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(Document(), after);
}

void TestUndo::the_keys_work_anywhere_in_the_window()
{
    Support::Click_Row(Labels(), 0);
    int tried = 0;
    for (QWidget* const widget : Window().findChildren<QWidget*>()) {
        if (!widget->isVisible() || !widget->isEnabled() || !(widget->focusPolicy() & Qt::TabFocus))
            continue;
        Window().Change_Item_Value(11, 1000);
        Press(widget, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY2(Value_Of(0) == 1, widget->metaObject()->className());
        Press(widget, Qt::Key_Y, Qt::ControlModifier);
        QVERIFY2(Value_Of(0) == 1000, widget->metaObject()->className());
        Undo();
        ++tried;
    }
    QVERIFY(tried >= 15);
}

void TestUndo::an_editor_undoes_text_that_is_not_applied_yet()
{
    Support::Click_Row(Labels(), 0);
    Window().Change_Item_Border(11, 8);
    Press(Text_Editor(), Qt::Key_End);
    QTest::keyClicks(Text_Editor(), "abc");
    Press(Text_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Text_Editor()->text(), QString());
    QCOMPARE(Window().d_data.Item(0).border_type, 8);
    for (const auto& keys : {qMakePair(Qt::Key_Y, Qt::KeyboardModifiers(Qt::ControlModifier)),
                             qMakePair(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier)}) {
        Press(Text_Editor(), keys.first, keys.second);
        QCOMPARE(Text_Editor()->text(), QString("abc"));
        Press(Text_Editor(), Qt::Key_Z, Qt::ControlModifier);
    }
    // The editor has no more text to undo, so the key undoes the document's last step.
    Press(Text_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Item(0).border_type, 2);
}

void TestUndo::applied_text_is_undone_by_the_document()
{
    Support::Click_Row(Labels(), 0);
    Press(Text_Editor(), Qt::Key_End);
    QTest::keyClicks(Text_Editor(), "abc");
    QTest::keyClick(Text_Editor(), Qt::Key_Return);
    QCOMPARE(Window().d_data.Item(0).text, QString("abc"));
    Press(Text_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Item(0).text, QString());
    QCOMPARE(Text_Editor()->text(), QString());
    Press(Text_Editor(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Item(0).text, QString("abc"));
    QCOMPARE(Text_Editor()->text(), QString("abc"));
}

void TestUndo::the_editor_undoes_the_value_of_the_next_label()
{
    Window().Change_Item_Border(11, 8);
    Labels()->clearSelection();
    const QString before = Value_Editor()->text();
    Press(Value_Editor(), Qt::Key_End);
    QTest::keyClicks(Value_Editor(), "00");
    Press(Value_Editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Value_Editor()->text(), before);
    QCOMPARE(Window().d_data.Item(0).border_type, 8);
}

void TestUndo::redo_keeps_text_that_is_not_applied_yet()
{
    Support::Click_Row(Labels(), 0);
    Window().Change_Item_Border(11, 8);
    Undo();
    Press(Text_Editor(), Qt::Key_End);
    QTest::keyClicks(Text_Editor(), "abc");
    Press(Text_Editor(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Text_Editor()->text(), QString("abc"));
    QCOMPARE(Window().d_data.Item(0).border_type, 2);
    QTest::keyClick(Text_Editor(), Qt::Key_Return);
    QCOMPARE(Window().d_data.Item(0).text, QString("abc"));
}

void TestUndo::undo_keeps_the_keyboard_focus_data()
{
    QTest::addColumn<QString>("editor");
    for (const char* editor : {"Item Value", "Item Text", "Page Item Name"})
        QTest::newRow(editor) << editor;
}

void TestUndo::undo_keeps_the_keyboard_focus()
{
    QFETCH(QString, editor);
    Support::Click_Row(Labels(), 0);
    auto* const widget = Support::By_Tool_Tip<QLineEdit>(Window(), editor);
    Press(widget, Qt::Key_End);
    QTest::keyClicks(widget, "5");
    QTest::keyClick(widget, Qt::Key_Return);
    QCoreApplication::processEvents();
    // Return in "Item Text" goes to the page.
    widget->setFocus();
    const QString typed = widget->text();
    for (const Qt::Key key : {Qt::Key_Z, Qt::Key_Y}) {
        QTest::keyClick(widget, key, Qt::ControlModifier);
        QCOMPARE(QApplication::focusWidget(), widget);
    }
    QCOMPARE(widget->text(), typed);
}

void TestUndo::the_keys_work_in_a_floating_dock()
{
    Window().Change_Item_Value(11, 1000);
    Window().d_label_dock->setFloating(true);
    QVERIFY(QTest::qWaitForWindowExposed(Window().d_label_dock));
    QApplication::setActiveWindow(Window().d_label_dock);
    Labels()->setFocus();
    QTest::keyClick(Labels(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Value_Of(0), 1);
    QTest::keyClick(Labels(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Value_Of(0), 1000);
}

void TestUndo::undo_without_steps_does_nothing()
{
    const QStringList before = Document();
    Undo();
    Redo();
    QCOMPARE(Document(), before);
    QVERIFY(!Window().d_data_changed);
    QCOMPARE(Window().statusBar()->currentMessage(), QString());
}

void TestUndo::model_view_and_panels_agree()
{
    Support::Click_Row(Labels(), 1);
    Window().Change_Item_Value(12, 55);
    Window().Change_Item_Text(12, "T");
    Window().Change_Item_Border(12, 8);
    Window().d_display_widget->Move_Item(12, QPointF(33, 44));
    for (int i = 0; i < 4; ++i)
        Undo();
    const QGraphicsPixmapItem& label = *Support::Label(*Window().d_display_widget, 12);
    QCOMPARE(label.data(TDisplayWidget::Value_Key).toInt(), 2);
    QCOMPARE(label.data(TDisplayWidget::Text_Key).toString(), QString());
    QCOMPARE(label.data(TDisplayWidget::Border_Key).toInt(), 2);
    QCOMPARE(label.data(TDisplayWidget::Centre_Key).toPointF(), QPointF(100, 60));
    QCOMPARE(Labels()->item(1)->data(Qt::UserRole + 1).toInt(), 2);
    QCOMPARE(Labels()->item(1)->data(Qt::UserRole + 3).toInt(), 2);
    QCOMPARE(Value_Editor()->text(), QString("2"));
    QCOMPARE(Text_Editor()->text(), QString());
}

void TestUndo::the_changed_page_is_shown()
{
    Window().Change_Item_Value(12, 55);
    Support::Click_Row(Pages(), 2);
    Undo();
    QCOMPARE(Window().d_data.Active_Page(), 2);
    QCOMPARE(Window().d_page_widget->Selected_Pages(), std::vector<int>{2});
    QCOMPARE(Name_Editor()->text(), QString("Page 2"));
    Support::Click_Row(Pages(), 0);
    Redo();
    QCOMPARE(Window().d_data.Active_Page(), 2);
    QCOMPARE(Value_Of(1), 55);
}

void TestUndo::a_restored_page_is_shown()
{
    Support::Click_Row(Pages(), 1);
    Support::Click_Row(Pages(), 2, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Active_Page(), -1);
    Answer([this] { Window().Remove_Pages({2, 3}); }, QMessageBox::Yes);
    Undo();
    QCOMPARE(Window().d_data.Active_Page(), 2);
    QCOMPARE(Support::Labels(*Window().d_display_widget).size(), 3);
    QVERIFY(Window().d_label_widget->isEnabled());
    Window().Add_Page();
    Undo();
    Redo();
    QCOMPARE(Window().d_page_widget->Selected_Pages(), std::vector<int>{4});
}

void TestUndo::the_selection_is_restored()
{
    Support::Click_Row(Labels(), 0);
    Support::Click_Row(Labels(), 2, Qt::ControlModifier);
    Window().Change_Item_Border(11, 8);
    Support::Click_Row(Labels(), 1);
    Undo();
    QCOMPARE(Window().d_label_widget->Selected_Items(), (std::vector<int>{11, 13}));
    QVERIFY(Window().d_data.Item(0).selected);
    QVERIFY(!Window().d_data.Item(1).selected);
    QCOMPARE(
        Support::Label(*Window().d_display_widget, 13)->data(TDisplayWidget::Selected_Key).toInt(),
        1);
    QVERIFY(
        Support::By_Tool_Tip<QToolButton>(*Window().d_label_widget, "Remove Item")->isEnabled());
    Labels()->clearSelection();
    Window().Change_Item_Border(11, 4);
    Labels()->selectAll();
    Undo();
    QCOMPARE(Window().d_label_widget->Selected_Items(), std::vector<int>());
    QVERIFY(
        !Support::By_Tool_Tip<QToolButton>(*Window().d_label_widget, "Remove Item")->isEnabled());
}

void TestUndo::the_scroll_position_is_kept()
{
    Window().Track_Item_Option_Changed(true);
    Window().d_zoom_slider->setValue(100);
    Support::Click_Row(Labels(), 2);
    QScrollBar* const bar = Window().d_display_widget->horizontalScrollBar();
    bar->setValue(bar->value() + 40);
    const int scroll_value = bar->value();
    QVERIFY(scroll_value > 0);
    Window().Change_Item_Value(13, 55);
    Undo();
    QCOMPARE(bar->value(), scroll_value);
    Redo();
    QCOMPARE(bar->value(), scroll_value);
}

void TestUndo::undo_during_a_drag_restores_the_position()
{
    TDisplayWidget* const view = Window().d_display_widget;
    Window().Change_Item_Value(13, 55);
    const QPoint begin = view->mapFromScene(QPointF(50, 60));
    const auto send = [view](QEvent::Type type, const QPoint& point, Qt::MouseButtons buttons) {
        QMouseEvent event(type, point, view->viewport()->mapToGlobal(point), Qt::LeftButton,
                          buttons, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    };
    send(QEvent::MouseButtonPress, begin, Qt::LeftButton);
    send(QEvent::MouseMove, begin + QPoint(20, 20), Qt::LeftButton);
    QVERIFY(view->Item_Position(11) != QPointF(50, 60));
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Value_Of(2), 3);
    send(QEvent::MouseMove, begin + QPoint(40, 40), Qt::LeftButton);
    send(QEvent::MouseButtonRelease, begin + QPoint(40, 40), Qt::NoButton);
    QCOMPARE(Window().d_data.Item(0).position, QPointF(50, 60));
    QCOMPARE(view->Item_Position(11), QPointF(50, 60));
    Redo();
    QCOMPARE(Value_Of(2), 55);
}

void TestUndo::text_pending_when_its_page_is_removed_is_a_separate_step()
{
    Support::Click_Row(Labels(), 0);
    Press(Text_Editor(), Qt::Key_End);
    const QString text = QString::fromUtf8("\xf0\x9f\x93\x90 3");
    Text_Editor()->insert(text);
    QTest::keyClicks(Text_Editor(), "4");
    auto* const button = Support::By_Tool_Tip<QToolButton>(*Window().d_page_widget, "Remove Page");
    Answer([button] { button->click(); }, QMessageBox::Yes);
    QCOMPARE(Window().d_data.Page_Count(), 2);
    Undo();
    QCOMPARE(Window().d_data.Active_Page(), 2);
    QCOMPARE(Window().d_data.Item(0).text, text + "4");
    Undo();
    QCOMPARE(Window().d_data.Item(0).text, QString());
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestUndo::a_page_without_a_picture_is_restored_without_one()
{
    Window().Add_Page();
    Window().d_page_widget->Set_Active_Page(4);
    Answer([this] { Window().Remove_Pages({4, 1}); }, QMessageBox::Yes);
    Undo();
    QCOMPARE(Window().d_data.Active_Page(), 4);
    QVERIFY(!Window().d_data.Page_Image_Valid());
    QVERIFY(!Window().d_label_widget->isEnabled());
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{1, 2, 3, 4}));
}

void TestUndo::a_label_size_outside_the_sliders_range_is_restored()
{
    Window().Label_Size_Changed(300);
    Window().d_history->Finish_Step();
    Size_Slider()->setValue(50);
    Undo();
    QCOMPARE(Window().d_display_widget->Label_Size(), QSize(300, 300));
    QCOMPARE(Size_Slider()->value(), Size_Slider()->maximum());
    Redo();
    QCOMPARE(Window().d_display_widget->Label_Size(), QSize(50, 50));
    QCOMPARE(Size_Slider()->value(), 50);
}

void TestUndo::undoing_a_label_restores_the_next_value()
{
    Window().Add_Item(QPointF(10, 10));
    QCOMPARE(Value_Of(3), 4);
    Undo();
    QCOMPARE(Value_Editor()->text(), QString("4"));
    Window().Add_Item(QPointF(10, 10));
    QCOMPARE(Value_Of(3), 4);
    Undo();
    Redo();
    QCOMPARE(Value_Editor()->text(), QString("5"));
    Renumber(1);
    QCOMPARE(Value_Editor()->text(), QString("104"));
    Undo();
    QCOMPARE(Value_Editor()->text(), QString("5"));
}

void TestUndo::other_steps_keep_a_typed_next_value()
{
    Window().Change_Item_Value(11, 9);
    Labels()->clearSelection();
    Support::Type_Over(Value_Editor(), "300");
    Undo();
    QCOMPARE(Value_Of(0), 1);
    Window().Add_Item(QPointF(10, 10));
    QCOMPARE(Value_Of(3), 300);
}

void TestUndo::the_status_bar_names_the_step()
{
    Labels()->selectAll();
    Answer([this] { Window().Remove_Item(); }, QMessageBox::Yes);
    Undo();
    QCOMPARE(Window().statusBar()->currentMessage(), QString("Undone: remove 3 labels"));
    Redo();
    QCOMPARE(Window().statusBar()->currentMessage(), QString("Redone: remove 3 labels"));
}

void TestUndo::ids_are_restored()
{
    Answer([this] { Window().Remove_Pages({2}); }, QMessageBox::Yes);
    Undo();
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{1, 2, 3}));
    QCOMPARE(Window().d_data.Page_Index(2), 1);
    QCOMPARE(Window().d_data.Item(0).id, 11);
    Window().Add_Page();
    Undo();
    Redo();
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{1, 2, 3, 4}));
    // Ids are never reused: a page added after an undo gets a new one.
    Undo();
    Window().Add_Page();
    QCOMPARE(Window().d_page_widget->Page_Ids(), (QList<int>{1, 2, 3, 5}));
}

void TestUndo::the_changed_flag_is_set()
{
    Window().Add_Item(QPointF(10, 10));
    Window().d_data_changed = false;
    Undo();
    QVERIFY(Window().d_data_changed);
    Window().d_data_changed = false;
    Redo();
    QVERIFY(Window().d_data_changed);
}

void TestUndo::the_document_actions_are_updated()
{
    Answer([this] { Window().Remove_Pages({1, 2, 3}); }, QMessageBox::Yes);
    QVERIFY(!Window().d_action_save->isEnabled());
    Undo();
    for (const QAction* const action : {Window().d_action_save, Window().d_action_export_pdf,
                                        Window().d_action_export_images, Window().d_action_reindex})
        QVERIFY(action->isEnabled());
    Redo();
    QVERIFY(!Window().d_action_save->isEnabled());
    QVERIFY(!Window().d_label_widget->isEnabled());
}

void TestUndo::a_new_document_clears_the_steps()
{
    Window().Add_Item(QPointF(10, 10));
    Answer([this] { Window().File_New(); }, QMessageBox::Yes);
    QVERIFY(!Window().d_history->Can_Undo());
    Undo();
    QCOMPARE(Window().d_data.Page_Count(), 0);
    QCOMPARE(Window().d_page_widget->Page_Ids(), QList<int>());
}

void TestUndo::opening_clears_the_steps()
{
    const QString path = In("a.quillet");
    QVERIFY(Window().Save_Data(path));
    Window().Add_Item(QPointF(10, 10));
    Undo();
    Window().d_data_changed = false;
    QCOMPARE(Support::Run_Answering([this] { Window().File_Open(); }, {Support::Choose({path})}),
             QString());
    QVERIFY(!Window().d_history->Can_Undo());
    QVERIFY(!Window().d_history->Can_Redo());
    const QStringList opened = Document();
    QCoreApplication::processEvents();
    Undo();
    Redo();
    QCOMPARE(Document(), opened);
}

void TestUndo::a_refused_file_keeps_the_steps()
{
    const QString path = In("refused.quillet");
    Support::Write_File(path, "no project");
    const QStringList before = Document();
    Window().Add_Item(QPointF(10, 10));
    QCOMPARE(Support::Run_Answering([this] { Window().File_Open(); },
                                    {Support::Press(QMessageBox::Yes), Support::Choose({path}),
                                     Support::Press(QMessageBox::Ok)}),
             QString());
    Undo();
    QCOMPARE(Document(), before);
}

void TestUndo::a_truncated_file_clears_the_steps()
{
    const QString path = In("short.quillet");
    QVERIFY(Window().Save_Data(path));
    QFile file(path);
    QVERIFY(file.resize(file.size() - 10));
    Window().Change_Item_Value(11, 7);
    Window().d_data_changed = false;
    Answer([&] { Window().Open_File(path); }, QMessageBox::Ok);
    QVERIFY(!Window().d_history->Can_Undo());
    // The pages read before the fault can be edited.
    const QStringList before = Document();
    Pages()->item(0)->setText("Roof");
    Undo();
    QCOMPARE(Document(), before);
}

void TestUndo::saving_keeps_the_steps()
{
    const QStringList before = Document();
    Window().Add_Item(QPointF(10, 10));
    QVERIFY(Window().Save_Data(In("saved.quillet")));
    Undo();
    QCOMPARE(Document(), before);
}

void TestUndo::a_removed_page_keeps_only_its_encoded_image()
{
    QVERIFY(TPixelStore::Shared().Bytes() > 0);
    Answer([this] { Window().Remove_Pages({1, 2, 3}); }, QMessageBox::Yes);
    QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    Undo();
    QCOMPARE(Support::Difference(Window().d_data.Page_Image(), Support::Picture(400, 300, 2)),
             QString());
}

void TestUndo::nothing_appears_in_menus_and_tool_bar()
{
    QStringList texts;
    for (const QMenu* const menu : Window().menuBar()->findChildren<QMenu*>()) {
        for (const QAction* const action : menu->actions())
            texts += action->text();
    }
    for (const QAction* const action : Window().findChild<QToolBar*>()->actions())
        texts += action->text();
    QVERIFY(texts.contains("Reindex Items ..."));
    QCOMPARE(texts.filter(QRegularExpression("undo|redo|back|again",
                                             QRegularExpression::CaseInsensitiveOption)),
             QStringList());
    const QList<QAction*> actions = Window().findChildren<QAction*>();
    for (const QAction* const action : actions)
        QVERIFY(!action->shortcuts().contains(QKeySequence(QStringLiteral("Ctrl+Z"))));
}

/// Compares the signals of a window that records steps with those of one that does not.
void TestUndo::signals_are_the_same_while_recording()
{
    const auto log = [this] {
        Support::TSignalLog view(*Window().d_display_widget);
        QSignalSpy labels(Window().d_label_widget, SIGNAL(Selection_Changed()));
        QSignalSpy values(Window().d_label_widget, SIGNAL(Change_Item_Value(int, int)));
        QSignalSpy borders(Window().d_label_widget, SIGNAL(Change_Item_Border(int, int)));
        QSignalSpy pages(Window().d_page_widget, SIGNAL(Selection_Changed(int)));
        Support::Click_Row(Labels(), 1);
        Support::Type_Over(Value_Editor(), "12");
        Drag(12, QPoint(20, 20));
        Labels()->selectAll();
        Press(Support::Only<QComboBox>(*Window().d_label_widget), Qt::Key_End);
        Answer([this] { Window().Remove_Item(); }, QMessageBox::Yes);
        Support::Click_Row(Pages(), 0);
        Window().Add_Page();
        Answer([this] { Window().Remove_Pages({4}); }, QMessageBox::Yes);
        return view.Take() << QString("%1 %2 %3 %4")
                                  .arg(labels.count())
                                  .arg(values.count())
                                  .arg(borders.count())
                                  .arg(pages.count());
    };
    const QStringList recorded = log();
    QVERIFY2(recorded.size() == 3, qPrintable(recorded.join(" | ")));
    cleanup();
    init();
    Window().d_history.reset();
    QCOMPARE(log(), recorded);
}

void TestUndo::the_page_view_describes_the_undo_keys()
{
    QVERIFY(Window().d_display_widget->whatsThis().contains("Ctrl+Z"));
    QVERIFY(Window().d_display_widget->whatsThis().contains("Ctrl+Y"));
}

void TestUndo::the_recovery_copy_after_a_kill_contains_the_undone_document()
{
    const Support::TChildResult child = Support::Run_In_Child([this] {
        Window().Add_Item(QPointF(10, 10));
        Window().Change_Item_Value(11, 77);
        Window().Change_Item_Value(12, 88);
        Undo();
        Undo();
        Redo();
        Window().Flush_Work();
        return std::raise(SIGKILL);
    });
    QCOMPARE(child.signal, SIGKILL);
    Window().Add_Item(QPointF(10, 10));
    Window().Change_Item_Value(11, 77);
    QStringList expected = Support::Describe(&Window()).filter("label");
    Window().d_safety_net->Discard();

    Window().Recover_Work();
    const QStringList copies = QDir(Recovery()).entryList({"*.quillet"});
    QCOMPARE(copies.size(), 1);
    TOpenWindow reader;
    QVERIFY(reader.Load_Data(Recovery() + '/' + copies.first()));
    QStringList found = Support::Describe(&reader).filter("label");
    for (QStringList* lines : {&expected, &found})
        lines->replaceInStrings(QRegularExpression("^label \\d+ "), "");
    QCOMPARE(found, expected);
}

void TestUndo::undo_never_changes_a_saved_file()
{
    const QString path = In("kept.quillet");
    Window().Add_Item(QPointF(10, 10));
    Window().d_file_name = path;
    Window().File_Save();
    const QByteArray saved = Support::Read_File(path);
    QVERIFY(!saved.isEmpty());
    Undo();
    Redo();
    Undo();
    Window().Flush_Work();
    QCOMPARE(Support::Byte_Difference(Support::Read_File(path), saved), QString());
    Window().File_Save();
    QVERIFY(Support::Read_File(path) != saved);
}

QTEST_MAIN(TestUndo)
#include "test_undo.moc"
