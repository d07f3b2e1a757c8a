#pragma once

#include "src/displaywidget.h"

#include <QGraphicsPixmapItem>
#include <QStringList>

/// What the tests of the page view share.
namespace Support {

/// The labels of a view's scene in the order in which they were added.
QList<QGraphicsPixmapItem*> Labels(const TDisplayWidget& view);

/// The label with an id, or null.
QGraphicsPixmapItem* Label(const TDisplayWidget& view, int id);

/// A point as text, in thousandths at most.
QString Text(const QPointF& point);

/// Every signal of a view as one line of text, in the order in which they came. Connected by
/// signature, as the window does it.
class TSignalLog : public QObject
{
    Q_OBJECT

public:
    explicit TSignalLog(const TDisplayWidget& view);

    /// What came since the last call.
    QStringList Take();

private slots:
    void Right_Mouse_Click(const QPointF& scene_point);
    void Item_Clicked(const int id);
    void Update_Item_Position(const int id, const QPointF& centre);

private:
    QStringList d_lines;
};

} // namespace Support
