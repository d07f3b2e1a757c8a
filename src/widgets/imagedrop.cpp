#include "src/widgets/imagedrop.h"

#include "src/model/imagefiles.h"

#include <QApplication>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QGraphicsView>
#include <QMimeData>
#include <QUrl>

namespace {

/// The images among what is dragged.
QStringList Image_Paths(const QMimeData& dragged)
{
    QStringList paths;
    const QList<QUrl> urls = dragged.urls();
    for (const QUrl& url : urls) {
        const QString path = url.toLocalFile();
        if (ImageFiles::Is_Image_Name(path) && QFileInfo(path).isFile())
            paths += path;
    }
    return paths;
}

/// Graphics views take whatever enters them, to refuse it only when it is moved on.
bool Is_Graphics_View(const QObject* object)
{
    return qobject_cast<const QGraphicsView*>(object) ||
           qobject_cast<const QGraphicsView*>(object->parent());
}

} // namespace

TImageDrop::TImageDrop(QWidget* window, const TUse& use)
    : QObject(window)
    , d_use(use)
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
    const auto widgets = window->findChildren<QWidget*>();
    for (QWidget* const widget : widgets) {
        // A dock that floats is a window of its own.
        if (qobject_cast<QDockWidget*>(widget))
            widget->setAcceptDrops(true);
        // Others hand on to their parents what is dragged over them.
        if (widget->acceptDrops())
            widget->installEventFilter(this);
    }
}

bool TImageDrop::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return Take(object, static_cast<QDropEvent*>(event));
    default:
        return QObject::eventFilter(object, event);
    }
}

/// False when the event is left to the widget that it was sent to.
bool TImageDrop::Take(const QObject* object, QDropEvent* event)
{
    const QStringList paths = Image_Paths(*event->mimeData());
    if (paths.isEmpty() && !Is_Graphics_View(object))
        return false;
    // Whoever dragged the files may delete them when they are moved.
    if (paths.isEmpty() || QApplication::activeModalWidget() ||
        !(event->possibleActions() & Qt::CopyAction)) {
        event->ignore();
        return true;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (event->type() == QEvent::Drop)
        d_use(paths);
    return true;
}
