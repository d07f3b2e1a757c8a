// Movements by Ctrl with an arrow key, on a bare widget.

#include "src/widgets/nudgekeys.h"

#include <QKeyEvent>
#include <QTest>
#include <QWidget>

namespace {

/// Records the keys that it receives. Modifiers are keys, too.
class TKeyReader : public QWidget
{
public:
    QList<int> d_keys;

protected:
    void keyPressEvent(QKeyEvent* event) override { d_keys += event->key(); }
};

} // namespace

class TestNudgeKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrows_with_ctrl_are_movements_data();
    void arrows_with_ctrl_are_movements();
    void other_keys_reach_the_widget_data();
    void other_keys_reach_the_widget();
};

void TestNudgeKeys::arrows_with_ctrl_are_movements_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QPointF>("distance");
    const int ctrl = Qt::ControlModifier;
    const int ctrl_shift = Qt::ControlModifier | Qt::ShiftModifier;
    QTest::newRow("left") << int{Qt::Key_Left} << ctrl << QPointF(-1, 0);
    QTest::newRow("right") << int{Qt::Key_Right} << ctrl << QPointF(1, 0);
    QTest::newRow("up") << int{Qt::Key_Up} << ctrl << QPointF(0, -1);
    QTest::newRow("down") << int{Qt::Key_Down} << ctrl << QPointF(0, 1);
    QTest::newRow("ten to the right") << int{Qt::Key_Right} << ctrl_shift << QPointF(10, 0);
    QTest::newRow("ten up") << int{Qt::Key_Up} << ctrl_shift << QPointF(0, -10);
    QTest::newRow("number pad") << int{Qt::Key_Down} << int(ctrl | Qt::KeypadModifier)
                                << QPointF(0, 1);
}

void TestNudgeKeys::arrows_with_ctrl_are_movements()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QPointF, distance);
    TKeyReader widget;
    QList<QPointF> moves;
    new TNudgeKeys(&widget, [&moves](const QPointF& done) { moves += done; });
    QTest::keyClick(&widget, static_cast<Qt::Key>(key),
                    static_cast<Qt::KeyboardModifiers>(modifiers));
    QCOMPARE(moves, QList<QPointF>{distance});
    QVERIFY(!widget.d_keys.contains(key));
}

void TestNudgeKeys::other_keys_reach_the_widget_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("arrow") << int{Qt::Key_Left} << int{Qt::NoModifier};
    QTest::newRow("Shift") << int{Qt::Key_Left} << int{Qt::ShiftModifier};
    QTest::newRow("Alt") << int{Qt::Key_Left} << int{Qt::AltModifier};
    QTest::newRow("Ctrl and Alt") << int{Qt::Key_Left}
                                  << int{Qt::ControlModifier | Qt::AltModifier};
    QTest::newRow("no arrow") << int{Qt::Key_Home} << int{Qt::ControlModifier};
}

void TestNudgeKeys::other_keys_reach_the_widget()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    TKeyReader widget;
    int moves = 0;
    new TNudgeKeys(&widget, [&moves](const QPointF&) { ++moves; });
    QTest::keyClick(&widget, static_cast<Qt::Key>(key),
                    static_cast<Qt::KeyboardModifiers>(modifiers));
    QCOMPARE(moves, 0);
    QCOMPARE(widget.d_keys.count(key), 1);
}

QTEST_MAIN(TestNudgeKeys)
#include "test_nudgekeys.moc"
