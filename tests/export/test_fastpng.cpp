#include "src/export/fastpng.h"

#include "support/support.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <random>

namespace {

const QSize page_size(1000, 1200);

/// A page of text.
QImage Clean_Page()
{
    QImage page(page_size, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    constexpr int line_height = 20;
    for (int y = line_height; y < page.height(); y += line_height)
        painter.drawText(50, y, QStringLiteral("%1 lines of text, and %2 more").arg(y).arg(y * y));
    return page;
}

/// The same page on paper that is darker towards one corner, with grain on every pixel.
QImage Scanned_Page()
{
    QImage page = Clean_Page();
    std::minstd_rand random(1);
    constexpr int grain = 12;
    constexpr int shade_width = 20; // pixels
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            const int shade = (x + y) / shade_width;
            const auto darker = [&](int channel) {
                return qMax(0, channel - shade - static_cast<int>(random() % grain));
            };
            const QRgb pixel = page.pixel(x, y);
            page.setPixel(x, y,
                          qRgb(darker(qRed(pixel)), darker(qGreen(pixel)), darker(qBlue(pixel))));
        }
    }
    return page;
}

QImage Blank_Page()
{
    QImage page(page_size, QImage::Format_RGB32);
    page.fill(Qt::white);
    return page;
}

} // namespace

class TestFastPng : public QObject
{
    Q_OBJECT

private slots:
    void the_pixels_stay_data()
    {
        QTest::addColumn<QImage>("picture");
        QTest::newRow("scan") << Scanned_Page();
        QTest::newRow("clean") << Clean_Page();
        QTest::newRow("blank") << Blank_Page();
        QTest::newRow("pixel") << Support::Picture(1, 1);
        QTest::newRow("odd width") << Support::Picture(33, 40);
        // The encoder samples a band every 256 rows.
        QTest::newRow("255 rows") << Support::Picture(5, 255);
        QTest::newRow("256 rows") << Support::Picture(5, 256);
        QTest::newRow("257 rows") << Support::Picture(5, 257);
    }
    void the_pixels_stay()
    {
        QFETCH(const QImage, picture);
        const QByteArray bytes = FastPng::Encode(picture);
        QCOMPARE(Support::Difference(QImage::fromData(bytes, "png"), picture), QString());
    }

    void the_resolution_stays()
    {
        QImage picture = Support::Picture(20, 10);
        picture.setDotsPerMeterX(1000);
        picture.setDotsPerMeterY(2000);
        const QImage encoded = QImage::fromData(FastPng::Encode(picture), "png");
        QCOMPARE(encoded.dotsPerMeterX(), 1000);
        QCOMPARE(encoded.dotsPerMeterY(), 2000);
    }

    void the_file_is_about_as_small_as_by_default_data()
    {
        QTest::addColumn<QImage>("picture");
        QTest::newRow("scan") << Scanned_Page();
        QTest::newRow("clean") << Clean_Page();
    }
    void the_file_is_about_as_small_as_by_default()
    {
        QFETCH(const QImage, picture);
        const int size = FastPng::Encode(picture).size();
        const int default_size = Support::Png(picture).size();
        QVERIFY2(size <= default_size * 1.05,
                 qPrintable(QStringLiteral("%1 instead of %2").arg(size).arg(default_size)));
    }

    void a_null_picture_gives_nothing() { QCOMPARE(FastPng::Encode(QImage()), QByteArray()); }
};

QTEST_MAIN(TestFastPng)
#include "test_fastpng.moc"
