// The frame around a view that has the keyboard focus.

#include "src/widgets/focusframe.h"

#include "support/support.h"
#include "support/widgets.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QVBoxLayout>

class TestFocusFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void the_focus_draws_a_frame_in_the_colour_of_the_theme();
    void a_view_without_a_frame_stays_as_it_is();
};

void TestFocusFrame::initTestCase()
{
    Support::Set_Style();
}

void TestFocusFrame::the_focus_draws_a_frame_in_the_colour_of_the_theme()
{
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const list = new QListWidget(&window);
    auto* const editor = new QLineEdit(&window);
    layout->addWidget(list);
    layout->addWidget(editor);
    QPalette theme;
    theme.setColor(QPalette::Highlight, QColor(250, 100, 0));
    list->setPalette(theme);
    new TFocusFrame(list);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    editor->setFocus();
    const QImage without = list->grab().toImage();
    QTest::keyClick(editor, Qt::Key_Backtab);
    QVERIFY(list->hasFocus());
    const QImage with = list->grab().toImage();
    const QColor frame = QColor(250, 100, 0).darker(125);
    for (const QPoint& corner : {QPoint(0, 0), QPoint(with.width() - 1, with.height() - 1)}) {
        QCOMPARE(with.pixelColor(corner), frame);
        QVERIFY(without.pixelColor(corner) != frame);
    }
    // Only the frame differs.
    const QRect inside = with.rect().adjusted(1, 1, -1, -1);
    QCOMPARE(Support::Difference(with.copy(inside), without.copy(inside)), QString());
}

void TestFocusFrame::a_view_without_a_frame_stays_as_it_is()
{
    QListWidget list;
    list.setFrameShape(QFrame::NoFrame);
    const QColor frame = list.palette().color(QPalette::Active, QPalette::Highlight).darker(125);
    new TFocusFrame(&list);
    list.show();
    QVERIFY(QTest::qWaitForWindowActive(&list));
    list.setFocus();
    QVERIFY(list.hasFocus());
    QVERIFY(list.grab().toImage().pixelColor(0, 0) != frame);
}

QTEST_MAIN(TestFocusFrame)
#include "test_focusframe.moc"
