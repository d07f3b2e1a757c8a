#pragma once

#include <QListWidget>
#include <QMultiHash>

#include <vector>

class TRowDelegate;

/// A list whose rows are known by a number kept in them: pages by page id, labels by item id.
///
/// Several rows can be selected at once, and the user puts rows in another order by dragging them,
/// or by Alt with the arrow keys up and down.
/// A row is found by its id without a walk through the list, however rows come and go. All rows
/// have the size that the largest of them needs, so that a change never measures all of them anew.
class TRowList : public QListWidget
{
    Q_OBJECT

public:
    /// Where a row keeps its id.
    static constexpr int Id_Role = Qt::UserRole;

    explicit TRowList(QWidget* parent);

    /// The first row, counted from the top, with this id; null when there is none.
    QListWidgetItem* Row(int id) const;
    /// Takes the first row with this id away; does nothing when there is none.
    void Remove_Row(int id);
    /// The selected row when it is the only one; null when none or several are selected.
    QListWidgetItem* Only_Selected_Row() const;
    /// Ids of the selected rows in the order in which the list reports them.
    std::vector<int> Selected_Ids() const;
    /// Selects the first row of each id and no other; the last of them becomes current.
    void Select_Rows(const std::vector<int>& ids);

    void reset() override;

Q_SIGNALS:
    /// The Delete key was pressed: what is selected is to be removed, by whoever knows how.
    void Delete_Pressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) override;
    void dataChanged(const QModelIndex& top_left, const QModelIndex& bottom_right,
                     const QVector<int>& roles) override;
    void changeEvent(QEvent* event) override;

private:
    void Move_Selected_Rows(int step);
    void Index_Rows() const;
    bool Measure_Rows(int first, int last);

    /// Every row under its id; filled anew by the next search when the ids of rows were changed.
    mutable QMultiHash<int, QListWidgetItem*> d_rows;
    mutable bool d_rows_outdated = false;
    TRowDelegate* d_delegate;
};
