#include "src/widgets/filedrop.h"

#include <QApplication>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QGraphicsView>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace {

/// Whether a widget is a graphics view or its viewport. Graphics views accept every drag that
/// enters and refuse it only when it moves.
bool Is_Graphics_View(const QObject* object)
{
    return qobject_cast<const QGraphicsView*>(object) ||
           qobject_cast<const QGraphicsView*>(object->parent());
}

} // namespace

TFileDrop::TFileDrop(QWidget* window, const TFilter& accepts, const TCallback& callback)
    : QObject(window)
    , d_accepts(accepts)
    , d_callback(callback)
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
    const auto widgets = window->findChildren<QWidget*>();
    for (QWidget* const widget : widgets) {
        // A floating dock is a window of its own.
        if (qobject_cast<QDockWidget*>(widget))
            widget->setAcceptDrops(true);
        // Other widgets pass drag events on to their parents.
        if (widget->acceptDrops())
            widget->installEventFilter(this);
    }
}

bool TFileDrop::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return Handle(object, static_cast<QDropEvent*>(event));
    default:
        return QObject::eventFilter(object, event);
    }
}

/// The paths of the files in a drag; none if no file is accepted.
QStringList TFileDrop::Accepted_Paths(const QMimeData& dragged) const
{
    QStringList paths;
    const QList<QUrl> urls = dragged.urls();
    for (const QUrl& url : urls) {
        const QString path = url.toLocalFile();
        if (QFileInfo(path).isFile())
            paths += path;
    }
    return std::any_of(paths.cbegin(), paths.cend(), d_accepts) ? paths : QStringList();
}

/// Returns whether the event was handled.
bool TFileDrop::Handle(const QObject* object, QDropEvent* event)
{
    const QStringList paths = Accepted_Paths(*event->mimeData());
    if (paths.isEmpty() && !Is_Graphics_View(object))
        return false;
    // After a move, the source of the drag may delete the files.
    if (paths.isEmpty() || QApplication::activeModalWidget() ||
        !(event->possibleActions() & Qt::CopyAction)) {
        event->ignore();
        return true;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (event->type() == QEvent::Drop)
        d_callback(paths);
    return true;
}
