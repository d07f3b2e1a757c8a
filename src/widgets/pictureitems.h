#pragma once

#include <QGraphicsPixmapItem>

// Pixmaps in a graphics scene that stay clear at half their size and below, where interpolation
// between neighbouring pixels skips others. At larger scales they are drawn as by
// QGraphicsPixmapItem. Smaller versions are made on demand and cached in TPixelStore.

/// A large picture, drawn from a version of half, a quarter or an eighth of its size. One version
/// is enough for all scales near its own, so zooming is fast.
class TPictureItem : public QGraphicsPixmapItem
{
public:
    using QGraphicsPixmapItem::QGraphicsPixmapItem;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};

/// A small drawing, reduced to the size on the screen and placed on whole pixels of the screen, so
/// that thin lines stay even.
class TDrawingItem : public QGraphicsPixmapItem
{
public:
    using QGraphicsPixmapItem::QGraphicsPixmapItem;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};
