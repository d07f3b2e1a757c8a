#pragma once

#include <QList>
#include <QWidget>

class QLineEdit;
class QToolButton;
class QAbstractItemModel;
class TRowList;

/// Dock panel that lists the pages of the document, and the place where their names live.
///
/// The user selects, renames and reorders pages here, and asks for new ones and for the removal of
/// selected ones; whoever owns the document answers by adding and removing the rows.
class TPageWidget : public QWidget
{
    Q_OBJECT

public:
    TPageWidget(const QWidget* parent, Qt::WindowFlags flags);

    /// Appends a row named "Page" and the id. The selection stays.
    void Add_Page(int page_id);
    /// Takes the first row with this id away; an unknown id changes nothing.
    void Remove_Page(int page_id);
    /// Selects the first row with this id alone; an unknown id keeps the selection.
    void Set_Active_Page(int page_id);
    /// Renames the first row with this id. The name editor is left as it is.
    void Set_Page_Name(int page_id, const QString& name);
    /// Name of the first row with this id; a null string for an unknown id.
    QString Page_Name(int page_id) const;
    /// Ids of all rows in the order in which they are shown.
    QList<int> Page_Ids() const;
    /// Ids of the selected rows.
    std::vector<int> Selected_Pages() const;
    /// Selects the rows with these ids and no other, and brings buttons and name editor into line.
    /// Reports nothing.
    void Select_Pages(const std::vector<int>& page_ids);
    /// The rows, for somebody who wants to be told when the user renames or moves them.
    const QAbstractItemModel* Rows() const;
    /// Takes all rows away.
    void Clear();

Q_SIGNALS:
    /// A new page is wanted.
    void Add_Page();
    /// The pages with these ids are to be removed; their rows are still there.
    void Remove_Pages(const QList<int>& page_ids);
    /// Other rows are selected than before.
    /// @param page_id  the page when it is the only selected one, otherwise -1.
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
