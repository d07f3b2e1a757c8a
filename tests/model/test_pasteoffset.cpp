// How far pasted labels move so that they do not hide others.

#include "src/model/pasteoffset.h"

#include "src/model/pageitem.h"
#include "support/support.h"

#include <QTest>

class TestPasteOffset : public QObject
{
    Q_OBJECT

private slots:
    void labels_stay_where_they_hide_none_data();
    void labels_stay_where_they_hide_none();
    void labels_move_as_often_as_it_takes_data();
    void labels_move_as_often_as_it_takes();
    void huge_coordinates_end_the_search();
};

using Support::Labels_At;

namespace {

constexpr double distance = 10.0;

} // namespace

void TestPasteOffset::labels_stay_where_they_hide_none_data()
{
    QTest::addColumn<QVector<QPointF>>("pasted");
    QTest::addColumn<QVector<QPointF>>("present");
    const QVector<QPointF> none;
    QTest::newRow("empty page") << QVector<QPointF>{{50, 60}} << none;
    QTest::newRow("elsewhere") << QVector<QPointF>{{50, 60}} << QVector<QPointF>{{60, 70}};
    QTest::newRow("close") << QVector<QPointF>{{50, 60}}
                           << QVector<QPointF>{{50, 60.5}, {49.5, 60}};
    QTest::newRow("same column, same row")
        << QVector<QPointF>{{50, 60}} << QVector<QPointF>{{50, 90}, {90, 60}};
    QTest::newRow("nothing pasted") << none << QVector<QPointF>{{50, 60}};
}

void TestPasteOffset::labels_stay_where_they_hide_none()
{
    QFETCH(QVector<QPointF>, pasted);
    QFETCH(QVector<QPointF>, present);
    QCOMPARE(Paste_Offset(Labels_At(pasted), Labels_At(present), distance), QPointF(0, 0));
}

void TestPasteOffset::labels_move_as_often_as_it_takes_data()
{
    QTest::addColumn<QVector<QPointF>>("pasted");
    QTest::addColumn<QVector<QPointF>>("present");
    QTest::addColumn<int>("moves");
    QTest::newRow("on itself") << QVector<QPointF>{{50, 60}} << QVector<QPointF>{{50, 60}} << 1;
    QTest::newRow("on one of several")
        << QVector<QPointF>{{50, 60}, {0, 0}} << QVector<QPointF>{{7, 7}, {0, 0}} << 1;
    QTest::newRow("pasted before")
        << QVector<QPointF>{{50, 60}} << QVector<QPointF>{{50, 60}, {60, 70}} << 2;
    QTest::newRow("in a diagonal row")
        << QVector<QPointF>{{0, 0}, {10, 10}} << QVector<QPointF>{{0, 0}, {10, 10}} << 2;
}

void TestPasteOffset::labels_move_as_often_as_it_takes()
{
    QFETCH(QVector<QPointF>, pasted);
    QFETCH(QVector<QPointF>, present);
    QFETCH(int, moves);
    QCOMPARE(Paste_Offset(Labels_At(pasted), Labels_At(present), distance),
             QPointF(distance * moves, distance * moves));
}

void TestPasteOffset::huge_coordinates_end_the_search()
{
    const std::vector<TDataItem> far = Labels_At({{1e300, 1e300}});
    QCOMPARE(Paste_Offset(far, far, distance), QPointF(distance, distance));
}

QTEST_APPLESS_MAIN(TestPasteOffset)
#include "test_pasteoffset.moc"
