// Gestures familiar from other programs: the wheel zooms, files can be dropped, arrow keys
// move the selected labels, and Ctrl and Shift select several on the page.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"
#include "src/widgets/filedrop.h"
#include "src/widgets/focusframe.h"
#include "src/widgets/nudgekeys.h"
#include "src/widgets/rowlist.h"
#include "src/widgets/selectionmouse.h"
#include "src/widgets/thumbnailtip.h"
#include "src/widgets/wheelzoom.h"

#include <algorithm>

void TQuillet::Add_Gestures()
{
    new TFocusFrame(d_display_widget);
    const auto lists = findChildren<TRowList*>();
    for (TRowList* const list : lists)
        new TFocusFrame(list);
    new TWheelZoom(d_display_widget, d_zoom_slider);
    new TNudgeKeys(d_display_widget, [this](const QPointF& distance) { Nudge_Labels(distance); });
    new TFileDrop(this, Can_Open, [this](const QStringList& paths) { Drop_Files(paths); });
    new TThumbnailTip(d_page_widget->findChild<TRowList*>(), [this](int page_id) {
        return d_data.Page_Index(page_id) < 0 ? TPageImage() : d_data.Page(page_id).image;
    });
    Add_Selection_Mouse();
    Add_Keys();
    Add_Find_Bar();
    Add_Page_List_Menu();
    Add_Item_List_Menu();
}

/// Lets Ctrl, Shift and the left button select labels on the page and move them together.
void TQuillet::Add_Selection_Mouse()
{
    TSelectionMouse::TActions actions;
    actions.label_at = [this](const QPointF& point) { return d_display_widget->Item_At(point); };
    actions.toggle = [this](int id) { Toggle_On_Page(id); };
    actions.begin_move = [this](int id) {
        Finish_Step();
        const std::vector<int> selected = d_label_widget->Selected_Items();
        if (std::find(selected.cbegin(), selected.cend(), id) == selected.cend())
            Toggle_On_Page(id);
    };
    actions.move = [this](const QPointF& distance) { Nudge_Labels(distance); };
    actions.end_move = [this] { Finish_Step(); };
    actions.select = [this](const QRectF& area, bool add) {
        std::vector<int> ids = add ? d_label_widget->Selected_Items() : std::vector<int>();
        const std::vector<int> inside = d_display_widget->Items_In(area);
        ids.insert(ids.end(), inside.cbegin(), inside.cend());
        Select_On_Page(ids);
    };
    new TSelectionMouse(d_display_widget, actions);
}

/// Moves the selected labels.
/// @param distance  in page-image pixels.
void TQuillet::Nudge_Labels(const QPointF& distance)
{
    const std::vector<int> ids = d_label_widget->Selected_Items();
    const TStepScope scope = Record_Step(TStepKind::Nudge_Labels, 0, static_cast<int>(ids.size()));
    // The view reports the new positions, as after a drag.
    for (const int id : ids)
        d_display_widget->Move_Item(id, d_display_widget->Item_Position(id) + distance);
}
