#include "src/model/numbering.h"

#include <QTest>

#include <limits>
#include <vector>

namespace {

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

/// The values of a page with a number of labels.
std::vector<int> Take_Page(TNumbering& numbering, int count)
{
    std::vector<int> values;
    for (int i = 0; i < count; ++i)
        values.push_back(numbering.Take());
    return values;
}

int Start_After(int value, int method)
{
    TNumbering numbering(value, method);
    numbering.Break_Page();
    return numbering.Next();
}

} // namespace

/// Numbering of one or more pages.
class TestNumbering : public QObject
{
    Q_OBJECT

private slots:
    void values_are_consecutive_from_the_first()
    {
        TNumbering numbering(7, TNumbering::Next_100X);
        QCOMPARE(numbering.Next(), 7);
        QCOMPARE(Take_Page(numbering, 4), (std::vector<int>{7, 8, 9, 10}));
        QCOMPARE(numbering.Next(), 11);
    }

    void next_does_not_advance()
    {
        const TNumbering numbering(7, TNumbering::Next_1X);
        QCOMPARE(numbering.Next(), 7);
        QCOMPARE(numbering.Next(), 7);
    }

    void the_method_decides_where_a_page_starts_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("after");
        QTest::addColumn<int>("start");

        QTest::newRow("1X counts on") << 0 << 20 << 20;
        QTest::newRow("1X counts on below zero") << 0 << -7 << -7;
        QTest::newRow("10X inside a ten") << 1 << 14 << 20;
        QTest::newRow("10X last of a ten") << 1 << 19 << 20;
        QTest::newRow("10X skips a round number") << 1 << 20 << 30;
        QTest::newRow("10X from zero") << 1 << 0 << 10;
        QTest::newRow("100X inside a hundred") << 2 << 4 << 100;
        QTest::newRow("100X last of a hundred") << 2 << 199 << 200;
        QTest::newRow("100X skips a round number") << 2 << 200 << 300;
        QTest::newRow("100X into the next hundred") << 2 << 220 << 300;
        QTest::newRow("1000X inside a thousand") << 4 << 4 << 1000;
        QTest::newRow("1000X last of a thousand") << 4 << 1999 << 2000;
        QTest::newRow("1000X skips a round number") << 4 << 2000 << 3000;
        QTest::newRow("unknown code 3 continues") << 3 << 14 << 14;
        QTest::newRow("unknown code 5 continues") << 5 << 20 << 20;
        QTest::newRow("unknown code 8 continues") << 8 << 14 << 14;
        QTest::newRow("unknown code -1 continues") << -1 << 14 << 14;
    }
    void the_method_decides_where_a_page_starts()
    {
        QFETCH(int, method);
        QFETCH(int, after);
        QTEST(Start_After(after, method), "start");
    }

    void division_truncates_toward_zero_for_negative_values_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("after");
        QTest::addColumn<int>("start");

        // -1 / 10 = 0, (0 + 1) * 10 = 10: a page does not start at zero after a negative value.
        QTest::newRow("10X just below zero") << 1 << -1 << 10;
        QTest::newRow("10X last above minus ten") << 1 << -9 << 10;
        QTest::newRow("10X minus ten") << 1 << -10 << 0;
        QTest::newRow("10X minus twenty-five") << 1 << -25 << -10;
        QTest::newRow("100X just below zero") << 2 << -1 << 100;
        QTest::newRow("100X minus a hundred") << 2 << -100 << 0;
        QTest::newRow("100X minus two hundred and fifty") << 2 << -250 << -100;
        QTest::newRow("1000X just below zero") << 4 << -999 << 1000;
        QTest::newRow("1000X minus a thousand") << 4 << -1000 << 0;
        QTest::newRow("1000X minus two and a half thousand") << 4 << -2500 << -1000;
    }
    void division_truncates_toward_zero_for_negative_values()
    {
        QFETCH(int, method);
        QFETCH(int, after);
        QTEST(Start_After(after, method), "start");
    }

    void a_page_starts_at_a_round_number_above_the_last_value_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("multiple");

        QTest::newRow("10X") << 1 << 10;
        QTest::newRow("100X") << 2 << 100;
        QTest::newRow("1000X") << 4 << 1000;
    }
    void a_page_starts_at_a_round_number_above_the_last_value()
    {
        QFETCH(int, method);
        QFETCH(int, multiple);
        for (int after = -2 * multiple - 1; after <= 2 * multiple + 1; ++after) {
            const int start = Start_After(after, method);
            QCOMPARE(start % multiple, 0);
            QVERIFY2(start > after, qPrintable(QString::number(after)));
            // After a value of at least 0, it is the very next one. After a negative value,
            // truncation may skip one.
            QVERIFY2(start - after <= (after < 0 ? 2 * multiple : multiple),
                     qPrintable(QString::number(after)));
        }
    }

    void an_empty_page_advances()
    {
        TNumbering numbering(100, TNumbering::Next_100X);
        numbering.Break_Page();
        QCOMPARE(numbering.Next(), 200);
        numbering.Break_Page();
        QCOMPARE(numbering.Next(), 300);
    }

    void an_empty_page_does_not_advance_with_1x()
    {
        TNumbering numbering(100, TNumbering::Next_1X);
        numbering.Break_Page();
        QCOMPARE(numbering.Next(), 100);
    }

    void values_continue_across_pages_with_1x()
    {
        TNumbering numbering(5, TNumbering::Next_1X);
        QCOMPARE(Take_Page(numbering, 3), (std::vector<int>{5, 6, 7}));
        numbering.Break_Page();
        QCOMPARE(Take_Page(numbering, 2), (std::vector<int>{8, 9}));
    }

    void a_page_ending_on_19_is_followed_by_30_with_10x()
    {
        TNumbering numbering(18, TNumbering::Next_10X);
        QCOMPARE(Take_Page(numbering, 2), (std::vector<int>{18, 19}));
        numbering.Break_Page();
        QCOMPARE(numbering.Take(), 30);
    }

    void pages_start_at_the_next_hundred_with_100x()
    {
        TNumbering numbering(1, TNumbering::Next_100X);
        QCOMPARE(Take_Page(numbering, 3), (std::vector<int>{1, 2, 3}));
        numbering.Break_Page();
        const std::vector<int> second = Take_Page(numbering, 120);
        QCOMPARE(second.front(), 100);
        QCOMPARE(second.back(), 219);
        numbering.Break_Page();
        QCOMPARE(numbering.Next(), 300);
    }

    void values_wrap_around_after_the_largest()
    {
        TNumbering numbering(largest, TNumbering::Next_1X);
        QCOMPARE(Take_Page(numbering, 3), (std::vector<int>{largest, smallest, smallest + 1}));
    }

    void page_starts_wrap_around_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("after");
        QTest::addColumn<int>("start");

        // The largest value is 2147483647; 2^32 = 4294967296.
        QTest::newRow("1X") << 0 << largest << largest;
        // 2147483650 - 4294967296
        QTest::newRow("10X") << 1 << largest << -2147483646;
        // 2147483700 - 4294967296
        QTest::newRow("100X") << 2 << largest << -2147483596;
        // 2147484000 - 4294967296
        QTest::newRow("1000X") << 4 << largest << -2147483296;
        // (-214748364 + 1) * 10, no wrap-around at the lower end
        QTest::newRow("10X from the smallest") << 1 << smallest << -2147483630;
        // (-2147483 + 1) * 1000
        QTest::newRow("1000X from the smallest") << 4 << smallest << -2147482000;
    }
    void page_starts_wrap_around()
    {
        QFETCH(int, method);
        QFETCH(int, after);
        QTEST(Start_After(after, method), "start");
    }
};

QTEST_MAIN(TestNumbering)
#include "test_numbering.moc"
