// The cache of pixels: smaller versions of images. What it keeps of page images is tested with
// them.

#include "src/model/pixelstore.h"

#include "support/support.h"

#include <QTest>

class TestPixelStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void a_smaller_version_averages_the_pixels();
    void a_smaller_version_is_made_once();
    void only_the_last_size_of_an_image_is_kept();
    void smaller_versions_count_towards_the_limit();
};

void TestPixelStore::a_smaller_version_averages_the_pixels()
{
    QImage stripes(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            stripes.setPixelColor(x, y, x % 4 == 0 ? Qt::black : Qt::white);
    }
    TPixelStore store;
    const QImage reduced = store.Reduced(stripes, QSize(16, 16));
    QCOMPARE(reduced.size(), QSize(16, 16));
    for (int x = 0; x < 16; ++x)
        QVERIFY(qAbs(reduced.pixelColor(x, 8).red() - 191) <= 2);
}

void TestPixelStore::a_smaller_version_is_made_once()
{
    TPixelStore store;
    const QImage image = Support::Picture(100, 80);
    const QImage other = Support::Picture(100, 80, 1);
    const qint64 key = store.Reduced(image, QSize(50, 40)).cacheKey();
    QVERIFY(store.Reduced(other, QSize(50, 40)).cacheKey() != key);
    QCOMPARE(store.Reduced(image, QSize(50, 40)).cacheKey(), key);
    QCOMPARE(store.Bytes(), qint64(2 * 50 * 40 * 4));
}

void TestPixelStore::only_the_last_size_of_an_image_is_kept()
{
    TPixelStore store;
    const QImage image = Support::Picture(100, 80);
    store.Reduced(image, QSize(50, 40));
    QCOMPARE(store.Reduced(image, QSize(30, 20)).size(), QSize(30, 20));
    QCOMPARE(store.Bytes(), qint64(30 * 20 * 4));
}

void TestPixelStore::smaller_versions_count_towards_the_limit()
{
    TPixelStore store;
    const int owner = 0;
    store.Insert(&owner, QImage(4096, 16384, QImage::Format_RGB32));
    QCOMPARE(store.Bytes(), TPixelStore::Limit);
    store.Reduced(Support::Picture(8, 8), QSize(4, 4));
    QVERIFY(store.Find(&owner).isNull());
    QCOMPARE(store.Bytes(), qint64(4 * 4 * 4));
}

QTEST_APPLESS_MAIN(TestPixelStore)
#include "test_pixelstore.moc"
