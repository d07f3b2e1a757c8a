// Images without compression, as one process passes them to another one.

#include "src/encoding/rawimage.h"

#include "support/support.h"

#include <QBuffer>
#include <QColorSpace>
#include <QTest>

class TestRawImage : public QObject
{
    Q_OBJECT

private slots:
    void pixels_and_format_survive_data();
    void pixels_and_format_survive();
    void what_a_png_contains_survives();
    void an_incomplete_image_is_null();
    void other_bytes_are_no_image();
};

namespace {

QByteArray Written(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return RawImage::Write(image, &buffer) ? buffer.data() : QByteArray();
}

QImage Read(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return RawImage::Read(&buffer);
}

} // namespace

void TestRawImage::pixels_and_format_survive_data()
{
    QTest::addColumn<QImage::Format>("format");
    for (int format = QImage::Format_Invalid + 1; format < QImage::NImageFormats; ++format)
        QTest::addRow("format %d", format) << static_cast<QImage::Format>(format);
}

void TestRawImage::pixels_and_format_survive()
{
    QFETCH(QImage::Format, format);
    // An odd width has padding at the end of most lines.
    const QImage image = Support::Picture(13, 7).convertToFormat(format);
    const QImage read = Read(Written(image));
    QCOMPARE(read.format(), format);
    QCOMPARE(read, image);
}

void TestRawImage::what_a_png_contains_survives()
{
    QImage image = Support::Picture(13, 7);
    image.setDotsPerMeterX(7874);
    image.setDotsPerMeterY(3937);
    image.setOffset(QPoint(5, -6));
    image.setText("Author", "J\u00f6rg");
    image.setText("Title", "Mill");
    image.setColorSpace(QColorSpace::AdobeRgb);
    const QImage read = Read(Written(image));
    QCOMPARE(read.dotsPerMeterX(), 7874);
    QCOMPARE(read.dotsPerMeterY(), 3937);
    QCOMPARE(read.offset(), QPoint(5, -6));
    QCOMPARE(read.textKeys(), QStringList({"Author", "Title"}));
    QCOMPARE(read.text("Author"), QString("J\u00f6rg"));
    QCOMPARE(read.colorSpace(), QColorSpace(QColorSpace::AdobeRgb));
    QCOMPARE(Support::Png(read), Support::Png(image));
}

void TestRawImage::an_incomplete_image_is_null()
{
    const QByteArray bytes = Written(Support::Picture(13, 7));
    QVERIFY(!Read(bytes).isNull());
    for (int size = 0; size < bytes.size(); ++size)
        QVERIFY2(Read(bytes.left(size)).isNull(), qPrintable(QString::number(size)));
}

void TestRawImage::other_bytes_are_no_image()
{
    QVERIFY(Read(Support::Png(Support::Picture(13, 7))).isNull());
    QVERIFY(Read(QByteArray(1000, '\xff')).isNull());
    QVERIFY(Read(QByteArray(1000, '\0')).isNull());
}

QTEST_GUILESS_MAIN(TestRawImage)
#include "test_rawimage.moc"
