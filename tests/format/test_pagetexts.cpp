// Page names and header lines that Latin-1 cannot represent, through a project file and back.

#include "src/format/document.h"
#include "src/format/itemlist.h"
#include "src/format/itemsurvey.h"
#include "src/format/pagetexts.h"
#include "src/format/projectfile.h"
#include "src/format/projectsurvey.h"
#include "support/project.h"
#include "support/support.h"

#include <QBuffer>
#include <QIODevice>
#include <QTest>

namespace {

using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Page_Record;

const QString greek = QString::fromUtf8("Ω-1");
const QString face = QString::fromUtf8("a\xf0\x9f\x98\x80z");

QByteArray Written(const TDocument& document)
{
    TProjectWriter writer;
    ProjectFile::Write(document.appearance, document.pages, document.data, nullptr, &writer);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return writer.Write_To(&buffer) ? buffer.data() : QByteArray("not written");
}

/// A document with header lines and pages of these names.
QByteArray Project(const QString& header_1, const QString& header_2, const QStringList& names)
{
    TDocument document;
    document.appearance.header_1 = header_1;
    document.appearance.header_2 = header_2;
    for (const QString& name : names)
        document.Add_Page(name, TPageImage());
    return Written(document);
}

/// A file of one page.
QByteArray One_Page(const QByteArray& header_1, const QByteArray& name, const QByteArray& items)
{
    return Header(32, "#f79741", header_1, "", 1) + Page_Record(name, QByteArray(), items);
}

/// Header lines and page names as ProjectFile::Read returns them, followed by those of a survey if
/// they differ.
QStringList Texts_Of(const QByteArray& bytes)
{
    const TFileContent content = ProjectFile::Read(bytes);
    QStringList read{content.header_1, content.header_2};
    for (const TFilePage& page : *content.pages)
        read += page.name;
    const TProjectSurvey survey = ProjectSurvey::Survey(bytes);
    QStringList surveyed{survey.appearance.header_1, survey.appearance.header_2};
    for (const TSurveyedPage& page : survey.pages)
        surveyed += page.name;
    return read == surveyed ? read : read + QStringList("but surveyed") + surveyed;
}

} // namespace

class TestPageTexts : public QObject
{
    Q_OBJECT

private slots:
    void white_space_and_markup_are_references_in_an_attribute()
    {
        QCOMPARE(PageTexts::Attributes({greek + "\t\n \"&<=>", QString(), greek}),
                 QByteArray(" Page_Name=\"\xce\xa9-1&#9;&#10; &#34;&#38;&#60;&#61;&#62;\""
                            " Header_2=\"\xce\xa9-1\""));
    }

    void only_a_text_of_other_scripts_with_control_characters_cannot_be_stored()
    {
        QVERIFY(PageTexts::Is_Storable("plain"));
        QVERIFY(PageTexts::Is_Storable("a\x01"));
        QVERIFY(PageTexts::Is_Storable(greek));
        QVERIFY(!PageTexts::Is_Storable(greek + "\x01"));
    }

    void every_text_is_read_as_it_was_written_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("Latin-1") << QString::fromUtf8("café ÿ");
        QTest::newRow("Greek") << greek;
        QTest::newRow("first beyond Latin-1") << QString(QChar(0x100));
        QTest::newRow("surrogate pair") << face;
        QTest::newRow("question marks") << QString::fromUtf8("?Ω? What?");
        QTest::newRow("only question marks") << QStringLiteral("???");
        QTest::newRow("markup") << QString::fromUtf8("Ω <b a=\"1\" c='2'>&amp;&#65; ]]> -->");
        QTest::newRow("white space") << QString::fromUtf8("  Ω\t \r\n x  ");
        QTest::newRow("very long") << QString(100000, QChar(0x3a9));
        QTest::newRow("very many equals signs") << greek + QString(5000, '=');
        QTest::newRow("very many markup characters")
            << greek + QStringLiteral("<&>\"'").repeated(5000);
        QTest::newRow("placeholders") << QString::fromUtf8("%1 %2 Ω");
    }

    void every_text_is_read_as_it_was_written()
    {
        QFETCH(const QString, text);
        const QByteArray bytes = Project(text, text + "2", {text, "plain", text + "3"});
        QCOMPARE(Texts_Of(bytes), QStringList({text, text + "2", text, "plain", text + "3"}));
        QVERIFY(ProjectSurvey::Survey(bytes).defects.empty());
    }

    void latin_1_texts_add_nothing_to_the_file()
    {
        const QString text = QString::fromUtf8("café <&> \"=\" ?");
        const QByteArray expected = Header(32, "#f79741", text.toLatin1(), "", 1) +
                                    Page_Record(text.toLatin1(), QByteArray(), Item_List());
        QCOMPARE(Support::Byte_Difference(Project(text, QString(), {text}), expected), QString());
    }

    void other_texts_become_attributes_and_the_fields_stay()
    {
        const QByteArray expected =
            Header(32, "#f79741", "one", "a??z", 2) +
            Page_Record(
                "?-1", QByteArray(),
                Item_List({}, " Page_Name=\"\xce\xa9-1\" Header_2=\"a\xf0\x9f\x98\x80z\"")) +
            Page_Record("?", QByteArray(), Item_List({}, " Page_Name=\"\xce\xa9\""));
        const QByteArray bytes = Project("one", face, {greek, QString(QChar(0x3a9))});
        QCOMPARE(Support::Byte_Difference(bytes, expected), QString());
    }

    void labels_and_attributes_do_not_interfere()
    {
        TDocument document;
        document.Add_Page({greek, {}, {Support::Label(5, 7, "Pump", 2, {1, 2.5})}});
        const QByteArray label = Item_Element("5", "7", "Pump", "2", "1.00,2.50");
        const QByteArray list = Item_List(label, " Page_Name=\"\xce\xa9-1\"");
        const QByteArray bytes = Written(document);
        QCOMPARE(Support::Byte_Difference(bytes, One_Page("", "?-1", list)), QString());
        QCOMPARE(ProjectFile::Read(bytes).pages->front().items.front().text,
                 QStringLiteral("Pump"));
    }

    void characters_that_xml_cannot_represent_stay_replaced_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("control character") << greek + QChar(1) << QString("?-1") + QChar(1);
        QTest::newRow("half a character") << QString(QChar(0xd83d)) << QString("?");
        QTest::newRow("not a character") << greek + QChar(0xffff) << QString("?-1?");
        QTest::newRow("zero") << greek + QChar(0) + "x" << QString("?-1");
    }

    void characters_that_xml_cannot_represent_stay_replaced()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, expected);
        const QByteArray bytes = Project(QString(), QString(), {text});
        QVERIFY(!bytes.contains("Page_Name"));
        QCOMPARE(Texts_Of(bytes), QStringList({QString(), QString(), expected}));
    }

    void an_attribute_counts_only_if_it_matches_the_field_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("attribute");
        QTest::addColumn<QString>("expected");
        const QByteArray omega = "\xce\xa9";
        QTest::newRow("match") << QByteArray("a?") << "a" + omega << QString::fromUtf8("aΩ");
        QTest::newRow("renamed") << QByteArray("Pump") << "a" + omega << QStringLiteral("Pump");
        QTest::newRow("one letter changed")
            << QByteArray("b?") << "a" + omega << QStringLiteral("b?");
        QTest::newRow("replaced character changed")
            << QByteArray("ab") << "a" + omega << QStringLiteral("ab");
        QTest::newRow("longer") << QByteArray("a?x") << "a" + omega << QStringLiteral("a?x");
        QTest::newRow("shorter") << QByteArray("a") << "a" + omega << QStringLiteral("a");
        QTest::newRow("cleared") << QByteArray() << "a" + omega << QString();
        QTest::newRow("letter for a question mark")
            << QByteArray("??") << "x" + omega << QStringLiteral("??");
        QTest::newRow("empty attribute") << QByteArray("a?") << QByteArray() << "a?";
        QTest::newRow("field cut at a zero byte")
            << QByteArray("a?\0x", 4) << "a" + omega << QString::fromUtf8("aΩ");
        QTest::newRow("other Latin-1 letter")
            << QByteArray("\xe4?") << "\xc3\xa4" + omega << QString::fromUtf8("äΩ");
    }

    void an_attribute_counts_only_if_it_matches_the_field()
    {
        QFETCH(const QByteArray, field);
        QFETCH(const QByteArray, attribute);
        QFETCH(const QString, expected);
        const QByteArray list =
            Item_List({}, " Page_Name=\"" + attribute + "\" Header_1=\"" + attribute + "\"");
        const QStringList texts = Texts_Of(One_Page(field, field, list));
        QCOMPARE(texts, QStringList({expected, QString(), expected}));
    }

    void header_lines_are_read_only_from_the_first_page()
    {
        const QByteArray list = Item_List({}, " Header_1=\"\xce\xa9\" Header_2=\"\xce\xa9\"");
        const QByteArray bytes = Header(32, "#f79741", "?", "?", 2) +
                                 Page_Record("a", QByteArray(), Item_List()) +
                                 Page_Record("b", QByteArray(), list);
        QCOMPARE(Texts_Of(bytes), QStringList({"?", "?", "a", "b"}));
    }

    void without_pages_only_latin_1_header_lines_are_kept()
    {
        QCOMPARE(Texts_Of(Project(greek, "two", {})), QStringList({"?-1", "two"}));
        TAppearance appearance;
        QVERIFY(!ProjectFile::Loses_Headers(appearance, 0));
        appearance.header_2 = greek;
        QVERIFY(ProjectFile::Loses_Headers(appearance, 0));
        QVERIFY(!ProjectFile::Loses_Headers(appearance, 1));
        std::swap(appearance.header_1, appearance.header_2);
        QVERIFY(ProjectFile::Loses_Headers(appearance, 0));
    }

    void header_lines_follow_the_first_page_of_the_list()
    {
        TDocument document;
        document.appearance.header_1 = greek;
        document.Add_Page("a", TPageImage());
        document.Add_Page("b", TPageImage());
        std::swap(document.pages[0], document.pages[1]);
        QCOMPARE(Texts_Of(Written(document)), QStringList({greek, "", "b", "a"}));
    }

    void a_fault_in_the_labels_leaves_the_texts()
    {
        const QByteArray list = Item_List(Item_Element("1", "2", "x", "0", "1"),
                                          " Page_Name=\"\xce\xa9\" Header_1=\"\xce\xa9\"");
        const QByteArray bytes = One_Page("?", "?", list);
        QCOMPARE(ProjectFile::Read(bytes).fault, QStringLiteral("XML Item position invalid"));
        QCOMPARE(Texts_Of(bytes),
                 QStringList({QString::fromUtf8("Ω"), QString(), QString::fromUtf8("Ω")}));
    }

    void the_texts_of_a_damaged_document_can_be_recovered_data()
    {
        QTest::addColumn<QByteArray>("list");
        const QByteArray begin = R"(<?xml version="1.0" encoding="utf-8"?><Quillet_Data)"
                                 " Page_Name=\"\xce\xa9\" File_Version=\"1\"";
        QTest::newRow("not closed") << begin + ">";
        QTest::newRow("trailing bytes") << begin + "/>&";
        QTest::newRow("bad label") << begin + "><Item></Quillet_Data>";
    }

    void the_texts_of_a_damaged_document_can_be_recovered()
    {
        QFETCH(const QByteArray, list);
        const TItemSurvey survey = ItemSurvey::Survey(list);
        QVERIFY(!survey.defects.empty());
        QCOMPARE(survey.texts.name, QString::fromUtf8("Ω"));
    }

    void a_damaged_root_gives_no_texts_data()
    {
        QTest::addColumn<QByteArray>("list");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no root") << QByteArray("<?xml version=\"1.0\"?>");
        QTest::newRow("cut off") << QByteArray("<Quillet_Data Page_Name=\"x\"");
        QTest::newRow("quote missing") << QByteArray("<Quillet_Data Page_Name=\"x>");
        QTest::newRow("other root") << QByteArray("<Other Page_Name=\"x\"/>");
    }

    void a_damaged_root_gives_no_texts()
    {
        QFETCH(const QByteArray, list);
        const TItemSurvey survey = ItemSurvey::Survey(list);
        QVERIFY(!survey.defects.empty());
        QVERIFY(survey.texts.name.isEmpty());
    }

    void a_page_with_a_long_name_is_found_after_a_damaged_length()
    {
        const QString name(900, QChar(0x3a9));
        const QByteArray bytes = Project(QString(), QString(), {"first", name, "last"});
        QByteArray damaged = bytes;
        damaged[damaged.indexOf("first") - 1] = 0x7f;
        const TProjectSurvey survey = ProjectSurvey::Survey(damaged);
        QVERIFY(!survey.defects.empty());
        QCOMPARE(survey.pages.back().name, QStringLiteral("last"));
        QCOMPARE(survey.pages.at(survey.pages.size() - 2).name, name);
    }

    void the_same_document_gives_the_same_bytes()
    {
        const QByteArray bytes = Project(greek, face, {greek, face});
        const TDocument copy(ProjectFile::Read(bytes));
        QCOMPARE(Support::Byte_Difference(Written(copy), bytes), QString());
    }
};

QTEST_MAIN(TestPageTexts)
#include "test_pagetexts.moc"
