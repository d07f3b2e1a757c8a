// Undo and redo: where steps begin and end, what the history is told of what the model does not
// know, and how the document is shown after a step was taken back.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/undokeys.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSet>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QVector>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

/// Ids of pages in ascending order.
std::vector<int> Ids_Of(const std::vector<TNamedPage>& rows)
{
    std::vector<int> ids;
    ids.reserve(rows.size());
    for (const TNamedPage& row : rows)
        ids.push_back(row.page_id);
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::vector<int> Ids_Of(const TData& data)
{
    std::vector<int> ids;
    ids.reserve(static_cast<std::size_t>(data.Page_Count()));
    for (int place = 0; place < data.Page_Count(); ++place)
        ids.push_back(data.Page_Id(place));
    std::sort(ids.begin(), ids.end());
    return ids;
}

QVector<int> List_Of(const std::vector<int>& ids)
{
    return QVector<int>(ids.cbegin(), ids.cend());
}

bool Is_Same_Page(const TNamedPage& left, const TNamedPage& right)
{
    return left.page_id == right.page_id;
}

} // namespace

TQuillet::TStep::TStep(TQuillet* window, TStepKind kind, int subject, int count)
    : d_window(window->d_history && !window->d_filling_view ? window : nullptr)
{
    if (d_window)
        d_window->Begin_Step(kind, subject, count);
}

TQuillet::TStep::~TStep()
{
    if (d_window)
        d_window->End_Step();
}

void TQuillet::Start_History()
{
    d_history = std::make_unique<TUndoHistory>(&d_data, [this] { return Shown_State(); });
    d_undo_keys = std::make_unique<TUndoKeys>(
        this, [this] { Undo(); }, [this] { Redo(); }, [this] { Finish_Step(); });
    Watch_Page_List();
}

/// Page names and their order are changed by the user in the page list, which reports neither.
void TQuillet::Watch_Page_List()
{
    const auto note = [this] {
        if (d_has_new_rows)
            return;
        d_has_new_rows = true;
        // Not now: a row that is being dragged is out of the list for a moment.
        QMetaObject::invokeMethod(
            this, [this] { Note_Page_List(); }, Qt::QueuedConnection);
    };
    const QAbstractItemModel* const rows = d_page_widget->Rows();
    // Not for the window: its widgets are still there, and let go of their rows, when it is not.
    const QObject* const keys = d_undo_keys.get();
    connect(rows, &QAbstractItemModel::dataChanged, keys, note);
    connect(rows, &QAbstractItemModel::rowsInserted, keys, note);
    connect(rows, &QAbstractItemModel::rowsRemoved, keys, note);
    connect(rows, &QAbstractItemModel::rowsMoved, keys, note);
    connect(rows, &QAbstractItemModel::modelReset, keys, note);
}

void TQuillet::Begin_Step(TStepKind kind, int subject, int count)
{
    if (d_step_depth == 0) {
        Note_Page_List();
        d_history->Begin(kind, subject, count, Label_Look());
    }
    ++d_step_depth;
}

void TQuillet::End_Step()
{
    --d_step_depth;
    if (d_step_depth > 0)
        return;
    if (d_has_new_rows) {
        std::vector<TNamedPage> rows = Named_Pages();
        d_history->Note_Rows(d_page_rows, rows);
        d_page_rows.swap(rows);
        d_has_new_rows = false;
    }
    if (d_history->End(Label_Look()))
        d_undo_keys->Note_Step();
}

/// What follows is a step of its own, even if it is like the one before.
void TQuillet::Finish_Step()
{
    if (!d_history || d_step_depth > 0)
        return;
    Note_Page_List();
    d_history->Break();
}

/// Makes a step of what the user did in the page list by itself: a name, or another order.
void TQuillet::Note_Page_List()
{
    if (!d_history || d_step_depth > 0 || !d_has_new_rows)
        return;
    const std::vector<TNamedPage> rows = Named_Pages();
    // A page that is missing comes back with the end of a drag.
    if (Ids_Of(rows) != Ids_Of(d_data))
        return;
    d_has_new_rows = false;
    const std::vector<TNamedPage> before = std::exchange(d_page_rows, rows);
    if (before == rows || Ids_Of(before) != Ids_Of(rows))
        return;

    const bool is_in_order =
        std::equal(before.cbegin(), before.cend(), rows.cbegin(), Is_Same_Page);
    if (is_in_order) {
        const int page_id = TRowsChange(before, rows).Touched_Pages().front();
        d_history->Begin(TStepKind::Rename_Page, page_id, 1, Label_Look());
    } else {
        const std::size_t count = d_page_widget->Selected_Pages().size();
        d_history->Begin(TStepKind::Move_Pages, 0, static_cast<int>(count), Label_Look());
    }
    d_history->Note_Rows(before, rows);
    if (d_history->End(Label_Look()))
        d_undo_keys->Note_Step();
    Record_Change();
}

/// Another document takes the place of this one.
void TQuillet::Forget_Steps()
{
    if (!d_history)
        return;
    d_history->Clear();
    d_page_rows.clear();
    d_has_new_rows = true;
}

TLabelLook TQuillet::Label_Look() const
{
    return {d_display_widget->Label_Size().width(), d_display_widget->Label_Color()};
}

TShownState TQuillet::Shown_State() const
{
    return {List_Of(d_page_widget->Selected_Pages()), List_Of(d_label_widget->Selected_Items()),
            d_label_widget->Next_Value(), d_label_widget->Idle_Value()};
}

void TQuillet::Undo()
{
    Note_Page_List();
    if (const auto outcome = d_history->Undo({d_page_rows, Label_Look()}))
        Show_Outcome(*outcome);
}

void TQuillet::Redo()
{
    Note_Page_List();
    if (const auto outcome = d_history->Redo({d_page_rows, Label_Look()}))
        Show_Outcome(*outcome);
}

/// Brings page list, view and panels into line with a document that a step has left.
void TQuillet::Show_Outcome(const TStepOutcome& outcome)
{
    // An editor is disabled for a moment while what it belongs to is not there.
    QWidget* const focus = QApplication::focusWidget();
    Show_Look(outcome.facts.look);
    const std::vector<int> selected = d_page_widget->Selected_Pages();
    Show_Page_Rows(outcome.facts.page_rows);
    const std::vector<int> pages = Pages_To_Show(outcome);
    d_page_widget->Select_Pages(pages);

    const QPoint scrolled(d_display_widget->horizontalScrollBar()->value(),
                          d_display_widget->verticalScrollBar()->value());
    Page_Selection_Changed(pages.size() == 1 ? pages.front() : -1);
    if (pages == selected) {
        d_display_widget->horizontalScrollBar()->setValue(scrolled.x());
        d_display_widget->verticalScrollBar()->setValue(scrolled.y());
    }
    if (outcome.sets_values)
        d_label_widget->Set_Values(outcome.shown.next_value, outcome.shown.idle_value);
    Show_Selection(outcome.shown, pages);
    if (focus && focus->isEnabled())
        focus->setFocus();

    Update_Document_Actions();
    Mark_Changed();
    constexpr int message_milliseconds = 5000;
    statusBar()->showMessage(outcome.message, message_milliseconds);
}

void TQuillet::Show_Look(const TLabelLook& look)
{
    if (look == Label_Look())
        return;
    const QSignalBlocker blocker(d_settings_widget);
    d_settings_widget->Set_Label_Size(look.size);
    d_settings_widget->Set_Label_Color(look.color);
    Show_Label_Size(look.size);
    d_display_widget->Set_Label_Color(look.color);
}

void TQuillet::Show_Page_Rows(const std::vector<TNamedPage>& rows)
{
    if (rows == d_page_rows)
        return;
    const QSignalBlocker blocker(d_page_widget);
    d_page_widget->Clear();
    for (const TNamedPage& row : rows) {
        d_page_widget->Add_Page(row.page_id);
        d_page_widget->Set_Page_Name(row.page_id, row.name);
    }
    d_page_rows = rows;
    d_has_new_rows = false;
}

/// The pages to select: those that were, unless that would hide the page that the step touched.
std::vector<int> TQuillet::Pages_To_Show(const TStepOutcome& outcome) const
{
    std::vector<int> selected(outcome.shown.pages.cbegin(), outcome.shown.pages.cend());
    const QSet<int> touched(outcome.pages.cbegin(), outcome.pages.cend());
    const auto is_touched = [&touched](const TNamedPage& row) {
        return touched.contains(row.page_id);
    };
    const auto first = std::find_if(d_page_rows.cbegin(), d_page_rows.cend(), is_touched);
    const bool shows_touched = selected.size() == 1 && touched.contains(selected.front());
    if (shows_touched || first == d_page_rows.cend())
        return selected;
    return {first->page_id};
}

/// Selects the labels that were selected on these pages. The view stays where it is if one of them
/// is in sight.
void TQuillet::Show_Selection(const TShownState& shown, const std::vector<int>& pages)
{
    std::vector<int> labels;
    if (shown.pages == List_Of(pages))
        labels.assign(shown.labels.cbegin(), shown.labels.cend());
    const QRectF sight =
        d_display_widget->mapToScene(d_display_widget->viewport()->rect()).boundingRect();
    const bool is_in_sight = std::any_of(labels.cbegin(), labels.cend(), [&](int id) {
        return sight.contains(d_display_widget->Item_Position(id));
    });
    const QScopedValueRollback<bool> stays(d_display_click, is_in_sight);
    d_label_widget->Select_Items(labels);
    if (labels.empty())
        d_label_widget->Set_Label_Index(d_label_widget->Next_Value());
}
