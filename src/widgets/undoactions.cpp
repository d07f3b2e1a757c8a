#include "src/widgets/undoactions.h"

#include <QAction>
#include <QWidget>

TUndoActions::TUndoActions(QObject* parent, const TCommand& undo, const TCommand& redo)
    : QObject(parent)
    , d_undo(new QAction(this))
    , d_redo(new QAction(this))
    , d_separator(new QAction(this))
{
    d_separator->setSeparator(true);
    connect(d_undo, &QAction::triggered, this, undo);
    connect(d_redo, &QAction::triggered, this, redo);
    Set_Names(QString(), QString());
}

void TUndoActions::Add_To(QWidget* widget)
{
    const QList<QAction*> others = widget->actions();
    widget->insertActions(others.isEmpty() ? nullptr : others.first(),
                          {d_undo, d_redo, d_separator});
}

void TUndoActions::Set_Names(const QString& undo, const QString& redo)
{
    d_undo->setText(undo.isEmpty() ? tr("Undo") : tr("Undo %1").arg(undo));
    d_undo->setEnabled(!undo.isEmpty());
    d_redo->setText(redo.isEmpty() ? tr("Redo") : tr("Redo %1").arg(redo));
    d_redo->setEnabled(!redo.isEmpty());
}
