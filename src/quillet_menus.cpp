// The context menus of the page list and the item list. Undo and Redo come first in both; see
// Start_History.

#include "src/quillet.h"

#include "src/labelwidget.h"
#include "src/model/labelorder.h"
#include "src/model/pageturn.h"
#include "src/pagewidget.h"
#include "src/undo/undohistory.h"

#include <QAction>

namespace {

template <typename TCommand>
QAction* Add_Action(QWidget* list, const QString& text, const TCommand& command)
{
    auto* const action = new QAction(text, list);
    QObject::connect(action, &QAction::triggered, list, command);
    list->addAction(action);
    return action;
}

void Add_Separator(QWidget* list)
{
    auto* const separator = new QAction(list);
    separator->setSeparator(true);
    list->addAction(separator);
}

} // namespace

void TQuillet::Add_Page_List_Menu()
{
    QWidget* const list = d_page_widget;
    Add_Action(list, tr("Insert Images Here ..."), [this] { Insert_Images_Here(); });
    Add_Action(list, tr("Insert pages from PDF ..."), [this] { Insert_Pdf_Pages(); });
    Add_Separator(list);
    Add_Action(list, tr("Rotate left"), [this] { Turn_Pages(PageTurn::TDirection::Left); });
    Add_Action(list, tr("Rotate right"), [this] { Turn_Pages(PageTurn::TDirection::Right); });
    Add_Action(list, tr("Duplicate"), [this] { Duplicate_Pages(); });
    Add_Separator(list);
    d_action_export_web_page =
        Add_Action(list, tr("Export web page ..."), [this] { Export_Web_Page(); });
    d_action_export_web_page->setEnabled(false);
    list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void TQuillet::Add_Item_List_Menu()
{
    QWidget* const list = d_label_widget;
    const auto add_order = [this, list](const QString& text, auto order) {
        Add_Action(list, text, [this, order] {
            if (const TPageItem* const page = d_data.Active_Page_Item())
                Renumber_In_Order(order(page->data_items, Label_Look().size));
        });
    };
    Add_Action(list, tr("Renumber in row order"),
               [this] { Renumber_In_Order(d_label_widget->Item_Ids()); });
    add_order(tr("Renumber in reading order"), LabelOrder::By_Lines);
    add_order(tr("Renumber by columns"), LabelOrder::By_Columns);
    Add_Separator(list);
    Add_Action(list, tr("Move onto the page"), [this] { Move_Onto_Page(); });
    list->setContextMenuPolicy(Qt::ActionsContextMenu);
}
