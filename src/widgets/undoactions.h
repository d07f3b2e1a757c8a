#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QAction;
class QWidget;

/// Undo and Redo at the start of context menus. They name the step, such as "Undo add label".
class TUndoActions : public QObject
{
    Q_OBJECT

public:
    using TCommand = std::function<void()>;

    /// @param parent  owns this object.
    TUndoActions(QObject* parent, const TCommand& undo, const TCommand& redo);

    /// Inserts both actions and a separator before the other actions of a widget.
    void Add_To(QWidget* widget);

    /// Sets the names of the steps. An action whose step has no name is disabled.
    void Set_Names(const QString& undo, const QString& redo);

private:
    QAction* d_undo;
    QAction* d_redo;
    QAction* d_separator;
};
