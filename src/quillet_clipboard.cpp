// Labels and the clipboard: copy, cut, paste and duplicate.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/format/csv.h"
#include "src/format/labelclipboard.h"
#include "src/labelwidget.h"
#include "src/model/pageedge.h"
#include "src/model/pasteoffset.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QRandomGenerator>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <limits>

namespace {

/// @param outside  how many of them are outside the page.
QString Labels_Text(std::size_t count, std::size_t outside = 0)
{
    if (count == 1)
        return outside == 0 ? TQuillet::tr("1 label") : TQuillet::tr("1 label outside the page");
    const QString text = TQuillet::tr("%1 labels").arg(count);
    return outside == 0 ? text
                        : TQuillet::tr("%1; %2 of them outside the page").arg(text).arg(outside);
}

} // namespace

/// Copies the selected labels to the clipboard. Returns their number.
std::size_t TQuillet::Copy_To_Clipboard()
{
    const std::vector<TDataItem> items = Selected_Labels();
    if (!items.empty()) {
        const int page = d_page_widget->Page_Ids().indexOf(d_data.Active_Page()) + 1;
        QGuiApplication::clipboard()->setMimeData(LabelClipboard::Copy(items, page).release());
    }
    return items.size();
}

void TQuillet::Copy_Labels()
{
    if (const std::size_t count = Copy_To_Clipboard())
        Show_Status(tr("Copied %1").arg(Labels_Text(count)));
}

void TQuillet::Cut_Labels()
{
    const std::size_t count = Copy_To_Clipboard();
    if (count == 0)
        return;
    Remove_Labels(TStepKind::Cut_Labels, d_label_widget->Selected_Items());
    Show_Status(tr("Cut %1").arg(Labels_Text(count)));
}

void TQuillet::Paste_Labels()
{
    if (!d_data.Page_Image_Valid()) {
        Show_Status(tr("There is no page to paste labels on"));
        return;
    }
    Commit_Editors();
    const QMimeData empty;
    const QMimeData* const copied = QGuiApplication::clipboard()->mimeData();
    try {
        std::vector<TDataItem> items = LabelClipboard::Paste(copied ? *copied : empty);
        const std::size_t outside = Insert_Labels(TStepKind::Paste_Labels, &items);
        Show_Status(tr("Pasted %1").arg(Labels_Text(items.size(), outside)));
    } catch (const TCsvException& exception) {
        Show_Status(tr("The clipboard contains no labels: %1").arg(exception.Message()));
    }
}

void TQuillet::Duplicate_Labels()
{
    std::vector<TDataItem> items = Selected_Labels();
    if (items.empty())
        return;
    const std::size_t outside = Insert_Labels(TStepKind::Duplicate_Labels, &items);
    Show_Status(tr("Duplicated %1").arg(Labels_Text(items.size(), outside)));
}

/// The selected labels in the order of the document, with their texts as typed. Shows a message if
/// there are none.
std::vector<TDataItem> TQuillet::Selected_Labels()
{
    Commit_Editors();
    const std::vector<int> ids = d_label_widget->Selected_Items();
    std::vector<TDataItem> selected;
    if (ids.empty()) {
        Show_Status(tr("No label is selected"));
    } else {
        const QSet<int> wanted(ids.cbegin(), ids.cend());
        const std::vector<TDataItem>& items = d_data.Active_Page_Item()->data_items;
        std::copy_if(items.cbegin(), items.cend(), std::back_inserter(selected),
                     [&wanted](const TDataItem& item) { return wanted.contains(item.id); });
    }
    return selected;
}

/// Adds labels to the active page as one step, and selects them. They get new ids and the next
/// values, and move together if one of them would hide another label. Returns how many of them are
/// outside the page.
std::size_t TQuillet::Insert_Labels(TStepKind kind, std::vector<TDataItem>* items)
{
    const TStepScope step = Record_Step(kind, 0, static_cast<int>(items->size()));
    const QSize page = d_data.Page_Content().size();
    const QPointF offset =
        Paste_Offset(*items, d_data.Active_Page_Item()->data_items, Label_Look().size);
    std::size_t outside = 0;
    std::vector<int> ids;
    for (TDataItem& item : *items) {
        item.id = Free_Id();
        item.value = d_label_widget->Take_Label_Index();
        item.position += offset;
        item.selected = false;
        ids.push_back(item.id);
        d_data.Add_Item(item);
        const QScopedValueRollback<bool> filling(d_filling_view, true);
        d_display_widget->Add_Item(item);
        d_label_widget->Add_Item(item);
        outside += PageEdge::Distance_Outside(item.position, page) > 0.0 ? 1 : 0;
    }
    d_display_widget->Update_Scene_Rect();
    d_label_widget->Select_Items(ids);
    Mark_Changed();
    return outside;
}

/// A random id that no label of the active page has.
int TQuillet::Free_Id() const
{
    for (;;) {
        const int id = QRandomGenerator::global()->bounded(std::numeric_limits<int>::max());
        if (!d_display_widget->Item_Exists(id))
            return id;
    }
}
