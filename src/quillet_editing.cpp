// Labels: adding, removing, changing, selecting and renumbering them, from the item list and from
// the view.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/model/numbering.h"
#include "src/model/pageedge.h"
#include "src/pagewidget.h"
#include "src/reindexdialog.h"
#include "src/undo/undohistory.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <cstdlib>
#include <ctime>

void TQuillet::Add_Item()
{
    Add_Label(nullptr);
}

void TQuillet::Add_Item(const QPointF& position)
{
    Add_Label(&position);
}

/// @param point  centre of the label in page-image pixels; null to leave the label where the view
///               puts it.
void TQuillet::Add_Label(const QPointF* point)
{
    if (d_data.Active_Page() < 0 || !d_data.Page_Image_Valid())
        return;
    const TStepScope step = Record_Step(TStepKind::Add_Label);
    const int border = d_label_widget->Border_Type();
    const int value = d_label_widget->Take_Label_Index();
    if (const std::optional<int> id = Add_Label_To_View(value, border)) {
        // A label at a point starts at the origin; the view reports its position when it is moved.
        const QPointF position = point ? QPointF() : d_display_widget->Item_Position(*id);
        const TDataItem item{*id, value, QString(), border, position, false};
        d_label_widget->Set_Label_Index(TNumbering::After(value));
        d_data.Add_Item(item);
        d_label_widget->Add_Item(item);
        if (point)
            d_display_widget->Move_Item(*id, *point);
        d_new_label = id;
    }
    Mark_Changed();
}

/// Draws ids until the view accepts one. If only the last attempt succeeds, the label exists in the
/// view alone.
std::optional<int> TQuillet::Add_Label_To_View(int value, int border)
{
    constexpr int maximum_attempts = 100;
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    for (int attempt = 1; attempt <= maximum_attempts; ++attempt) {
        const int id = std::rand();
        if (d_display_widget->Add_Item(id, value, QString(), border) && attempt < maximum_attempts)
            return id;
    }
    return std::nullopt;
}

void TQuillet::Remove_Item()
{
    const std::vector<int> ids = d_label_widget->Selected_Items();
    if (ids.empty() || !Confirm(tr("Remove Labels"), tr("Labels will be deleted.  Are you sure?")))
        return;
    Remove_Labels(TStepKind::Remove_Labels, ids);
}

void TQuillet::Remove_Labels(TStepKind kind, const std::vector<int>& ids)
{
    const TStepScope step = Record_Step(kind, 0, static_cast<int>(ids.size()));
    d_data.Remove_Items(ids);
    // Removing a selected row changes the selection, and each change costs a pass over all selected
    // labels. Selecting only the last one first avoids that cost and gives the same result.
    if (ids.size() > 1)
        d_label_widget->Set_Selection(ids.back());
    for (const int id : ids) {
        d_display_widget->Remove_Item(id);
        d_label_widget->Remove_Item(id);
    }
    Mark_Changed();
}

void TQuillet::Change_Item_Value(int id, int value)
{
    const TStepScope step = Record_Step(TStepKind::Change_Value, id);
    d_data.Change_Item_Value(id, value);
    d_display_widget->Change_Item_Value(id, value);
    Mark_Changed();
}

void TQuillet::Change_Item_Text(int id, const QString& text)
{
    const TStepScope step = Record_Step(TStepKind::Change_Text, id);
    d_data.Change_Item_Text(id, text);
    d_display_widget->Change_Item_Text(id, text);
    Mark_Changed();
}

void TQuillet::Change_Item_Border(int id, int border)
{
    const TStepScope step = Record_Step(TStepKind::Change_Border, border);
    d_data.Change_Item_Border(id, border);
    d_display_widget->Change_Item_Border(id, border);
    Mark_Changed();
}

void TQuillet::Item_Selection_Changed()
{
    Finish_Step();
    // The list clears its selection before it selects the clicked label, and reports both.
    // Display_Item_Clicked updates view and model once, after that.
    if (d_display_click)
        return;
    const std::vector<int> ids = d_label_widget->Selected_Items();
    d_display_widget->Set_Selected_Items(ids, true);
    Select_In_Data(ids);
}

void TQuillet::Display_Item_Clicked(int id)
{
    d_display_click = true;
    d_label_widget->Set_Selection(id);
    d_display_click = false;
    // The view does not scroll: the clicked label is visible.
    d_display_widget->Set_Selected_Items(d_label_widget->Selected_Items(), false);
    Select_In_Data({id});
}

/// Selects only these labels. The view does not scroll, since the user points at it.
void TQuillet::Select_On_Page(const std::vector<int>& ids)
{
    {
        const QScopedValueRollback<bool> click(d_display_click, true);
        d_label_widget->Select_Items(ids);
    }
    d_display_widget->Set_Selected_Items(ids, false);
    Select_In_Data(ids);
}

/// Adds a label to the selection, or removes it.
void TQuillet::Toggle_On_Page(int id)
{
    std::vector<int> ids = d_label_widget->Selected_Items();
    const auto found = std::find(ids.cbegin(), ids.cend(), id);
    if (found == ids.cend())
        ids.push_back(id);
    else
        ids.erase(found);
    Select_On_Page(ids);
}

void TQuillet::Select_In_Data(const std::vector<int>& ids)
{
    d_new_label.reset();
    if (d_data.Active_Page() < 0)
        return;
    d_data.Clear_Selection();
    for (const int id : ids)
        d_data.Change_Item_Selection(id, true);
}

void TQuillet::Update_Item_Position(int id, const QPointF& position)
{
    if (d_data.Active_Page() < 0)
        return;
    // While it is filled, the view reports positions that the model already has.
    if (!d_filling_view) {
        const TStepScope step = Record_Step(TStepKind::Move_Label, id);
        d_data.Change_Item_Position(id, position);
    }
    Mark_Changed();
}

/// Moves those of the selected labels that are outside of the page to its edge.
void TQuillet::Move_Onto_Page()
{
    if (!d_data.Page_Image_Valid())
        return;
    const QSize page = d_data.Page_Content().size();
    std::vector<int> ids = d_label_widget->Selected_Items();
    const auto is_on_page = [&](int id) {
        return PageEdge::Distance_Outside(d_display_widget->Item_Position(id), page) == 0.0;
    };
    ids.erase(std::remove_if(ids.begin(), ids.end(), is_on_page), ids.end());
    if (ids.empty()) {
        Show_Status(tr("No selected label is outside the page"));
        return;
    }
    Finish_Step();
    const int label_size = Label_Look().size;
    {
        const TStepScope scope =
            Record_Step(TStepKind::Nudge_Labels, 0, static_cast<int>(ids.size()));
        for (const int id : ids)
            d_display_widget->Move_Item(
                id,
                PageEdge::Nearest_Inside(d_display_widget->Item_Position(id), page, label_size));
    }
    Finish_Step();
    d_display_widget->Update_Scene_Rect();
}

void TQuillet::Edit_Reindex()
{
    if (!d_reindex_dialog)
        d_reindex_dialog = new TReindexDialog(this, Qt::WindowFlags());
    Commit_Editors();
    Flush_Work();
    if (d_reindex_dialog->exec() != QDialog::Accepted)
        return;

    const int first_value = d_reindex_dialog->Initial_Value();
    const int option = d_reindex_dialog->Reindex_Option();
    const bool all_pages = option == TReindexDialog::All_Pages;
    const bool has_page = d_data.Active_Page() >= 0;
    if (!all_pages && !has_page)
        return;
    const TStepScope step = Record_Step(TStepKind::Renumber);
    const int next_value =
        all_pages
            ? Number_Pages(d_page_widget->Page_Ids(), first_value,
                           d_reindex_dialog->Increment_Over_Page_Method(), &d_data)
            : Renumber_Active_Page(first_value, option == TReindexDialog::Current_Page_Selected);
    Record_Change();
    if (!has_page)
        return;
    Refresh_Active_Page();
    d_label_widget->Set_Label_Index(next_value);
}

/// Numbers the labels of the active page. Returns the next value.
int TQuillet::Renumber_Active_Page(int first_value, bool selected_only)
{
    TNumbering numbering(first_value, TNumbering::Next_1X);
    d_data.Number_Items(d_data.Active_Page(), selected_only,
                        [&numbering] { return numbering.Take(); });
    return numbering.Next();
}

/// Gives the labels of the active page consecutive values, starting from their smallest one.
/// @param ids  of all its labels, in the order of their new values.
void TQuillet::Renumber_In_Order(const std::vector<int>& ids)
{
    if (ids.empty())
        return;
    Commit_Editors();
    const std::vector<TDataItem>& items = d_data.Active_Page_Item()->data_items;
    const auto by_value = [](const TDataItem& left, const TDataItem& right) {
        return left.value < right.value;
    };
    const auto [least, largest] = std::minmax_element(items.cbegin(), items.cend(), by_value);
    const bool is_next = d_label_widget->Next_Value() == TNumbering::After(largest->value);
    const TShownState shown = Shown_State();
    const TStepScope step = Record_Step(TStepKind::Renumber);
    TNumbering numbering(least->value, TNumbering::Next_1X);
    for (const int id : ids) {
        const int value = numbering.Take();
        d_data.Change_Item_Value(id, value);
        d_display_widget->Change_Item_Value(id, value);
        d_label_widget->Show_Value(id, value);
    }
    // If the next value followed the page's largest one, let it follow the new largest one.
    if (is_next)
        d_label_widget->Set_Values(numbering.Next(), numbering.Next());
    Show_Selection(shown, d_page_widget->Selected_Pages());
    Mark_Changed();
}
