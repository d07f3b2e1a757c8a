// Pixmaps in a scene at small scales.

#include "src/widgets/pictureitems.h"

#include "src/model/pixelstore.h"
#include "support/support.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QTest>

#include <algorithm>

namespace {

/// Paints an item on white as a view with this scale does.
/// @param pixel_ratio  pixels of the screen for each unit of the view.
QImage Painted(QGraphicsPixmapItem* item, double scale, double pixel_ratio = 1.0)
{
    QGraphicsScene scene;
    scene.addItem(item);
    item->setTransformationMode(Qt::SmoothTransformation);
    QImage screen((QSizeF(100, 100) * pixel_ratio).toSize(), QImage::Format_RGB32);
    screen.setDevicePixelRatio(pixel_ratio);
    screen.fill(Qt::white);
    QPainter painter(&screen);
    scene.render(&painter, QRectF(0, 0, 100, 100), QRectF(QPointF(0, 0), QSizeF(100, 100) / scale));
    painter.end();
    scene.removeItem(item);
    return screen;
}

/// A square of lines of two pixels, like the border of a label.
QPixmap Frame()
{
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 2));
    painter.drawRect(3, 3, 34, 34);
    painter.end();
    return QPixmap::fromImage(image);
}

/// The darkness of the darkest pixel of each column, or of each row: 0 is white, 255 is black.
QList<int> Darkest(const QImage& screen, Qt::Orientation along)
{
    QList<int> darkest;
    const bool columns = along == Qt::Horizontal;
    for (int line = 0; line < screen.width(); ++line) {
        int most = 0;
        for (int place = 0; place < screen.height(); ++place) {
            const QPoint pixel = columns ? QPoint(line, place) : QPoint(place, line);
            most = qMax(most, 255 - qGray(screen.pixel(pixel)));
        }
        darkest += most;
    }
    return darkest;
}

} // namespace

class TestPictureItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void above_half_the_size_pixels_are_those_of_qt_data();
    void above_half_the_size_pixels_are_those_of_qt();
    void a_fine_pattern_is_averaged_data();
    void a_fine_pattern_is_averaged();
    void no_line_of_a_drawing_disappears_data();
    void no_line_of_a_drawing_disappears();
    void a_drawing_is_the_same_at_every_position();
    void the_scale_includes_the_pixel_ratio();
    void a_picture_is_reduced_only_once();
    void an_item_without_a_pixmap_paints_nothing();
};

void TestPictureItems::above_half_the_size_pixels_are_those_of_qt_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.51, 0.75, 1.0, 1.7, 7.4})
        QTest::newRow(qPrintable(QString::number(scale))) << scale;
}

void TestPictureItems::above_half_the_size_pixels_are_those_of_qt()
{
    QFETCH(double, scale);
    const QPixmap pixmap = QPixmap::fromImage(Support::Picture(120, 90));
    QGraphicsPixmapItem plain(pixmap);
    TPictureItem picture(pixmap);
    TDrawingItem drawing(pixmap);
    for (QGraphicsPixmapItem* item : {&plain, static_cast<QGraphicsPixmapItem*>(&picture),
                                      static_cast<QGraphicsPixmapItem*>(&drawing)})
        item->setPos(3.3, 5.8);
    const QImage expected = Painted(&plain, scale);
    QCOMPARE(Support::Difference(Painted(&picture, scale), expected), QString());
    QCOMPARE(Support::Difference(Painted(&drawing, scale), expected), QString());
}

void TestPictureItems::a_fine_pattern_is_averaged_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.5, 0.42, 0.3, 0.25, 0.1353})
        QTest::newRow(qPrintable(QString::number(scale))) << scale;
}

void TestPictureItems::a_fine_pattern_is_averaged()
{
    QFETCH(double, scale);
    QImage stripes(400, 400, QImage::Format_RGB32);
    for (int y = 0; y < 400; ++y) {
        for (int x = 0; x < 400; ++x)
            stripes.setPixelColor(x, y, x % 2 == 0 ? Qt::black : Qt::white);
    }
    TPictureItem picture(QPixmap::fromImage(stripes));
    const QImage screen = Painted(&picture, scale);
    const int middle = static_cast<int>(150 * scale);
    int darkest = 255;
    int lightest = 0;
    for (int x = middle - 8; x < middle + 8; ++x) {
        darkest = qMin(darkest, qRed(screen.pixel(x, middle)));
        lightest = qMax(lightest, qRed(screen.pixel(x, middle)));
    }
    QVERIFY2(darkest >= 120 && lightest <= 136,
             qPrintable(QStringLiteral("%1 to %2").arg(darkest).arg(lightest)));
}

void TestPictureItems::no_line_of_a_drawing_disappears_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("position");
    for (const double scale : {0.5, 0.45, 0.37, 0.3, 0.26, 0.25, 0.2, 0.1353}) {
        for (const double position : {0.0, 7.0, 13.6})
            QTest::addRow("%g at %g", scale, position) << scale << position;
    }
}

void TestPictureItems::no_line_of_a_drawing_disappears()
{
    QFETCH(double, scale);
    QFETCH(double, position);
    TDrawingItem drawing(Frame());
    drawing.setPos(position, position);
    const QImage screen = Painted(&drawing, scale);
    // The least darkness that a line of two pixels gives to a pixel of the screen.
    const int least = static_cast<int>(255 * scale * 0.9);
    const QPoint corner = (QPointF(position, position) * scale).toPoint();
    const int extent = qRound(40 * scale);
    for (const Qt::Orientation along : {Qt::Horizontal, Qt::Vertical}) {
        const QList<int> lines = Darkest(screen, along).mid(corner.x(), extent);
        const auto half = extent / 2;
        QVERIFY(*std::max_element(lines.begin(), lines.begin() + half) >= least);
        QVERIFY(*std::max_element(lines.begin() + half, lines.end()) >= least);
    }
    QImage middle = screen.copy(corner.x() + extent / 2, corner.y(), 1, extent);
    int ink = 0;
    for (int y = 0; y < extent; ++y)
        ink += 255 - qGray(middle.pixel(0, y));
    // The upper and the lower side.
    QVERIFY2(ink >= 4 * 255 * scale * 0.9, qPrintable(QString::number(ink)));
}

void TestPictureItems::a_drawing_is_the_same_at_every_position()
{
    TDrawingItem drawing(Frame());
    const QImage at_origin = Painted(&drawing, 0.3).copy(0, 0, 12, 12);
    for (const double x : {3.4, 11.0, 26.7}) {
        drawing.setPos(x, 2 * x);
        const QPoint corner = (QPointF(x, 2 * x) * 0.3).toPoint();
        QCOMPARE(Support::Difference(Painted(&drawing, 0.3).copy(QRect(corner, QSize(12, 12))),
                                     at_origin),
                 QString());
    }
}

void TestPictureItems::the_scale_includes_the_pixel_ratio()
{
    const QPixmap pixmap = QPixmap::fromImage(Support::Picture(120, 90));
    QGraphicsPixmapItem plain(pixmap);
    TPictureItem picture(pixmap);
    QCOMPARE(Support::Difference(Painted(&picture, 0.3, 2.0), Painted(&plain, 0.3, 2.0)),
             QString());
    // A line of the frame is the same number of pixels from the corner as without the ratio.
    TDrawingItem drawing(Frame());
    drawing.setPos(40, 20);
    QImage fine = Painted(&drawing, 0.2, 2.0);
    fine.setDevicePixelRatio(1.0);
    drawing.setPos(40, 20);
    const QImage coarse = Painted(&drawing, 0.4);
    QCOMPARE(Support::Difference(fine.copy(16, 8, 16, 16), coarse.copy(16, 8, 16, 16)), QString());
}

void TestPictureItems::a_picture_is_reduced_only_once()
{
    TPictureItem picture(QPixmap::fromImage(Support::Picture(800, 600)));
    const qint64 before = TPixelStore::Shared().Bytes();
    Painted(&picture, 0.25);
    const qint64 expected = before + qint64(400 * 300 + 200 * 150) * 4;
    QCOMPARE(TPixelStore::Shared().Bytes(), expected);
    // All these scales use the same versions.
    for (const double scale : {0.25, 0.2, 0.3, 0.5})
        Painted(&picture, scale);
    QCOMPARE(TPixelStore::Shared().Bytes(), expected);
}

void TestPictureItems::an_item_without_a_pixmap_paints_nothing()
{
    QImage white(100, 100, QImage::Format_RGB32);
    white.fill(Qt::white);
    TPictureItem picture;
    TDrawingItem drawing;
    QCOMPARE(Support::Difference(Painted(&picture, 0.3), white), QString());
    QCOMPARE(Support::Difference(Painted(&drawing, 0.3), white), QString());
}

QTEST_MAIN(TestPictureItems)
#include "test_pictureitems.moc"
