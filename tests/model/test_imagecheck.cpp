// What libtiff prints about damaged images.

#include "src/model/imagecheck.h"

#include <QTest>

class TestImageCheck : public QObject
{
    Q_OBJECT

private slots:
    void errors_and_warnings_about_jpeg_data_are_damage_data()
    {
        QTest::addColumn<QByteArray>("messages");
        QTest::addColumn<bool>("is_damage");
        const QByteArray tag = "TIFFReadDirectory: Warning, Unknown field with tag 37724 (0x935c) "
                               "encountered.\n";
        const QByteArray line = "Fax4Decode: Warning, Line length mismatch at line 12 of strip 0 "
                                "(got 1730, expected 1728).\n";
        const QByteArray jpeg = "JPEGLib: Warning, Premature end of JPEG file.\n";
        const QByteArray strip = "TIFFFillStrip: Read error on strip 3; got 20 bytes, expected "
                                 "4096.\n";
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("unknown tag") << tag << false;
        QTest::newRow("line of a fax") << line << false;
        QTest::newRow("JPEG data") << jpeg << true;
        QTest::newRow("missing data") << strip << true;
        QTest::newRow("several lines") << tag + line + strip << true;
    }
    void errors_and_warnings_about_jpeg_data_are_damage()
    {
        QFETCH(const QByteArray, messages);
        QFETCH(const bool, is_damage);
        QCOMPARE(ImageCheck::Tiff_Fault(messages),
                 is_damage ? QString("the image is damaged") : QString());
    }
};

QTEST_GUILESS_MAIN(TestImageCheck)
#include "test_imagecheck.moc"
