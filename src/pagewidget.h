#pragma once

#include <QList>
#include <QWidget>

class QLineEdit;
class QToolButton;
class QAbstractItemModel;
class TRowList;

/// Dock panel that lists the pages of the document and stores their names.
///
/// Users select, rename and reorder pages here. They can also request new pages and the removal of
/// selected ones; the owner of the document then adds and removes the rows.
class TPageWidget : public QWidget
{
    Q_OBJECT

public:
    TPageWidget(const QWidget* parent, Qt::WindowFlags flags);

    /// Appends a row named "Page" and the id. The selection does not change.
    void Add_Page(int page_id);
    /// Inserts such a row at a place, counted from 0.
    void Insert_Page(int page_id, int place);
    /// Removes the first row with this id; does nothing for an unknown id.
    void Remove_Page(int page_id);
    /// Selects only the first row with this id; does nothing for an unknown id.
    void Set_Active_Page(int page_id);
    /// Renames the first row with this id. Does not update the name editor.
    void Set_Page_Name(int page_id, const QString& name);
    /// The name of the first row with this id; a null string for an unknown id.
    QString Page_Name(int page_id) const;
    /// Ids of all rows, from top to bottom.
    QList<int> Page_Ids() const;
    /// Ids of the selected rows.
    std::vector<int> Selected_Pages() const;
    /// Selects only the rows with these ids and updates the buttons and the name editor. Emits no
    /// signal.
    void Select_Pages(const std::vector<int>& page_ids);
    /// The model of the list, whose signals report renamed and moved rows.
    const QAbstractItemModel* Rows() const;
    /// Removes all rows.
    void Clear();

Q_SIGNALS:
    /// The user requests a new page.
    void Add_Page();
    /// The user requests the removal of these pages. Their rows still exist.
    void Remove_Pages(const QList<int>& page_ids);
    /// The selection has changed.
    /// @param page_id  the only selected page; -1 when none or several are selected.
    void Selection_Changed(int page_id);

private Q_SLOTS:
    void Page_Selection_Changed();
    void Remove_Page();
    void Page_Name_Edited(const QString& text);

private:
    void Create_Widgets();
    void Arrange_Widgets();
    void Connect_Widgets();

    TRowList* d_list = nullptr;
    QLineEdit* d_name_editor = nullptr;
    QToolButton* d_add_button = nullptr;
    QToolButton* d_remove_button = nullptr;
};
