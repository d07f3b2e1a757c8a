// PNG encoding in other processes: the same bytes, also if a process is missing, fails or is
// killed.

#include "src/encoding/pngencoder.h"

#include "src/encoding/pngencoding.h"
#include "support/processes.h"
#include "support/support.h"

#include <QColorSpace>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <unistd.h>

using Support::Children;

class TestPngEncoder : public QObject
{
    Q_OBJECT

private slots:
    void the_result_is_what_an_image_saves_data();
    void the_result_is_what_an_image_saves();
    void a_large_image_is_encoded_by_another_process();
    void a_small_image_is_encoded_in_this_process();
    void one_job_needs_no_other_process();
    void results_come_in_the_order_of_the_images();
    void it_is_full_with_as_many_images_as_jobs();
    void another_process_has_low_priority();
    void a_process_that_fails_is_replaced_data();
    void a_process_that_fails_is_replaced();
    void a_process_that_was_stopped_is_replaced();
    void a_process_that_is_killed_at_any_moment_is_replaced();
    void processes_end_with_the_encoder();
    void an_image_that_cannot_be_encoded_has_no_result();
};

namespace {

constexpr int width = 1000; // pixels; more than a small image has
constexpr int height = 600;

QImage Large_Picture(int seed = 0)
{
    return Support::Picture(width, height, seed);
}

void Add_Picture_Row(const char* name, QImage::Format format)
{
    QTest::newRow(name) << Large_Picture().convertToFormat(format);
}

} // namespace

void TestPngEncoder::the_result_is_what_an_image_saves_data()
{
    QTest::addColumn<QImage>("image");
    Add_Picture_Row("opaque", QImage::Format_RGB32);
    Add_Picture_Row("transparent", QImage::Format_ARGB32_Premultiplied);
    Add_Picture_Row("palette", QImage::Format_Indexed8);
    Add_Picture_Row("grey", QImage::Format_Grayscale8);
    Add_Picture_Row("black and white", QImage::Format_Mono);
    Add_Picture_Row("16 bits a channel", QImage::Format_RGBA64);
    QImage image = Large_Picture();
    image.setText("Title", "Mill");
    image.setDotsPerMeterX(7874);
    image.setColorSpace(QColorSpace::AdobeRgb);
    QTest::newRow("texts, resolution and colour space") << image;
}

void TestPngEncoder::the_result_is_what_an_image_saves()
{
    QFETCH(QImage, image);
    TPngEncoder encoder(2);
    encoder.Add(image);
    QCOMPARE(Children().size(), 1);
    QCOMPARE(encoder.Take(), Support::Png(image));
}

void TestPngEncoder::a_large_image_is_encoded_by_another_process()
{
    // A program that returns something else shows where the result comes from.
    const QTemporaryDir folder;
    const QString program = folder.filePath("program");
    const QByteArray other = Support::Png(Support::Picture(8, 8));
    Support::Write_File(folder.filePath("other.png"), other);
    Support::Write_File(program, "#!/bin/sh\ncat " + folder.filePath("other.png").toUtf8() + "\n");
    QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
    TPngEncoder encoder(2, program);
    encoder.Add(Support::Picture(1000, 500));
    QCOMPARE(encoder.Take(), other);
    const QImage small = Support::Picture(1000, 499);
    encoder.Add(small);
    QCOMPARE(encoder.Take(), Support::Png(small));
}

void TestPngEncoder::a_small_image_is_encoded_in_this_process()
{
    const QImage image = Support::Picture(60, 40);
    TPngEncoder encoder(2);
    encoder.Add(image);
    QCOMPARE(Children(), QList<pid_t>());
    QCOMPARE(encoder.Take(), Support::Png(image));
}

void TestPngEncoder::one_job_needs_no_other_process()
{
    TPngEncoder encoder(1);
    encoder.Add(Large_Picture());
    QCOMPARE(Children(), QList<pid_t>());
    QCOMPARE(encoder.Take(), Support::Png(Large_Picture()));
}

void TestPngEncoder::results_come_in_the_order_of_the_images()
{
    // The first one takes longest.
    const QList<QImage> images{Support::Picture(2000, 1500), Support::Picture(60, 40),
                               Large_Picture(1), Large_Picture(2)};
    TPngEncoder encoder(4);
    for (const QImage& image : images)
        encoder.Add(image);
    for (const QImage& image : images)
        QCOMPARE(encoder.Take(), Support::Png(image));
    QVERIFY(encoder.Is_Empty());
}

void TestPngEncoder::it_is_full_with_as_many_images_as_jobs()
{
    TPngEncoder encoder(2);
    QVERIFY(encoder.Is_Empty() && !encoder.Is_Full());
    encoder.Add(Large_Picture());
    QVERIFY(!encoder.Is_Empty() && !encoder.Is_Full());
    encoder.Add(Large_Picture());
    QVERIFY(encoder.Is_Full());
    QCOMPARE(Children().size(), 2);
    encoder.Take();
    QVERIFY(!encoder.Is_Full());
}

void TestPngEncoder::another_process_has_low_priority()
{
    TPngEncoder encoder(2);
    encoder.Add(Support::Picture(4000, 3000));
    const QList<pid_t> children = Children();
    QCOMPARE(children.size(), 1);
    QTRY_COMPARE(Support::Process_Field(children.first(), Support::Nice_Field), QByteArray("19"));
}

void TestPngEncoder::a_process_that_fails_is_replaced_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("missing") << "/missing/quillet-encode";
    QTest::newRow("not executable") << "/etc/passwd";
    QTest::newRow("fails") << "/bin/false";
    QTest::newRow("returns nothing") << "/bin/true";
    QTest::newRow("returns no PNG") << "/bin/cat";
}

void TestPngEncoder::a_process_that_fails_is_replaced()
{
    QFETCH(QString, program);
    TPngEncoder encoder(2, program);
    encoder.Add(Large_Picture());
    QCOMPARE(encoder.Take(), Support::Png(Large_Picture()));
}

void TestPngEncoder::a_process_that_was_stopped_is_replaced()
{
    TPngEncoder encoder(2);
    encoder.Add(Large_Picture());
    const QList<pid_t> children = Children();
    QCOMPARE(children.size(), 1);
    QCOMPARE(kill(children.first(), SIGSTOP), 0);
    QCOMPARE(encoder.Take(), Support::Png(Large_Picture()));
    QCOMPARE(Children(), QList<pid_t>());
}

void TestPngEncoder::a_process_that_is_killed_at_any_moment_is_replaced()
{
    constexpr int runs = 50;
    const QByteArray expected = Support::Png(Large_Picture());
    QElapsedTimer timer;
    timer.start();
    {
        TPngEncoder encoder(2);
        encoder.Add(Large_Picture());
        QCOMPARE(encoder.Take(), expected);
    }
    const int duration = static_cast<int>(timer.nsecsElapsed() / 1000); // microseconds
    auto* const random = QRandomGenerator::global();
    int killed = 0;
    for (int run = 0; run < runs; ++run) {
        TPngEncoder encoder(2);
        encoder.Add(Large_Picture());
        usleep(static_cast<useconds_t>(random->bounded(duration)));
        for (const pid_t child : Children())
            killed += kill(child, SIGKILL) == 0;
        QCOMPARE(encoder.Take(), expected);
    }
    QVERIFY2(killed > runs / 4, qPrintable(QString::number(killed)));
}

void TestPngEncoder::processes_end_with_the_encoder()
{
    {
        TPngEncoder encoder(2);
        encoder.Add(Support::Picture(4000, 3000));
        QCOMPARE(Children().size(), 1);
    }
    QCOMPARE(Children(), QList<pid_t>());
}

void TestPngEncoder::an_image_that_cannot_be_encoded_has_no_result()
{
    TPngEncoder encoder(2);
    encoder.Add(QImage());
    QCOMPARE(encoder.Take(), QByteArray());
}

QTEST_GUILESS_MAIN(TestPngEncoder)
#include "test_pngencoder.moc"
