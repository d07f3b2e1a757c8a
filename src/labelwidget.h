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
/// The rows contain copies of the data they show. The owner of the document fills the list and
/// applies the changes that the signals report. The panel reports changes by the user only, except
/// for the selection.
class TLabelWidget : public QWidget
{
    Q_OBJECT

public:
    TLabelWidget(const QWidget* parent, Qt::WindowFlags flags);

    /// Appends a row for a label. The selection does not change.
    void Add_Item(const TDataItem& item);
    /// Removes the first row with this id; does nothing for an unknown id.
    void Remove_Item(int id);
    /// Selects only the first row with this id, or nothing for an unknown id.
    void Set_Selection(int id);
    /// Adds the first row with this id to the selection and makes it current.
    void Add_Selection(int id);
    void Clear_Selection();
    /// Shows another value in the row of a label, without reporting it.
    void Show_Value(int id, int value);
    /// Ids of all rows, from top to bottom.
    std::vector<int> Item_Ids() const;
    /// Ids of the selected rows, in the order of QListWidget::selectedItems().
    std::vector<int> Selected_Items() const;
    /// The border code in the combo box.
    int Border_Type() const;
    /// Sets the border in the combo box without reporting it; does nothing for an unknown code.
    void Set_Border_Type(int border_type);
    /// Sets the value of the next new label and shows it.
    void Set_Label_Index(int value);
    /// Returns the value for a new label and increments it. The value editor shows the new value
    /// the next time that nothing is selected.
    int Take_Label_Index();
    /// The value of the next new label.
    int Next_Value() const { return d_next_value; }
    /// The value in the editor when nothing is selected.
    int Value_Without_Selection() const { return d_label_index; }
    /// Sets Next_Value and Value_Without_Selection without showing them.
    void Set_Values(int next_value, int value_without_selection);
    /// Selects only the rows with these ids. Always emits Selection_Changed once.
    void Select_Items(const std::vector<int>& ids);
    /// Removes all rows.
    void Clear();

    /// Pattern of the rows' texts; see ItemFormat. A change does not affect existing rows.
    QString d_display_format;

    /// Commits a text that the user has typed but not finished, as the Return key does.
    void Commit_Text();
    /// The editor of the selected label's text.
    QLineEdit* Text_Editor() const { return d_text_editor; }

Q_SIGNALS:
    /// The user requests a new label.
    void Add_Item();
    /// The user requests the removal of the selected labels.
    void Remove_Item();
    /// The user changed the value of the only selected label.
    void Change_Item_Value(int id, int value);
    /// The user changed the text of the only selected label.
    void Change_Item_Text(int id, const QString& text);
    /// The user chose a border. Emitted for each selected label.
    void Change_Item_Border(int id, int border_type);
    /// The selection has changed.
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
    QString Text_From_Editor(const QString& stored) const;
    void Update_Row_Text(QListWidgetItem* row) const;
    const QIcon& Border_Icon(int border_type) const;

    TRowList* d_list = nullptr;
    QToolButton* d_add_button = nullptr;
    QToolButton* d_remove_button = nullptr;
    QLineEdit* d_value_editor = nullptr;
    QLineEdit* d_text_editor = nullptr;
    QComboBox* d_border_box = nullptr;
    std::vector<QIcon> d_border_icons; ///< in the order of the combo box, shared by all rows
    int d_label_index;                 ///< shown in the value editor when nothing is selected
    int d_next_value;                  ///< for the next new label
};
