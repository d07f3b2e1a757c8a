#include "src/model/imagefiles.h"

#include "support/support.h"

#include <QImageReader>
#include <QTemporaryDir>
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
        QTest::newRow("PDF") << "page.pdf" << true;
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
        QCOMPARE(ImageFiles::Is_Image_Or_Pdf_Name(name), is_image);
    }

    void pdfs_are_recognized_by_suffix_or_content_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("is_pdf");
        QTest::newRow("suffix") << "a.pdf" << QByteArray() << true;
        QTest::newRow("capital suffix") << "A.PDF" << QByteArray() << true;
        QTest::newRow("content") << "a" << QByteArray("%PDF-1.4") << true;
        QTest::newRow("late content") << "a.txt" << QByteArray(1000, ' ') + "%PDF-1.4" << true;
        QTest::newRow("too late") << "a.txt" << QByteArray(1024, ' ') + "%PDF-1.4" << false;
        QTest::newRow("text") << "a.txt" << QByteArray("PDF") << false;
    }
    void pdfs_are_recognized_by_suffix_or_content()
    {
        QFETCH(const QString, name);
        QFETCH(const QByteArray, content);
        QFETCH(const bool, is_pdf);
        const QTemporaryDir folder;
        const QString path = folder.filePath(name);
        Support::Write_File(path, content);
        QCOMPARE(ImageFiles::Is_Pdf(path), is_pdf);
        QCOMPARE(ImageFiles::Is_Image_Or_Pdf(path), is_pdf);
    }

    void an_image_is_no_pdf()
    {
        QVERIFY(!ImageFiles::Is_Pdf("a.png"));
        QVERIFY(ImageFiles::Is_Image_Or_Pdf("a.png"));
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
