#pragma once

#include <QListWidget>
#include <QMultiHash>

#include <vector>

class TRowDelegate;

/// A list whose rows have an id: pages the page id, labels the item id.
///
/// Several rows can be selected at once. Users reorder rows by dragging them, or with Alt and the
/// up and down arrow keys. Finding a row by its id takes constant time. All rows have the size of
/// the largest one, so that a change measures only the rows that change.
class TRowList : public QListWidget
{
    Q_OBJECT

public:
    /// Role of the id in the data of a row.
    static constexpr int Id_Role = Qt::UserRole;

    explicit TRowList(QWidget* parent);

    /// The topmost row with this id; null when there is none.
    QListWidgetItem* Row(int id) const;
    /// Removes the topmost row with this id, if there is one.
    void Remove_Row(int id);
    /// The selected row when it is the only one; null when none or several are selected.
    QListWidgetItem* Only_Selected_Row() const;
    /// Ids of the selected rows, in the order of selectedItems().
    std::vector<int> Selected_Ids() const;
    /// Selects the topmost row of each id and no other. The row of the last id becomes current.
    void Select_Rows(const std::vector<int>& ids);

    void reset() override;

Q_SIGNALS:
    /// Rows were selected or deselected, or selected rows removed. Unlike itemSelectionChanged(),
    /// not emitted when Qt 6 removes another row.
    void Selected_Rows_Changed();
    /// The user pressed the Delete key. The receiver removes the selected rows.
    void Delete_Pressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) override;
    void dataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                     const QVector<int>& roles) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    void changeEvent(QEvent* event) override;

private:
    void Move_Selected_Rows(int direction);
    QStyleOptionViewItem Row_Options() const;
    bool Measure_Rows(int first, int last);

    /// Rows by id. The next search adds those that are missing.
    mutable QMultiHash<int, QListWidgetItem*> d_rows;
    TRowDelegate* d_delegate;
};
