// Long work reports its progress to the active watch, block by block.

#include "core/workwatch.h"

#include "src/model/pageimage.h"

#include "support/support.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

namespace {

/// An image that no format compresses well: each pixel has a different value.
QImage Noise()
{
    QImage image(700, 500, QImage::Format_RGB32);
    QRandomGenerator numbers(7);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, numbers.generate());
    }
    return image;
}

} // namespace

class TestWorkWatch : public QObject
{
    Q_OBJECT

private slots:
    void notify_works_without_a_watch();
    void the_inner_watch_replaces_the_outer_one_until_it_ends();
    void each_block_is_reported_and_passed_on();
    void reading_a_file_notifies_the_watch();
    void reading_and_writing_images_notifies_the_watch_data();
    void reading_and_writing_images_notifies_the_watch();
};

void TestWorkWatch::notify_works_without_a_watch()
{
    TWorkWatch::Notify();
    int reports = 0;
    {
        const TWorkWatch watch([&reports] { ++reports; });
        TWorkWatch::Notify();
    }
    TWorkWatch::Notify();
    QCOMPARE(reports, 1);
}

void TestWorkWatch::the_inner_watch_replaces_the_outer_one_until_it_ends()
{
    QStringList reports;
    const TWorkWatch outer([&reports] { reports += "outer"; });
    {
        const TWorkWatch inner([&reports] { reports += "inner"; });
        TWorkWatch::Notify();
    }
    TWorkWatch::Notify();
    QCOMPARE(reports, QStringList({"inner", "outer"}));
}

void TestWorkWatch::each_block_is_reported_and_passed_on()
{
    int reports = 0;
    const TWorkWatch watch([&reports] { ++reports; });
    QByteArray bytes;
    TWatchedDevice<QBuffer> buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    QCOMPARE(buffer.write("abc"), qint64(3));
    QCOMPARE(buffer.write("defg"), qint64(4));
    QCOMPARE(bytes, QByteArray("abcdefg"));
    QCOMPARE(reports, 2);
    QVERIFY(buffer.seek(2));
    QCOMPARE(buffer.read(3), QByteArray("cde"));
    QCOMPARE(reports, 3);
}

void TestWorkWatch::reading_a_file_notifies_the_watch()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.bin");
    const QByteArray bytes(1'000'000, 'x');
    Support::Write_File(path, bytes);
    int reports = 0;
    const TWorkWatch watch([&reports] { ++reports; });
    TWatchedDevice<QFile> file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    for (int offset = 0; offset < bytes.size(); offset += 1000)
        QCOMPARE(file.read(1000), QByteArray(1000, 'x'));
    QVERIFY(reports > 10);
}

void TestWorkWatch::reading_and_writing_images_notifies_the_watch_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("PNG") << QByteArray("PNG");
    QTest::newRow("JPEG") << QByteArray("JPG");
    QTest::newRow("BMP") << QByteArray("BMP");
}

void TestWorkWatch::reading_and_writing_images_notifies_the_watch()
{
    QFETCH(QByteArray, format);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + format.toLower());
    QVERIFY(Noise().save(path, format));
    int reports = 0;
    const TWorkWatch watch([&reports] { ++reports; });

    // A single image consists of many blocks, so the watch is notified long before the image is
    // complete.
    const TPageImage image = TPageImage::From_File(path);
    QCOMPARE(image, QImage(path));
    QVERIFY2(reports > 5, qPrintable(QString::number(reports)));

    if (format != "PNG") {
        reports = 0;
        QVERIFY(!image.Png().isEmpty());
        QVERIFY2(reports > 5, qPrintable(QString::number(reports)));
    }
    const TPageImage again = TPageImage::From_Bytes(image.Png());
    reports = 0;
    QCOMPARE(again, QImage(path));
    QVERIFY2(reports > 5, qPrintable(QString::number(reports)));
}

QTEST_MAIN(TestWorkWatch)
#include "test_workwatch.moc"
