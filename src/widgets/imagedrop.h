#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QDropEvent;
class QMimeData;
class QWidget;

/// Makes a window accept image files and PDFs that are dropped on it.
///
/// The window accepts them everywhere, including its docks. Drags without such local files are
/// left to the widget under the pointer, and the page view refuses them. While a modal dialog is
/// open, all drops of files are refused, and so are drags that can only move files, not copy them.
class TImageDrop : public QObject
{
    Q_OBJECT

public:
    /// Receives the paths of the dropped files, at least one, in the order of the drag.
    using TCallback = std::function<void(const QStringList&)>;

    /// @param window  owns this object; its widgets must exist already.
    TImageDrop(QWidget* window, const TCallback& callback);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool Handle(const QObject* object, QDropEvent* event);

    TCallback d_callback;
};
