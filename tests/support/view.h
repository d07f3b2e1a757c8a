#pragma once

#include "src/displaywidget.h"

#include <QGraphicsPixmapItem>
#include <QStringList>

/// Helpers for tests of the page view.
namespace Support {

/// The labels of a view's scene in the order they were added.
QList<QGraphicsPixmapItem*> Labels(const TDisplayWidget& view);

/// The label with an id, or null.
QGraphicsPixmapItem* Label(const TDisplayWidget& view, int id);

/// A point as text, with at most three decimals.
QString Text(const QPointF& point);

/// Records every signal of a view as one line of text. Connects by signature, as the window does.
class TSignalLog : public QObject
{
    Q_OBJECT

public:
    explicit TSignalLog(const TDisplayWidget& view);

    /// Returns the lines since the last call.
    QStringList Take();

private slots:
    void Right_Mouse_Click(const QPointF& scene_point);
    void Item_Clicked(const int id);
    void Update_Item_Position(const int id, const QPointF& centre);

private:
    QStringList d_lines;
};

} // namespace Support
