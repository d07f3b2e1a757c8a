// Differences between page lists, and whole steps as values.

#include "src/undo/documentstep.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace {

/// Rows named after their ids.
TPageRows Rows(const std::vector<int>& page_ids)
{
    TPageRows rows;
    for (const int page_id : page_ids)
        rows.push_back({page_id, QString("Page %1").arg(page_id)});
    return rows;
}

QString In_Words(const TPageRows& rows)
{
    QStringList words;
    for (const TNamedPage& row : rows)
        words += QString("%1=%2").arg(row.page_id).arg(row.name);
    return words.join(", ");
}

} // namespace

Q_DECLARE_METATYPE(std::vector<int>)

class TestDocumentStep : public QObject
{
    Q_OBJECT

private slots:
    void equal_lists_do_not_differ();
    void a_list_differs_in_no_more_than_has_moved_data();
    void a_list_differs_in_no_more_than_has_moved();
    void a_name_is_a_difference_of_one_row();
    void any_two_lists_go_back_and_forth();
    void rows_that_are_not_there_are_passed_over();
    void a_step_that_goes_on_ends_where_the_first_began();
    void a_size_that_comes_back_is_no_step();
    void a_step_goes_back_and_forth();
};

void TestDocumentStep::equal_lists_do_not_differ()
{
    QVERIFY(TRowsChange().Is_Empty());
    QVERIFY(TRowsChange(Rows({}), Rows({})).Is_Empty());
    QVERIFY(TRowsChange(Rows({3, 1, 2}), Rows({3, 1, 2})).Is_Empty());
}

void TestDocumentStep::a_list_differs_in_no_more_than_has_moved_data()
{
    QTest::addColumn<std::vector<int>>("before");
    QTest::addColumn<std::vector<int>>("after");
    QTest::addColumn<std::vector<int>>("touched");
    const auto add = [](const char* name, const std::vector<int>& before,
                        const std::vector<int>& after, const std::vector<int>& touched) {
        QTest::newRow(name) << before << after << touched;
    };
    add("moved to the front", {1, 2, 3, 4, 5}, {4, 1, 2, 3, 5}, {4});
    add("moved to the end", {1, 2, 3, 4, 5}, {2, 3, 4, 5, 1}, {1});
    add("two moved together", {1, 2, 3, 4, 5, 6}, {1, 4, 5, 2, 3, 6}, {4, 5});
    add("added", {1, 2}, {1, 2, 7}, {7});
    add("two removed", {1, 2, 3, 4}, {2, 4}, {1, 3});
    add("all removed", {1, 2}, {}, {1, 2});
}

void TestDocumentStep::a_list_differs_in_no_more_than_has_moved()
{
    QFETCH(std::vector<int>, before);
    QFETCH(std::vector<int>, after);
    QFETCH(std::vector<int>, touched);
    TRowsChange change(Rows(before), Rows(after));
    std::vector<int> found = change.Touched_Pages();
    std::sort(found.begin(), found.end());
    // Either of two runs of the same length may be the one that moved.
    QCOMPARE(found.size(), touched.size());
    if (touched.size() == 1)
        QCOMPARE(found, touched);
    TPageRows rows = Rows(after);
    change.Swap(&rows);
    QCOMPARE(In_Words(rows), In_Words(Rows(before)));
}

void TestDocumentStep::a_name_is_a_difference_of_one_row()
{
    TPageRows renamed = Rows({1, 2, 3});
    renamed[1].name = "Roof";
    TRowsChange change(Rows({1, 2, 3}), renamed);
    QCOMPARE(change.Touched_Pages(), std::vector<int>{2});
    TPageRows rows = renamed;
    change.Swap(&rows);
    QCOMPARE(In_Words(rows), QString("1=Page 1, 2=Page 2, 3=Page 3"));
    change.Swap(&rows);
    QCOMPARE(In_Words(rows), QString("1=Page 1, 2=Roof, 3=Page 3"));
}

void TestDocumentStep::any_two_lists_go_back_and_forth()
{
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        TPageRows lists[2];
        for (TPageRows& list : lists) {
            list = Rows({1, 2, 3, 4, 5, 6, 7, 8, 9});
            std::shuffle(list.begin(), list.end(), random);
            list.resize(random() % 10);
            if (!list.empty() && random() % 2 == 0)
                list.front().name = QString::number(random() % 3);
        }
        TRowsChange change(lists[0], lists[1]);
        TPageRows rows = lists[1];
        for (int way = 0; way < 4; ++way) {
            change.Swap(&rows);
            QCOMPARE(In_Words(rows), In_Words(lists[way % 2]));
        }
    }
}

void TestDocumentStep::rows_that_are_not_there_are_passed_over()
{
    TRowsChange change(Rows({1, 2, 3}), Rows({3, 1, 2, 4}));
    TPageRows rows = Rows({2});
    change.Swap(&rows);
    QVERIFY(std::count(rows.cbegin(), rows.cend(), Rows({3}).front()) == 1);
    QVERIFY(std::count(rows.cbegin(), rows.cend(), Rows({2}).front()) == 1);
}

void TestDocumentStep::a_step_that_goes_on_ends_where_the_first_began()
{
    TData model;
    TDocumentStep step;
    step.Note_Rows(Rows({1, 2, 3}), Rows({2, 1, 3}));
    step.Note_Rows(Rows({2, 1, 3}), Rows({2, 3, 1}));
    TDocumentFacts facts{Rows({2, 3, 1}), {}};
    step.Swap(&model, &facts);
    QCOMPARE(In_Words(facts.page_rows), In_Words(Rows({1, 2, 3})));
    step.Swap(&model, &facts);
    QCOMPARE(In_Words(facts.page_rows), In_Words(Rows({2, 3, 1})));

    TDocumentStep undone;
    undone.Note_Rows(Rows({1, 2}), Rows({2, 1}));
    QVERIFY(!undone.Is_Void(model, {}));
    undone.Note_Rows(Rows({2, 1}), Rows({1, 2}));
    QVERIFY(undone.Is_Void(model, {}));
}

void TestDocumentStep::a_size_that_comes_back_is_no_step()
{
    TData model;
    TDocumentStep step;
    QVERIFY(step.Is_Void(model, {32, Qt::red}));
    step.Note_Look({32, Qt::red}, {33, Qt::red});
    step.Note_Look({33, Qt::red}, {34, Qt::red});
    QVERIFY(!step.Is_Void(model, {34, Qt::red}));
    QVERIFY(step.Is_Void(model, {32, Qt::red}));
    QVERIFY(!step.Is_Void(model, {32, Qt::blue}));
    QCOMPARE(step.Touched_Pages(), std::vector<int>());
}

void TestDocumentStep::a_step_goes_back_and_forth()
{
    TData model;
    TDocumentStep step;
    model.Set_Record(&step.data);
    const int page_id = model.Add_Page();
    model.Set_Record(nullptr);
    step.Note_Rows({}, Rows({page_id}));
    step.Note_Look({32, Qt::red}, {40, Qt::blue});
    QCOMPARE(step.Touched_Pages(), (std::vector<int>{page_id, page_id}));

    TDocumentFacts facts{Rows({page_id}), {40, Qt::blue}};
    step.Swap(&model, &facts);
    QCOMPARE(model.Page_Count(), 0);
    QCOMPARE(facts.page_rows.size(), std::size_t(0));
    QCOMPARE(facts.look.size, 32);
    QCOMPARE(facts.look.color, QColor(Qt::red));
    step.Swap(&model, &facts);
    QCOMPARE(model.Page_Index(page_id), 0);
    QCOMPARE(facts.page_rows.size(), std::size_t(1));
    QCOMPARE(facts.look.size, 40);
    QCOMPARE(facts.look.color, QColor(Qt::blue));
}

QTEST_GUILESS_MAIN(TestDocumentStep)
#include "test_documentstep.moc"
