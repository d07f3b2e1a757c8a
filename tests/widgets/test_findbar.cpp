// The find bar on its own.

#include "src/widgets/findbar.h"

#include "support/widgets.h"

#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

class TestFindBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void it_is_hidden_until_it_is_opened();
    void opening_it_selects_its_text();
    void return_finds_the_next_and_with_shift_the_previous_data();
    void return_finds_the_next_and_with_shift_the_previous();
    void its_buttons_do_the_same();
    void escape_closes_it_from_each_of_its_widgets();
    void its_button_closes_it();
    void its_widgets_have_names();

private:
    QLineEdit* Editor() const { return Support::Only<QLineEdit>(*d_bar); }
    void Press(const QString& tool_tip) const
    {
        QTest::mouseClick(Support::By_Tool_Tip<QToolButton>(*d_bar, tool_tip), Qt::LeftButton);
    }

    std::unique_ptr<QWidget> d_window;
    TFindBar* d_bar = nullptr;
    QStringList d_signals;
};

void TestFindBar::init()
{
    d_window = std::make_unique<QWidget>();
    d_bar = new TFindBar(d_window.get());
    auto* const layout = new QVBoxLayout(d_window.get());
    layout->addWidget(d_bar);
    d_signals.clear();
    connect(d_bar, &TFindBar::Find_Next, this,
            [this](const QString& text) { d_signals += "next " + text; });
    connect(d_bar, &TFindBar::Find_Previous, this,
            [this](const QString& text) { d_signals += "previous " + text; });
    connect(d_bar, &TFindBar::Closed, this, [this] { d_signals += "closed"; });
    d_window->show();
    QVERIFY(QTest::qWaitForWindowActive(d_window.get()));
}

void TestFindBar::cleanup()
{
    d_window.reset();
}

void TestFindBar::it_is_hidden_until_it_is_opened()
{
    QVERIFY(!d_bar->isVisible());
    d_bar->Open();
    QVERIFY(d_bar->isVisible());
    QVERIFY(Editor()->hasFocus());
}

void TestFindBar::opening_it_selects_its_text()
{
    d_bar->Open();
    QTest::keyClicks(Editor(), "12");
    d_bar->Open();
    QCOMPARE(Editor()->selectedText(), QString("12"));
    QTest::keyClicks(Editor(), "7");
    QCOMPARE(Editor()->text(), QString("7"));
}

void TestFindBar::return_finds_the_next_and_with_shift_the_previous_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("signal");
    using TModifiers = Qt::KeyboardModifiers;
    QTest::newRow("Return") << Qt::Key_Return << TModifiers() << "next 12";
    QTest::newRow("Enter") << Qt::Key_Enter << TModifiers(Qt::KeypadModifier) << "next 12";
    QTest::newRow("Shift+Return") << Qt::Key_Return << TModifiers(Qt::ShiftModifier)
                                  << "previous 12";
    QTest::newRow("Shift+Enter") << Qt::Key_Enter
                                 << TModifiers(Qt::ShiftModifier | Qt::KeypadModifier)
                                 << "previous 12";
}

void TestFindBar::return_finds_the_next_and_with_shift_the_previous()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, signal);
    d_bar->Open();
    QTest::keyClicks(Editor(), "12");
    QTest::keyClick(Editor(), key, modifiers);
    QCOMPARE(d_signals, QStringList(signal));
    QVERIFY(Editor()->hasFocus());
}

void TestFindBar::its_buttons_do_the_same()
{
    d_bar->Open();
    QTest::keyClicks(Editor(), "door");
    Press("Find Next");
    Press("Find Previous");
    QCOMPARE(d_signals, QStringList({"next door", "previous door"}));
}

void TestFindBar::escape_closes_it_from_each_of_its_widgets()
{
    const QList<QToolButton*> buttons = d_bar->findChildren<QToolButton*>();
    QList<QWidget*> widgets{Editor()};
    for (QToolButton* const button : buttons)
        widgets += button;
    QCOMPARE(widgets.size(), 4);
    for (QWidget* const widget : std::as_const(widgets)) {
        d_signals.clear();
        d_bar->Open();
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Escape);
        QVERIFY(!d_bar->isVisible());
        QCOMPARE(d_signals, QStringList("closed"));
    }
}

void TestFindBar::its_button_closes_it()
{
    d_bar->Open();
    Press("Close Find Bar");
    QVERIFY(!d_bar->isVisible());
    QCOMPARE(d_signals, QStringList("closed"));
}

void TestFindBar::its_widgets_have_names()
{
    QCOMPARE(Editor()->placeholderText(), QString("Find number or text"));
    QCOMPARE(Editor()->accessibleName(), QString("Find"));
    const QList<QToolButton*> buttons = d_bar->findChildren<QToolButton*>();
    for (const QToolButton* const button : buttons)
        QCOMPARE(button->accessibleName(), button->toolTip());
}

QTEST_MAIN(TestFindBar)
#include "test_findbar.moc"
