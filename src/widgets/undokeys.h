#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class QKeyEvent;
class QLineEdit;
class QWidget;

/// The keys for undo and redo anywhere in a window: Ctrl+Z, and Ctrl+Shift+Z or Ctrl+Y.
///
/// A line editor handles the keys itself as long as its text is not yet part of the document.
class TUndoKeys : public QObject
{
    Q_OBJECT

public:
    using TAction = std::function<void()>;

    /// @param window      receives the keys; must outlive this object. Its line editors and sliders
    ///                    must already exist.
    /// @param begin_edit  is called when an editor or a slider gets the focus or is pressed. What
    ///                    the user does there begins a new step.
    TUndoKeys(QWidget* window, TAction undo, TAction redo, TAction begin_edit);

    /// Call this after a step was recorded. The texts of all editors now count as part of the
    /// document.
    void Step_Recorded();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class TCommand { None, Undo, Redo };
    static TCommand Command_Of(const QKeyEvent& event);
    void Watch_Editors(const QWidget& window);
    bool Is_For_Editor(const QLineEdit& editor, TCommand command) const;

    TAction d_begin_edit;
    QHash<const QLineEdit*, QString> d_editors; ///< with their texts when a step was last recorded
};
