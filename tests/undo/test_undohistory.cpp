#include "src/undo/undohistory.h"

#include "support/support.h"

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QTest>

class TestUndoHistory : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void a_run_that_changes_nothing_reads_the_shown_state_once();
    void a_run_that_begins_with_nothing_is_one_step();
    void a_finished_run_that_changed_nothing_is_not_continued();
    void changes_of_one_kind_to_one_subject_are_one_step();
    void changes_of_another_kind_or_subject_are_another_step();
    void some_kinds_are_never_continued();
    void a_run_without_a_net_change_is_not_a_step();
    void only_some_kinds_of_steps_are_continued_data();
    void only_some_kinds_of_steps_are_continued();
    void the_step_before_a_run_without_a_net_change_is_not_continued();
    void a_run_that_began_before_clearing_is_not_continued();
    void values_are_set_if_the_step_changed_them_data();
    void values_are_set_if_the_step_changed_them();
    void the_outcome_says_whether_the_step_marks_the_document();
    void every_change_of_the_page_list_is_recorded_data();
    void every_change_of_the_page_list_is_recorded();
    void nested_scopes_are_one_step();
    void a_scope_without_a_history_records_nothing();
    void a_selection_is_not_a_step();
    void steps_share_an_unchanged_selection();
    void a_cleared_history_starts_again();
    void a_new_step_removes_undone_steps();
    void the_outcome_contains_the_shown_state_before_and_after();
    void the_message_contains_the_count();
    void the_names_are_those_of_the_next_steps();
    void the_look_is_undone_and_redone();
    void a_renamed_page_is_a_step();
    void moving_pages_is_a_step_that_touches_no_page();
    void rows_are_recorded_on_return_to_the_event_loop();
    void undo_and_redo_record_the_page_list_first();
    void a_reported_change_that_leaves_the_rows_is_not_a_step();
    void rows_that_undo_puts_back_are_not_a_step();
    void rows_of_another_document_are_not_a_step();
    void a_new_history_records_the_page_list();
    void a_row_missing_during_a_drag_is_not_a_step();
    void rows_that_change_within_a_step_belong_to_it();
    void a_page_renamed_within_a_step_belongs_to_it();
    void the_page_list_is_recorded_after_a_step_that_processed_events();
    void the_oldest_steps_are_dropped_beyond_the_budget();
    void selections_count_towards_the_budget();
    void a_continued_step_counts_towards_the_budget();
    void an_undone_step_counts_towards_the_budget();
    void two_hundred_steps_are_kept_even_beyond_the_budget();
    void steps_that_fill_the_budget_exactly_are_kept();
    void removed_steps_do_not_count_towards_the_budget();
    void a_dropped_step_releases_its_images_at_once();
    void the_last_step_that_is_done_and_undone_steps_are_kept_data();
    void the_last_step_that_is_done_and_undone_steps_are_kept();
    void the_budget_is_256_mib();

private:
    void Start(qint64 budget);
    void Record(TStepKind kind, int subject, const std::function<void()>& change, int count = 1);
    void Change_Border(int id, int border);
    void Change_Value(int id, int value);
    void Change_Values(int steps);
    void Rename(const QString& name);
    qint64 Bytes_Of_A_Value_Step();
    int Undo_All();
    int Value(int index) const { return d_model.Item(index).value; }

    TData d_model;
    int d_reads = 0;    ///< number of reads of the shown state
    int d_selected = 0; ///< selected label; if 0, a different label at each read
    int d_selection_size = 1;
    /// Values that are shown; a next value of 0 stands for a different one at each read.
    TShownState d_values;
    TPageRows d_rows;
    TLabelLook d_look;
    QStandardItemModel d_list{1, 1}; ///< stands in for the model behind the page list
    std::unique_ptr<TUndoHistory> d_history;
};

/// One page with three labels: two ellipses and a square.
void TestUndoHistory::init()
{
    d_model.Clear();
    d_model.Set_Active_Page(d_model.Add_Page());
    for (const int id : {1, 2, 3})
        d_model.Add_Item({id, id, QString(), id == 3 ? 1 : 2, QPointF(id, id), false});
    d_reads = 0;
    d_selected = 0;
    d_selection_size = 1;
    d_values = {};
    d_rows = {{1, "Page 1"}};
    d_look = {32, Qt::red};
    d_list.setItem(0, new QStandardItem("Page 1"));
    Start(TUndoHistory::Memory_Budget);
}

void TestUndoHistory::Start(qint64 budget)
{
    const auto shown = [this] {
        ++d_reads;
        return TShownState{{1},
                           QVector<int>(d_selection_size, d_selected ? d_selected : d_reads),
                           d_values.next_value ? d_values.next_value : d_reads,
                           d_values.value_without_selection};
    };
    d_history = std::make_unique<TUndoHistory>(
        &d_model,
        TUndoHistory::TSource{[this] { return d_rows; }, [this] { return d_look; }, shown}, budget);
    d_history->Watch_Page_List(d_list);
    d_history->Clear();
    d_history->Record_Page_List();
}

void TestUndoHistory::Record(TStepKind kind, int subject, const std::function<void()>& change,
                             int count)
{
    const TStepScope scope(d_history.get(), kind, subject, count);
    change();
}

void TestUndoHistory::Change_Border(int id, int border)
{
    Record(TStepKind::Change_Border, border, [&] { d_model.Change_Item_Border(id, border); });
}

void TestUndoHistory::Change_Value(int id, int value)
{
    Record(TStepKind::Change_Value, id, [&] { d_model.Change_Item_Value(id, value); });
}

/// Makes one step after the other.
void TestUndoHistory::Change_Values(int steps)
{
    for (int value = 100; value < 100 + steps; ++value) {
        Change_Value(1, value);
        d_history->Finish_Step();
    }
}

/// Renames the page in the list, which reports the change.
void TestUndoHistory::Rename(const QString& name)
{
    d_rows[0].name = name;
    d_list.setItem(0, new QStandardItem(name));
}

/// The size of each step of Change_Values.
qint64 TestUndoHistory::Bytes_Of_A_Value_Step()
{
    TDocumentStep step(d_model, {d_rows, d_look});
    step.Store_Page(d_model.Pages()[0]);
    d_model.Change_Item_Value(1, 99);
    step.Close(d_model);
    // One page and one label are selected before the step and after it.
    return step.Bytes() + qint64{4 * sizeof(int)};
}

/// Undoes all steps; returns how many there were.
int TestUndoHistory::Undo_All()
{
    int steps = 0;
    for (; d_history->Can_Undo(); ++steps)
        d_history->Undo();
    return steps;
}

void TestUndoHistory::a_run_that_changes_nothing_reads_the_shown_state_once()
{
    QSignalSpy recorded(d_history.get(), &TUndoHistory::Step_Recorded);
    Change_Border(1, 2);
    Change_Border(2, 2);
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_reads, 1);
    QCOMPARE(recorded.count(), 0);
}

void TestUndoHistory::a_run_that_begins_with_nothing_is_one_step()
{
    QSignalSpy recorded(d_history.get(), &TUndoHistory::Step_Recorded);
    Change_Border(1, 2);
    Change_Border(3, 2);
    QCOMPARE(recorded.count(), 1);
    const auto outcome = d_history->Undo();
    QVERIFY(outcome.has_value());
    QCOMPARE(outcome->shown.labels, QVector<int>{1});
    QCOMPARE(d_model.Item(2).border_type, 1);
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_history->Redo()->shown.labels, QVector<int>{2});
    QCOMPARE(d_model.Item(2).border_type, 2);
}

void TestUndoHistory::a_finished_run_that_changed_nothing_is_not_continued()
{
    Change_Border(1, 2);
    d_history->Finish_Step();
    Change_Border(3, 2);
    QCOMPARE(d_history->Undo()->shown.labels, QVector<int>{2});
}

void TestUndoHistory::changes_of_one_kind_to_one_subject_are_one_step()
{
    QSignalSpy recorded(d_history.get(), &TUndoHistory::Step_Recorded);
    Change_Value(1, 10);
    Change_Value(1, 100);
    QCOMPARE(recorded.count(), 2);
    d_history->Undo();
    QCOMPARE(Value(0), 1);
    QVERIFY(!d_history->Can_Undo());
    d_history->Redo();
    QCOMPARE(Value(0), 100);
    // A redone step is not continued.
    Change_Value(1, 1000);
    d_history->Undo();
    QCOMPARE(Value(0), 100);
}

void TestUndoHistory::changes_of_another_kind_or_subject_are_another_step()
{
    Change_Value(1, 10);
    Change_Value(2, 20);
    Change_Border(1, 2);
    Change_Border(1, 4);
    d_history->Undo();
    QCOMPARE(d_model.Item(0).border_type, 2);
    QCOMPARE(Value(1), 20);
    d_history->Undo();
    QCOMPARE(Value(1), 2);
    QCOMPARE(Value(0), 10);
    d_history->Undo();
    QCOMPARE(Value(0), 1);
    QVERIFY(!d_history->Can_Undo());
}

void TestUndoHistory::some_kinds_are_never_continued()
{
    for (const int value : {5, 6})
        Record(TStepKind::Renumber, 0, [&] { d_model.Change_Item_Value(1, value); });
    d_history->Undo();
    QCOMPARE(Value(0), 5);
    QVERIFY(d_history->Can_Undo());
}

void TestUndoHistory::a_run_without_a_net_change_is_not_a_step()
{
    Change_Value(2, 20);
    Change_Value(1, 10);
    Change_Value(1, 1);
    d_history->Undo();
    QCOMPARE(Value(1), 2);
    QVERIFY(!d_history->Can_Undo());
    d_history->Redo();
    QVERIFY(!d_history->Can_Redo());
    Change_Value(1, 10);
    Change_Value(1, 1);
    Change_Value(1, 30);
    d_history->Undo();
    QCOMPARE(Value(0), 1);
    QCOMPARE(Value(1), 20);
}

void TestUndoHistory::only_some_kinds_of_steps_are_continued_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("is_continued");
    const QVector<TStepKind> continued = {TStepKind::Change_Value, TStepKind::Change_Border,
                                          TStepKind::Nudge_Labels, TStepKind::Rename_Page,
                                          TStepKind::Change_Size};
    for (int kind = 0; kind <= static_cast<int>(TStepKind::Change_Color); ++kind)
        QTest::newRow(qPrintable(StepKind::Name(static_cast<TStepKind>(kind), 1)))
            << kind << continued.contains(static_cast<TStepKind>(kind));
}

void TestUndoHistory::only_some_kinds_of_steps_are_continued()
{
    QFETCH(int, kind);
    QFETCH(bool, is_continued);
    for (const int value : {5, 6})
        Record(static_cast<TStepKind>(kind), 0, [&] { d_model.Change_Item_Value(1, value); });
    d_history->Undo();
    QCOMPARE(Value(0), is_continued ? 1 : 5);
}

void TestUndoHistory::the_step_before_a_run_without_a_net_change_is_not_continued()
{
    Change_Value(1, 10);
    d_history->Finish_Step();
    Change_Value(1, 20);
    Change_Value(1, 10);
    Change_Value(1, 30);
    d_history->Undo();
    QCOMPARE(Value(0), 10);
}

void TestUndoHistory::a_run_that_began_before_clearing_is_not_continued()
{
    Change_Border(1, 2);
    d_history->Clear();
    Change_Border(3, 2);
    QCOMPARE(d_history->Undo()->shown.labels, QVector<int>{2});
}

void TestUndoHistory::values_are_set_if_the_step_changed_them_data()
{
    QTest::addColumn<int>("next_value");
    QTest::addColumn<int>("value_without_selection");
    QTest::addColumn<bool>("sets_values");
    QTest::newRow("neither") << 7 << 3 << false;
    QTest::newRow("next value") << 8 << 3 << true;
    QTest::newRow("value without selection") << 7 << 4 << true;
}

void TestUndoHistory::values_are_set_if_the_step_changed_them()
{
    QFETCH(int, next_value);
    QFETCH(int, value_without_selection);
    d_values.next_value = 7;
    d_values.value_without_selection = 3;
    Record(TStepKind::Change_Value, 1, [&] {
        d_model.Change_Item_Value(1, 10);
        d_values.next_value = next_value;
        d_values.value_without_selection = value_without_selection;
    });
    QTEST(d_history->Undo()->sets_values, "sets_values");
}

void TestUndoHistory::the_outcome_says_whether_the_step_marks_the_document()
{
    Change_Value(1, 10);
    QVERIFY(d_history->Undo()->marks_document);
    QVERIFY(d_history->Redo()->marks_document);
    Record(TStepKind::Change_Color, 0, [&] { d_look.color = Qt::blue; });
    QVERIFY(!d_history->Undo()->marks_document);
    QVERIFY(!d_history->Redo()->marks_document);
}

void TestUndoHistory::every_change_of_the_page_list_is_recorded_data()
{
    QTest::addColumn<QString>("change");
    for (const char* const change : {"data", "insertion", "removal", "reset", "move"})
        QTest::newRow(change) << change;
}

void TestUndoHistory::every_change_of_the_page_list_is_recorded()
{
    QFETCH(QString, change);
    QStringListModel movable({"Page 1", "Page 2"}); // QStandardItemModel does not move rows
    d_history->Watch_Page_List(movable);
    d_rows[0].name = "Roof";
    if (change == "data")
        d_list.setData(d_list.index(0, 0), "Roof");
    else if (change == "insertion")
        d_list.insertRow(0);
    else if (change == "removal")
        d_list.removeRow(0);
    else if (change == "reset")
        d_list.clear();
    else
        QVERIFY(movable.moveRow(QModelIndex(), 0, QModelIndex(), 2));
    QCoreApplication::processEvents();
    QVERIFY(d_history->Can_Undo());
}

void TestUndoHistory::nested_scopes_are_one_step()
{
    QSignalSpy recorded(d_history.get(), &TUndoHistory::Step_Recorded);
    Record(TStepKind::Nudge_Labels, 0, [&] {
        Change_Value(1, 10);
        QCOMPARE(recorded.count(), 0);
        d_history->Finish_Step();
        Change_Value(2, 20);
    });
    QCOMPARE(recorded.count(), 1);
    d_history->Undo();
    QCOMPARE(Value(0), 1);
    QCOMPARE(Value(1), 2);
}

void TestUndoHistory::a_scope_without_a_history_records_nothing()
{
    {
        const TStepScope scope(nullptr, TStepKind::Change_Value, 1, 1);
        d_model.Change_Item_Value(1, 10);
    }
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_reads, 0);
}

void TestUndoHistory::a_selection_is_not_a_step()
{
    Record(TStepKind::Change_Value, 1, [&] { d_model.Change_Item_Selection(1, true); });
    QVERIFY(!d_history->Can_Undo());
}

void TestUndoHistory::steps_share_an_unchanged_selection()
{
    d_selected = 2;
    Change_Border(1, 4);
    Change_Border(1, 8);
    const auto second = d_history->Undo();
    const auto first = d_history->Undo();
    QVERIFY(first->shown.next_value != second->shown.next_value);
    QCOMPARE(first->shown.labels, QVector<int>{2});
    QCOMPARE(first->shown.labels.constData(), second->shown.labels.constData());
    QCOMPARE(first->shown.pages, QVector<int>{1});
    QCOMPARE(first->shown.pages.constData(), second->shown.pages.constData());
}

void TestUndoHistory::a_cleared_history_starts_again()
{
    Change_Border(3, 4);
    d_history->Clear();
    QVERIFY(!d_history->Can_Undo());
    Change_Border(1, 4);
    QCOMPARE(d_history->Undo()->pages, std::vector<int>{1});
    QCOMPARE(d_model.Item(2).border_type, 4);
    QCOMPARE(d_model.Item(0).border_type, 2);
    d_history->Clear();
    QVERIFY(!d_history->Can_Redo());
}

void TestUndoHistory::a_new_step_removes_undone_steps()
{
    Change_Value(1, 10);
    Change_Value(2, 20);
    d_history->Undo();
    d_history->Undo();
    Change_Value(1, 1);
    QVERIFY(d_history->Can_Redo());
    Change_Value(3, 30);
    QVERIFY(!d_history->Can_Redo());
    QVERIFY(!d_history->Redo().has_value());
    d_history->Undo();
    QCOMPARE(Value(2), 3);
    QVERIFY(!d_history->Undo().has_value());
}

void TestUndoHistory::the_outcome_contains_the_shown_state_before_and_after()
{
    Change_Value(1, 10);
    const auto undone = d_history->Undo();
    QCOMPARE(undone->shown.next_value, 1);
    QVERIFY(undone->sets_values);
    QCOMPARE(undone->rows_and_look.rows, d_rows);
    QCOMPARE(d_history->Redo()->shown.next_value, 2);
}

void TestUndoHistory::the_message_contains_the_count()
{
    Record(
        TStepKind::Remove_Labels, 0,
        [&] {
            d_model.Remove_Items({1, 2});
        },
        2);
    Record(TStepKind::Remove_Labels, 0, [&] { d_model.Remove_Items({3}); });
    QCOMPARE(d_history->Undo()->message, QString("Undone: remove 1 label"));
    QCOMPARE(d_history->Undo()->message, QString("Undone: remove 2 labels"));
    QCOMPARE(d_history->Redo()->message, QString("Redone: remove 2 labels"));
    Record(
        TStepKind::Renumber, 0, [&] { d_model.Change_Item_Value(3, 9); }, 7);
    QCOMPARE(d_history->Undo()->message, QString("Undone: renumber labels"));
}

void TestUndoHistory::the_names_are_those_of_the_next_steps()
{
    QStringList names;
    connect(d_history.get(), &TUndoHistory::Names_Changed, d_history.get(),
            [&] { names += d_history->Undo_Name() + '/' + d_history->Redo_Name(); });
    Change_Value(1, 100);
    Record(
        TStepKind::Remove_Labels, 0,
        [this] {
            d_model.Remove_Items({2, 3});
        },
        2);
    d_history->Undo();
    d_history->Undo();
    d_history->Redo();
    d_history->Clear();
    QCOMPARE(names,
             QStringList({"change value/", "remove 2 labels/", "change value/remove 2 labels",
                          "/change value", "change value/remove 2 labels", "/"}));
}

void TestUndoHistory::the_look_is_undone_and_redone()
{
    Record(TStepKind::Change_Size, 0, [&] { d_look.size = 40; });
    Record(TStepKind::Change_Size, 0, [&] { d_look.size = 50; });
    const auto undone = d_history->Undo();
    QCOMPARE(undone->rows_and_look.look.size, 32);
    QCOMPARE(undone->rows_and_look.look.color, QColor(Qt::red));
    QCOMPARE(undone->pages, std::vector<int>());
    d_look = undone->rows_and_look.look;
    const auto redone = d_history->Redo();
    QCOMPARE(redone->rows_and_look.look.size, 50);
    d_look = redone->rows_and_look.look;
    Record(TStepKind::Change_Color, 0, [&] { d_look.color = Qt::blue; });
    QCOMPARE(d_history->Undo()->rows_and_look.look.color, QColor(Qt::red));
}

void TestUndoHistory::a_renamed_page_is_a_step()
{
    QSignalSpy changed(d_history.get(), &TUndoHistory::Page_List_Changed);
    for (const char* name : {"R", "Ro", "Roof"}) {
        d_rows[0].name = name;
        d_list.setItem(0, new QStandardItem(name));
        d_history->Record_Page_List();
    }
    QCOMPARE(changed.count(), 3);
    const auto undone = d_history->Undo();
    QCOMPARE(undone->message, QString("Undone: rename page"));
    QCOMPARE(undone->rows_and_look.rows.first().name, QString("Page 1"));
    QCOMPARE(undone->pages, std::vector<int>{1});
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_history->Redo()->rows_and_look.rows.first().name, QString("Roof"));
}

void TestUndoHistory::moving_pages_is_a_step_that_touches_no_page()
{
    d_rows.append({d_model.Add_Page(), "Page 2"});
    d_list.setItem(0, new QStandardItem("added"));
    d_history->Record_Page_List();
    QVERIFY(!d_history->Can_Undo());
    std::swap(d_rows[0], d_rows[1]);
    d_list.setItem(0, new QStandardItem("moved"));
    d_history->Record_Page_List();
    const auto undone = d_history->Undo();
    QCOMPARE(undone->message, QString("Undone: move 1 page"));
    QCOMPARE(undone->rows_and_look.rows.first().page_id, 1);
    QCOMPARE(undone->pages, std::vector<int>());
}

void TestUndoHistory::rows_are_recorded_on_return_to_the_event_loop()
{
    d_rows[0].name = "Roof";
    d_list.setItem(0, new QStandardItem("renamed"));
    QVERIFY(!d_history->Can_Undo());
    QCoreApplication::processEvents();
    QVERIFY(d_history->Can_Undo());
    // A step that begins first records the rows.
    d_rows[0].name = "Cellar";
    d_list.setItem(0, new QStandardItem("renamed again"));
    Change_Value(1, 10);
    const auto undone = d_history->Undo();
    QCOMPARE(undone->message, QString("Undone: change value"));
    QCOMPARE(undone->rows_and_look.rows[0].name, QString("Cellar"));
    QCOMPARE(d_history->Undo()->message, QString("Undone: rename page"));
}

void TestUndoHistory::undo_and_redo_record_the_page_list_first()
{
    Change_Value(1, 10);
    Rename("Roof");
    QCOMPARE(d_history->Undo()->message, QString("Undone: rename page"));
    Rename("Cellar");
    QVERIFY(!d_history->Redo().has_value());
    QCOMPARE(d_history->Undo_Name(), QString("rename page"));
}

void TestUndoHistory::a_reported_change_that_leaves_the_rows_is_not_a_step()
{
    QSignalSpy changed(d_history.get(), &TUndoHistory::Page_List_Changed);
    Rename("Page 1");
    d_history->Record_Page_List();
    QCOMPARE(changed.count(), 0);
    QVERIFY(!d_history->Can_Undo());
}

void TestUndoHistory::rows_that_undo_puts_back_are_not_a_step()
{
    Rename("Roof");
    Rename(d_history->Undo()->rows_and_look.rows[0].name);
    d_history->Record_Page_List();
    QVERIFY(!d_history->Can_Undo());
    QVERIFY(d_history->Can_Redo());
}

void TestUndoHistory::rows_of_another_document_are_not_a_step()
{
    d_rows[0].name = "Other";
    d_history->Clear();
    d_history->Record_Page_List();
    QVERIFY(!d_history->Can_Undo());
}

void TestUndoHistory::a_new_history_records_the_page_list()
{
    const auto shown = [] { return TShownState(); };
    TUndoHistory history(&d_model, {[this] { return d_rows; }, [this] { return d_look; }, shown},
                         0);
    history.Watch_Page_List(d_list);
    for (const char* const name : {"Page 1", "Roof"}) {
        QVERIFY(!history.Can_Undo());
        QVERIFY(!history.Can_Redo());
        Rename(name);
        QCoreApplication::processEvents();
    }
    QCOMPARE(history.Undo()->rows_and_look.rows[0].name, QString("Page 1"));
    QVERIFY(!history.Can_Undo());
}

void TestUndoHistory::a_row_missing_during_a_drag_is_not_a_step()
{
    const TPageRows rows = std::exchange(d_rows, {});
    d_list.setItem(0, new QStandardItem("taken out"));
    d_history->Record_Page_List();
    QVERIFY(!d_history->Can_Undo());
    d_rows = rows;
    d_rows[0].name = "Roof";
    d_history->Record_Page_List();
    QCOMPARE(d_history->Undo()->rows_and_look.rows, rows);
}

void TestUndoHistory::rows_that_change_within_a_step_belong_to_it()
{
    Record(TStepKind::Add_Page, 0, [&] {
        d_rows.append({d_model.Add_Page(), "Page 2"});
        d_list.setItem(0, new QStandardItem("added"));
        d_history->Record_Page_List();
    });
    const auto undone = d_history->Undo();
    QCOMPARE(undone->message, QString("Undone: add page"));
    QCOMPARE(undone->pages, std::vector<int>{2});
    QCOMPARE(undone->rows_and_look.rows.size(), 1);
    QCOMPARE(d_model.Page_Count(), 1);
    QVERIFY(!d_history->Can_Undo());
    QCOMPARE(d_history->Redo()->rows_and_look.rows.size(), 2);
    QCOMPARE(d_model.Page_Id(1), 2);
}

void TestUndoHistory::a_page_renamed_within_a_step_belongs_to_it()
{
    QSignalSpy changed(d_history.get(), &TUndoHistory::Page_List_Changed);
    Record(TStepKind::Change_Value, 1, [&] {
        Rename("Roof");
        d_history->Record_Page_List();
    });
    QCOMPARE(changed.count(), 0);
    QCOMPARE(d_history->Undo()->message, QString("Undone: change value"));
    QVERIFY(!d_history->Can_Undo());
}

void TestUndoHistory::the_page_list_is_recorded_after_a_step_that_processed_events()
{
    Record(TStepKind::Change_Value, 1, [&] {
        Rename("Roof");
        QCoreApplication::processEvents();
    });
    Rename("Cellar");
    QCoreApplication::processEvents();
    QCOMPARE(d_history->Undo_Name(), QString("rename page"));
}

void TestUndoHistory::the_oldest_steps_are_dropped_beyond_the_budget()
{
    // A step stores the page with its three labels.
    const auto labels_bytes = static_cast<qint64>(3 * sizeof(TDataItem));
    const auto kept = static_cast<qint64>(TUndoHistory::Minimum_Steps) + 50;
    Start(kept * (labels_bytes + 300));
    Change_Values(900);
    const qint64 steps = Undo_All();
    QVERIFY2(steps >= kept && steps < 4 * kept, qPrintable(QString::number(steps)));
    QCOMPARE(Value(0), static_cast<int>(999 - steps));
}

void TestUndoHistory::selections_count_towards_the_budget()
{
    for (const int size : {1, 1000}) {
        d_selection_size = size;
        Start(1024 * 1024);
        Change_Values(300);
        QCOMPARE(Undo_All(), size == 1 ? 300 : 200);
    }
}

void TestUndoHistory::a_continued_step_counts_towards_the_budget()
{
    const int large_page = d_model.Add_Page();
    d_model.Set_Active_Page(large_page);
    for (int id = 1; id <= 50000; ++id)
        d_model.Add_Item({id, id, QString(), 2, QPointF(), false});
    d_model.Set_Active_Page(1);
    Start(1024 * 1024);
    Change_Values(300);
    Change_Border(1, 4);
    d_model.Set_Active_Page(large_page);
    Change_Border(1, 4);
    QCOMPARE(Undo_All(), 200);
}

void TestUndoHistory::an_undone_step_counts_towards_the_budget()
{
    Start(1024 * 1024);
    Change_Values(300);
    QByteArray image(2 * 1024 * 1024, '\0');
    image.prepend(Support::Png(Support::Picture(4, 4)));
    Record(TStepKind::Import, 0, [&] { d_model.Add_Page(TPageImage::From_Bytes(image)); });
    // With the page, its image becomes part of the step.
    QVERIFY(d_history->Undo().has_value());
    QCOMPARE(Undo_All(), 199);
}

void TestUndoHistory::two_hundred_steps_are_kept_even_beyond_the_budget()
{
    Start(0);
    Change_Values(250);
    QCOMPARE(Undo_All(), 200);
    QCOMPARE(Value(0), 149);
    while (d_history->Can_Redo())
        d_history->Redo();
    QCOMPARE(Value(0), 349);
}

void TestUndoHistory::steps_that_fill_the_budget_exactly_are_kept()
{
    constexpr int kept = 250;
    for (const int missing_bytes : {0, 1}) {
        Start(kept * Bytes_Of_A_Value_Step() - missing_bytes);
        for (int round = 0; round < 2; ++round) {
            Change_Values(kept + 10);
            QCOMPARE(Undo_All(), kept - missing_bytes);
            d_history->Clear();
        }
    }
}

void TestUndoHistory::removed_steps_do_not_count_towards_the_budget()
{
    constexpr int kept = 250;
    Start(kept * Bytes_Of_A_Value_Step());
    Change_Values(kept);
    QCOMPARE(Undo_All(), kept);
    Change_Values(kept);
    QCOMPARE(Undo_All(), kept);
}

void TestUndoHistory::a_dropped_step_releases_its_images_at_once()
{
    Start(0);
    QByteArray image = Support::Png(Support::Picture(4, 4));
    const int page_id = d_model.Add_Page(TPageImage::From_Bytes(image));
    Record(TStepKind::Remove_Pages, 0, [&] { d_model.Remove_Page(page_id); });
    d_history->Finish_Step();
    Change_Values(static_cast<int>(TUndoHistory::Minimum_Steps) - 1);
    QVERIFY(!image.isDetached());
    Change_Values(1);
    QVERIFY(image.isDetached());
}

void TestUndoHistory::the_last_step_that_is_done_and_undone_steps_are_kept_data()
{
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("kept");
    QTest::newRow("none done") << 0 << 0;
    QTest::newRow("one done") << 1 << 1;
    QTest::newRow("two done") << 2 << 1;
}

void TestUndoHistory::the_last_step_that_is_done_and_undone_steps_are_kept()
{
    QFETCH(const int, done);
    constexpr int undone = 250;
    Start(1024 * 1024);
    for (int id = 1; id <= done; ++id)
        Change_Value(id, 50);
    QByteArray image(2 * 1024 * 1024, '\0');
    image.prepend(Support::Png(Support::Picture(4, 4)));
    Record(TStepKind::Import, 0, [&] { d_model.Add_Page(TPageImage::From_Bytes(image)); });
    Change_Values(undone);
    // Undoing the import adds the image to its step, which then exceeds the budget.
    for (int step = 0; step <= undone; ++step)
        QVERIFY(d_history->Undo().has_value());
    QCOMPARE(d_history->Redo_Name(), QString("import 1 image"));
    QTEST(Undo_All(), "kept");
    int redone = 0;
    for (; d_history->Can_Redo(); ++redone)
        d_history->Redo();
    QFETCH(const int, kept);
    QCOMPARE(redone, kept + 1 + undone);
}

void TestUndoHistory::the_budget_is_256_mib()
{
    QCOMPARE(TUndoHistory::Memory_Budget, qint64{268435456});
}

QTEST_MAIN(TestUndoHistory)
#include "test_undohistory.moc"
