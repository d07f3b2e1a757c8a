#include "src/widgets/pictureitems.h"

#include "src/model/pixelstore.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>

namespace {

/// Above this scale, interpolation uses all pixels.
constexpr double largest_reduced_scale = 0.5;

/// Pixels of the device for each pixel of an item.
double Scale(const QPainter& painter)
{
    return QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.deviceTransform());
}

} // namespace

void TPictureItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const double scale = Scale(*painter);
    if (scale > largest_reduced_scale || pixmap().isNull()) {
        QGraphicsPixmapItem::paint(painter, option, widget);
        return;
    }
    QImage image = pixmap().toImage();
    for (int halvings = qRound(-std::log2(scale)); halvings > 0; --halvings)
        image = TPixelStore::Shared().Reduced(image, image.size() / 2);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(boundingRect(), image);
}

void TDrawingItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    const double scale = Scale(*painter);
    if (scale > largest_reduced_scale || pixmap().isNull()) {
        QGraphicsPixmapItem::paint(painter, option, widget);
        return;
    }
    const QSize size = (pixmap().size() * scale).expandedTo(QSize(1, 1));
    QImage image = TPixelStore::Shared().Reduced(pixmap().toImage(), size);
    const double pixel_ratio = painter->device()->devicePixelRatioF();
    image.setDevicePixelRatio(pixel_ratio);
    const QPoint corner =
        (painter->worldTransform().map(boundingRect().topLeft()) * pixel_ratio).toPoint();
    painter->resetTransform();
    painter->drawImage(QPointF(corner) / pixel_ratio, image);
}
