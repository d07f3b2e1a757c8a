#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QDropEvent;
class QMimeData;
class QWidget;

/// Lets a window take image files that are dropped on it, from wherever they are dragged.
///
/// The whole window takes them, its docks too, whether or not a widget in it has a use for other
/// things that are dragged: those are left to the widget. What holds no image file in the local
/// file system is refused while it is still dragged, and so is everything while a dialog waits for
/// its answer. Files are copied from: a drag that would move them is refused, too.
class TImageDrop : public QObject
{
    Q_OBJECT

public:
    /// Gets the paths of the dropped images, at least one, in the order of the drag.
    using TUse = std::function<void(const QStringList&)>;

    /// @param window  with all its widgets; owns this object.
    TImageDrop(QWidget* window, const TUse& use);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool Take(const QObject* object, QDropEvent* event);

    TUse d_use;
};
