#include "src/widgets/undokeys.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QSlider>
#include <QWidget>

#include <algorithm>
#include <iterator>

namespace {

constexpr int back_key = static_cast<int>(Qt::CTRL) + Qt::Key_Z;
constexpr int forth_keys[] = {static_cast<int>(Qt::CTRL) + static_cast<int>(Qt::SHIFT) + Qt::Key_Z,
                              static_cast<int>(Qt::CTRL) + Qt::Key_Y};

} // namespace

TUndoKeys::TUndoKeys(QWidget* window, TAction undo, TAction redo, TAction begin_edit)
    : d_begin_edit(std::move(begin_edit))
{
    const auto add_key = [this, window](int key, const TAction& action) {
        connect(new QShortcut(QKeySequence(key), window), &QShortcut::activated, this, action);
    };
    add_key(back_key, undo);
    for (const int key : forth_keys)
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

void TUndoKeys::Note_Step()
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
    const TWay way = Way_Of(*static_cast<QKeyEvent*>(event));
    if (way == TWay::None)
        return false;
    // Only what is accepted as a request comes as a key press.
    if (is_request) {
        event->setAccepted(Is_For_Editor(*editor, way));
    } else if (way == TWay::Back) {
        editor->undo();
    } else {
        editor->redo();
    }
    return true;
}

TUndoKeys::TWay TUndoKeys::Way_Of(const QKeyEvent& event)
{
    const int key = static_cast<int>(event.modifiers()) + event.key();
    if (key == back_key)
        return TWay::Back;
    const bool is_forth =
        std::find(std::begin(forth_keys), std::end(forth_keys), key) != std::end(forth_keys);
    return is_forth ? TWay::Forth : TWay::None;
}

bool TUndoKeys::Is_For_Editor(const QLineEdit& editor, TWay way) const
{
    // Doing a step again fills the editors anew, and what was typed would be lost.
    const bool has_own = editor.isUndoAvailable() && editor.text() != d_editors.value(&editor);
    return has_own || (way == TWay::Forth && editor.isRedoAvailable());
}
