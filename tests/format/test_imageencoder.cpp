// Encoding of the images of a document ahead of writing them.

#include "src/format/imageencoder.h"

#include "support/support.h"

#include <QBuffer>
#include <QTest>

class TestImageEncoder : public QObject
{
    Q_OBJECT

private slots:
    void an_image_is_encoded_as_by_itself();
    void images_may_be_asked_for_in_any_order();
    void copies_share_the_result();
    void encoded_and_undecodable_images_stay_as_they_are();
    void an_image_that_was_not_announced_is_encoded_when_it_is_written();
};

namespace {

/// An image that was imported from a file in another format. Large ones go to another process.
TPageImage Imported(int width, int height, int seed)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Support::Picture(width, height, seed).save(&buffer, "BMP");
    return TPageImage::From_Bytes(buffer.data());
}

QByteArray Expected(int width, int height, int seed)
{
    return Support::Png(Support::Picture(width, height, seed));
}

} // namespace

void TestImageEncoder::an_image_is_encoded_as_by_itself()
{
    std::vector<TPageImage> images;
    for (int seed = 0; seed < 4; ++seed)
        images.push_back(Imported(1000, 600, seed));
    images.push_back(Imported(30, 20, 4));
    TImageEncoder encoder(images);
    for (const TPageImage& image : images) {
        QVERIFY(image.Needs_Encoding());
        encoder.Encode(image);
        QVERIFY(!image.Needs_Encoding());
    }
    for (int seed = 0; seed < 4; ++seed)
        QCOMPARE(images[static_cast<std::size_t>(seed)].Png(), Expected(1000, 600, seed));
    QCOMPARE(images.back().Png(), Expected(30, 20, 4));
}

void TestImageEncoder::images_may_be_asked_for_in_any_order()
{
    const std::vector<TPageImage> images{Imported(30, 20, 0), Imported(30, 20, 1),
                                         Imported(30, 20, 2)};
    TImageEncoder encoder(images);
    for (const std::size_t index : {2, 0, 1}) {
        encoder.Encode(images[index]);
        QVERIFY(!images[index].Needs_Encoding());
        QCOMPARE(images[index].Png(), Expected(30, 20, static_cast<int>(index)));
    }
}

void TestImageEncoder::copies_share_the_result()
{
    const TPageImage image = Imported(30, 20, 0);
    const TPageImage copy = image;
    TImageEncoder encoder({image, copy});
    encoder.Encode(image);
    QVERIFY(!copy.Needs_Encoding());
    encoder.Encode(copy);
    QCOMPARE(copy.Png(), Expected(30, 20, 0));
}

void TestImageEncoder::encoded_and_undecodable_images_stay_as_they_are()
{
    const QByteArray png = Expected(30, 20, 0);
    const TPageImage encoded = TPageImage::From_Bytes(png);
    const TPageImage undecodable = TPageImage::From_Bytes("no image");
    TImageEncoder encoder({encoded, undecodable, TPageImage()});
    for (const TPageImage& image : {encoded, undecodable, TPageImage()})
        encoder.Encode(image);
    QCOMPARE(encoded.Png(), png);
    QCOMPARE(undecodable.Png(), QByteArray("no image"));
    QCOMPARE(TPageImage().Png(), QByteArray());
}

void TestImageEncoder::an_image_that_was_not_announced_is_encoded_when_it_is_written()
{
    const TPageImage image = Imported(30, 20, 0);
    TImageEncoder encoder({});
    encoder.Encode(image);
    QVERIFY(image.Needs_Encoding());
    QCOMPARE(image.Png(), Expected(30, 20, 0));
}

QTEST_GUILESS_MAIN(TestImageEncoder)
#include "test_imageencoder.moc"
