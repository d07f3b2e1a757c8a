#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class QKeyEvent;
class QLineEdit;
class QWidget;

/// The keys that take steps back and do them again: Ctrl+Z, and Ctrl+Shift+Z or Ctrl+Y, anywhere in
/// a window.
///
/// A line editor takes the keys for itself while it holds something that the document does not have
/// yet; what has gone into the document belongs to the document's steps.
class TUndoKeys : public QObject
{
    Q_OBJECT

public:
    using TAction = std::function<void()>;

    /// @param window      where the keys work, with its line editors and sliders; outlives this.
    /// @param begin_edit  is called when an editor or a slider is turned to: what was done there
    ///                    before is finished.
    TUndoKeys(QWidget* window, TAction undo, TAction redo, TAction begin_edit);

    /// A step was recorded: what the editors hold is in the document, or is passed over.
    void Note_Step();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class TWay { None, Back, Forth };
    static TWay Way_Of(const QKeyEvent& event);
    void Watch_Editors(const QWidget& window);
    bool Is_For_Editor(const QLineEdit& editor, TWay way) const;

    TAction d_begin_edit;
    QHash<const QLineEdit*, QString> d_editors; ///< and what they held when a step was recorded
};
