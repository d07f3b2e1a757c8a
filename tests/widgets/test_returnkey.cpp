// Return and Enter in a widget.

#include "src/widgets/returnkey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

class TestReturnKey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void return_and_enter_call_the_function_instead_of_reaching_the_widget();
    void other_keys_reach_the_widget();
    void holding_the_key_down_calls_the_function_once();
};

void TestReturnKey::return_and_enter_call_the_function_instead_of_reaching_the_widget()
{
    QLineEdit editor;
    int calls = 0;
    new TReturnKey(&editor, [&calls] { ++calls; });
    const QSignalSpy received(&editor, &QLineEdit::returnPressed);
    QTest::keyClick(&editor, Qt::Key_Return);
    QTest::keyClick(&editor, Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(calls, 2);
    QCOMPARE(received.count(), 0);
}

void TestReturnKey::other_keys_reach_the_widget()
{
    QLineEdit editor;
    int calls = 0;
    new TReturnKey(&editor, [&calls] { ++calls; });
    const QSignalSpy received(&editor, &QLineEdit::returnPressed);
    QTest::keyClicks(&editor, "a");
    QTest::keyClick(&editor, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(editor.text(), QString("a"));
    QCOMPARE(received.count(), 1);
    QCOMPARE(calls, 0);
}

void TestReturnKey::holding_the_key_down_calls_the_function_once()
{
    QLineEdit editor;
    int calls = 0;
    new TReturnKey(&editor, [&calls] { ++calls; });
    for (const bool is_repeated : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", is_repeated);
        QApplication::sendEvent(&editor, &press);
    }
    QCOMPARE(calls, 1);
}

QTEST_MAIN(TestReturnKey)
#include "test_returnkey.moc"
