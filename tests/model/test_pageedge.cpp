// Labels outside of their page.

#include "src/model/pageedge.h"

#include <QTest>

class TestPageEdge : public QObject
{
    Q_OBJECT

private slots:
    void the_larger_distance_from_the_page_counts_data();
    void the_larger_distance_from_the_page_counts();
    void the_nearest_place_shows_the_whole_label_data();
    void the_nearest_place_shows_the_whole_label();
};

void TestPageEdge::the_larger_distance_from_the_page_counts_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<double>("distance");
    QTest::newRow("inside") << QPointF(100, 50) << 0.0;
    QTest::newRow("first corner") << QPointF(0, 0) << 0.0;
    QTest::newRow("last corner") << QPointF(300, 200) << 0.0;
    QTest::newRow("left") << QPointF(-7.5, 50) << 7.5;
    QTest::newRow("right") << QPointF(8100, 50) << 7800.0;
    QTest::newRow("above") << QPointF(100, -1) << 1.0;
    QTest::newRow("below") << QPointF(100, 203) << 3.0;
    QTest::newRow("left and below") << QPointF(-5, 220) << 20.0;
    QTest::newRow("right and above") << QPointF(340, -6) << 40.0;
    QTest::newRow("no number") << QPointF(qQNaN(), 100) << 0.0;
}

void TestPageEdge::the_larger_distance_from_the_page_counts()
{
    QFETCH(QPointF, centre);
    QTEST(PageEdge::Distance_Outside(centre, QSize(300, 200)), "distance");
}

void TestPageEdge::the_nearest_place_shows_the_whole_label_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<QPointF>("place");
    QTest::newRow("inside") << QPointF(100, 50) << QPointF(100, 50);
    QTest::newRow("left") << QPointF(-50, 50) << QPointF(16, 50);
    QTest::newRow("right and below") << QPointF(9000, 201) << QPointF(284, 184);
    QTest::newRow("above") << QPointF(100, -1) << QPointF(100, 16);
}

void TestPageEdge::the_nearest_place_shows_the_whole_label()
{
    QFETCH(QPointF, centre);
    QFETCH(QPointF, place);
    QCOMPARE(PageEdge::Nearest_Inside(centre, QSize(300, 200), 32), place);
    // A page smaller than the label has only one place.
    QCOMPARE(PageEdge::Nearest_Inside(centre, QSize(10, 20), 32), QPointF(5, 10));
}

QTEST_APPLESS_MAIN(TestPageEdge)
#include "test_pageedge.moc"
