#include "src/undo/undohistory.h"

#include <QtTest>

class TestUndoHistory : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void what_is_shown_is_asked_once_for_a_run_that_changes_nothing();
    void a_run_that_begins_with_nothing_is_one_step();
    void a_break_ends_a_run_that_has_changed_nothing();
    void steps_share_a_selection_that_stays();
    void a_cleared_history_goes_on_with_nothing();

private:
    bool Change_Border(int id, int border);

    TData d_model;
    int d_questions = 0;
    int d_selected = 0; ///< which label; 0 for another one each time
    std::unique_ptr<TUndoHistory> d_history;
};

/// Three labels: two ellipses and a square.
void TestUndoHistory::init()
{
    d_model.Clear();
    d_model.Set_Active_Page(d_model.Add_Page());
    for (const int id : {1, 2, 3})
        d_model.Add_Item({id, id, QString(), id == 3 ? 1 : 2, QPointF(id, id), false});
    d_questions = 0;
    d_selected = 0;
    d_history = std::make_unique<TUndoHistory>(&d_model, [this] {
        ++d_questions;
        return TShownState{{1}, {d_selected ? d_selected : d_questions}, d_questions, 0};
    });
}

bool TestUndoHistory::Change_Border(int id, int border)
{
    d_history->Begin(TStepKind::Change_Border, border, 1, {});
    d_model.Change_Item_Border(id, border);
    return d_history->End({});
}

void TestUndoHistory::what_is_shown_is_asked_once_for_a_run_that_changes_nothing()
{
    QVERIFY(!Change_Border(1, 2));
    QVERIFY(!Change_Border(2, 2));
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_questions, 1);
}

void TestUndoHistory::a_run_that_begins_with_nothing_is_one_step()
{
    QVERIFY(!Change_Border(1, 2));
    QVERIFY(Change_Border(3, 2));
    const auto outcome = d_history->Undo({});
    QVERIFY(outcome.has_value());
    QCOMPARE(outcome->shown.labels, QVector<int>{1});
    QCOMPARE(d_model.Item(2).border_type, 1);
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_history->Redo({})->shown.labels, QVector<int>{2});
    QCOMPARE(d_model.Item(2).border_type, 2);
}

void TestUndoHistory::a_break_ends_a_run_that_has_changed_nothing()
{
    QVERIFY(!Change_Border(1, 2));
    d_history->Break();
    QVERIFY(Change_Border(3, 2));
    QCOMPARE(d_history->Undo({})->shown.labels, QVector<int>{2});
}

void TestUndoHistory::steps_share_a_selection_that_stays()
{
    d_selected = 2;
    QVERIFY(Change_Border(1, 4));
    QVERIFY(Change_Border(1, 8));
    const auto second = d_history->Undo({});
    const auto first = d_history->Undo({});
    QVERIFY(first->shown.next_value != second->shown.next_value);
    QCOMPARE(first->shown.labels, QVector<int>{2});
    QCOMPARE(first->shown.labels.constData(), second->shown.labels.constData());
    QCOMPARE(first->shown.pages.constData(), second->shown.pages.constData());
}

void TestUndoHistory::a_cleared_history_goes_on_with_nothing()
{
    QVERIFY(Change_Border(3, 4));
    d_history->Clear();
    QVERIFY(Change_Border(1, 4));
    QCOMPARE(d_history->Undo({})->pages, std::vector<int>{1});
    QCOMPARE(d_model.Item(2).border_type, 4);
    QCOMPARE(d_model.Item(0).border_type, 2);
}

QTEST_MAIN(TestUndoHistory)
#include "test_undohistory.moc"
