// The order of labels by their positions.

#include "src/model/labelorder.h"

#include "src/model/pageitem.h"
#include "support/support.h"

#include <QTest>

#include <limits>

class TestLabelOrder : public QObject
{
    Q_OBJECT

private slots:
    void lines_come_from_the_top_and_labels_from_the_left_data();
    void lines_come_from_the_top_and_labels_from_the_left();
    void columns_come_from_the_left_and_labels_from_the_top_data();
    void columns_come_from_the_left_and_labels_from_the_top();
    void a_label_size_below_its_topmost_label_a_line_ends();
    void labels_at_the_same_place_keep_their_order();
    void positions_that_are_no_numbers_come_last();
    void a_page_without_labels_has_no_order();
};

using Support::Labels_At;

namespace {

constexpr int label_size = 32;

void Add_Orders()
{
    QTest::addColumn<QVector<QPointF>>("positions");
    QTest::addColumn<std::vector<int>>("ids");
}

} // namespace

Q_DECLARE_METATYPE(std::vector<int>)

void TestLabelOrder::lines_come_from_the_top_and_labels_from_the_left_data()
{
    Add_Orders();
    QTest::newRow("one line") << QVector<QPointF>{{300, 50}, {100, 50}, {200, 50}}
                              << std::vector<int>{2, 3, 1};
    QTest::newRow("one column") << QVector<QPointF>{{50, 300}, {50, 100}, {50, 200}}
                                << std::vector<int>{2, 3, 1};
    QTest::newRow("two lines") << QVector<QPointF>{{20, 200}, {300, 50}, {200, 200}, {100, 50}}
                               << std::vector<int>{4, 2, 1, 3};
    QTest::newRow("an uneven line")
        << QVector<QPointF>{{300, 50}, {200, 70}, {100, 60}} << std::vector<int>{3, 2, 1};
    QTest::newRow("stairs") << QVector<QPointF>{{300, 0}, {200, 20}, {100, 40}, {0, 60}}
                            << std::vector<int>{2, 1, 4, 3};
    QTest::newRow("outside the page")
        << QVector<QPointF>{{10, 10}, {-500, 10}, {10, -900}} << std::vector<int>{3, 2, 1};
}

void TestLabelOrder::lines_come_from_the_top_and_labels_from_the_left()
{
    QFETCH(QVector<QPointF>, positions);
    QTEST(LabelOrder::By_Lines(Labels_At(positions), label_size), "ids");
}

void TestLabelOrder::columns_come_from_the_left_and_labels_from_the_top_data()
{
    Add_Orders();
    QTest::newRow("one line") << QVector<QPointF>{{300, 50}, {100, 50}, {200, 50}}
                              << std::vector<int>{2, 3, 1};
    QTest::newRow("two columns") << QVector<QPointF>{{300, 50}, {20, 200}, {20, 50}, {300, 20}}
                                 << std::vector<int>{3, 2, 4, 1};
    QTest::newRow("an uneven column")
        << QVector<QPointF>{{50, 300}, {70, 200}, {60, 100}} << std::vector<int>{3, 2, 1};
}

void TestLabelOrder::columns_come_from_the_left_and_labels_from_the_top()
{
    QFETCH(QVector<QPointF>, positions);
    QTEST(LabelOrder::By_Columns(Labels_At(positions), label_size), "ids");
}

void TestLabelOrder::a_label_size_below_its_topmost_label_a_line_ends()
{
    const std::vector<TDataItem> items = Labels_At({{300, 50}, {200, 81.9}, {100, 82}});
    QCOMPARE(LabelOrder::By_Lines(items, label_size), (std::vector<int>{2, 1, 3}));
    QCOMPARE(LabelOrder::By_Lines(items, label_size + 1), (std::vector<int>{3, 2, 1}));
}

void TestLabelOrder::labels_at_the_same_place_keep_their_order()
{
    const std::vector<TDataItem> items = Labels_At({{50, 50}, {50, 50}, {50, 50}});
    QCOMPARE(LabelOrder::By_Lines(items, label_size), (std::vector<int>{1, 2, 3}));
    QCOMPARE(LabelOrder::By_Columns(items, label_size), (std::vector<int>{1, 2, 3}));
}

void TestLabelOrder::positions_that_are_no_numbers_come_last()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<TDataItem> items =
        Labels_At({{nan, 50}, {50, nan}, {50, -infinity}, {80, 50}, {infinity, 300}});
    QCOMPARE(LabelOrder::By_Lines(items, label_size), (std::vector<int>{3, 4, 1, 5, 2}));
}

void TestLabelOrder::a_page_without_labels_has_no_order()
{
    QVERIFY(LabelOrder::By_Lines({}, label_size).empty());
    QVERIFY(LabelOrder::By_Columns({}, label_size).empty());
}

QTEST_APPLESS_MAIN(TestLabelOrder)
#include "test_labelorder.moc"
