#include "src/labelwidget.h"

#include "src/model/itemformat.h"
#include "src/model/numbering.h"
#include "src/widgets/accessibility.h"
#include "src/widgets/panelparts.h"
#include "src/widgets/parentwidget.h"
#include "src/widgets/rowlist.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>

namespace {

/// Roles of the data in a row besides its id.
enum Roles {
    Value_Role = TRowList::Id_Role + 1,
    Text_Role,
    Border_Role,
};

const int first_value = 1;
const int longest_input = 32; // characters

struct TBorder
{
    const char* name;
    const char* icon;
    int code;
};

/// The borders in the order of the combo box. Unknown codes get the icon of the first one.
const std::array<TBorder, 5> borders = {{
    {QT_TRANSLATE_NOOP("TLabelWidget", "No Border"), ":/gui/outline_none.png", No_Border},
    {QT_TRANSLATE_NOOP("TLabelWidget", "Ellipse"), ":/gui/outline_ellipse.png", Ellipse_Border},
    {QT_TRANSLATE_NOOP("TLabelWidget", "Square"), ":/gui/outline_square.png", Square_Border},
    {QT_TRANSLATE_NOOP("TLabelWidget", "Triangle"), ":/gui/outline_triangle.png", Triangle_Border},
    {QT_TRANSLATE_NOOP("TLabelWidget", "Diamond"), ":/gui/outline_diamond.png", Diamond_Border},
}};

QLineEdit* New_Editor(const QString& tool_tip, QWidget* parent)
{
    auto* const editor = new QLineEdit(parent);
    editor->setMaxLength(longest_input);
    editor->setAlignment(Qt::AlignCenter);
    editor->setToolTip(tool_tip);
    return editor;
}

} // namespace

TLabelWidget::TLabelWidget(const QWidget* parent, Qt::WindowFlags flags)
    : QWidget(Parent_Widget(parent), flags)
    , d_display_format(QString::fromLatin1(ItemFormat::Default_Format))
    , d_label_index(first_value)
    , d_next_value(first_value)
{
    Create_Widgets();
    Arrange_Widgets();
    Set_Border_Type(Ellipse_Border);
    d_remove_button->setEnabled(false);
    d_value_editor->setText(QString::number(d_label_index));
    Connect_Widgets();
}

void TLabelWidget::Create_Widgets()
{
    // The Tab key visits the widgets in the order of their creation.
    d_list = new TRowList(this);
    Accessibility::Describe(
        d_list, tr("Item List"),
        tr("The labels of the page. Delete removes the selected ones after confirmation; Alt with "
           "the up and down arrow keys moves them in the list. Ctrl with C, X, V and D copies, "
           "cuts, "
           "pastes and duplicates labels."));
    d_add_button = PanelParts::New_Button(
        tr("+"), tr("Add Item"), tr("Adds a label in the corner of the visible part of the page."),
        this);
    d_remove_button = PanelParts::New_Button(
        tr("-"), tr("Remove Item"), tr("Removes the selected labels after confirmation."), this);
    d_value_editor = New_Editor(tr("Item Value"), this);
    d_text_editor = New_Editor(tr("Item Text"), this);
    d_border_box = new QComboBox(this);
    d_border_box->setToolTip(tr("Border Type"));
    for (const TBorder& border : borders) {
        d_border_icons.emplace_back(QString::fromLatin1(border.icon));
        d_border_box->addItem(d_border_icons.back(), tr(border.name), border.code);
    }
}

void TLabelWidget::Arrange_Widgets()
{
    auto* const buttons = new QHBoxLayout;
    buttons->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    buttons->addWidget(d_add_button);
    buttons->addWidget(d_remove_button);

    auto* const editors = new QGridLayout;
    PanelParts::Add_Row(
        editors, 0, tr("Item Value:"), d_value_editor,
        tr("The number of the selected label or, without a selection, of the next new one."));
    PanelParts::Add_Row(
        editors, 1, tr("Item Text:"), d_text_editor,
        tr("Shown by the selected label instead of its number. Press F2 to edit it, and Return to "
           "apply it and go back to the page."));
    PanelParts::Add_Row(editors, 2, tr("Border Type:"), d_border_box,
                        tr("The border of the selected labels; without a selection, of new ones."));

    auto* const panel = new QVBoxLayout(this);
    PanelParts::Set_Margins(panel);
    panel->addWidget(d_list);
    panel->addLayout(buttons);
    panel->addLayout(editors);
}

void TLabelWidget::Connect_Widgets()
{
    connect(d_add_button, SIGNAL(clicked()), this, SIGNAL(Add_Item()));
    connect(d_remove_button, SIGNAL(clicked()), this, SIGNAL(Remove_Item()));
    connect(d_list, SIGNAL(Delete_Pressed()), d_remove_button, SLOT(click()));
    connect(d_list, SIGNAL(Selected_Rows_Changed()), this, SLOT(Item_Selection_Changed()));
    connect(d_value_editor, SIGNAL(textEdited(QString)), this,
            SLOT(Current_Value_Changed(QString)));
    connect(d_text_editor, SIGNAL(editingFinished()), this, SLOT(Current_Text_Changed()));
    connect(d_border_box, SIGNAL(currentIndexChanged(int)), this, SLOT(Border_Type_Changed()));
}

void TLabelWidget::Add_Item(const TDataItem& item)
{
    // Complete the row before adding it, so that the list updates only once.
    auto* const row = new QListWidgetItem;
    row->setText(ItemFormat::Row_Text(d_display_format, item.value, item.text));
    row->setIcon(Border_Icon(item.border_type));
    row->setData(TRowList::Id_Role, item.id);
    row->setData(Value_Role, item.value);
    row->setData(Text_Role, item.text);
    row->setData(Border_Role, item.border_type);
    d_list->addItem(row);
}

void TLabelWidget::Remove_Item(int id)
{
    d_list->Remove_Row(id);
}

void TLabelWidget::Set_Selection(int id)
{
    d_list->clearSelection();
    if (QListWidgetItem* const row = d_list->Row(id))
        d_list->setCurrentItem(row, QItemSelectionModel::SelectCurrent);
}

void TLabelWidget::Add_Selection(int id)
{
    // Not SelectCurrent, which would undo the previous selection.
    if (QListWidgetItem* const row = d_list->Row(id))
        d_list->setCurrentItem(row, QItemSelectionModel::Select);
}

void TLabelWidget::Clear_Selection()
{
    d_list->clearSelection();
}

void TLabelWidget::Show_Value(int id, int value)
{
    QListWidgetItem* const row = d_list->Row(id);
    if (row == nullptr)
        return;
    row->setData(Value_Role, value);
    Update_Row_Text(row);
}

std::vector<int> TLabelWidget::Item_Ids() const
{
    std::vector<int> ids;
    ids.reserve(static_cast<std::size_t>(d_list->count()));
    for (int index = 0; index < d_list->count(); ++index)
        ids.push_back(d_list->item(index)->data(TRowList::Id_Role).toInt());
    return ids;
}

std::vector<int> TLabelWidget::Selected_Items() const
{
    return d_list->Selected_Ids();
}

int TLabelWidget::Border_Type() const
{
    return d_border_box->currentData().toInt();
}

void TLabelWidget::Set_Border_Type(int border_type)
{
    const int index = d_border_box->findData(border_type);
    if (index < 0)
        return;
    const QSignalBlocker blocker(d_border_box);
    d_border_box->setCurrentIndex(index);
}

void TLabelWidget::Set_Label_Index(int value)
{
    d_next_value = value;
    d_value_editor->setText(QString::number(value));
}

int TLabelWidget::Take_Label_Index()
{
    const int taken = d_next_value;
    d_next_value = TNumbering::After(taken);
    d_label_index = d_next_value;
    return taken;
}

void TLabelWidget::Set_Values(int next_value, int value_without_selection)
{
    d_label_index = value_without_selection;
    d_next_value = next_value;
}

void TLabelWidget::Select_Items(const std::vector<int>& ids)
{
    {
        const QSignalBlocker blocker(this);
        d_list->Select_Rows(ids);
    }
    Item_Selection_Changed();
}

void TLabelWidget::Clear()
{
    d_list->clear();
}

void TLabelWidget::Item_Selection_Changed()
{
    Show_Selection();
    Q_EMIT Selection_Changed();
}

void TLabelWidget::Show_Selection()
{
    const QList<QListWidgetItem*> rows = d_list->selectedItems();
    d_remove_button->setEnabled(!rows.isEmpty());

    // Showing the selection is not an edit. Without the blockers, disabling a focused text editor
    // would emit editingFinished.
    const QSignalBlocker value_blocker(d_value_editor);
    const QSignalBlocker text_blocker(d_text_editor);
    const QSignalBlocker border_blocker(d_border_box);
    d_text_editor->setEnabled(rows.size() == 1);
    if (rows.size() == 1) {
        d_value_editor->setText(QString::number(rows.first()->data(Value_Role).toInt()));
        d_text_editor->setText(rows.first()->data(Text_Role).toString());
        Set_Border_Type(rows.first()->data(Border_Role).toInt());
    } else {
        d_value_editor->setText(rows.isEmpty() ? QString::number(d_label_index) : QString());
        d_text_editor->clear();
    }
}

void TLabelWidget::Border_Type_Changed()
{
    const int border_type = Border_Type();
    const QList<QListWidgetItem*> rows = d_list->selectedItems();
    for (QListWidgetItem* const row : rows) {
        row->setData(Border_Role, border_type);
        row->setIcon(Border_Icon(border_type));
        Q_EMIT Change_Item_Border(row->data(TRowList::Id_Role).toInt(), border_type);
    }
}

void TLabelWidget::Current_Value_Changed(const QString& typed)
{
    bool is_number = false;
    const int value = typed.toInt(&is_number);
    if (!is_number)
        return;
    if (d_list->selectionModel()->hasSelection()) {
        QListWidgetItem* const row = d_list->Only_Selected_Row();
        if (row == nullptr)
            return;
        row->setData(Value_Role, value);
        Update_Row_Text(row);
        Q_EMIT Change_Item_Value(row->data(TRowList::Id_Role).toInt(), value);
    } else {
        d_label_index = value;
        d_next_value = value;
    }
}

void TLabelWidget::Current_Text_Changed()
{
    QListWidgetItem* const row = d_list->Only_Selected_Row();
    if (row == nullptr)
        return;
    const QString text = Text_From_Editor(row->data(Text_Role).toString());
    d_text_editor->setModified(false);
    row->setData(Text_Role, text);
    Update_Row_Text(row);
    Q_EMIT Change_Item_Text(row->data(TRowList::Id_Role).toInt(), text);
}

/// The text that the editor stands for. One that nobody has changed stands for the whole text of
/// the label, even if it is longer than the editor or has several lines.
QString TLabelWidget::Text_From_Editor(const QString& stored) const
{
    const QString shown = stored.left(d_text_editor->maxLength());
    const bool is_unchanged = !d_text_editor->isModified() && d_text_editor->text() == shown;
    return is_unchanged ? stored : d_text_editor->text().simplified();
}

void TLabelWidget::Commit_Text()
{
    const QListWidgetItem* const row = d_list->Only_Selected_Row();
    if (row != nullptr && d_text_editor->isModified() &&
        d_text_editor->text() != row->data(Text_Role).toString())
        Current_Text_Changed();
}

void TLabelWidget::Update_Row_Text(QListWidgetItem* row) const
{
    row->setText(ItemFormat::Row_Text(d_display_format, row->data(Value_Role).toInt(),
                                      row->data(Text_Role).toString()));
}

const QIcon& TLabelWidget::Border_Icon(int border_type) const
{
    for (std::size_t index = 0; index < borders.size(); ++index) {
        if (borders[index].code == border_type)
            return d_border_icons[index];
    }
    return d_border_icons.front();
}
