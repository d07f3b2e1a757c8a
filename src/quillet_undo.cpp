// Undo and redo: what the history reads from the window, and how the window displays the document
// after a step was undone or redone.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/undoactions.h"
#include "src/widgets/undokeys.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QVector>

#include <algorithm>

namespace {

template <typename TValue>
QVector<TValue> Vector_Of(const std::vector<TValue>& values)
{
    return QVector<TValue>(values.cbegin(), values.cend());
}

} // namespace

void TQuillet::Start_History()
{
    d_history = std::make_unique<TUndoHistory>(
        &d_data,
        TUndoHistory::TSource{[this] { return Vector_Of(Named_Pages()); },
                              [this] { return Label_Look(); }, [this] { return Shown_State(); }});
    const auto undo = [this] { Show_Outcome(d_history->Undo()); };
    const auto redo = [this] { Show_Outcome(d_history->Redo()); };
    d_undo_keys = std::make_unique<TUndoKeys>(this, undo, redo, [this] { Finish_Step(); });
    auto* const actions = new TUndoActions(this, undo, redo);
    actions->Add_To(d_label_widget);
    actions->Add_To(d_page_widget);
    d_history->Watch_Page_List(*d_page_widget->Rows());
    connect(d_history.get(), &TUndoHistory::Step_Recorded, d_undo_keys.get(),
            &TUndoKeys::Step_Recorded);
    connect(d_history.get(), &TUndoHistory::Names_Changed, actions, [this, actions] {
        actions->Set_Names(d_history->Undo_Name(), d_history->Redo_Name());
    });
    connect(d_history.get(), &TUndoHistory::Page_List_Changed, this, &TQuillet::Record_Change);
}

/// Records a step for as long as the returned scope lives. While the view is filled from the
/// document or a file, nothing is recorded.
TStepScope TQuillet::Record_Step(TStepKind kind, int subject, int count)
{
    return TStepScope(d_filling_view ? nullptr : d_history.get(), kind, subject, count);
}

void TQuillet::Finish_Step()
{
    if (d_history)
        d_history->Finish_Step();
}

TLabelLook TQuillet::Label_Look() const
{
    return {d_display_widget->Label_Size().width(), d_display_widget->Label_Color()};
}

TShownState TQuillet::Shown_State() const
{
    return {Vector_Of(d_page_widget->Selected_Pages()), Vector_Of(d_label_widget->Selected_Items()),
            d_label_widget->Next_Value(), d_label_widget->Value_Without_Selection()};
}

/// Displays the document after undo or redo.
void TQuillet::Show_Outcome(const std::optional<TStepOutcome>& outcome)
{
    if (!outcome)
        return;
    // Disabling an editor takes the focus from it.
    QWidget* const focus = QApplication::focusWidget();
    Show_Look(outcome->rows_and_look.look);
    const std::vector<int> selected = d_page_widget->Selected_Pages();
    Show_Page_Rows({outcome->rows_and_look.rows.cbegin(), outcome->rows_and_look.rows.cend()});
    const std::vector<int> pages = Pages_To_Show(*outcome);
    d_page_widget->Select_Pages(pages);

    const QPoint scrolled(d_display_widget->horizontalScrollBar()->value(),
                          d_display_widget->verticalScrollBar()->value());
    Page_Selection_Changed(pages.size() == 1 ? pages.front() : -1);
    if (pages == selected) {
        d_display_widget->horizontalScrollBar()->setValue(scrolled.x());
        d_display_widget->verticalScrollBar()->setValue(scrolled.y());
    }
    if (outcome->sets_values)
        d_label_widget->Set_Values(outcome->shown.next_value,
                                   outcome->shown.value_without_selection);
    Show_Selection(outcome->shown, pages);
    if (focus && focus->isEnabled())
        focus->setFocus();

    Update_Document_Actions();
    if (outcome->marks_document)
        Mark_Changed();
    else if (d_data.Page_Count() > 0)
        Record_Change();
    Encode_Images();
    Show_Status(outcome->message);
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
    if (rows == Named_Pages())
        return;
    const QSignalBlocker blocker(d_page_widget);
    d_page_widget->Clear();
    for (const TNamedPage& row : rows) {
        d_page_widget->Add_Page(row.page_id);
        d_page_widget->Set_Page_Name(row.page_id, row.name);
    }
}

/// The pages to select: those that were selected, unless that would hide the page that the step
/// touched.
std::vector<int> TQuillet::Pages_To_Show(const TStepOutcome& outcome) const
{
    const auto is_touched = [&outcome](int page_id) {
        return std::binary_search(outcome.pages.cbegin(), outcome.pages.cend(), page_id);
    };
    std::vector<int> selected(outcome.shown.pages.cbegin(), outcome.shown.pages.cend());
    if (selected.size() == 1 && is_touched(selected.front()))
        return selected;
    for (const TNamedPage& row : outcome.rows_and_look.rows) {
        if (is_touched(row.page_id))
            return {row.page_id};
    }
    return selected;
}

/// Selects the labels that were selected on these pages. The view does not scroll if one of them is
/// visible already.
void TQuillet::Show_Selection(const TShownState& shown, const std::vector<int>& pages)
{
    std::vector<int> labels;
    if (shown.pages == Vector_Of(pages))
        labels.assign(shown.labels.cbegin(), shown.labels.cend());
    const QRectF visible =
        d_display_widget->mapToScene(d_display_widget->viewport()->rect()).boundingRect();
    const bool is_visible = std::any_of(labels.cbegin(), labels.cend(), [&](int id) {
        return visible.contains(d_display_widget->Item_Position(id));
    });
    const QScopedValueRollback<bool> tracking(d_display_widget->d_track_item,
                                              d_display_widget->d_track_item && !is_visible);
    d_label_widget->Select_Items(labels);
    if (labels.empty())
        d_label_widget->Set_Label_Index(d_label_widget->Next_Value());
}
