// TUndoKeys: which keys undo and redo, and when a line editor handles them itself.

#include "src/widgets/undokeys.h"

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

class TestUndoKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keys_work_in_every_widget_data();
    void keys_work_in_every_widget();
    void other_keys_neither_undo_nor_redo();
    void an_editor_undoes_typing_that_is_not_recorded();
    void in_an_editor_without_typing_the_keys_apply_to_the_document();
    void recorded_text_is_undone_in_the_document();
    void typing_after_a_step_is_undone_in_the_editor();
    void a_step_counts_for_all_editors();
    void an_editor_redoes_what_it_undid_data();
    void an_editor_redoes_what_it_undid();
    void an_editor_redoes_although_its_text_is_recorded();
    void an_edit_begins_with_the_focus_or_a_click();

private:
    void Press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers);
    void Type(QLineEdit* editor, const QString& text);

    std::unique_ptr<QWidget> d_window;
    QLineEdit* d_editor = nullptr;
    QLineEdit* d_other_editor = nullptr;
    QSlider* d_slider = nullptr;
    QListWidget* d_list = nullptr;
    std::unique_ptr<TUndoKeys> d_keys;
    int d_undo_count = 0;
    int d_redo_count = 0;
    int d_edit_count = 0;
};

void TestUndoKeys::init()
{
    d_window = std::make_unique<QWidget>();
    auto* const layout = new QVBoxLayout(d_window.get());
    d_editor = new QLineEdit;
    d_other_editor = new QLineEdit;
    d_slider = new QSlider;
    d_list = new QListWidget;
    for (QWidget* const widget :
         {static_cast<QWidget*>(d_list), static_cast<QWidget*>(d_editor),
          static_cast<QWidget*>(d_other_editor), static_cast<QWidget*>(d_slider)})
        layout->addWidget(widget);
    d_undo_count = 0;
    d_redo_count = 0;
    d_keys = std::make_unique<TUndoKeys>(
        d_window.get(), [this] { ++d_undo_count; }, [this] { ++d_redo_count; },
        [this] { ++d_edit_count; });
    d_window->show();
    d_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
    d_edit_count = 0;
}

void TestUndoKeys::cleanup()
{
    d_keys.reset();
    d_window.reset();
}

void TestUndoKeys::Press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers)
{
    widget->setFocus();
    QTest::keyClick(widget, static_cast<Qt::Key>(key), modifiers);
}

void TestUndoKeys::Type(QLineEdit* editor, const QString& text)
{
    editor->setFocus();
    QTest::keyClicks(editor, text);
}

void TestUndoKeys::keys_work_in_every_widget_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("undo_count");
    QTest::newRow("Ctrl+Z") << int(Qt::Key_Z) << int(Qt::ControlModifier) << 1;
    QTest::newRow("Ctrl+Y") << int(Qt::Key_Y) << int(Qt::ControlModifier) << 0;
    QTest::newRow("Ctrl+Shift+Z") << int(Qt::Key_Z) << int(Qt::ControlModifier | Qt::ShiftModifier)
                                  << 0;
}

void TestUndoKeys::keys_work_in_every_widget()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, undo_count);
    int presses = 0;
    for (QWidget* const widget : {static_cast<QWidget*>(d_editor), static_cast<QWidget*>(d_slider),
                                  static_cast<QWidget*>(d_list)}) {
        Press(widget, key, Qt::KeyboardModifiers(modifiers));
        ++presses;
        QCOMPARE(d_undo_count, presses * undo_count);
        QCOMPARE(d_redo_count, presses * (1 - undo_count));
    }
}

void TestUndoKeys::other_keys_neither_undo_nor_redo()
{
    for (const auto& modifiers : {Qt::KeyboardModifiers(Qt::ControlModifier | Qt::AltModifier),
                                  Qt::KeyboardModifiers(Qt::AltModifier)}) {
        Press(d_list, Qt::Key_Z, modifiers);
        Press(d_slider, Qt::Key_Y, modifiers);
    }
    Press(d_editor, Qt::Key_Y, Qt::ControlModifier | Qt::ShiftModifier);
    Type(d_editor, QStringLiteral("zy"));
    QCOMPARE(d_editor->text(), QStringLiteral("zy"));
    QCOMPARE(d_undo_count, 0);
    QCOMPARE(d_redo_count, 0);
}

void TestUndoKeys::an_editor_undoes_typing_that_is_not_recorded()
{
    Type(d_editor, QStringLiteral("abc"));
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_editor->text(), QString());
    QCOMPARE(d_undo_count, 0);
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_undo_count, 1);
}

void TestUndoKeys::in_an_editor_without_typing_the_keys_apply_to_the_document()
{
    d_editor->setText(QStringLiteral("shown"));
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    Press(d_editor, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(d_editor->text(), QStringLiteral("shown"));
    QCOMPARE(d_undo_count, 1);
    QCOMPARE(d_redo_count, 1);
}

void TestUndoKeys::recorded_text_is_undone_in_the_document()
{
    Type(d_editor, QStringLiteral("abc"));
    d_keys->Step_Recorded();
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_editor->text(), QStringLiteral("abc"));
    QCOMPARE(d_undo_count, 1);
}

void TestUndoKeys::typing_after_a_step_is_undone_in_the_editor()
{
    Type(d_editor, QStringLiteral("abc"));
    d_keys->Step_Recorded();
    Type(d_editor, QStringLiteral("d"));
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(d_editor->text() != QStringLiteral("abcd"));
    QCOMPARE(d_undo_count, 0);
}

void TestUndoKeys::a_step_counts_for_all_editors()
{
    Type(d_editor, QStringLiteral("abc"));
    Type(d_other_editor, QStringLiteral("x"));
    d_keys->Step_Recorded();
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    Press(d_other_editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(d_editor->text(), QStringLiteral("abc"));
    QCOMPARE(d_other_editor->text(), QStringLiteral("x"));
    QCOMPARE(d_undo_count, 2);
}

void TestUndoKeys::an_editor_redoes_what_it_undid_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Ctrl+Y") << int(Qt::Key_Y) << int(Qt::ControlModifier);
    QTest::newRow("Ctrl+Shift+Z") << int(Qt::Key_Z) << int(Qt::ControlModifier | Qt::ShiftModifier);
}

void TestUndoKeys::an_editor_redoes_what_it_undid()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    Type(d_editor, QStringLiteral("abc"));
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    Press(d_editor, key, Qt::KeyboardModifiers(modifiers));
    QCOMPARE(d_editor->text(), QStringLiteral("abc"));
    QCOMPARE(d_redo_count, 0);
}

void TestUndoKeys::an_editor_redoes_although_its_text_is_recorded()
{
    Type(d_editor, QStringLiteral("abc"));
    Press(d_editor, Qt::Key_Z, Qt::ControlModifier);
    d_keys->Step_Recorded();
    Press(d_editor, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(d_editor->text(), QStringLiteral("abc"));
    QCOMPARE(d_redo_count, 0);
}

void TestUndoKeys::an_edit_begins_with_the_focus_or_a_click()
{
    d_list->setFocus();
    d_edit_count = 0;
    d_editor->setFocus();
    QCOMPARE(d_edit_count, 1);
    QTest::mouseClick(d_editor, Qt::LeftButton);
    QCOMPARE(d_edit_count, 2);
    d_slider->setFocus();
    QCOMPARE(d_edit_count, 3);
    QTest::mouseClick(d_slider, Qt::LeftButton);
    QCOMPARE(d_edit_count, 4);
    d_list->setFocus();
    QTest::keyClicks(d_editor, QStringLiteral("a"));
    QCOMPARE(d_edit_count, 4);
}

QTEST_MAIN(TestUndoKeys)
#include "test_undokeys.moc"
