// Pages rotated by a right angle.

#include "src/model/pageturn.h"

#include "support/project.h"
#include "support/support.h"

#include <QTest>

using PageTurn::TDirection;
using Support::Describe_Label;

class TestPageTurn : public QObject
{
    Q_OBJECT

private slots:
    void a_point_stays_at_its_place_on_the_page_data();
    void a_point_stays_at_its_place_on_the_page();
    void image_and_labels_are_rotated_together();
    void only_the_positions_of_labels_change();
    void four_turns_restore_the_page();
    void left_and_right_cancel_each_other();
};

namespace {

/// A page of 60 x 40 pixels with two labels.
TPageItem Page()
{
    return {7,
            Support::Picture(60, 40),
            {{1, 11, "text", 2, {10, 5}, true}, {2, 12, "", 8, {55.25, 80}, false}},
            0};
}

} // namespace

void TestPageTurn::a_point_stays_at_its_place_on_the_page_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QPointF>("right");
    QTest::addColumn<QPointF>("left");
    QTest::newRow("top left") << QPointF(0, 0) << QPointF(40, 0) << QPointF(0, 60);
    QTest::newRow("top right") << QPointF(60, 0) << QPointF(40, 60) << QPointF(0, 0);
    QTest::newRow("bottom right") << QPointF(60, 40) << QPointF(0, 60) << QPointF(40, 0);
    QTest::newRow("bottom left") << QPointF(0, 40) << QPointF(0, 0) << QPointF(40, 60);
    QTest::newRow("centre") << QPointF(30, 20) << QPointF(20, 30) << QPointF(20, 30);
    QTest::newRow("outside") << QPointF(-5, 100) << QPointF(-60, -5) << QPointF(100, 65);
}

void TestPageTurn::a_point_stays_at_its_place_on_the_page()
{
    QFETCH(QPointF, point);
    QTEST(PageTurn::Turned(point, QSize(60, 40), TDirection::Right), "right");
    QTEST(PageTurn::Turned(point, QSize(60, 40), TDirection::Left), "left");
}

void TestPageTurn::image_and_labels_are_rotated_together()
{
    const QImage before = Page().image;
    const TPageItem turned = PageTurn::Turned(Page(), TDirection::Right);
    const QImage image = turned.image;
    QCOMPARE(image.size(), QSize(40, 60));
    // The pixel below and to the right of the label's centre is now to its left and below it.
    const QPoint label = turned.data_items[0].position.toPoint();
    QCOMPARE(label, QPoint(35, 10));
    QCOMPARE(image.pixelColor(label - QPoint(1, 0)), before.pixelColor(10, 5));

    const TPageItem other = PageTurn::Turned(Page(), TDirection::Left);
    QCOMPARE(static_cast<QImage>(other.image).pixelColor(5, 49), before.pixelColor(10, 5));
    QCOMPARE(other.data_items[0].position, QPointF(5, 50));
}

void TestPageTurn::only_the_positions_of_labels_change()
{
    const TPageItem turned = PageTurn::Turned(Page(), TDirection::Right);
    QCOMPARE(turned.page_id, 7);
    QCOMPARE(turned.data_items.size(), size_t(2));
    QCOMPARE(Describe_Label(turned.data_items[0]), QString("label 1 11 'text' 2 35,10 selected"));
    QCOMPARE(Describe_Label(turned.data_items[1]), QString("label 2 12 '' 8 -40,55.25"));
}

void TestPageTurn::four_turns_restore_the_page()
{
    TPageItem page = Page();
    for (int turn = 0; turn < 4; ++turn)
        page = PageTurn::Turned(page, TDirection::Right);
    QCOMPARE(Support::Difference(page.image, Page().image), QString());
    QCOMPARE(Describe_Label(page.data_items[1]), Describe_Label(Page().data_items[1]));
}

void TestPageTurn::left_and_right_cancel_each_other()
{
    const TPageItem page =
        PageTurn::Turned(PageTurn::Turned(Page(), TDirection::Left), TDirection::Right);
    QCOMPARE(Support::Difference(page.image, Page().image), QString());
    QCOMPARE(Describe_Label(page.data_items[0]), Describe_Label(Page().data_items[0]));
}

QTEST_MAIN(TestPageTurn)
#include "test_pageturn.moc"
