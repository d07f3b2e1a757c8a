#include "src/model/imagefiles.h"

#include <QImageReader>
#include <QTest>

/// Tests ImageFiles.
class TestImageFiles : public QObject
{
    Q_OBJECT

private slots:
    void the_import_dialog_offers_its_fixed_formats()
    {
        QCOMPARE(ImageFiles::Patterns(), QStringLiteral("*.bmp *.gif *.jpg *.jpeg *.png *.pbm "
                                                        "*.pgm *.ppm *.xbm *.xpm"));
    }

    void the_accepted_formats_are_those_that_qt_reads()
    {
        const QList<QByteArray> readable = QImageReader::supportedImageFormats();
        const QStringList suffixes = ImageFiles::Suffixes();
        for (const QString& suffix : suffixes)
            QVERIFY2(readable.contains(suffix.toLatin1()), qPrintable(suffix));
        QCOMPARE(suffixes, QStringList({"bmp", "gif", "jpeg", "jpg", "pbm", "pgm", "png", "ppm",
                                        "tif", "tiff", "webp", "xbm", "xpm"}));
        QStringList with_pdf = suffixes;
        with_pdf.insert(5, "pdf");
        QCOMPARE(ImageFiles::Suffixes_And_Pdf(), with_pdf);
    }

    void files_are_recognized_by_their_suffix_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("is_image");
        QTest::newRow("lower case") << "/a/page.png" << true;
        QTest::newRow("upper case") << "PAGE.JPEG" << true;
        QTest::newRow("mixed case") << "page.Xpm" << true;
        QTest::newRow("TIFF") << "page.tiff" << true;
        QTest::newRow("WebP") << "page.webp" << true;
        QTest::newRow("two suffixes") << "page.tar.gif" << true;
        QTest::newRow("a PDF's suffix of a folder") << "/a.pdf/page.gif" << true;
        QTest::newRow("no image") << "notes.txt" << false;
        QTest::newRow("a drawing") << "page.svg" << false;
        QTest::newRow("a suffix before another") << "page.png.zip" << false;
        QTest::newRow("a longer suffix") << "page.pngx" << false;
        QTest::newRow("no suffix") << "png" << false;
        QTest::newRow("a suffix of a folder") << "/scans.png/page" << false;
        QTest::newRow("nothing") << "" << false;
    }
    void files_are_recognized_by_their_suffix()
    {
        QFETCH(const QString, name);
        QFETCH(const bool, is_image);
        QCOMPARE(ImageFiles::Is_Image_Name(name), is_image);
        QCOMPARE(ImageFiles::Is_Image_Or_Pdf_Name(name), is_image);
    }

    void a_pdf_is_no_image()
    {
        for (const char* const name : {"a.pdf", "b.PDF"}) {
            QVERIFY(!ImageFiles::Is_Image_Name(QString::fromLatin1(name)));
            QVERIFY(ImageFiles::Is_Image_Or_Pdf_Name(QString::fromLatin1(name)));
        }
    }

    void paths_are_sorted_by_name_in_natural_order()
    {
        QStringList paths{"/b/page 10.png", "/c/page 2.png", "/a/page 9.PNG", "/z/Page 1.png"};
        ImageFiles::Sort(&paths);
        QCOMPARE(paths, QStringList(
                            {"/z/Page 1.png", "/c/page 2.png", "/a/page 9.PNG", "/b/page 10.png"}));
    }
};

QTEST_GUILESS_MAIN(TestImageFiles)
#include "test_imagefiles.moc"
