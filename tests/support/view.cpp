#include "support/view.h"

#include <QGraphicsScene>

#include <utility>

namespace Support {

QList<QGraphicsPixmapItem*> Labels(const TDisplayWidget& view)
{
    QList<QGraphicsPixmapItem*> labels;
    const QList<QGraphicsItem*> items = view.scene()->items(Qt::AscendingOrder);
    for (QGraphicsItem* item : items) {
        if (item->data(1).isValid())
            labels.append(dynamic_cast<QGraphicsPixmapItem*>(item));
    }
    return labels;
}

QGraphicsPixmapItem* Label(const TDisplayWidget& view, int id)
{
    const QList<QGraphicsPixmapItem*> labels = Labels(view);
    for (QGraphicsPixmapItem* label : labels) {
        if (label->data(1).toInt() == id)
            return label;
    }
    return nullptr;
}

QString Text(const QPointF& point)
{
    // Adding zero turns a negative zero, which rounding may leave, into a plain one.
    const auto number = [](double x) { return QString::number(qRound(x * 1000) / 1000.0 + 0.0); };
    return number(point.x()) + QLatin1Char(',') + number(point.y());
}

TSignalLog::TSignalLog(const TDisplayWidget& view)
{
    connect(&view, SIGNAL(Right_Mouse_Click(const QPointF&)), this,
            SLOT(Right_Mouse_Click(const QPointF&)));
    connect(&view, SIGNAL(Item_Clicked(const int)), this, SLOT(Item_Clicked(const int)));
    connect(&view, SIGNAL(Update_Item_Position(const int, const QPointF&)), this,
            SLOT(Update_Item_Position(const int, const QPointF&)));
}

QStringList TSignalLog::Take()
{
    return std::exchange(d_lines, {});
}

void TSignalLog::Right_Mouse_Click(const QPointF& scene_point)
{
    d_lines.append(QStringLiteral("right click at ") + Text(scene_point));
}

void TSignalLog::Item_Clicked(const int id)
{
    d_lines.append(QStringLiteral("clicked %1").arg(id));
}

void TSignalLog::Update_Item_Position(const int id, const QPointF& centre)
{
    d_lines.append(QStringLiteral("%1 is at %2").arg(id).arg(Text(centre)));
}

} // namespace Support
