// Finding labels on all pages.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/model/labelsearch.h"
#include "src/pagewidget.h"
#include "src/widgets/findbar.h"

#include <QLayout>
#include <QScopedValueRollback>
#include <QShortcut>

void TQuillet::Add_Find_Bar()
{
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        centralWidget()->layout()->addWidget(d_find_bar);
        // The key also works in a floating dock, which is another window.
        activateWindow();
        d_find_bar->Open();
    });
    connect(d_find_bar, &TFindBar::Find_Next, this,
            [this](const QString& text) { Find_Label(text, LabelSearch::TDirection::Forward); });
    connect(d_find_bar, &TFindBar::Find_Previous, this,
            [this](const QString& text) { Find_Label(text, LabelSearch::TDirection::Backward); });
    connect(d_find_bar, &TFindBar::Closed, this, [this] { d_display_widget->setFocus(); });
}

/// Shows the next label with this number or text. Starts from the selected label, or from the first
/// one of the page.
void TQuillet::Find_Label(const QString& text, LabelSearch::TDirection direction)
{
    std::vector<const TPageItem*> pages;
    const QList<int> page_ids = d_page_widget->Page_Ids();
    for (const int page_id : page_ids)
        pages.push_back(&d_data.Page(page_id));
    LabelSearch::TStart start{d_data.Active_Page(), std::nullopt};
    const std::vector<int> selected = d_label_widget->Selected_Items();
    if (!selected.empty())
        start.item_id = selected.back();
    const std::optional<LabelSearch::TPlace> found =
        LabelSearch::Find(pages, text, start, direction);
    if (found)
        Show_Label(found->page_id, found->item_id);
    else
        Show_Status(tr("Not found"));
}

/// Shows a page and selects one of its labels. Scrolls to it.
void TQuillet::Show_Label(int page_id, int item_id)
{
    if (page_id != d_data.Active_Page())
        d_page_widget->Set_Active_Page(page_id);
    const QScopedValueRollback<bool> tracking(d_display_widget->d_track_item, true);
    d_label_widget->Set_Selection(item_id);
}
