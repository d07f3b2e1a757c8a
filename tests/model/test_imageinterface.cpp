// A page image in place of a QImage: the same expressions, compiled and compared for both types.

#include "src/model/pageimage.h"

#include "support/support.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

class TestImageInterface : public QObject
{
    Q_OBJECT

private slots:
    void the_same_expressions_give_the_same_results_data();
    void the_same_expressions_give_the_same_results();
    void images_of_both_types_compare_in_both_directions();
    void a_page_image_is_drawn_like_an_image();
};

namespace {

QByteArray Saved(const QString& path)
{
    const QByteArray bytes = Support::Read_File(path);
    QFile::remove(path);
    return bytes;
}

/// Every const function of QImage that a page image has, with explicit and default arguments.
template <class TImage>
QVariantList Properties(const TImage& image)
{
    return {image.isNull(),
            image.size(),
            image.width(),
            image.height(),
            image.rect(),
            image.format(),
            image.depth(),
            image.hasAlphaChannel(),
            image.devicePixelRatio(),
            image.dotsPerMeterX(),
            image.dotsPerMeterY(),
            image.valid(3, 2),
            image.valid(-1, 0),
            image.valid(QPoint(1000, 0)),
            image.copy(),
            image.copy(QRect(1, 2, 3, 4)),
            image.copy(-1, -1, 6, 5),
            image.scaled(7, 5),
            image.scaled(QSize(20, 50), Qt::KeepAspectRatio, Qt::SmoothTransformation),
            image.scaledToWidth(9),
            image.scaledToHeight(9, Qt::SmoothTransformation),
            image.transformed(QTransform().rotate(90)),
            image.mirrored(),
            image.mirrored(true, false),
            image.convertToFormat(QImage::Format_RGB16),
            image.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither)};
}

template <class TImage>
QVariantList Pixels(const TImage& image)
{
    return {image.pixel(3, 2), image.pixel(QPoint(0, 1)), image.pixelColor(3, 2),
            image.pixelColor(QPoint(0, 1))};
}

template <class TImage>
QVariantList Files(const TImage& image, const QString& folder)
{
    const QString path = folder + "/image.png";
    QVariantList files{image.save(path), Saved(path)};
    files << image.save(path, "BMP") << Saved(path) << image.save(path, "JPG", 30) << Saved(path)
          << image.save(folder + "/missing/image.png");
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    files << image.save(&buffer, "PNG", 0) << buffer.data();
    return files;
}

QImage Transparent_Picture()
{
    QImage image = Support::Picture(16, 12).convertToFormat(QImage::Format_ARGB32);
    image.setPixelColor(3, 2, QColor(10, 20, 30, 40));
    image.setDotsPerMeterX(7874);
    image.setDotsPerMeterY(3937);
    return image;
}

} // namespace

void TestImageInterface::the_same_expressions_give_the_same_results_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("colour") << Support::Picture(16, 12);
    QTest::newRow("transparent") << Transparent_Picture();
    QTest::newRow("grey") << Support::Picture(16, 12).convertToFormat(QImage::Format_Grayscale8);
    QTest::newRow("palette") << Support::Picture(16, 12).convertToFormat(QImage::Format_Indexed8);
    QTest::newRow("null") << QImage();
}

void TestImageInterface::the_same_expressions_give_the_same_results()
{
    QFETCH(QImage, image);
    const QTemporaryDir folder;
    // Qt's decoder may choose another format than the image had.
    const QImage decoded = QImage::fromData(Support::Png(image));
    const TPageImage page_image = TPageImage::From_Bytes(Support::Png(image));
    QCOMPARE(Properties(page_image), Properties(decoded));
    QCOMPARE(Properties(TPageImage(image)), Properties(image));
    QCOMPARE(Files(page_image, folder.path()), Files(decoded, folder.path()));
    if (!image.isNull())
        QCOMPARE(Pixels(page_image), Pixels(decoded));
}

void TestImageInterface::images_of_both_types_compare_in_both_directions()
{
    const QImage picture = Support::Picture(16, 12);
    const QImage other = Support::Picture(16, 12, 1);
    const TPageImage image = TPageImage::From_Bytes(Support::Png(picture));
    const TPageImage same = TPageImage::From_Bytes(Support::Png(picture));
    const TPageImage copy = image;
    QVERIFY(image == picture && picture == image && image == same && image == copy);
    QVERIFY(!(image != picture) && !(picture != image) && !(image != same) && !(image != copy));
    QVERIFY(image != other && other != image && image != TPageImage(other));
    QVERIFY(!(image == other) && !(other == image) && !(image == TPageImage(other)));
    QVERIFY(TPageImage() == QImage() && QImage() == TPageImage() && TPageImage() == TPageImage());
    QVERIFY(image != QImage() && TPageImage() != picture);
}

void TestImageInterface::a_page_image_is_drawn_like_an_image()
{
    const QImage picture = Support::Picture(16, 12);
    const TPageImage image = TPageImage::From_Bytes(Support::Png(picture));
    QImage drawn(20, 20, QImage::Format_RGB32);
    drawn.fill(Qt::white);
    QImage expected = drawn;
    QPainter(&drawn).drawImage(2, 3, image);
    QPainter(&expected).drawImage(2, 3, picture);
    QCOMPARE(Support::Difference(drawn, expected), QString());
}

QTEST_MAIN(TestImageInterface)
#include "test_imageinterface.moc"
