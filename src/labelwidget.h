#pragma once

#include "src/model/pageitem.h"

#include <QIcon>
#include <QWidget>

#include <vector>

class QComboBox;
class QLineEdit;
class QListWidgetItem;
class QToolButton;
class TRowList;

/// Dock panel that lists the labels of the active page and edits the selected ones.
///
/// The rows hold copies of what they show. Whoever owns the document fills the list and applies
/// what the signals tell; the panel reacts to the user only and never reports a change that was
/// made through its operations, but for the selection.
class TLabelWidget : public QWidget
{
    Q_OBJECT

public:
    TLabelWidget(const QWidget* parent, Qt::WindowFlags flags);

    /// Appends a row for a label. The selection stays.
    void Add_Item(const TDataItem& item);
    /// Takes the first row with this id away; an unknown id changes nothing.
    void Remove_Item(int id);
    /// Selects the first row with this id alone; an unknown id leaves nothing selected.
    void Set_Selection(int id);
    /// Adds the first row with this id to the selection and makes it current.
    void Add_Selection(int id);
    void Clear_Selection();
    /// Ids of the selected rows in the order in which the list reports them.
    std::vector<int> Selected_Items() const;
    /// Border code that the combo box shows.
    int Border_Type() const;
    /// Shows a border in the combo box and reports nothing; an unknown code changes nothing.
    void Set_Border_Type(int border_type);
    /// Sets the value that the next new label gets, and shows it.
    void Set_Label_Index(int value);
    /// Spends the value for a new label. The next one will be one more, and is also what the value
    /// editor shows from then on when nothing is selected; what it shows now stays.
    /// @return the value for the new label.
    int Take_Label_Index();
    /// The value that the next new label gets.
    int Next_Value() const { return d_next_value; }
    /// What the value editor shows when nothing is selected.
    int Value_Without_Selection() const { return d_label_index; }
    /// Sets both of them. What the editor shows stays.
    void Set_Values(int next_value, int value_without_selection);
    /// Selects the rows with these ids and no other, and reports that once, be it a change or not.
    void Select_Items(const std::vector<int>& ids);
    /// Takes all rows away.
    void Clear();

    /// How rows are made from a label's value and text; see ItemFormat. Rows that are there already
    /// keep their texts.
    QString d_display_format;

Q_SIGNALS:
    /// A new label is wanted.
    void Add_Item();
    /// The selected labels are to be removed.
    void Remove_Item();
    /// The user gave the only selected label another value.
    void Change_Item_Value(int id, int value);
    /// The user gave the only selected label another text.
    void Change_Item_Text(int id, const QString& text);
    /// The user chose a border: once for each selected label.
    void Change_Item_Border(int id, int border_type);
    /// Other rows are selected than before.
    void Selection_Changed();

private Q_SLOTS:
    void Item_Selection_Changed();
    void Border_Type_Changed();
    void Current_Value_Changed(const QString& typed);
    void Current_Text_Changed();

private:
    void Create_Widgets();
    void Arrange_Widgets();
    void Connect_Widgets();
    void Show_Selection();
    void Update_Row_Text(QListWidgetItem* row) const;
    const QIcon& Border_Icon(int border_type) const;

    TRowList* d_list = nullptr;
    QToolButton* d_add_button = nullptr;
    QToolButton* d_remove_button = nullptr;
    QLineEdit* d_value_editor = nullptr;
    QLineEdit* d_text_editor = nullptr;
    QComboBox* d_border_box = nullptr;
    std::vector<QIcon> d_border_icons; ///< in the order of the combo box, read once for all rows
    int d_label_index;                 ///< shown in the value editor when nothing is selected
    int d_next_value;                  ///< for the next new label
};
