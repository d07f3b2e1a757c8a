#include "src/undo/undohistory.h"

#include <QAbstractItemModel>

#include <algorithm>
#include <cassert>
#include <utility>

namespace {

/// Ids of pages in ascending order.
template <typename TPages>
std::vector<int> Sorted_Ids(const TPages& pages)
{
    std::vector<int> ids;
    ids.reserve(static_cast<std::size_t>(pages.size()));
    for (const auto& page : pages)
        ids.push_back(page.page_id);
    std::sort(ids.begin(), ids.end());
    return ids;
}

template <typename TStep>
QString Name(const TStep& step)
{
    return StepKind::Name(step.kind, step.count);
}

bool Is_Same_Page(const TNamedPage& left, const TNamedPage& right)
{
    return left.page_id == right.page_id;
}

} // namespace

TStepScope::TStepScope(TUndoHistory* history, TStepKind kind, int subject, int count)
    : d_history(history)
{
    if (d_history)
        d_history->Begin(kind, subject, count);
}

TStepScope::~TStepScope()
{
    if (d_history)
        d_history->End();
}

TUndoHistory::TUndoHistory(TData* data, TSource source, qint64 budget)
    : d_data(data)
    , d_source(std::move(source))
    , d_budget(budget)
{
}

void TUndoHistory::Watch_Page_List(const QAbstractItemModel& rows)
{
    const auto note = [this] {
        if (std::exchange(d_has_stale_rows, true))
            return;
        // Not now: a row that is being dragged is missing from the list for a moment.
        QMetaObject::invokeMethod(this, &TUndoHistory::Record_Page_List, Qt::QueuedConnection);
    };
    connect(&rows, &QAbstractItemModel::dataChanged, this, note);
    connect(&rows, &QAbstractItemModel::rowsInserted, this, note);
    connect(&rows, &QAbstractItemModel::rowsRemoved, this, note);
    connect(&rows, &QAbstractItemModel::rowsMoved, this, note);
    connect(&rows, &QAbstractItemModel::modelReset, this, note);
}

void TUndoHistory::Record_Page_List()
{
    if (d_depth > 0 || !d_has_stale_rows)
        return;
    const TPageRows rows = d_source.rows();
    const std::vector<int> ids = Sorted_Ids(rows);
    // A row is missing in the middle of a drag; the end of the drag reports another change.
    if (ids != Sorted_Ids(d_data->Pages()))
        return;
    d_has_stale_rows = false;
    if (rows == d_rows || ids != Sorted_Ids(d_rows)) {
        d_rows = rows;
        return;
    }

    if (std::equal(rows.cbegin(), rows.cend(), d_rows.cbegin(), Is_Same_Page)) {
        const auto renamed = std::mismatch(rows.cbegin(), rows.cend(), d_rows.cbegin()).first;
        Begin(TStepKind::Rename_Page, renamed->page_id, 1);
    } else {
        Begin(TStepKind::Move_Pages, 0, d_source.shown().pages.size());
    }
    d_rows = rows;
    End();
    emit Page_List_Changed();
}

void TUndoHistory::Begin(TStepKind kind, int subject, int count)
{
    Record_Page_List();
    if (++d_depth > 1)
        return;
    const bool has_last = d_new || d_may_continue;
    const bool continues = has_last && StepKind::May_Continue(kind) &&
                           Current_Step().kind == kind && Current_Step().subject == subject;
    if (!continues)
        d_new =
            TStep{kind, subject, count, TDocumentStep(*d_data, Rows_And_Look()), Shown(), {}, 0};
    d_data->Set_Recorder(
        [this](const TPageItem& page) { Current_Step().document.Store_Page(page); });
}

void TUndoHistory::End()
{
    if (--d_depth > 0)
        return;
    d_data->Set_Recorder(nullptr);
    if (std::exchange(d_has_stale_rows, false))
        d_rows = d_source.rows();
    TDocumentStep& document = Current_Step().document;
    document.Close(*d_data);
    const bool is_no_op = document.Is_No_Op(*d_data, Rows_And_Look());
    // A new step that has changed nothing yet can still be continued. Giving the chosen border to
    // thousands of labels that have it already would otherwise read the selection for each.
    if (d_new && is_no_op)
        return;
    if (is_no_op) {
        Drop_Newest_Step();
        --d_done_count;
        d_may_continue = false;
    } else {
        if (d_new)
            Push_New_Step();
        Measure(&Current_Step());
    }
    emit Step_Recorded();
    emit Names_Changed();
}

void TUndoHistory::Push_New_Step()
{
    d_new->after = Shown();
    while (Can_Redo())
        Drop_Newest_Step();
    d_steps.push_back(std::move(*d_new));
    ++d_done_count;
    d_new.reset();
    d_may_continue = true;
}

void TUndoHistory::Drop_Newest_Step()
{
    d_bytes -= d_steps.back().bytes;
    d_steps.pop_back();
}

/// Updates the size of a step that was recorded, continued, undone or redone. If the budget is
/// exceeded, drops the oldest steps, but never those that were undone or the last one that is done.
void TUndoHistory::Measure(TStep* step)
{
    int selected = 0;
    for (const TShownState* const shown : {&step->before, &step->after})
        selected += shown->pages.size() + shown->labels.size();
    d_bytes -= step->bytes;
    step->bytes = step->document.Bytes() + selected * qint64{sizeof(int)};
    d_bytes += step->bytes;
    while (d_bytes > d_budget && d_steps.size() > Minimum_Steps && d_done_count > 1) {
        d_bytes -= d_steps.front().bytes;
        d_steps.pop_front();
        --d_done_count;
    }
}

void TUndoHistory::Finish_Step()
{
    Record_Page_List();
    if (d_depth > 0)
        return;
    d_new.reset();
    d_may_continue = false;
}

void TUndoHistory::Clear()
{
    assert(d_depth == 0);
    d_new.reset();
    d_may_continue = false;
    d_steps.clear();
    d_bytes = 0;
    d_done_count = 0;
    d_shown = {};
    d_rows.clear();
    d_has_stale_rows = true;
    emit Names_Changed();
}

QString TUndoHistory::Undo_Name() const
{
    return Can_Undo() ? Name(d_steps[d_done_count - 1]) : QString();
}

QString TUndoHistory::Redo_Name() const
{
    return Can_Redo() ? Name(d_steps[d_done_count]) : QString();
}

std::optional<TStepOutcome> TUndoHistory::Undo()
{
    assert(d_depth == 0);
    Finish_Step();
    if (!Can_Undo())
        return std::nullopt;
    TStep& step = d_steps[--d_done_count];
    TStepOutcome outcome = Swap(&step, step.before);
    outcome.message = tr("Undone: %1").arg(Name(step));
    return outcome;
}

std::optional<TStepOutcome> TUndoHistory::Redo()
{
    assert(d_depth == 0);
    Finish_Step();
    if (!Can_Redo())
        return std::nullopt;
    TStep& step = d_steps[d_done_count++];
    TStepOutcome outcome = Swap(&step, step.after);
    outcome.message = tr("Redone: %1").arg(Name(step));
    return outcome;
}

TStepOutcome TUndoHistory::Swap(TStep* step, const TShownState& shown)
{
    TStepOutcome outcome;
    outcome.shown = shown;
    outcome.marks_document = StepKind::Marks_Document(step->kind);
    outcome.sets_values =
        step->before.next_value != step->after.next_value ||
        step->before.value_without_selection != step->after.value_without_selection;
    if (step->kind != TStepKind::Move_Pages)
        outcome.pages = step->document.Touched_Pages(d_rows);
    outcome.rows_and_look = Rows_And_Look();
    step->document.Swap(d_data, &outcome.rows_and_look);
    d_rows = outcome.rows_and_look.rows;
    Measure(step);
    emit Names_Changed();
    return outcome;
}

/// The open step, or the last one, which may be continued.
TUndoHistory::TStep& TUndoHistory::Current_Step()
{
    return d_new ? *d_new : d_steps[d_done_count - 1];
}

TRowsAndLook TUndoHistory::Rows_And_Look() const
{
    return {d_rows, d_source.look()};
}

/// What is shown. Steps share lists that did not change in between: ten thousand selected labels
/// cost nothing in a step that does not change the selection.
TShownState TUndoHistory::Shown()
{
    TShownState shown = d_source.shown();
    if (shown.pages == d_shown.pages)
        shown.pages = d_shown.pages;
    if (shown.labels == d_shown.labels)
        shown.labels = d_shown.labels;
    d_shown = shown;
    return shown;
}
