#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QDropEvent;
class QMimeData;
class QWidget;

/// Makes a window accept certain files that are dropped on it.
///
/// The window accepts them everywhere, including its docks. Drags without such local files are left
/// to the widget under the pointer, and the page view refuses them. While a modal dialog is open,
/// all drops of files are refused, and so are drags that can only move files, not copy them.
class TFileDrop : public QObject
{
    Q_OBJECT

public:
    /// Receives the paths of the dropped files in the order of the drag. At least one is accepted.
    using TCallback = std::function<void(const QStringList&)>;

    /// Whether the window accepts a file with this path.
    using TFilter = std::function<bool(const QString& path)>;

    /// @param window  owns this object; its widgets must exist already.
    TFileDrop(QWidget* window, const TFilter& accepts, const TCallback& callback);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QStringList Accepted_Paths(const QMimeData& dragged) const;
    bool Handle(const QObject* object, QDropEvent* event);

    TFilter d_accepts;
    TCallback d_callback;
};
