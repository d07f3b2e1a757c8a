// Encoding of the images of a document, in the background and ahead of writing them.

#include "src/format/imageencoder.h"

#include "support/inputfiles.h"
#include "support/processes.h"
#include "support/support.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <unistd.h>

using Support::Children;

Q_DECLARE_METATYPE(TPageImage)

class TestImageEncoder : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<TPageImage>(); }

    void an_image_is_encoded_as_by_itself_data();
    void an_image_is_encoded_as_by_itself();
    void a_file_is_encoded_as_it_is_decoded_here_data();
    void a_file_is_encoded_as_it_is_decoded_here();
    void images_may_be_asked_for_in_any_order();
    void copies_share_the_result();
    void encoded_and_undecodable_images_stay_as_they_are();
    void an_image_that_was_not_announced_is_encoded_when_it_is_written();
    void with_one_processor_writing_starts_no_process();

    void in_the_background_images_are_encoded_without_being_asked_for();
    void a_background_result_is_reported();
    void the_background_has_one_process_for_each_processor();
    void processes_have_low_priority_and_limited_memory();
    void small_images_are_left_to_the_writer();
    void an_image_that_is_removed_loses_its_process();
    void an_image_that_was_removed_and_added_again_is_encoded();
    void an_image_that_was_removed_gets_no_result();
    void a_result_goes_to_all_images_with_the_same_bytes();
    void a_running_process_is_not_started_twice();
    void a_process_that_fails_is_not_started_again_data();
    void a_process_that_fails_is_not_started_again();
    void a_process_that_was_stopped_is_replaced_when_the_image_is_written();
    void a_process_that_is_killed_at_any_moment_is_replaced();
    void a_pause_suspends_all_processes();
    void processes_end_with_the_encoder();
};

namespace {

/// For processes of low priority on a busy machine, in milliseconds.
constexpr int patience = 100'000;

constexpr int width = 1000; // pixels; more than a small image has
constexpr int height = 600;

/// An image that was imported from a file in another format. Large ones go to another process.
TPageImage Imported(int image_width, int image_height, int seed)
{
    const TPageImage image = TPageImage::From_Bytes(
        Support::Encoded(Support::Picture(image_width, image_height, seed), "BMP"));
    // The import decodes it.
    image.size();
    return image;
}

TPageImage Large(int seed = 0)
{
    return Imported(width, height, seed);
}

std::vector<TPageImage> Large_Images(int count)
{
    std::vector<TPageImage> images;
    for (int seed = 0; seed < count; ++seed)
        images.push_back(Large(seed));
    return images;
}

QByteArray Expected(int image_width, int image_height, int seed)
{
    return Support::Png(Support::Picture(image_width, image_height, seed));
}

QByteArray Expected_Large(int seed = 0)
{
    return Expected(width, height, seed);
}

/// A large image that takes seconds to encode.
TPageImage Slow()
{
    return Imported(4000, 3000, 0);
}

/// Starts to encode these images in the background.
void Begin(TImageEncoder* encoder, const std::vector<TPageImage>& images)
{
    encoder->Set_Images(images);
    encoder->Start();
}

/// A program that notes its starts in a file before it does what another one does.
class TCountedProgram
{
public:
    explicit TCountedProgram(const QString& program)
    {
        Support::Write_File(Path(), "#!/bin/sh\necho >>" + Note().toUtf8() + "\nexec " +
                                        program.toUtf8() + "\n");
        QFile::setPermissions(Path(), QFile::ReadOwner | QFile::ExeOwner);
    }
    QString Path() const { return d_folder.filePath("program"); }
    int Starts() const { return Support::Read_File(Note()).size(); }

private:
    QString Note() const { return d_folder.filePath("starts"); }

    QTemporaryDir d_folder;
};

} // namespace

void TestImageEncoder::an_image_is_encoded_as_by_itself_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("processes") << TPngEncoder::Program();
    QTest::newRow("missing") << "/missing/quillet-encode";
    QTest::newRow("not executable") << "/etc/passwd";
    QTest::newRow("fails") << "/bin/false";
    QTest::newRow("returns nothing") << "/bin/true";
    QTest::newRow("returns no PNG") << "/bin/cat";
}

void TestImageEncoder::an_image_is_encoded_as_by_itself()
{
    QFETCH(QString, program);
    std::vector<TPageImage> images = Large_Images(4);
    images.push_back(Imported(30, 20, 4));
    TImageEncoder encoder(2, program);
    encoder.Set_Images(images);
    for (const TPageImage& image : images) {
        QVERIFY(image.Needs_Encoding());
        encoder.Encode(image);
        QVERIFY(!image.Needs_Encoding());
    }
    for (int seed = 0; seed < 4; ++seed)
        QCOMPARE(images[static_cast<std::size_t>(seed)].Png(), Expected_Large(seed));
    QCOMPARE(images.back().Png(), Expected(30, 20, 4));
}

void TestImageEncoder::a_file_is_encoded_as_it_is_decoded_here_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("picture");
    const QImage image = Support::Picture(width, height);
    for (const char* format : {"JPG", "BMP", "PPM", "XBM", "XPM", "TIFF"})
        QTest::newRow(format) << Support::Encoded(image, format) << 0;
    QTest::newRow("grey JPEG") << Support::Encoded(image.convertToFormat(QImage::Format_Grayscale8),
                                                   "JPG")
                               << 0;
    QTest::newRow("rotated photograph") << Support::Exif_Jpeg(image, 6) << 0;
    QTest::newRow("mirrored photograph") << Support::Exif_Jpeg(image, 5) << 0;
    QTest::newRow("second page of a TIFF")
        << Support::Tiff({image, Support::Picture(width, height, 1)}) << 1;
    QTest::newRow("GIF") << Support::Gif(width, height) << 0;
    QTest::newRow("SVG") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='1000' "
                                       "height='600'><text x='9' y='99'>Mill</text></svg>")
                         << 0;
}

void TestImageEncoder::a_file_is_encoded_as_it_is_decoded_here()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, picture);
    const QTemporaryDir folder;
    const QString path = folder.filePath("file");
    Support::Write_File(path, bytes);
    for (const auto orientation :
         {TPageImage::TOrientation::As_Stored, TPageImage::TOrientation::Upright}) {
        const auto read = [&] {
            return TPageImage::From_File(path, QByteArray(), orientation).Picture(picture);
        };
        const TPageImage image = read();
        QVERIFY(!image.isNull());
        QVERIFY(image.Needs_Encoding());
        TImageEncoder encoder(2);
        const QSignalSpy encoded(&encoder, &TImageEncoder::Encoded);
        Begin(&encoder, {image});
        QCOMPARE(Children().size(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(encoded.size(), 1, patience);
        QVERIFY(!image.Needs_Encoding());
        QCOMPARE(image.Png(), Support::Png(read()));
    }
}

void TestImageEncoder::images_may_be_asked_for_in_any_order()
{
    const std::vector<TPageImage> images = Large_Images(3);
    TImageEncoder encoder(2);
    encoder.Set_Images(images);
    for (const std::size_t index : {2, 0, 1}) {
        encoder.Encode(images[index]);
        QVERIFY(!images[index].Needs_Encoding());
        QCOMPARE(images[index].Png(), Expected_Large(static_cast<int>(index)));
    }
}

void TestImageEncoder::copies_share_the_result()
{
    const TPageImage image = Large();
    const TPageImage copy = image;
    TImageEncoder encoder(2);
    encoder.Set_Images({image, copy});
    encoder.Encode(image);
    QCOMPARE(Children(), QList<pid_t>());
    QVERIFY(!copy.Needs_Encoding());
    encoder.Encode(copy);
    QCOMPARE(copy.Png(), Expected_Large());
}

void TestImageEncoder::encoded_and_undecodable_images_stay_as_they_are()
{
    const QByteArray png = Expected(30, 20, 0);
    const TPageImage encoded = TPageImage::From_Bytes(png);
    const TPageImage undecodable = TPageImage::From_Bytes("no image");
    TImageEncoder encoder(2);
    Begin(&encoder, {encoded, undecodable, TPageImage()});
    for (const TPageImage& image : {encoded, undecodable, TPageImage()})
        encoder.Encode(image);
    QCOMPARE(encoded.Png(), png);
    QCOMPARE(undecodable.Png(), QByteArray("no image"));
    QCOMPARE(TPageImage().Png(), QByteArray());
}

void TestImageEncoder::an_image_that_was_not_announced_is_encoded_when_it_is_written()
{
    const TPageImage image = Large();
    TImageEncoder encoder(2);
    encoder.Encode(image);
    QVERIFY(!image.Needs_Encoding());
    QCOMPARE(image.Png(), Expected_Large());
}

void TestImageEncoder::with_one_processor_writing_starts_no_process()
{
    const std::vector<TPageImage> images = Large_Images(2);
    TCountedProgram program(TPngEncoder::Program());
    TImageEncoder encoder(1, program.Path());
    encoder.Set_Images(images);
    for (const TPageImage& image : images)
        encoder.Encode(image);
    QCOMPARE(program.Starts(), 0);
    QCOMPARE(images.back().Png(), Expected_Large(1));
}

void TestImageEncoder::in_the_background_images_are_encoded_without_being_asked_for()
{
    const std::vector<TPageImage> images = Large_Images(5);
    TImageEncoder encoder(2);
    Begin(&encoder, images);
    for (const TPageImage& image : images)
        QTRY_VERIFY_WITH_TIMEOUT(!image.Needs_Encoding(), patience);
    for (int seed = 0; seed < 5; ++seed)
        QCOMPARE(images[static_cast<std::size_t>(seed)].Png(), Expected_Large(seed));
    QCOMPARE(Children(), QList<pid_t>());
}

void TestImageEncoder::a_background_result_is_reported()
{
    const TPageImage image = Large();
    TImageEncoder encoder(1);
    QList<quint64> reported;
    connect(&encoder, &TImageEncoder::Encoded, this, [&reported](const TPageImage& encoded) {
        QVERIFY(!encoded.Needs_Encoding());
        reported += encoded.Id();
    });
    Begin(&encoder, {image});
    QTRY_COMPARE_WITH_TIMEOUT(reported, QList<quint64>{image.Id()}, patience);
}

void TestImageEncoder::the_background_has_one_process_for_each_processor()
{
    for (const int processors : {1, 2, 3}) {
        TImageEncoder encoder(processors);
        const std::vector<TPageImage> images = Large_Images(5);
        const QSignalSpy encoded(&encoder, &TImageEncoder::Encoded);
        Begin(&encoder, images);
        QCOMPARE(Children().size(), processors);
        while (encoded.size() < 5) {
            QTest::qWait(1);
            QVERIFY(Children().size() <= processors);
        }
    }
}

void TestImageEncoder::processes_have_low_priority_and_limited_memory()
{
    TImageEncoder encoder(1);
    Begin(&encoder, {Slow()});
    const QList<pid_t> children = Children();
    QCOMPARE(children.size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(Support::Process_Field(children.first(), Support::Nice_Field),
                              QByteArray("19"), patience);
#ifndef __SANITIZE_ADDRESS__ // which reserves a large part of the address space
    const auto limit = [&children] {
        const QByteArray limits =
            Support::Read_File(QStringLiteral("/proc/%1/limits").arg(children.first()));
        const QByteArray name = "Max address space";
        const int begin = limits.indexOf(name);
        return begin < 0 ? QByteArray()
                         : limits.mid(begin + name.size()).simplified().split(' ').first();
    };
    QTRY_VERIFY_WITH_TIMEOUT(limit() != "unlimited", patience);
    QVERIFY(limit().toLongLong() > 4000LL * 3000 * 4);
    QVERIFY(limit().toLongLong() < 1'500'000'000);
#endif
}

void TestImageEncoder::small_images_are_left_to_the_writer()
{
    const TPageImage image = Imported(1000, 499, 0);
    TImageEncoder encoder(2);
    Begin(&encoder, {image});
    QCOMPARE(Children(), QList<pid_t>());
    QVERIFY(image.Needs_Encoding());
    encoder.Encode(image);
    QCOMPARE(image.Png(), Expected(1000, 499, 0));
}

void TestImageEncoder::an_image_that_is_removed_loses_its_process()
{
    const TPageImage first = Slow();
    const TPageImage second = Slow();
    TImageEncoder encoder(2);
    Begin(&encoder, {first, second});
    const QList<pid_t> children = Children();
    QCOMPARE(children.size(), 2);
    encoder.Set_Images({second});
    QCOMPARE(Children(), QList<pid_t>{children.last()});
    encoder.Set_Images({});
    QCOMPARE(Children(), QList<pid_t>());
}

void TestImageEncoder::an_image_that_was_removed_and_added_again_is_encoded()
{
    const TPageImage image = Large();
    TImageEncoder encoder(2);
    Begin(&encoder, {image});
    encoder.Set_Images({});
    Begin(&encoder, {image});
    QTRY_VERIFY_WITH_TIMEOUT(!image.Needs_Encoding(), patience);
    QCOMPARE(image.Png(), Expected_Large());
}

void TestImageEncoder::an_image_that_was_removed_gets_no_result()
{
    const TPageImage first = Large(1);
    const TPageImage second = Large(2);
    TImageEncoder encoder(1);
    Begin(&encoder, {first});
    // Its process ends, but the event loop does not run.
    const pid_t child = Children().first();
    while (Support::Process_Field(child, Support::State_Field) != "Z")
        usleep(10'000);
    Begin(&encoder, {second});
    QTRY_VERIFY_WITH_TIMEOUT(!second.Needs_Encoding(), patience);
    QVERIFY(first.Needs_Encoding());
    QCOMPARE(second.Png(), Expected_Large(2));
}

void TestImageEncoder::a_result_goes_to_all_images_with_the_same_bytes()
{
    const TPageImage image = Large();
    const TPageImage copy = image.Encoded();
    QVERIFY(!copy.Is_Copy_Of(image));
    TImageEncoder encoder(2);
    Begin(&encoder, {image, copy});
    QCOMPARE(Children().size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(!copy.Needs_Encoding(), patience);
    QVERIFY(!image.Needs_Encoding());
    QCOMPARE(copy.Png(), Expected_Large());
}

void TestImageEncoder::a_running_process_is_not_started_twice()
{
    const std::vector<TPageImage> images = Large_Images(4);
    TCountedProgram program(TPngEncoder::Program());
    TImageEncoder encoder(2, program.Path());
    Begin(&encoder, images);
    // As when a save follows the import.
    encoder.Set_Images(images);
    for (const TPageImage& image : images)
        encoder.Encode(image);
    QCOMPARE(program.Starts(), 4);
    QCOMPARE(images.back().Png(), Expected_Large(3));
}

void TestImageEncoder::a_process_that_fails_is_not_started_again_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("fails") << "/bin/false";
    QTest::newRow("crashes") << "/bin/sh -c 'kill -SEGV $$'";
    QTest::newRow("returns no PNG") << "/bin/cat";
}

void TestImageEncoder::a_process_that_fails_is_not_started_again()
{
    QFETCH(QString, program);
    const TCountedProgram counted(program);
    const std::vector<TPageImage> images = Large_Images(3);
    TImageEncoder encoder(2, counted.Path());
    const QSignalSpy encoded(&encoder, &TImageEncoder::Encoded);
    Begin(&encoder, images);
    QTRY_COMPARE_WITH_TIMEOUT(counted.Starts(), 3, patience);
    QTRY_COMPARE_WITH_TIMEOUT(Children(), QList<pid_t>(), patience);
    Begin(&encoder, images);
    QTest::qWait(100);
    QCOMPARE(counted.Starts(), 3);
    QCOMPARE(encoded.size(), 0);
    for (const TPageImage& image : images)
        encoder.Encode(image);
    QCOMPARE(counted.Starts(), 3);
    QCOMPARE(images.back().Png(), Expected_Large(2));
}

void TestImageEncoder::a_process_that_was_stopped_is_replaced_when_the_image_is_written()
{
    const TPageImage image = Large();
    TImageEncoder encoder(2);
    Begin(&encoder, {image});
    for (const pid_t child : Children())
        QCOMPARE(kill(child, SIGSTOP), 0);
    encoder.Encode(image);
    QCOMPARE(image.Png(), Expected_Large());
    QCOMPARE(Children(), QList<pid_t>());
}

void TestImageEncoder::a_process_that_is_killed_at_any_moment_is_replaced()
{
    constexpr int runs = 50;
    const QByteArray expected = Expected_Large();
    QElapsedTimer timer;
    timer.start();
    {
        const TPageImage image = Large();
        TImageEncoder encoder(2);
        Begin(&encoder, {image});
        QTRY_VERIFY_WITH_TIMEOUT(!image.Needs_Encoding(), patience);
    }
    const int duration = static_cast<int>(timer.elapsed()) + 1; // milliseconds
    auto* const random = QRandomGenerator::global();
    int killed = 0;
    for (int run = 0; run < runs; ++run) {
        const TPageImage image = Large();
        TImageEncoder encoder(2);
        Begin(&encoder, {image});
        QTest::qWait(random->bounded(duration));
        for (const pid_t child : Children())
            killed += kill(child, SIGKILL) == 0;
        // In every other run, the background first finds out.
        if (run % 2 == 0)
            QTRY_COMPARE_WITH_TIMEOUT(Children(), QList<pid_t>(), patience);
        encoder.Encode(image);
        QCOMPARE(image.Png(), expected);
    }
    QVERIFY2(killed > runs / 4, qPrintable(QString::number(killed)));
}

void TestImageEncoder::a_pause_suspends_all_processes()
{
    const std::vector<TPageImage> images{Imported(2000, 1500, 0), Imported(2000, 1500, 1)};
    TImageEncoder encoder(2);
    Begin(&encoder, images);
    const QList<pid_t> children = Children();
    QCOMPARE(children.size(), 2);
    {
        const TImageEncoder::TPause pause(&encoder);
        for (const pid_t child : children)
            QTRY_COMPARE_WITH_TIMEOUT(Support::Process_Field(child, Support::State_Field),
                                      QByteArray("T"), patience);
    }
    for (const pid_t child : children)
        QTRY_VERIFY_WITH_TIMEOUT(Support::Process_Field(child, Support::State_Field) != "T",
                                 patience);
    QTRY_VERIFY_WITH_TIMEOUT(!images.front().Needs_Encoding(), patience);
    QCOMPARE(images.front().Png(), Expected(2000, 1500, 0));
}

void TestImageEncoder::processes_end_with_the_encoder()
{
    {
        TImageEncoder encoder(2);
        Begin(&encoder, {Slow()});
        QCOMPARE(Children().size(), 1);
    }
    QCOMPARE(Children(), QList<pid_t>());
}

QTEST_MAIN(TestImageEncoder)
#include "test_imageencoder.moc"
