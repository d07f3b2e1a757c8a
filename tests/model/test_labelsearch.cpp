// Finding labels by number or text.

#include "src/model/labelsearch.h"

#include "support/support.h"

#include <QTest>

using LabelSearch::TDirection;
using LabelSearch::TStart;

class TestLabelSearch : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void a_label_matches_by_number_or_text_data();
    void a_label_matches_by_number_or_text();
    void matches_follow_each_other_across_pages_data();
    void matches_follow_each_other_across_pages();
    void the_only_match_is_found_again();
    void a_start_that_does_not_exist_is_the_end_of_the_document();
    void pages_without_an_image_are_skipped();
    void an_empty_document_has_no_matches();

private:
    QString Found(const QString& text, const TStart& start, TDirection direction) const;

    std::vector<TPageItem> d_pages;
};

/// Two pages whose labels share their ids, and an empty page between them.
void TestLabelSearch::init()
{
    const TPageImage image(Support::Picture(30, 20));
    d_pages = {{1, image, {{1, 17, "", 2, {}, false}, {2, 5, "Window 17", 2, {}, false}}, 0},
               {2, image, {}, 0},
               {3,
                image,
                {{1, 170, "door", 2, {}, false},
                 {2, -3, "window frame", 2, {}, false},
                 {3, 17, "", 2, {}, false}},
                0}};
}

/// Page and label that are found.
QString TestLabelSearch::Found(const QString& text, const TStart& start, TDirection direction) const
{
    std::vector<const TPageItem*> pages;
    for (const TPageItem& page : d_pages)
        pages.push_back(&page);
    const auto place = LabelSearch::Find(pages, text, start, direction);
    return place ? QString("%1/%2").arg(place->page_id).arg(place->item_id) : QString();
}

void TestLabelSearch::a_label_matches_by_number_or_text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::newRow("number") << "5"
                            << "1/2"
                            << "1/2";
    QTest::newRow("number in a text") << "17"
                                      << "1/1"
                                      << "3/3";
    QTest::newRow("negative number") << "-3"
                                     << "3/2"
                                     << "3/2";
    QTest::newRow("part of a number") << "70"
                                      << ""
                                      << "";
    QTest::newRow("part of a text") << "oor"
                                    << "3/1"
                                    << "3/1";
    QTest::newRow("upper and lower case") << "WINDOW"
                                          << "1/2"
                                          << "3/2";
    QTest::newRow("blanks around it") << " door "
                                      << "3/1"
                                      << "3/1";
    QTest::newRow("several words") << "window frame"
                                   << "3/2"
                                   << "3/2";
    QTest::newRow("nothing") << ""
                             << ""
                             << "";
    QTest::newRow("blanks") << "  "
                            << ""
                            << "";
    QTest::newRow("no label") << "roof"
                              << ""
                              << "";
    QTest::newRow("zero") << "0"
                          << ""
                          << "";
}

void TestLabelSearch::a_label_matches_by_number_or_text()
{
    QFETCH(QString, text);
    QTEST(Found(text, {1, {}}, TDirection::Forward), "first");
    QTEST(Found(text, {1, {}}, TDirection::Backward), "last");
}

void TestLabelSearch::matches_follow_each_other_across_pages_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("label");
    QTest::addColumn<QString>("next");
    QTest::addColumn<QString>("previous");
    QTest::newRow("a match") << 1 << 1 << "1/2"
                             << "3/3";
    QTest::newRow("the next one") << 1 << 2 << "3/3"
                                  << "1/1";
    QTest::newRow("the last one") << 3 << 3 << "1/1"
                                  << "1/2";
    QTest::newRow("between matches") << 3 << 1 << "3/3"
                                     << "1/2";
    QTest::newRow("first page") << 1 << 0 << "1/1"
                                << "3/3";
    QTest::newRow("page without labels") << 2 << 0 << "3/3"
                                         << "1/2";
    QTest::newRow("last page") << 3 << 0 << "3/3"
                               << "1/2";
}

void TestLabelSearch::matches_follow_each_other_across_pages()
{
    QFETCH(int, page);
    QFETCH(int, label);
    const TStart start{page, label > 0 ? std::optional<int>(label) : std::nullopt};
    QTEST(Found("17", start, TDirection::Forward), "next");
    QTEST(Found("17", start, TDirection::Backward), "previous");
}

void TestLabelSearch::the_only_match_is_found_again()
{
    QCOMPARE(Found("door", {3, 1}, TDirection::Forward), QString("3/1"));
    QCOMPARE(Found("door", {3, 1}, TDirection::Backward), QString("3/1"));
}

void TestLabelSearch::a_start_that_does_not_exist_is_the_end_of_the_document()
{
    for (const TStart& start : {TStart{-1, {}}, TStart{9, 1}, TStart{1, 9}}) {
        QCOMPARE(Found("17", start, TDirection::Forward), QString("1/1"));
        QCOMPARE(Found("17", start, TDirection::Backward), QString("3/3"));
    }
}

void TestLabelSearch::pages_without_an_image_are_skipped()
{
    d_pages[0].image = TPageImage();
    QCOMPARE(Found("17", {1, {}}, TDirection::Forward), QString("3/3"));
    QCOMPARE(Found("5", {1, {}}, TDirection::Forward), QString());
}

void TestLabelSearch::an_empty_document_has_no_matches()
{
    d_pages.clear();
    QCOMPARE(Found("17", {-1, {}}, TDirection::Forward), QString());
}

QTEST_MAIN(TestLabelSearch)
#include "test_labelsearch.moc"
