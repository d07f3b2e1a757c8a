// Page images: decoded on demand, encoded at most once, in a cache of limited size.

#include "src/model/pageimage.h"

#include "core/openfile.h"
#include "core/workwatch.h"
#include "src/model/pixelstore.h"
#include "support/inputfiles.h"
#include "support/support.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <cstdlib>
#include <malloc.h>
#include <unistd.h>

namespace {

quint32 Crc(const QByteArray& bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320 : 0);
    }
    return ~crc;
}

template <typename TNumber>
QByteArray Big_Endian(TNumber number)
{
    QByteArray bytes(sizeof(TNumber), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

template <typename TNumber>
QByteArray Little_Endian(TNumber number)
{
    QByteArray bytes(sizeof(TNumber), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

/// A PNG whose header declares a size that its data do not have.
QByteArray Png_Declaring(quint32 width, quint32 height)
{
    QByteArray bytes = Support::Png(Support::Picture(8, 8));
    bytes.replace(16, 8, Big_Endian(width) + Big_Endian(height));
    bytes.replace(29, 4, Big_Endian(Crc(bytes.mid(12, 17))));
    return bytes;
}

/// A greyscale image of a few bytes that declares a large size.
QByteArray Pgm_Declaring(int width, int height)
{
    return "P5\n" + QByteArray::number(width) + ' ' + QByteArray::number(height) + "\n255\n" +
           "abc";
}

QByteArray Bmp_Declaring(qint32 width, qint32 height)
{
    QByteArray bytes = Support::Encoded(Support::Picture(8, 8), "BMP");
    return bytes.replace(18, 8, Little_Endian(width) + Little_Endian(height));
}

/// An icon file with one picture. Its directory entry leaves the size open.
QByteArray Icon(const QByteArray& picture)
{
    return Little_Endian<quint16>(0) + Little_Endian<quint16>(1) + Little_Endian<quint16>(1) +
           QByteArray(4, '\0') + Little_Endian<quint16>(1) + Little_Endian<quint16>(32) +
           Little_Endian<quint32>(static_cast<quint32>(picture.size())) +
           Little_Endian<quint32>(22) + picture;
}

QByteArray Bitmap_Header(qint32 width, qint32 height)
{
    return Little_Endian<quint32>(40) + Little_Endian(width) + Little_Endian(height) +
           Little_Endian<quint16>(1) + Little_Endian<quint16>(32) + QByteArray(24, '\0') +
           QByteArray(64, 'x');
}

/// The picture of an icon: a palette of two colours, the lines of pixels, and the lines of the
/// mask.
QByteArray Icon_Bitmap(int width, int height)
{
    const int line = (width + 31) / 32 * 4; // bytes
    return Little_Endian<quint32>(40) + Little_Endian(width) + Little_Endian(2 * height) +
           Little_Endian<quint16>(1) + Little_Endian<quint16>(1) + QByteArray(24, '\0') +
           QByteArray(8, '\x55') + QByteArray(2 * line * height, '\x55');
}

QByteArray Text_Of_Xpm()
{
    return "/* XPM */\nstatic char *x[]={\n\"2 2 2 1\",\n\"a c #ff0000\",\n\"b c "
           "#0000ff\",\n\"ab\",\n"
           "\"ba\"};\n";
}

/// A black line as PBM, and also a half black one as XBM. Only the suffix of the file name decides.
QByteArray Pbm_Or_Xbm()
{
    return "P1\n#define a_width 8\n#define a_height 1\n8 1\n1 1 1 1 1 1 1 1\n"
           "# static char a_bits[] = { 0x0f };\n";
}

/// Encodes a picture as a BMP whose lines are stored from top to bottom.
QByteArray Top_Down_Bmp(const QImage& picture)
{
    QByteArray bytes = Support::Encoded(picture.convertToFormat(QImage::Format_RGB32), "BMP");
    const int header = 54;
    const int line = (bytes.size() - header) / picture.height();
    QByteArray top_down = bytes.left(header);
    top_down.replace(22, 4, Little_Endian<qint32>(-picture.height()));
    for (int row = picture.height() - 1; row >= 0; --row)
        top_down += bytes.mid(header + row * line, line);
    return top_down;
}

QImage Transparent_Picture()
{
    QImage image(30, 20, QImage::Format_ARGB32);
    image.fill(QColor(10, 200, 30, 77));
    image.setPixelColor(3, 4, QColor(255, 0, 0, 255));
    image.setPixelColor(5, 4, Qt::transparent);
    return image;
}

/// Encoded pictures of all kinds, including broken ones.
QVector<QPair<const char*, QByteArray>> Samples()
{
    const QImage picture = Support::Picture(40, 30, 3);
    QByteArray bad_checksum = Support::Png(picture);
    bad_checksum[40] = static_cast<char>(bad_checksum[40] ^ 0x55);
    const QByteArray jpeg = Support::Encoded(picture, "JPG");
    return {
        {"png", Support::Png(picture)},
        {"png with transparency", Support::Png(Transparent_Picture())},
        {"png with a palette", Support::Png(picture.convertToFormat(QImage::Format_Indexed8))},
        {"png of two colours", Support::Png(picture.convertToFormat(QImage::Format_Mono))},
        {"grey png", Support::Png(picture.convertToFormat(QImage::Format_Grayscale8))},
        {"png of 16 bits", Support::Png(picture.convertToFormat(QImage::Format_RGBA64))},
        {"jpeg", jpeg},
        {"grey jpeg", Support::Encoded(picture.convertToFormat(QImage::Format_Grayscale8), "JPG")},
        {"bmp", Support::Encoded(picture, "BMP")},
        {"ppm", Support::Encoded(picture, "PPM")},
        {"xbm", Support::Encoded(picture.convertToFormat(QImage::Format_Mono), "XBM")},
        {"xpm", Text_Of_Xpm()},
        {"ico", Support::Encoded(picture, "ICO")},
        {"ico of a png", Icon(Support::Png(picture))},
        {"gif",
         QByteArray::fromBase64("R0lGODlhAgACAIAAAP8AAAAA/yH5BAAAAAAALAAAAAACAAIAAAIDRAIFADs=")},
        {"png cut short", Support::Png(picture).left(200)},
        {"png with a wrong checksum", bad_checksum},
        {"png signature alone", Support::Png(picture).left(8)},
        {"png with trailing bytes", Support::Png(picture) + "trailing"},
        {"jpeg cut short", jpeg.left(jpeg.size() * 2 / 3)},
        {"icon without a picture", Icon(QByteArray())},
        {"icon cut short", Icon(QByteArray()).left(20)},
        {"text", QByteArray("this is no image")},
        {"one byte", QByteArray("\0", 1)},
    };
}

void Add_Samples()
{
    QTest::addColumn<QByteArray>("bytes");
    for (const auto& sample : Samples())
        QTest::newRow(sample.first) << sample.second;
}

/// Compares a page image with a plain image. Compares size and nullness before and after decoding.
void Compare(const TPageImage& image, const QImage& expected)
{
    QCOMPARE(image.isNull(), expected.isNull());
    QCOMPARE(image.size(), expected.size());
    const QImage pixels = image;
    QCOMPARE(pixels.format(), expected.format());
    QCOMPARE(pixels, expected);
    QCOMPARE(image.isNull(), expected.isNull());
    QCOMPARE(image.size(), expected.size());
}

/// An image with 64 MiB of pixels and few bytes.
QByteArray Large_Png(int seed)
{
    QImage image(4096, 4096, QImage::Format_RGB32);
    image.fill(QColor(seed, 100, 50));
    return Support::Png(image);
}

constexpr qint64 large_bytes = 64LL * 1024 * 1024;

/// A white picture whose top left quarter is black.
QImage Corner()
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 20; ++x)
            image.setPixelColor(x, y, Qt::black);
    }
    return image;
}

/// The black quarter of a picture: (0, 0) is the top left one, (1, 1) the bottom right one.
QPoint Dark_Corner(const QImage& image)
{
    for (const QPoint& corner : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
        const QPoint middle(image.width() / 4 + corner.x() * image.width() / 2,
                            image.height() / 4 + corner.y() * image.height() / 2);
        if (image.pixelColor(middle).lightness() < 50)
            return corner;
    }
    return {-1, -1};
}

/// Where the top left corner of a photo is when viewed, from the table in the EXIF standard.
QPoint Corner_To_View(int orientation)
{
    const QPoint corners[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {1, 1}, {0, 1}};
    return corners[orientation - 1];
}

} // namespace

class TestPageImage : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        // Destroyed images leave no pixels in the cache.
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    // First: the other tests create the cache, so that it outlives every static image.
    void an_image_may_outlive_main()
    {
        const Support::TChildResult result = Support::Run_In_Child([] {
            // The C library overwrites freed memory, so that any use of it crashes.
            mallopt(M_PERTURB, 0xa5);
            // Called when the static objects below have been destroyed, and before sanitizers
            // report what the parent left in memory.
            std::atexit([] { _exit(0); });
            static TPageImage image = TPageImage::From_Bytes(Support::Png(Support::Picture(9, 9)));
            if (image.isNull() || TPixelStore::Shared().Bytes() == 0)
                return 1;
            // Destroys static objects in the reverse order of their construction.
            std::exit(1);
        });
        QCOMPARE(result.signal, 0);
        QCOMPARE(result.exit_code, 0);
    }

    void a_null_image_behaves_like_a_null_qimage()
    {
        for (const TPageImage& image :
             {TPageImage(), TPageImage(QImage()), TPageImage::From_Bytes(QByteArray())}) {
            Compare(image, QImage());
            QVERIFY(image.Png().isEmpty());
            QVERIFY(image.Source_Bytes().isEmpty());
        }
    }

    void an_image_made_from_pixels_returns_them_unchanged()
    {
        const QImage picture = Support::Picture(40, 30).convertToFormat(QImage::Format_RGB888);
        const TPageImage image = picture;
        Compare(image, picture);
        QCOMPARE(QImage(image).cacheKey(), picture.cacheKey());
        QCOMPARE(image.Png(), Support::Png(picture));
        QCOMPARE(image.Source_Bytes(), Support::Png(picture));
        QCOMPARE(QImage(image).cacheKey(), picture.cacheKey());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    void bytes_are_decoded_as_qt_does_data() { Add_Samples(); }

    void bytes_are_decoded_as_qt_does()
    {
        QFETCH(const QByteArray, bytes);
        const QImage expected = QImage::fromData(bytes);
        Compare(TPageImage::From_Bytes(bytes), expected);
        QCOMPARE(TPageImage::From_Bytes(bytes).size(), expected.size());
        QCOMPARE(QImage(TPageImage::From_Bytes(bytes)), expected);
    }

    void source_bytes_are_the_original_bytes_data() { Add_Samples(); }

    void source_bytes_are_the_original_bytes()
    {
        QFETCH(const QByteArray, bytes);
        const TPageImage image = TPageImage::From_Bytes(bytes);
        QCOMPARE(image.Source_Bytes(), bytes);
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
        image.isNull();
        image.Png();
        QCOMPARE(image.Source_Bytes(), bytes);
    }

    void only_decodable_bytes_other_than_png_are_encoded_data() { Add_Samples(); }

    void only_decodable_bytes_other_than_png_are_encoded()
    {
        QFETCH(const QByteArray, bytes);
        const QImage decoded = QImage::fromData(bytes);
        const bool is_png = bytes.startsWith(QByteArray::fromHex("89504e470d0a1a0a"));
        const QByteArray expected = is_png || decoded.isNull() ? bytes : Support::Png(decoded);
        QCOMPARE(TPageImage::From_Bytes(bytes).Png(), expected);
    }

    void png_bytes_are_returned_without_decoding()
    {
        const TPageImage image = TPageImage::From_Bytes(Support::Png(Support::Picture(40, 30)));
        image.Png();
        image.Source_Bytes();
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    void images_without_a_png_need_encoding()
    {
        const QImage picture = Support::Picture(40, 30);
        QVERIFY(!TPageImage().Needs_Encoding());
        QVERIFY(!TPageImage::From_Bytes(Support::Png(picture)).Needs_Encoding());
        QVERIFY(TPageImage(picture).Needs_Encoding());
        const TPageImage image = TPageImage::From_Bytes(Support::Encoded(picture, "BMP"));
        QVERIFY(image.Needs_Encoding());
        QVERIFY(!image.isNull());
        QVERIFY(image.Needs_Encoding());
        image.Png();
        QVERIFY(!image.Needs_Encoding());
        const TPageImage undecodable = TPageImage::From_Bytes("this is no image");
        QVERIFY(undecodable.isNull());
        QVERIFY(!undecodable.Needs_Encoding());
    }

    void a_png_can_be_set_once()
    {
        const TPageImage image =
            TPageImage::From_Bytes(Support::Encoded(Support::Picture(40, 30), "BMP"));
        image.Set_Png("encoded elsewhere");
        QVERIFY(!image.Needs_Encoding());
        image.Set_Png("encoded again");
        QCOMPARE(image.Png(), QByteArray("encoded elsewhere"));
        TPageImage().Set_Png("of no image");
    }

    void all_copies_share_one_encoding()
    {
        const TPageImage image =
            TPageImage::From_Bytes(Support::Encoded(Support::Picture(40, 30), "BMP"));
        const TPageImage copy = image;
        const QByteArray bytes = image.Png();
        // Not QCOMPARE, which compares the text at the addresses.
        QVERIFY(copy.Png().constData() == bytes.constData());
        QVERIFY(image.Png().constData() == bytes.constData());
        const TPageImage from_pixels = Support::Picture(20, 20);
        QVERIFY(from_pixels.Png().constData() == from_pixels.Png().constData());
    }

    void decoded_pixels_stay_in_the_cache()
    {
        const QImage picture = Support::Picture(40, 30);
        const TPageImage image = TPageImage::From_Bytes(Support::Png(picture));
        QVERIFY(!image.isNull());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(picture.sizeInBytes()));
        const TPageImage copy = image;
        QCOMPARE(QImage(copy).cacheKey(), QImage(image).cacheKey());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(picture.sizeInBytes()));
    }

    void encoding_adds_nothing_to_the_cache()
    {
        const QImage picture = Support::Picture(40, 30);
        const TPageImage image = TPageImage::From_Bytes(Support::Encoded(picture, "BMP"));
        QCOMPARE(QImage::fromData(image.Png()), picture);
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
        QCOMPARE(image.size(), picture.size());
    }

    void painting_on_the_pixels_does_not_change_the_page_image()
    {
        const QImage picture = Support::Picture(40, 30);
        const TPageImage image = TPageImage::From_Bytes(Support::Png(picture));
        QImage pixels = image;
        pixels.fill(Qt::red);
        QCOMPARE(QImage(image), picture);
    }

    void an_undecodable_image_adds_nothing_to_the_cache()
    {
        const TPageImage image = TPageImage::From_Bytes("no image");
        QVERIFY(image.isNull());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    void an_image_shares_a_part_of_an_array_and_keeps_it_alive()
    {
        const QImage picture = Support::Picture(40, 30);
        const QByteArray png = Support::Png(picture);
        const char* position = nullptr;
        TPageImage image;
        {
            const QByteArray whole = "before" + png + "after";
            position = whole.constData() + 6;
            image = TPageImage::From_Bytes(TByteSource(whole).Part(6, png.size()));
        }
        QCOMPARE(static_cast<const void*>(image.Png().constData()),
                 static_cast<const void*>(position));
        QCOMPARE(image.Png(), png);
        Compare(image, picture);
    }

    void an_image_of_more_than_500_megapixels_is_undecodable_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("png") << Png_Declaring(25000, 20001);
        QTest::newRow("wide png") << Png_Declaring(500'000'001, 1);
        QTest::newRow("pgm") << Pgm_Declaring(25000, 20001);
        QTest::newRow("bmp") << Bmp_Declaring(25000, 20001);
        QTest::newRow("top-down bmp") << Bmp_Declaring(25000, -20001);
        QTest::newRow("icon of a bitmap") << Icon(Bitmap_Header(50000, 50000));
        QTest::newRow("icon of a png") << Icon(Png_Declaring(50000, 50000));
        // This image could be decoded.
        QImage picture(25000, 20001, QImage::Format_Mono);
        picture.fill(0);
        QTest::newRow("icon of a whole png") << Icon(Support::Png(picture));
        QTest::newRow("icon of a whole bitmap") << Icon(Icon_Bitmap(20000, 12501));
    }

    void an_image_of_more_than_500_megapixels_is_undecodable()
    {
        QFETCH(const QByteArray, bytes);
        const TPageImage image = TPageImage::From_Bytes(bytes);
        Compare(image, QImage());
        QCOMPARE(image.Png(), bytes);

        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture"));
        Support::Write_File(path, bytes);
        QVERIFY(TPageImage::From_File(path).isNull());
    }

    // With one bit per pixel, an image of this size takes little memory.
    void an_image_of_exactly_500_megapixels_is_decoded()
    {
        const QByteArray header = "P4\n25000 20000\n";
        const QByteArray bytes = header + QByteArray(3125 * 20000, '\x55');
        const TPageImage image = TPageImage::From_Bytes(bytes);
        QVERIFY(!image.isNull());
        QCOMPARE(image.size(), QSize(25000, 20000));
        QVERIFY(TPageImage::From_Bytes("P4\n25000 20001\n" + QByteArray(3125 * 20001, '\x55'))
                    .isNull());
        QVERIFY(
            TPageImage::From_Bytes("P4\n500000008 1\n" + QByteArray(62'500'001, '\x55')).isNull());
    }

    void the_pixels_of_a_size_are_counted_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("is_too_large");
        QTest::newRow("one line") << QSize(500'000'000, 1) << false;
        QTest::newRow("one line too long") << QSize(500'000'001, 1) << true;
        QTest::newRow("one column too long") << QSize(1, 500'000'001) << true;
        QTest::newRow("top-down line too long") << QSize(500'000'001, -1) << true;
        QTest::newRow("no line") << QSize(500'000'001, 0) << false;
    }

    void the_pixels_of_a_size_are_counted()
    {
        QFETCH(const QSize, size);
        QTEST(TPageImage::Is_Too_Large(size), "is_too_large");
    }

    void a_cursor_is_checked_like_an_icon()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("arrow.cur"));
        Support::Write_File(path, Icon(Icon_Bitmap(40, 30)));
        QCOMPARE(TPageImage::From_File(path, "cur").size(), QSize(40, 30));
        QImage picture(25000, 20001, QImage::Format_Mono);
        picture.fill(0);
        Support::Write_File(path, Icon(Support::Png(picture)));
        QVERIFY(TPageImage::From_File(path, "cur").isNull());
    }

    void an_icon_of_a_large_png_is_decoded()
    {
        QImage picture(3000, 3000, QImage::Format_Mono);
        picture.fill(0);
        QCOMPARE(TPageImage::From_Bytes(Icon(Support::Png(picture))).size(), picture.size());
    }

    void an_icon_of_a_bitmap_is_decoded()
    {
        QCOMPARE(TPageImage::From_Bytes(Icon(Icon_Bitmap(40, 30))).size(), QSize(40, 30));
    }

    void a_bitmap_without_height_is_undecodable()
    {
        QVERIFY(TPageImage::From_Bytes(Bmp_Declaring(10, 0)).isNull());
    }

    void an_undecodable_image_is_read_only_once()
    {
        const TPageImage image = TPageImage::From_Bytes("P5\n10 10\n255\n");
        QVERIFY(image.isNull());
        int blocks = 0;
        const TWorkWatch watch([&blocks] { ++blocks; });
        QVERIFY(QImage(image).isNull());
        QVERIFY(image.isNull());
        QCOMPARE(blocks, 0);
        // Decoding another image does notify the watch.
        QVERIFY(!TPageImage::From_Bytes(Support::Png(Support::Picture(40, 30))).isNull());
        QVERIFY(blocks > 0);
    }

    void an_image_file_is_decoded_into_the_cache_at_once()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture.png"));
        Support::Write_File(path, Support::Png(Support::Picture(40, 30)));
        const TPageImage image = TPageImage::From_File(path);
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(40 * 30 * 4));
        QVERIFY(!image.isNull());
    }

    void a_file_is_read_as_qt_does_data() { Add_Samples(); }

    void a_file_is_read_as_qt_does()
    {
        QFETCH(const QByteArray, bytes);
        const QTemporaryDir folder;
        for (const char* const name : {"plain", "picture.png", "picture.jpg", "picture.txt"}) {
            const QString path = folder.filePath(QString::fromLatin1(name));
            Support::Write_File(path, bytes);
            const QImage expected(path);
            const TPageImage image = TPageImage::From_File(path);
            QVERIFY(QFile::remove(path));
            Compare(image, expected);
            QCOMPARE(image.Source_Bytes(), expected.isNull() ? QByteArray() : bytes);
        }
    }

    void source_bytes_of_a_file_decode_alike_regardless_of_its_name_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QString>("suffix");
        const QByteArray formats[] = {"bmp", "ico", "jpg", "pbm", "pgm",
                                      "png", "ppm", "xbm", "xpm"};
        for (const QByteArray& format : formats) {
            for (const char* const suffix :
                 {"bmp", "cur", "ico", "jpg", "pbm", "png", "xbm", "txt"})
                QTest::newRow(format + " named " + suffix) << format << QString::fromLatin1(suffix);
        }
    }

    void source_bytes_of_a_file_decode_alike_regardless_of_its_name()
    {
        QFETCH(const QByteArray, format);
        QFETCH(const QString, suffix);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture.") + suffix);
        QVERIFY(Support::Picture(40, 30).save(path, format.constData()));
        const QImage expected(path);
        const TPageImage image = TPageImage::From_Bytes(TPageImage::From_File(path).Source_Bytes());
        QCOMPARE(Support::Difference(image, expected), QString());
    }

    void the_suffix_decides_if_the_content_is_valid_in_two_formats_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("XBM") << QStringLiteral("picture.xbm");
        QTest::newRow("PBM") << QStringLiteral("picture.pbm");
    }

    void the_suffix_decides_if_the_content_is_valid_in_two_formats()
    {
        QFETCH(const QString, name);
        const QTemporaryDir folder;
        const QString path = folder.filePath(name);
        Support::Write_File(path, Pbm_Or_Xbm());
        const QImage expected(path);
        QCOMPARE(expected.size(), QSize(8, 1));
        QCOMPARE(expected.pixelColor(7, 0),
                 QColor(name.endsWith(QLatin1String("xbm")) ? Qt::white : Qt::black));
        const TPageImage image = TPageImage::From_File(path);
        QCOMPARE(Support::Difference(image, expected), QString());
        QCOMPARE(Support::Difference(image.Encoded(), expected), QString());
        QCOMPARE(Support::Difference(QImage::fromData(image.Png()), expected), QString());
        QCOMPARE(Support::Difference(TPageImage::From_Bytes(image.Source_Bytes()), expected),
                 QString());
    }

    void an_image_has_its_real_size_whatever_its_name()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("name@2x.png"));
        Support::Write_File(path, Support::Png(Support::Picture(40, 30)));
        const TPageImage image = TPageImage::From_File(path);
        QCOMPARE(QImage(image).devicePixelRatio(), 1.0);
        QCOMPARE(image.size(), QSize(40, 30));
        QCOMPARE(QPixmap::fromImage(image).devicePixelRatio(), 1.0);
        QCOMPARE(QImage(image.Encoded()).devicePixelRatio(), 1.0);
    }

    void a_bmp_is_read_with_either_order_of_its_lines_data()
    {
        QTest::addColumn<bool>("is_top_down");
        QTest::newRow("bottom-up") << false;
        QTest::newRow("top-down") << true;
    }

    void a_bmp_is_read_with_either_order_of_its_lines()
    {
        QFETCH(const bool, is_top_down);
        const QImage picture = Support::Picture(40, 30);
        const QByteArray bytes =
            is_top_down ? Top_Down_Bmp(picture) : Support::Encoded(picture, "BMP");
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture.bmp"));
        Support::Write_File(path, bytes);
        QCOMPARE(Support::Difference(TPageImage::From_File(path), picture), QString());
        const TPageImage image = TPageImage::From_Bytes(bytes);
        QCOMPARE(image.size(), QSize(40, 30));
        QCOMPARE(Support::Difference(image, picture), QString());
    }

    void the_suffix_of_a_file_is_not_guessed()
    {
        const QTemporaryDir folder;
        Support::Write_File(folder.filePath(QStringLiteral("picture.png")),
                            Support::Png(Support::Picture(40, 30)));
        const QString path = folder.filePath(QStringLiteral("picture"));
        QVERIFY(!QImage(path).isNull());
        QVERIFY(TPageImage::From_File(path).isNull());
    }

    void a_file_that_cannot_be_read_gives_a_null_image()
    {
        const QTemporaryDir folder;
        QVERIFY(TPageImage::From_File(QString()).isNull());
        QVERIFY(TPageImage::From_File(folder.path()).isNull());
        QVERIFY(TPageImage::From_File(folder.filePath(QStringLiteral("missing.png"))).isNull());
    }

    void an_image_keeps_its_pixels_if_its_file_vanishes_while_it_is_read_data()
    {
        QTest::addColumn<bool>("is_removed");
        QTest::newRow("removed") << true;
        QTest::newRow("emptied") << false;
    }

    void an_image_keeps_its_pixels_if_its_file_vanishes_while_it_is_read()
    {
        QFETCH(const bool, is_removed);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture.png"));
        const QImage picture = Support::Picture(40, 30);
        Support::Write_File(path, Support::Png(picture));
        // The decoder has the only block of the file when the watch is notified of the next one.
        int blocks = 0;
        const TWorkWatch watch([&] {
            if (++blocks < 2)
                return;
            if (is_removed)
                QFile::remove(path);
            else
                QFile::resize(path, 0);
        });
        const TPageImage image = TPageImage::From_File(path);
        QVERIFY(QFileInfo(path).size() == 0);
        QCOMPARE(Support::Difference(image, picture), QString());
        QCOMPARE(image.Source_Bytes(), Support::Png(picture));
    }

    void a_png_file_is_kept_byte_for_byte()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("picture.png"));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        Support::Picture(40, 30).save(&buffer, "PNG", 100);
        Support::Write_File(path, bytes);
        QVERIFY(bytes != Support::Png(Support::Picture(40, 30)));
        QCOMPARE(TPageImage::From_File(path).Png(), bytes);
    }

    void an_upright_photo_is_turned_by_its_orientation_data()
    {
        QTest::addColumn<bool>("is_tiff");
        QTest::addColumn<int>("orientation");
        for (int orientation = 1; orientation <= 8; ++orientation) {
            QTest::addRow("JPEG %d", orientation) << false << orientation;
            QTest::addRow("TIFF %d", orientation) << true << orientation;
        }
    }

    void an_upright_photo_is_turned_by_its_orientation()
    {
        QFETCH(const bool, is_tiff);
        QFETCH(const int, orientation);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("photo"));
        const QByteArray bytes = is_tiff ? Support::Tiff({Corner()}, orientation)
                                         : Support::Exif_Jpeg(Corner(), orientation);
        Support::Write_File(path, bytes);

        const TPageImage upright =
            TPageImage::From_File(path, QByteArray(), TPageImage::TOrientation::Upright);
        QCOMPARE(upright.size(), orientation < 5 ? QSize(40, 20) : QSize(20, 40));
        QCOMPARE(Dark_Corner(upright), Corner_To_View(orientation));
        QCOMPARE(Dark_Corner(upright.Encoded()), Corner_To_View(orientation));
        // What is saved is upright as well.
        QCOMPARE(Support::Difference(QImage::fromData(upright.Png()), upright), QString());
        QCOMPARE(Support::Difference(QImage::fromData(upright.Source_Bytes()), upright), QString());
        QCOMPARE(upright.Encoded().Source_Bytes(), upright.Source_Bytes());

        const TPageImage stored = TPageImage::From_File(path);
        QCOMPARE(stored.size(), QSize(40, 20));
        QCOMPARE(Dark_Corner(stored), QPoint(0, 0));
        QCOMPARE(stored.Source_Bytes(), bytes);
    }

    void an_upright_photo_without_rotation_keeps_its_bytes()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("photo"));
        Support::Write_File(path, Support::Exif_Jpeg(Corner(), 1));
        const TPageImage image =
            TPageImage::From_File(path, QByteArray(), TPageImage::TOrientation::Upright);
        QCOMPARE(image.Source_Bytes(), Support::Read_File(path));
    }

    void each_page_of_a_tiff_is_a_picture()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("scan.tif"));
        const QVector<QImage> pages{Support::Picture(40, 30, 1), Support::Picture(25, 35, 2),
                                    Support::Picture(40, 30, 3)};
        Support::Write_File(path, Support::Tiff(pages));
        const TPageImage first = TPageImage::From_File(path);
        QCOMPARE(TPageImage::Picture_Count(path), 3);
        for (int index = 0; index < pages.size(); ++index) {
            const TPageImage image = first.Picture(index);
            QCOMPARE(image.size(), pages[index].size());
            QCOMPARE(Support::Difference(image, pages[index]), QString());
            QCOMPARE(Support::Difference(image.Encoded(), pages[index]), QString());
            QCOMPARE(Support::Difference(QImage::fromData(image.Png()), pages[index]), QString());
            QCOMPARE(
                Support::Difference(TPageImage::From_Bytes(image.Source_Bytes()), pages[index]),
                QString());
        }
        QVERIFY(first.Picture(3).isNull());
        QVERIFY(first.Picture(0).Is_Copy_Of(first));
        QCOMPARE(first.Picture(0).Source_Bytes(), first.Source_Bytes());
        QVERIFY(TPageImage().Picture(1).isNull());
    }

    void a_picture_keeps_the_array_of_its_file_alive()
    {
        const QByteArray tiff = Support::Tiff({Support::Picture(4, 3), Support::Picture(5, 3)});
        const QByteArray whole = "before" + tiff;
        const TPageImage picture =
            TPageImage::From_Bytes(TByteSource(whole).Part(6, tiff.size())).Picture(1);
        QCOMPARE(picture.size(), QSize(5, 3));
        QVERIFY(!whole.isDetached());
    }

    void each_page_of_a_tiff_is_turned_upright()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("scan.tiff"));
        Support::Write_File(path, Support::Tiff({Corner(), Corner()}, 6));
        const TPageImage first =
            TPageImage::From_File(path, QByteArray(), TPageImage::TOrientation::Upright);
        QCOMPARE(Dark_Corner(first.Picture(1)), Corner_To_View(6));
        QCOMPARE(first.Picture(1).size(), QSize(20, 40));
    }

    void a_damaged_page_of_a_tiff_gives_a_null_image()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("scan.tif"));
        const QByteArray bytes =
            Support::Tiff({Support::Picture(40, 30, 1), Support::Picture(40, 30, 2)});
        Support::Write_File(path, bytes.left(bytes.size() - 3000));
        const TPageImage first = TPageImage::From_File(path);
        QVERIFY(!first.isNull());
        QCOMPARE(TPageImage::Picture_Count(path), 2);
        QVERIFY(first.Picture(1).isNull());
    }

    void a_page_of_a_tiff_must_not_be_too_large()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("scan.tif"));
        QByteArray bytes =
            Support::Tiff({Support::Picture(40, 30, 1), Support::Picture(40, 30, 2)});
        // The width in the second directory.
        const QByteArray width = QByteArray::fromHex("00010400010000002800");
        const int place = bytes.lastIndexOf(width);
        QVERIFY(place > bytes.indexOf(width));
        bytes.replace(place, width.size() + 2, QByteArray::fromHex("000104000100000000ca9a3b"));
        Support::Write_File(path, bytes);
        const TPageImage first = TPageImage::From_File(path);
        QVERIFY(!first.isNull());
        QVERIFY(first.Picture(1).isNull());
    }

    void a_tiff_whose_directories_form_a_circle_has_a_last_page()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("scan.tif"));
        QByteArray bytes = Support::Tiff({Support::Picture(40, 30)});
        // The offset after the ten entries of the only directory.
        bytes.replace(8 + 2 + 10 * 12, 4, QByteArray::fromHex("08000000"));
        Support::Write_File(path, bytes);
        QCOMPARE(TPageImage::Picture_Count(path), 1);
    }

    void other_images_have_one_picture()
    {
        const QTemporaryDir folder;
        for (const char* const format : {"png", "jpg", "bmp", "webp"}) {
            const QString path = folder.filePath(QString::fromLatin1(format));
            QVERIFY(Support::Picture(40, 30).save(path, format));
            QCOMPARE(TPageImage::Picture_Count(path), 1);
        }
    }

    void the_frames_of_an_animation_are_one_picture()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("animation.gif"));
        const QByteArray frame = QByteArray::fromHex("2c0000000001000100000202440100");
        Support::Write_File(path, QByteArray::fromHex("47494638396101000100800000000000ffffff") +
                                      frame + frame + QByteArray::fromHex("3b"));
        QCOMPARE(QImageReader(path).imageCount(), 2);
        QCOMPARE(TPageImage::Picture_Count(path), 1);
    }

    void the_cache_is_bounded_and_drops_the_least_recently_used_pixels()
    {
        QVector<TPageImage> images;
        for (int seed = 0; seed < 5; ++seed)
            images.append(TPageImage::From_Bytes(Large_Png(seed)));
        QVector<qint64> keys;
        for (int index = 0; index < 4; ++index)
            keys.append(QImage(images[index]).cacheKey());
        QCOMPARE(TPixelStore::Shared().Bytes(), TPixelStore::Limit);
        // The first image is used again, so the fifth replaces the second.
        QCOMPARE(QImage(images[0]).cacheKey(), keys[0]);
        QVERIFY(!images[4].isNull());
        QCOMPARE(TPixelStore::Shared().Bytes(), TPixelStore::Limit);
        QCOMPARE(QImage(images[0]).cacheKey(), keys[0]);
        QCOMPARE(QImage(images[2]).cacheKey(), keys[2]);
        QCOMPARE(QImage(images[3]).cacheKey(), keys[3]);
        // The size of an image is kept when its pixels are dropped.
        QVERIFY(!images[1].isNull());
        QCOMPARE(images[1].size(), QSize(4096, 4096));
        QCOMPARE(QImage(images[3]).cacheKey(), keys[3]);
        const QImage again = images[1];
        QVERIFY(again.cacheKey() != keys[1]);
        QCOMPARE(again.pixelColor(4000, 4000), QColor(1, 100, 50));
        images.remove(1);
        QCOMPARE(TPixelStore::Shared().Bytes(), 3 * large_bytes);
    }

    void the_newest_image_stays_in_the_cache_even_if_it_exceeds_the_limit()
    {
        const TPageImage small = TPageImage::From_Bytes(Support::Png(Support::Picture(40, 30)));
        QVERIFY(!small.isNull());
        QImage picture(10000, 8000, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        const TPageImage large = TPageImage::From_Bytes(Support::Png(picture));
        const qint64 key = QImage(large).cacheKey();
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(picture.sizeInBytes()));
        QCOMPARE(QImage(large).cacheKey(), key);
        QVERIFY(!QImage(small).isNull());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(40 * 30 * 4));
    }

    void an_encoded_image_behaves_like_the_original_data() { Add_Samples(); }

    void an_encoded_image_behaves_like_the_original()
    {
        QFETCH(const QByteArray, bytes);
        const TPageImage image = TPageImage::From_Bytes(bytes);
        const TPageImage not_decoded_before = image.Encoded();
        const QImage expected = QImage::fromData(bytes);
        Compare(not_decoded_before, expected);
        Compare(image, expected);
        const TPageImage decoded_before = image.Encoded();
        Compare(decoded_before, expected);
        QCOMPARE(decoded_before.Source_Bytes(), bytes);
        QCOMPARE(decoded_before.Png(), image.Png());
    }

    void an_encoded_image_contains_no_pixels()
    {
        TPageImage image =
            TPageImage::From_Bytes(Support::Encoded(Support::Picture(40, 30), "BMP"));
        const QByteArray png = image.Png();
        QVERIFY(!QImage(image).isNull());
        const TPageImage encoded = image.Encoded();
        image = TPageImage();
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
        // Size and PNG need no decoding again.
        QCOMPARE(encoded.size(), QSize(40, 30));
        QVERIFY(encoded.Png().constData() == png.constData());
        QCOMPARE(TPixelStore::Shared().Bytes(), qint64(0));
    }

    void an_image_made_from_pixels_is_encoded_as_png()
    {
        const QImage picture = Support::Picture(40, 30);
        const TPageImage encoded = TPageImage(picture).Encoded();
        QCOMPARE(encoded.Source_Bytes(), Support::Png(picture));
        QCOMPARE(Support::Difference(encoded, picture), QString());
        QVERIFY(QImage(encoded).cacheKey() != picture.cacheKey());
        QVERIFY(TPageImage().Encoded().isNull());
    }

    void an_encoded_part_keeps_its_array_alive()
    {
        const QByteArray png = Support::Png(Support::Picture(40, 30));
        const QByteArray whole = "before" + png;
        const TPageImage encoded =
            TPageImage::From_Bytes(TByteSource(whole).Part(6, png.size())).Encoded();
        QCOMPARE(encoded.Source_Bytes(), png);
        QVERIFY(!whole.isDetached());
    }

    void images_are_the_same_when_their_source_bytes_are()
    {
        const QByteArray png = Support::Png(Support::Picture(40, 30));
        const TPageImage image = TPageImage::From_Bytes(png);
        const TPageImage copy = image;
        const TPageImage same = TPageImage::From_Bytes(png);
        const TPageImage other = TPageImage::From_Bytes(Support::Png(Support::Picture(40, 30, 1)));
        QVERIFY(image.Is_Copy_Of(copy) && image.Is_Same(copy));
        QVERIFY(!image.Is_Copy_Of(same) && image.Is_Same(same));
        QVERIFY(!image.Is_Copy_Of(other) && !image.Is_Same(other));
    }

    void copies_have_the_same_id_even_when_encoded()
    {
        const QImage picture = Support::Picture(8, 8);
        const QByteArray png = Support::Png(picture);
        for (const TPageImage& image : {TPageImage(picture), TPageImage::From_Bytes(png)}) {
            const TPageImage copy = image;
            QCOMPARE(copy.Id(), image.Id());
            QCOMPARE(image.Encoded().Id(), image.Id());
            QVERIFY(TPageImage::From_Bytes(png).Id() != image.Id());
            QVERIFY(image.Id() != 0);
        }
        QCOMPARE(TPageImage().Id(), quint64(0));
        QCOMPARE(TPageImage(QImage()).Id(), quint64(0));
    }

    void images_are_compared_by_their_pixels()
    {
        const QImage picture = Support::Picture(40, 30);
        const TPageImage image = TPageImage::From_Bytes(Support::Png(picture));
        QVERIFY(image == picture);
        QVERIFY(picture == image);
        QVERIFY(image != Support::Picture(40, 30, 1));
        QCOMPARE(image.width(), 40);
        QCOMPARE(image.height(), 30);
    }

    void a_moved_from_image_is_a_null_image()
    {
        TPageImage image = Support::Picture(40, 30);
        const TPageImage taken = std::move(image);
        QCOMPARE(taken.size(), QSize(40, 30));
        image = TPageImage();
        QVERIFY(image.isNull());
    }

    void assigning_does_not_change_copies()
    {
        TPageImage image = Support::Picture(40, 30);
        const TPageImage copy = image;
        image = Support::Picture(10, 10);
        QCOMPARE(image.size(), QSize(10, 10));
        QCOMPARE(copy.size(), QSize(40, 30));
    }

    void an_image_that_cannot_be_read_is_a_placeholder()
    {
        const QTemporaryDir folder;
        const QByteArray png = Support::Png(Support::Picture(40, 30));
        Support::Write_File(folder.filePath("file"), png);
        // Reading fails at the end of the file.
        const TPageImage image = TPageImage::From_Bytes(
            TByteSource(TOpenFile::Open(folder.filePath("file")), 0, png.size() + 1));
        QVERIFY(!image.isNull());
        QCOMPARE(image.pixelColor(image.width() / 2, 2), QColor(Qt::lightGray));
        QCOMPARE(image.Stored_Source().Size(), qint64(png.size()) + 1);
    }

    void an_overwritten_image_is_decoded_from_its_png_data()
    {
        QTest::addColumn<bool>("is_encoded_later");
        QTest::newRow("encoded before") << false;
        QTest::newRow("result of a process that had a copy") << true;
    }

    void an_overwritten_image_is_decoded_from_its_png()
    {
        QFETCH(const bool, is_encoded_later);
        const QTemporaryDir folder;
        const QImage picture = Support::Picture(40, 30);
        const QByteArray png = Support::Png(picture);
        const QByteArray bmp = Support::Encoded(picture, "BMP");
        Support::Write_File(folder.filePath("file"), bmp);
        const TPageImage image = TPageImage::From_Bytes(
            TByteSource(TOpenFile::Open(folder.filePath("file")), 0, bmp.size()));
        if (!is_encoded_later)
            image.Set_Png(png);
        QVERIFY(QFile::resize(folder.filePath("file"), 10));
        QCOMPARE(image.Is_Lost(), is_encoded_later);
        image.Set_Png(png);
        QVERIFY(!image.Is_Lost());
        QCOMPARE(Support::Difference(image, picture), QString());
        QCOMPARE(image.Png(), png);
        QCOMPARE(image.Source_Bytes(), png);
    }
};

QTEST_MAIN(TestPageImage)
#include "test_pageimage.moc"
