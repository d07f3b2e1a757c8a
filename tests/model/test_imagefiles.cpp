// Which files are images, judged by their names.

#include "src/model/imagefiles.h"

#include <QtTest>

class TestImageFiles : public QObject
{
    Q_OBJECT

private slots:
    void the_patterns_are_those_of_the_file_dialog();
    void a_suffix_makes_an_image_data();
    void a_suffix_makes_an_image();
};

void TestImageFiles::the_patterns_are_those_of_the_file_dialog()
{
    QCOMPARE(ImageFiles::Patterns(),
             QString("*.bmp *.gif *.jpg *.jpeg *.png *.pbm *.pgm *.ppm *.xbm *.xpm"));
}

void TestImageFiles::a_suffix_makes_an_image_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("is_image");
    QTest::newRow("lower case") << "/a/page.png" << true;
    QTest::newRow("upper case") << "PAGE.JPEG" << true;
    QTest::newRow("mixed case") << "page.Xpm" << true;
    QTest::newRow("two suffixes") << "page.tar.gif" << true;
    QTest::newRow("no image") << "notes.txt" << false;
    QTest::newRow("a suffix before another") << "page.png.zip" << false;
    QTest::newRow("a longer suffix") << "page.pngx" << false;
    QTest::newRow("no suffix") << "png" << false;
    QTest::newRow("a suffix of a folder") << "/scans.png/page" << false;
    QTest::newRow("nothing") << "" << false;
}

void TestImageFiles::a_suffix_makes_an_image()
{
    QFETCH(QString, path);
    QTEST(ImageFiles::Is_Image_Name(path), "is_image");
}

QTEST_APPLESS_MAIN(TestImageFiles)
#include "test_imagefiles.moc"
