// Cached label pixmaps have the same pixels as labels that are drawn separately.

#include "src/paint/labelcache.h"

#include "support/support.h"

#include <QTest>

namespace {

QImage Painted(const TLabelStyle& style, const QString& text, int border_type, bool selected)
{
    QPixmap pixmap = LabelPainter::Template(style);
    LabelPainter::Paint(&pixmap, style, text, border_type, selected);
    return pixmap.toImage();
}

} // namespace

class TestLabelCache : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void labels_have_the_pixels_of_the_painter();
    void labels_with_the_same_look_are_drawn_once();
    void labels_with_different_looks_are_different();
    void codes_without_a_border_share_one_drawing();
    void another_style_drops_all_pixmaps();
    void dropped_labels_are_drawn_again();

private:
    TLabelStyle d_style{45, 45, 16, QColor(250, 8, 50)};
    TLabelCache d_cache;
};

void TestLabelCache::init()
{
    d_cache.Set_Style(d_style, LabelPainter::Template(d_style));
}

void TestLabelCache::labels_have_the_pixels_of_the_painter()
{
    // Twice, so that the second round uses the cached pixmaps.
    for (int round = 0; round < 2; ++round) {
        for (const int border_type : {0, 1, 2, 3, 4, 8}) {
            for (const bool selected : {false, true}) {
                for (const char* latin : {"", "1", "12", "a long text"}) {
                    const QString text = QLatin1String(latin);
                    QCOMPARE(
                        Support::Difference(d_cache.Label(text, border_type, selected).toImage(),
                                            Painted(d_style, text, border_type, selected)),
                        QString());
                }
            }
        }
    }
}

void TestLabelCache::labels_with_the_same_look_are_drawn_once()
{
    const qint64 key = d_cache.Label(QStringLiteral("1"), 2, false).cacheKey();
    QCOMPARE(d_cache.Label(QStringLiteral("1"), 2, false).cacheKey(), key);
}

void TestLabelCache::labels_with_different_looks_are_different()
{
    const qint64 key = d_cache.Label(QStringLiteral("1"), 2, false).cacheKey();
    QVERIFY(d_cache.Label(QStringLiteral("2"), 2, false).cacheKey() != key);
    QVERIFY(d_cache.Label(QStringLiteral("1"), 1, false).cacheKey() != key);
    QVERIFY(d_cache.Label(QStringLiteral("1"), 2, true).cacheKey() != key);
}

void TestLabelCache::codes_without_a_border_share_one_drawing()
{
    const qint64 key = d_cache.Label(QStringLiteral("1"), 0, false).cacheKey();
    QCOMPARE(d_cache.Label(QStringLiteral("1"), 3, false).cacheKey(), key);
    QCOMPARE(d_cache.Label(QStringLiteral("1"), -1, false).cacheKey(), key);
}

void TestLabelCache::another_style_drops_all_pixmaps()
{
    const QString text = QStringLiteral("1");
    d_cache.Label(text, 2, false);
    const TLabelStyle styles[] = {
        {65, 45, 16, QColor(250, 8, 50)},
        {45, 65, 16, QColor(250, 8, 50)},
        {45, 45, 8, QColor(250, 8, 50)},
        {45, 45, 16, QColor(0, 8, 50)},
    };
    for (const TLabelStyle& style : styles) {
        d_cache.Set_Style(style, LabelPainter::Template(style));
        QCOMPARE(Support::Difference(d_cache.Label(text, 2, false).toImage(),
                                     Painted(style, text, 2, false)),
                 QString());
    }
}

void TestLabelCache::dropped_labels_are_drawn_again()
{
    // A label of 505 x 505 pixels takes a megabyte. The cache has room for fewer than the labels
    // below.
    const TLabelStyle style{505, 505, 200, QColor(250, 8, 50)};
    d_cache.Set_Style(style, LabelPainter::Template(style));
    const QString text = QStringLiteral("first");
    const qint64 key = d_cache.Label(text, 1, false).cacheKey();
    for (int i = 0; i < 160; ++i)
        d_cache.Label(QString::number(i), 1, false);
    const QPixmap again = d_cache.Label(text, 1, false);
    QVERIFY(again.cacheKey() != key);
    QCOMPARE(Support::Difference(again.toImage(), Painted(style, text, 1, false)), QString());
}

QTEST_MAIN(TestLabelCache)
#include "test_labelcache.moc"
