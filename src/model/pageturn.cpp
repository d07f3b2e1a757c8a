#include "src/model/pageturn.h"

#include <QTransform>

QPointF PageTurn::Turned(const QPointF& point, const QSize& size, TDirection direction)
{
    return direction == TDirection::Right ? QPointF(size.height() - point.y(), point.x())
                                          : QPointF(point.y(), size.width() - point.x());
}

TPageItem PageTurn::Turned(const TPageItem& page, TDirection direction)
{
    constexpr double right_angle = 90.0;
    const QTransform turn =
        QTransform().rotate(direction == TDirection::Right ? right_angle : -right_angle);
    const QImage image = page.image;
    TPageItem turned = page;
    // A page image keeps the pixels it was made from, which take ten times the memory of the bytes.
    turned.image = TPageImage(image.transformed(turn)).Encoded();
    for (TDataItem& item : turned.data_items)
        item.position = Turned(item.position, image.size(), direction);
    return turned;
}
