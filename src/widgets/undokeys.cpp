#include "src/widgets/undokeys.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QSlider>
#include <QWidget>

#include <algorithm>
#include <iterator>

namespace {

constexpr int undo_key = static_cast<int>(Qt::CTRL) + Qt::Key_Z;
constexpr int redo_keys[] = {static_cast<int>(Qt::CTRL) + static_cast<int>(Qt::SHIFT) + Qt::Key_Z,
                             static_cast<int>(Qt::CTRL) + Qt::Key_Y};

} // namespace

TUndoKeys::TUndoKeys(QWidget* window, TAction undo, TAction redo, TAction begin_edit)
    : d_begin_edit(std::move(begin_edit))
{
    const auto add_key = [this, window](int key, const TAction& action) {
        connect(new QShortcut(QKeySequence(key), window), &QShortcut::activated, this, action);
    };
    add_key(undo_key, undo);
    for (const int key : redo_keys)
        add_key(key, redo);
    Watch_Editors(*window);
}

void TUndoKeys::Watch_Editors(const QWidget& window)
{
    const QList<QSlider*> sliders = window.findChildren<QSlider*>();
    for (QSlider* const slider : sliders)
        slider->installEventFilter(this);
    const QList<QLineEdit*> editors = window.findChildren<QLineEdit*>();
    for (QLineEdit* const editor : editors) {
        editor->installEventFilter(this);
        d_editors.insert(editor, QString());
    }
}

void TUndoKeys::Step_Recorded()
{
    for (auto editor = d_editors.begin(); editor != d_editors.end(); ++editor)
        editor.value() = editor.key()->text();
}

bool TUndoKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::MouseButtonPress)
        d_begin_edit();
    auto* const editor = qobject_cast<QLineEdit*>(watched);
    const bool is_request = event->type() == QEvent::ShortcutOverride;
    if (!editor || (!is_request && event->type() != QEvent::KeyPress))
        return false;
    const TCommand command = Command_Of(*static_cast<QKeyEvent*>(event));
    if (command == TCommand::None)
        return false;
    // Qt sends the key press only if the editor accepts the ShortcutOverride before it.
    if (is_request) {
        event->setAccepted(Is_For_Editor(*editor, command));
    } else if (command == TCommand::Undo) {
        editor->undo();
    } else {
        editor->redo();
    }
    return true;
}

TUndoKeys::TCommand TUndoKeys::Command_Of(const QKeyEvent& event)
{
    const int key = static_cast<int>(event.modifiers()) + event.key();
    if (key == undo_key)
        return TCommand::Undo;
    const bool is_redo =
        std::find(std::begin(redo_keys), std::end(redo_keys), key) != std::end(redo_keys);
    return is_redo ? TCommand::Redo : TCommand::None;
}

bool TUndoKeys::Is_For_Editor(const QLineEdit& editor, TCommand command) const
{
    // A redo of the document replaces the texts of the editors, so the editor's own redo comes
    // first.
    const bool has_own = editor.isUndoAvailable() && editor.text() != d_editors.value(&editor);
    return has_own || (command == TCommand::Redo && editor.isRedoAvailable());
}
