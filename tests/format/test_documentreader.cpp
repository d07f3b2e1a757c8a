#include "support/project.h"
#include "support/support.h"

#include "core/xmlfile.h"
#include "src/format/documentreader.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray look = "<Item_Size><Width>48</Width></Item_Size>"
                        "<Colors><Foreground>blue</Foreground></Colors>";
const QByteArray item = "<Item><ID>7</ID><ID_Text>Pump</ID_Text><Border_Type>3</Border_Type>"
                        "<Position>1.5,2</Position></Item>";

QByteArray Legacy(int version, const QByteArray& content)
{
    return "<Quillet_Data File_Version=\"" + QByteArray::number(version) + "\">" + content +
           "</Quillet_Data>";
}

} // namespace

/// Documents outside of a window.
class TestDocumentReader : public QObject
{
    Q_OBJECT

    QTemporaryDir d_folder;

    QString Write_Pair(const QByteArray& list) const
    {
        Support::Write_File(d_folder.filePath("old.qli"), Support::Png(Support::Picture(12, 10)));
        Support::Write_File(d_folder.filePath("old.qld"), list);
        return d_folder.filePath("old.qld");
    }

private slots:
    void a_survey_becomes_a_document()
    {
        TProjectSurvey survey;
        survey.label_size = 48;
        survey.color_name = QStringLiteral("red");
        survey.header_1 = QStringLiteral("one");
        survey.header_2 = QStringLiteral("two");
        const QImage picture = Support::Picture(12, 10);
        survey.pages.push_back({"a", TPageImage(picture), {}, true});
        survey.pages.push_back(
            {"b", TPageImage(), {Support::Label(5, 7, "Pump", 2, {1, 2})}, false});
        TDocument document = DocumentReader::From_Survey(survey);
        QCOMPARE(document.appearance.label_size, 48);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#ff0000"));
        QCOMPARE(document.appearance.header_1, QStringLiteral("one"));
        QCOMPARE(document.appearance.header_2, QStringLiteral("two"));
        QCOMPARE(document.Page_Ids(), QList<int>({1, 2}));
        QCOMPARE(document.pages[1].name, QStringLiteral("b"));
        QCOMPARE(document.data.Active_Page(), -1);
        document.data.Set_Active_Page(1);
        QCOMPARE(Support::Difference(document.data.Page_Image(), picture), QString());
        QCOMPARE(document.data.Item_Count(), 0);
        document.data.Set_Active_Page(2);
        QCOMPARE(document.data.Item_Count(), 1);
        QCOMPARE(document.data.Item(0).id, 5);
        QCOMPARE(document.data.Item(0).text, QStringLiteral("Pump"));
    }

    void no_colour_is_black()
    {
        TProjectSurvey survey;
        survey.color_name = QStringLiteral("bluish");
        QCOMPARE(DocumentReader::From_Survey(survey).appearance.color_name,
                 QStringLiteral("#000000"));
    }

    void a_legacy_pair_becomes_a_document_of_one_page_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("text");
        QTest::newRow("version 1 has no texts") << 1 << QString();
        QTest::newRow("version 2 has texts") << 2 << QStringLiteral("Pump");
    }
    void a_legacy_pair_becomes_a_document_of_one_page()
    {
        QFETCH(const int, version);
        QFETCH(const QString, text);
        TDocument document = DocumentReader::Read_Legacy(Write_Pair(Legacy(version, look + item)));
        QCOMPARE(document.appearance.label_size, 48);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#0000ff"));
        QCOMPARE(document.Page_Ids(), QList<int>({1}));
        QCOMPARE(document.pages[0].name, QStringLiteral("Page 1"));
        document.data.Set_Active_Page(1);
        QCOMPARE(document.data.Page_Content().size(), QSize(12, 10));
        QCOMPARE(document.data.Item_Count(), 1);
        QCOMPARE(document.data.Item(0).id, 7);
        QCOMPARE(document.data.Item(0).value, 7);
        QCOMPARE(document.data.Item(0).text, text);
        QCOMPARE(document.data.Item(0).border_type, 4);
        QCOMPARE(document.data.Item(0).position, QPointF(1.5, 2));
    }

    void a_legacy_label_size_is_brought_into_its_range_data()
    {
        QTest::addColumn<QByteArray>("size");
        QTest::addColumn<int>("read");
        QTest::newRow("too small") << QByteArray("3") << 16;
        QTest::newRow("too large") << QByteArray("500") << 128;
        QTest::newRow("no number") << QByteArray("x") << 16;
    }
    void a_legacy_label_size_is_brought_into_its_range()
    {
        QFETCH(QByteArray, size);
        QFETCH(const int, read);
        const QByteArray list = Legacy(2, QByteArray(look).replace("48", size));
        QCOMPARE(DocumentReader::Read_Legacy(Write_Pair(list)).appearance.label_size, read);
    }

    void another_legacy_version_gives_the_picture_alone()
    {
        TDocument document = DocumentReader::Read_Legacy(Write_Pair(Legacy(3, look + item)));
        QCOMPARE(document.appearance.label_size, 32);
        QCOMPARE(document.appearance.color_name, QStringLiteral("#f79741"));
        document.data.Set_Active_Page(1);
        QCOMPARE(document.data.Page_Content().size(), QSize(12, 10));
        QCOMPARE(document.data.Item_Count(), 0);
    }

    void a_legacy_document_without_its_picture_is_refused()
    {
        const QString path = Write_Pair(Legacy(2, look));
        QVERIFY(QFile::remove(d_folder.filePath("old.qli")));
        try {
            DocumentReader::Read_Legacy(path);
            QFAIL("read");
        } catch (const TXmlFileException& exception) {
            QCOMPARE(exception.Message(), QStringLiteral("Background image not found"));
        }
    }

    void a_damaged_legacy_list_is_refused()
    {
        QVERIFY_EXCEPTION_THROWN(DocumentReader::Read_Legacy(Write_Pair("<Quillet_Data")),
                                 TXmlFileException);
        QVERIFY_EXCEPTION_THROWN(DocumentReader::Read_Legacy(Write_Pair(Legacy(2, item))),
                                 TXmlFileException);
    }
};

QTEST_MAIN(TestDocumentReader)
#include "test_documentreader.moc"
