#include "core/pageranges.h"

#include <QTest>

/// Page numbers as users write them.
class TestPageRanges : public QObject
{
    Q_OBJECT

private slots:
    void pages_and_ranges_are_in_the_given_order_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::vector<int>>("numbers");
        QTest::newRow("one page") << "4" << std::vector<int>{4};
        QTest::newRow("a range") << "1-3" << std::vector<int>{1, 2, 3};
        QTest::newRow("both") << "1-3,7" << std::vector<int>{1, 2, 3, 7};
        QTest::newRow("blanks") << " 1-3, 7 " << std::vector<int>{1, 2, 3, 7};
        QTest::newRow("backwards") << "7,1-2" << std::vector<int>{7, 1, 2};
        QTest::newRow("twice") << "2,1-2" << std::vector<int>{2, 1, 2};
        QTest::newRow("range of one page") << "5-5" << std::vector<int>{5};
    }
    void pages_and_ranges_are_in_the_given_order()
    {
        QFETCH(const QString, text);
        QFETCH(const std::vector<int>, numbers);
        const auto ranges = PageRanges::Parse(text);
        QVERIFY(ranges);
        QCOMPARE(PageRanges::Numbers(*ranges), numbers);
        QCOMPARE(PageRanges::Last_Page(*ranges), *std::max_element(numbers.begin(), numbers.end()));
    }

    void other_texts_are_invalid_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* const text : {"", ",", "1,", ",1", "0", "0-2", "-1", "3-2", "1-", "1-2-3",
                                       "one", "1.5", "1;2", "+1", "2147483648", "1-2147483648"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void other_texts_are_invalid()
    {
        QFETCH(const QString, text);
        QVERIFY(!PageRanges::Parse(text));
    }

    void a_huge_range_takes_no_memory_until_its_pages_are_listed()
    {
        const auto ranges = PageRanges::Parse("1-2147483647");
        QVERIFY(ranges);
        QCOMPARE(ranges->size(), std::size_t(1));
        QCOMPARE(PageRanges::Last_Page(*ranges), 2147483647);
    }
};

QTEST_GUILESS_MAIN(TestPageRanges)
#include "test_pageranges.moc"
