// Commands that save, export or replace the document first commit the text that the user is typing.

#include "support/modal.h"
#include "support/project.h"
#include "support/support.h"
#include "support/widgets.h"
#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QVariantList>

namespace {

/// A command, how a user starts it, and the answers to its dialogs.
struct TCommand
{
    std::function<void()> start;
    std::vector<Support::TAnswer> answers;
};

} // namespace

class TestPendingText : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void each_command_commits_pending_text_data();
    void each_command_commits_pending_text();
    void a_saved_file_has_the_pending_text_data();
    void a_saved_file_has_the_pending_text();
    void closing_asks_to_save_pending_text();
    void new_and_open_ask_before_they_lose_pending_text_data();
    void new_and_open_ask_before_they_lose_pending_text();
    void pending_text_is_simplified_and_one_step();
    void reindexing_keeps_pending_text();
    void without_pending_text_nothing_changes_data();
    void without_pending_text_nothing_changes();
    void finished_text_is_not_committed_again();
    void a_pending_display_format_is_cleaned_before_it_is_stored();
    void a_typed_value_or_name_needs_no_return_key();

private:
    TOpenWindow& Window() { return *d_window; }
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QLineEdit* Text_Editor() const
    {
        return Support::By_Tool_Tip<QLineEdit>(*d_window, QStringLiteral("Item Text"));
    }
    QListWidget* Labels() const { return Support::Only<QListWidget>(*d_window->d_label_widget); }
    void Type(QLineEdit* editor, const QString& text);
    void Press_Keys(Qt::Key key, Qt::KeyboardModifiers modifiers);
    void Click_Menu(const QString& menu, QAction* action);
    void Click_Tool_Bar(QAction* action);
    TCommand Command(const QString& name);
    void Add_Commands();

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
};

void TestPendingText::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_window.get()));
    Support::Add_Pages(&Window(), {{"a",
                                    Support::Picture(300, 200),
                                    {Support::Label(11, 1, "old", 2, {50, 60}),
                                     Support::Label(12, 2, "a  b", 2, {90, 60})}}});
    Window().d_page_widget->Set_Active_Page(Window().d_page_widget->Page_Ids().first());
    Window().Update_Document_Actions();
    QVERIFY(Window().Save_Data(In("a.quillet")));
    Window().d_file_name = In("a.quillet");
    Window().d_working_dir.setPath(d_folder->path());
    Window().d_history->Clear();
    Window().d_history->Record_Page_List();
    Window().d_data_changed = false;
    QApplication::setActiveWindow(d_window.get());
    Support::Click_Row(Labels(), 0);
}

void TestPendingText::cleanup()
{
    d_window->d_safety_net->Discard();
    d_window.reset();
    d_folder.reset();
}

/// Replaces an editor's text, key by key.
void TestPendingText::Type(QLineEdit* editor, const QString& text)
{
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, text);
    QCOMPARE(editor->text(), text);
}

/// Presses keys in the widget that has the focus.
void TestPendingText::Press_Keys(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void TestPendingText::Click_Menu(const QString& menu, QAction* action)
{
    QMenuBar* const bar = Window().menuBar();
    for (QAction* const entry : bar->actions()) {
        if (entry->text() != menu)
            continue;
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(entry).center());
        QTest::mouseClick(entry->menu(), Qt::LeftButton, {},
                          entry->menu()->actionGeometry(action).center());
    }
}

void TestPendingText::Click_Tool_Bar(QAction* action)
{
    QTest::mouseClick(Support::Only<QToolBar>(Window())->widgetForAction(action), Qt::LeftButton);
}

/// The answers decline or cancel the command, so that the document stays open.
TCommand TestPendingText::Command(const QString& name)
{
    const Support::TAnswer no = Support::Press(QMessageBox::No);
    const Support::TAnswer cancel = Support::Cancel();
    const std::map<QString, TCommand> commands = {
        {"save, shortcut", {[this] { Press_Keys(Qt::Key_S, Qt::ControlModifier); }, {}}},
        {"save, menu", {[this] { Click_Menu("File", Window().d_action_save); }, {}}},
        {"save, tool bar", {[this] { Click_Tool_Bar(Window().d_action_save); }, {}}},
        {"save as, menu", {[this] { Click_Menu("File", Window().d_action_save_as); }, {cancel}}},
        {"new, shortcut", {[this] { Press_Keys(Qt::Key_N, Qt::ControlModifier); }, {no}}},
        {"new, tool bar", {[this] { Click_Tool_Bar(Window().d_action_new); }, {no}}},
        {"open, shortcut", {[this] { Press_Keys(Qt::Key_O, Qt::ControlModifier); }, {no}}},
        {"open, menu", {[this] { Click_Menu("File", Window().d_action_open); }, {no}}},
        {"import, menu", {[this] { Click_Menu("File", Window().d_action_import); }, {cancel}}},
        {"export images, tool bar",
         {[this] { Click_Tool_Bar(Window().d_action_export_images); }, {cancel}}},
        {"export images, menu",
         {[this] { Click_Menu("File", Window().d_action_export_images); }, {cancel}}},
        {"export PDF, tool bar",
         {[this] { Click_Tool_Bar(Window().d_action_export_pdf); }, {cancel}}},
        {"reindex, menu", {[this] { Click_Menu("Edit", Window().d_action_reindex); }, {cancel}}},
        {"close", {[this] { Window().close(); }, {Support::Press(QMessageBox::Cancel)}}},
    };
    return commands.at(name);
}

void TestPendingText::Add_Commands()
{
    QTest::addColumn<QString>("name");
    for (const char* const name :
         {"save, shortcut", "save, menu", "save, tool bar", "save as, menu", "new, shortcut",
          "new, tool bar", "open, shortcut", "open, menu", "import, menu",
          "export images, tool bar", "export images, menu", "export PDF, tool bar", "reindex, menu",
          "close"})
        QTest::newRow(name) << QString(name);
}

void TestPendingText::each_command_commits_pending_text_data()
{
    Add_Commands();
}

void TestPendingText::each_command_commits_pending_text()
{
    QFETCH(const QString, name);
    const TCommand command = Command(name);
    const QSignalSpy changes(Window().d_label_widget, SIGNAL(Change_Item_Text(int, QString)));
    Type(Text_Editor(), "new text");
    QCOMPARE(Window().d_data.Item(0).text, QString("old"));
    QCOMPARE(Support::Run_Answering(command.start, command.answers), QString());
    QCOMPARE(Window().d_data.Item(0).text, QString("new text"));
    // An editor that loses the focus to a menu or a dialog reports its text once more.
    QVERIFY(!changes.isEmpty());
    for (const QVariantList& change : changes)
        QCOMPARE(change, QVariantList({11, "new text"}));
    QVERIFY(Window().d_history->Can_Undo());
}

void TestPendingText::a_saved_file_has_the_pending_text_data()
{
    QTest::addColumn<QString>("name");
    for (const char* const name : {"save, shortcut", "save, menu", "save, tool bar"})
        QTest::newRow(name) << QString(name);
}

void TestPendingText::a_saved_file_has_the_pending_text()
{
    QFETCH(const QString, name);
    Type(Text_Editor(), "new text");
    Command(name).start();
    QVERIFY(Support::Read_File(In("a.quillet")).contains("<Text>new text</Text>"));
    QVERIFY(!Window().d_data_changed);
}

void TestPendingText::closing_asks_to_save_pending_text()
{
    Type(Text_Editor(), "new text");
    QCOMPARE(
        Support::Run_Answering([this] { Window().close(); }, {Support::Press(QMessageBox::Yes)}),
        QString());
    QVERIFY(!Window().isVisible());
    QVERIFY(Support::Read_File(In("a.quillet")).contains("<Text>new text</Text>"));
}

void TestPendingText::new_and_open_ask_before_they_lose_pending_text_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("new") << static_cast<int>(Qt::Key_N);
    QTest::newRow("open") << static_cast<int>(Qt::Key_O);
}

void TestPendingText::new_and_open_ask_before_they_lose_pending_text()
{
    QFETCH(const int, key);
    Type(Text_Editor(), "new text");
    QString text;
    const auto look = [&text](const QMessageBox* box) { text = box->text(); };
    QCOMPARE(
        Support::Run_Answering([&] { Press_Keys(static_cast<Qt::Key>(key), Qt::ControlModifier); },
                               {Support::Look_And_Press(look, QMessageBox::No)}),
        QString());
    QVERIFY2(text.contains("Data Not Saved"), qPrintable(text));
    QVERIFY(Window().d_data_changed);
    QCOMPARE(Window().d_data.Item_Count(), 2);
}

void TestPendingText::pending_text_is_simplified_and_one_step()
{
    Type(Text_Editor(), "  new   text ");
    Press_Keys(Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Item(0).text, QString("new text"));
    QCOMPARE(Labels()->item(0)->text(), QString("Item [1] new text"));
    Window().d_display_widget->setFocus();
    Press_Keys(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Window().d_data.Item(0).text, QString("old"));
    QVERIFY(!Window().d_history->Can_Undo());
}

void TestPendingText::reindexing_keeps_pending_text()
{
    Type(Text_Editor(), "new text");
    QCOMPARE(Support::Run_Answering([this] { Click_Menu("Edit", Window().d_action_reindex); },
                                    {Support::Click("Apply")}),
             QString());
    QCOMPARE(Window().d_data.Item(0).text, QString("new text"));
    QCOMPARE(Labels()->item(0)->data(Qt::UserRole + 2).toString(), QString("new text"));
}

void TestPendingText::without_pending_text_nothing_changes_data()
{
    Add_Commands();
}

/// The text editor shows a text that would be simplified if it was committed.
void TestPendingText::without_pending_text_nothing_changes()
{
    QFETCH(const QString, name);
    TCommand command = Command(name);
    Support::Click_Row(Labels(), 1);
    QCOMPARE(Text_Editor()->text(), QString("a  b"));
    // An editor that loses the focus to a menu or a dialog reports its text in any case.
    const bool keeps_focus =
        name.startsWith("new") || name == "save, shortcut" || name == "save, tool bar";
    if (keeps_focus) {
        Text_Editor()->setFocus();
        QTest::keyClick(Text_Editor(), Qt::Key_End);
        QTest::keyClick(Text_Editor(), Qt::Key_X);
        QTest::keyClick(Text_Editor(), Qt::Key_Backspace);
        QCOMPARE(Text_Editor()->text(), QString("a  b"));
    } else {
        Window().d_display_widget->setFocus();
    }
    const QSignalSpy changes(Window().d_label_widget, SIGNAL(Change_Item_Text(int, QString)));
    const QSignalSpy formats(Window().d_settings_widget,
                             SIGNAL(Item_Display_Format_Changed(QString)));
    // No question is asked, so new and close end the document, and open shows its file dialog.
    const bool asks = name.startsWith("new") || name == "close";
    if (asks)
        command.answers.clear();
    if (name.startsWith("open"))
        command.answers = {Support::Cancel()};
    QCOMPARE(Support::Run_Answering(command.start, command.answers), QString());
    QCOMPARE(changes.size(), 0);
    QCOMPARE(formats.size(), 0);
    QVERIFY(!Window().d_data_changed);
    QVERIFY(!Window().d_history->Can_Undo());
    if (!name.startsWith("new"))
        QCOMPARE(Window().d_data.Item(1).text, QString("a  b"));
}

void TestPendingText::finished_text_is_not_committed_again()
{
    Type(Text_Editor(), "  new   text ");
    QTest::keyClick(Text_Editor(), Qt::Key_Return);
    QCOMPARE(Text_Editor()->text(), QString("  new   text "));
    const QSignalSpy changes(Window().d_label_widget, SIGNAL(Change_Item_Text(int, QString)));
    Press_Keys(Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(changes.size(), 0);
}

void TestPendingText::a_pending_display_format_is_cleaned_before_it_is_stored()
{
    QLineEdit* const editor =
        Support::By_Caption<QLineEdit>(Window(), QStringLiteral("Item Display Format:"));
    const QSignalSpy formats(Window().d_settings_widget,
                             SIGNAL(Item_Display_Format_Changed(QString)));
    Type(editor, "100% %1");
    Window().close();
    QVERIFY(!formats.isEmpty());
    QCOMPARE(formats.at(0), QVariantList({"100_ %1"}));
    QCOMPARE(Window().d_settings->value("Item_Display_Format").toString(), QString("100_ %1"));
    QVERIFY(!Window().d_data_changed);
    // For the tests that follow.
    Window().d_settings->setValue("Item_Display_Format", "Item[%1]");
}

void TestPendingText::a_typed_value_or_name_needs_no_return_key()
{
    Type(Support::By_Tool_Tip<QLineEdit>(Window(), "Item Value"), "77");
    Type(Support::By_Tool_Tip<QLineEdit>(Window(), "Page Item Name"), "new name");
    Press_Keys(Qt::Key_S, Qt::ControlModifier);
    const QByteArray saved = Support::Read_File(In("a.quillet"));
    QVERIFY(saved.contains("<Value>77</Value>"));
    QVERIFY(saved.contains(Support::Field("new name")));
}

QTEST_MAIN(TestPendingText)
#include "test_pendingtext.moc"
