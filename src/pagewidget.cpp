#include "src/pagewidget.h"

#include "src/model/namedpage.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/panelparts.h"
#include "src/widgets/parentwidget.h"
#include "src/widgets/rowlist.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>

namespace {

const QSize initial_size(280, 250); // pixels
// Two rows. The list's own minimum would make the window too high for a small screen.
const int minimum_list_height = 48; // pixels
const int no_page = -1;

} // namespace

TPageWidget::TPageWidget(const QWidget* parent, Qt::WindowFlags flags)
    : QWidget(Parent_Widget(parent), flags)
{
    qRegisterMetaType<QList<int>>("QList<int>");
    resize(initial_size);
    setWindowTitle(tr("Page List"));
    Create_Widgets();
    Arrange_Widgets();
    d_remove_button->setEnabled(false);
    d_name_editor->setEnabled(false);
    Connect_Widgets();
}

void TPageWidget::Create_Widgets()
{
    // The Tab key visits the widgets in the order of their creation.
    d_list = new TRowList(this);
    Accessibility::Describe(
        d_list, tr("Page List"),
        tr("The pages of the document; the selected one is shown. Delete removes the selected "
           "ones after confirmation; Alt with the up and down arrow keys moves them. Ctrl+Page Up "
           "and Ctrl+Page Down show the previous and the next page."));
    d_list->setMinimumHeight(minimum_list_height);
    d_name_editor = new QLineEdit(this);
    d_name_editor->setAlignment(Qt::AlignCenter);
    d_name_editor->setToolTip(tr("Page Item Name"));
    Accessibility::Describe(d_name_editor, tr("Page Item Name"),
                            tr("The name of the selected page."));
    d_add_button = PanelParts::New_Button(tr("+"), tr("Add Page"),
                                          tr("Adds an empty page at the end of the list."), this);
    d_remove_button = PanelParts::New_Button(
        tr("-"), tr("Remove Page"),
        tr("Removes the selected pages with all their labels after confirmation."), this);
}

void TPageWidget::Arrange_Widgets()
{
    auto* const tools = new QHBoxLayout;
    tools->addWidget(d_name_editor);
    tools->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    tools->addWidget(d_add_button);
    tools->addWidget(d_remove_button);

    auto* const panel = new QGridLayout(this);
    PanelParts::Set_Margins(panel);
    panel->addWidget(d_list, 0, 0);
    panel->addLayout(tools, 1, 0);
}

void TPageWidget::Connect_Widgets()
{
    connect(d_list, SIGNAL(Delete_Pressed()), d_remove_button, SLOT(click()));
    connect(d_list, SIGNAL(Selected_Rows_Changed()), this, SLOT(Page_Selection_Changed()));
    connect(d_add_button, SIGNAL(clicked()), this, SIGNAL(Add_Page()));
    connect(d_remove_button, SIGNAL(clicked()), this, SLOT(Remove_Page()));
    connect(d_name_editor, SIGNAL(textEdited(QString)), this, SLOT(Page_Name_Edited(QString)));
}

void TPageWidget::Add_Page(int page_id)
{
    Insert_Page(page_id, d_list->count());
}

void TPageWidget::Insert_Page(int page_id, int place)
{
    auto* const row = new QListWidgetItem(TNamedPage::Default_Name(page_id));
    row->setData(TRowList::Id_Role, page_id);
    d_list->insertItem(place, row);
}

void TPageWidget::Remove_Page(int page_id)
{
    d_list->Remove_Row(page_id);
}

void TPageWidget::Set_Active_Page(int page_id)
{
    if (QListWidgetItem* const row = d_list->Row(page_id))
        d_list->setCurrentItem(row, QItemSelectionModel::ClearAndSelect);
}

void TPageWidget::Set_Page_Name(int page_id, const QString& name)
{
    if (QListWidgetItem* const row = d_list->Row(page_id))
        row->setText(name);
}

QString TPageWidget::Page_Name(int page_id) const
{
    const QListWidgetItem* const row = d_list->Row(page_id);
    return row != nullptr ? row->text() : QString();
}

QList<int> TPageWidget::Page_Ids() const
{
    QList<int> page_ids;
    page_ids.reserve(d_list->count());
    for (int index = 0; index < d_list->count(); ++index)
        page_ids.append(d_list->item(index)->data(TRowList::Id_Role).toInt());
    return page_ids;
}

std::vector<int> TPageWidget::Selected_Pages() const
{
    return d_list->Selected_Ids();
}

void TPageWidget::Select_Pages(const std::vector<int>& page_ids)
{
    const QSignalBlocker blocker(this);
    d_list->Select_Rows(page_ids);
    // The list does not report that selected rows were removed.
    Page_Selection_Changed();
}

const QAbstractItemModel* TPageWidget::Rows() const
{
    return d_list->model();
}

void TPageWidget::Clear()
{
    d_list->clear();
}

void TPageWidget::Page_Selection_Changed()
{
    const QListWidgetItem* const row = d_list->Only_Selected_Row();
    d_remove_button->setEnabled(d_list->selectionModel()->hasSelection());
    d_name_editor->setEnabled(row != nullptr);
    d_name_editor->setText(row != nullptr ? row->text() : QString());
    Q_EMIT Selection_Changed(row != nullptr ? row->data(TRowList::Id_Role).toInt() : no_page);
}

void TPageWidget::Remove_Page()
{
    QList<int> page_ids;
    for (const int page_id : d_list->Selected_Ids())
        page_ids.append(page_id);
    Q_EMIT Remove_Pages(page_ids);
}

void TPageWidget::Page_Name_Edited(const QString& text)
{
    if (QListWidgetItem* const row = d_list->Only_Selected_Row())
        row->setText(text);
}
