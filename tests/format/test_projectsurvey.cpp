// Surveys of damaged project files: every defect is reported with its offset, and everything
// readable is read. A file without defects must look the same in the window.

#include "support/project.h"
#include "support/support.h"

#include "src/format/projectsurvey.h"
#include "src/settingswidget.h"

#include <QBuffer>
#include <QDir>
#include <QIODevice>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <utility>

using ProjectSurvey::TImages;
using Support::Field;
using Support::Header;
using Support::Item_Element;
using Support::Item_List;
using Support::Number;
using Support::Page_Record;
using Support::Picture;
using Support::Png;

namespace {

const QByteArray look = "#fa0832";
const quint32 negative = 0xffffffff;

QByteArray Good_Items(const QByteArray& text = "t")
{
    return Item_List(Item_Element("1", "7", text, "2", "1.00,2.00") +
                     Item_Element("2", "8", "", "8", "3.50,4.00"));
}

QByteArray Good_Page(const QByteArray& name)
{
    return Page_Record(name, Png(Picture(3, 2)), Good_Items(name));
}

/// A picture of 5 x 4 pixels in another format.
QByteArray Bytes(const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    Picture(5, 4).save(&buffer, format);
    return bytes;
}

QByteArray Empty_Page(const QByteArray& name)
{
    return Page_Record(name, QByteArray(), Item_List());
}

/// A file with three pages. Tests damage the second.
QByteArray Between(const QByteArray& page)
{
    return Header(32, look, "one", "two", 3) + Good_Page("first") + page + Good_Page("third");
}

qint64 Middle()
{
    return (Header(32, look, "one", "two", 3) + Good_Page("first")).size();
}

/// The pages of a survey in the format of Support::Describe.
QStringList Describe(const TProjectSurvey& survey)
{
    QStringList lines;
    for (const TSurveyedPage& page : survey.pages) {
        const int index = lines.filter(QStringLiteral("page ")).size();
        lines += QStringLiteral("page %1 %2 %3x%4")
                     .arg(index + 1)
                     .arg(page.name)
                     .arg(page.image.width())
                     .arg(page.image.height());
        for (const TDataItem& item : page.items)
            lines += Support::Describe_Label(item);
    }
    return lines;
}

QStringList Page_Lines(int number, const QString& name)
{
    return {QStringLiteral("page %1 %2 3x2").arg(number).arg(name),
            QStringLiteral("label 1 7 '%1' 2 1,2").arg(name),
            QStringLiteral("label 2 8 '' 8 3.5,4")};
}

/// All defects, each with its offset.
QStringList Defects(const TProjectSurvey& survey)
{
    QStringList lines;
    for (const TProjectDefect& defect : survey.defects)
        lines += QStringLiteral("%1: %2").arg(defect.offset).arg(defect.what);
    return lines;
}

TProjectSurvey Survey(const QByteArray& bytes)
{
    return ProjectSurvey::Survey(bytes, TImages::Check);
}

/// Describes a defect that is out of order or outside the file; empty if there is none.
QString Order_Fault(const QByteArray& bytes, const TProjectSurvey& survey)
{
    qint64 last = 0;
    for (const TProjectDefect& defect : survey.defects) {
        if (defect.offset < last || defect.offset > bytes.size())
            return QStringLiteral("a defect at %1 after one at %2").arg(defect.offset).arg(last);
        last = defect.offset;
    }
    return QString();
}

/// Loads a file in a window. Empty if the window shows what was surveyed.
QString Window_Difference(const QByteArray& bytes, const TProjectSurvey& survey)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file.quillet"));
    Support::Write_File(path, bytes);
    TOpenWindow window;
    if (!window.Load_Data(path))
        return QStringLiteral("the window refuses it: ") + window.d_error_text;
    const QString headers =
        survey.appearance.header_1.isEmpty() && survey.appearance.header_2.isEmpty()
            ? QStringLiteral("no headers")
            : QStringLiteral("headers '%1' '%2'")
                  .arg(survey.appearance.header_1, survey.appearance.header_2);
    const QStringList surveyed = QStringList{QStringLiteral("%1 %2 %3")
                                                 .arg(survey.appearance.label_size)
                                                 .arg(survey.appearance.color_name, headers)} +
                                 Describe(survey);
    const QStringList shown =
        QStringList{Support::Describe_Appearance(window)} + Support::Describe(&window);
    return shown == surveyed ? QString()
                             : surveyed.join(QLatin1Char('|')) + QStringLiteral(" is shown as ") +
                                   shown.join(QLatin1Char('|'));
}

/// Describes what is wrong with the survey of a file; empty if it is consistent and, for a file
/// without defects, equal to the window.
QString Survey_Fault(const QByteArray& bytes)
{
    const TProjectSurvey survey = Survey(bytes);
    const QString fault = Order_Fault(bytes, survey);
    return fault.isEmpty() && survey.defects.empty() ? Window_Difference(bytes, survey) : fault;
}

/// The defects of the files in tests/data/broken.
QMap<QString, QStringList> Broken_Files()
{
    const QString magic = "0: the file does not begin with the magic number of a project file";
    const QString parse = "344: page 2: label document, line 1, column %2: %1";
    const QString part = "524: page 2: label 2: ERR: %1";
    const QString node = part.arg("Node '%1' is missing from node 'Item' and not optional.");
    const QString text = part.arg("Node Text for '%1' is not optional.");
    const QString position = "%1: page 2: label %2: XML Item position invalid";
    return {
        {"empty", {"0: the file is too short to be a project file: 0 bytes"}},
        {"seven_bytes", {"0: the file is too short to be a project file: 7 bytes"}},
        {"other_magic", {magic}},
        {"magic_in_the_other_order", {magic}},
        {"ends_after_label_size",
         {"8: the file ends where the length of the colour name should be"}},
        {"ends_in_colour_length",
         {"8: the file ends where the length of the colour name should be"}},
        {"ends_in_colour", {"8: the length of the colour name points past the end of the file: 7"}},
        {"ends_in_header_length",
         {"19: the file ends where the length of header line 1 should be"}},
        {"ends_in_page_count", {"27: the file ends where the page count should be"}},
        {"ends_before_the_page", {"31: the file ends after 0 of 1 pages"}},
        {"ends_in_image_length",
         {"40: page 1: the file ends where the length of the image should be"}},
        {"ends_in_image",
         {"40: page 1: the length of the image points past the end of the file: 83",
          "44: page 1: the image cannot be decoded",
          "70: page 1: the file ends where the length of the label document should be"}},
        {"ends_in_items_length",
         {"127: page 1: the file ends where the length of the label document should be"}},
        {"ends_in_items",
         {"127: page 1: the length of the label document points past the end of the file: 195",
          "131: page 1: label document, line 1, column 57: unexpected end of file"}},
        {"more_pages_than_records", {"326: the file ends after 1 of 2 pages"}},
        {"page_count_of_2_to_the_31", {"326: the file ends after 1 of 2147483647 pages"}},
        {"page_count_negative", {"27: the page count is -1, but there are 1 pages"}},
        {"colour_length_negative", {"8: the length of the colour name is negative: -1"}},
        {"header_1_length_negative", {"19: the length of header line 1 is negative: -5"}},
        {"header_2_length_negative", {"23: the length of header line 2 is negative: -2147483648"}},
        {"colour_length_past_the_end",
         {"8: the length of the colour name points past the end of the file: 2147483647",
          "19: the file ends where the length of header line 1 should be"}},
        {"colour_unknown", {"12: unknown colour \"colourless\""}},
        {"name_length_negative", {"326: page 2: the length of the name is negative: -1"}},
        {"name_with_zero_byte", {"333: page 2: the name is cut off at a zero byte"}},
        {"name_length_past_the_end",
         {"326: page 2: the length of the name points past the end of the file: 2147483647"}},
        {"image_length_negative", {"336: page 2: the length of the image is negative: -1"}},
        {"image_length_past_the_end",
         {"336: page 2: the length of the image points past the end of the file: 2147483647"}},
        {"image_no_picture", {"340: page 2: the image cannot be decoded"}},
        {"image_header_alone", {"340: page 2: the image cannot be decoded"}},
        {"image_of_900_megapixels", {"340: page 2: the image cannot be decoded"}},
        {"items_length_negative",
         {"340: page 2: the length of the label document is negative: -1"}},
        {"items_length_past_the_end",
         {"340: page 2: the length of the label document points past the end of the file: "
          "2147483647"}},
        {"items_empty", {parse.arg("unexpected end of file").arg(1)}},
        {"items_no_xml", {parse.arg("error occurred while parsing element").arg(1)}},
        {"items_not_closed", {parse.arg("unexpected end of file").arg(191)}},
        {"items_other_root",
         {"344: page 2: label document, line 1, column 69: Identification 'Quillet_Data' does not "
          "match 'quillet_data'"}},
        {"items_without_version",
         {"344: page 2: label document, line 1, column 52: The 'File_Version' attribute is "
          "missing."}},
        {"items_version_2", {"344: page 2: XML Version not recognized"}},
        {"items_version_no_number", {"344: page 2: XML Version not recognized"}},
        {"items_without_id", {node.arg("Id")}},
        {"items_without_value", {node.arg("Value")}},
        {"items_without_border_type", {node.arg("Border_Type")}},
        {"items_without_position", {node.arg("Position")}},
        {"items_empty_id", {text.arg("Id")}},
        {"items_empty_value", {text.arg("Value")}},
        {"items_empty_border_type", {text.arg("Border_Type")}},
        {"items_empty_position", {position.arg(524).arg(2)}},
        {"items_without_text", {}},
        {"items_numbers_no_numbers",
         {"413: page 2: label 1: Value \"five\" is not a number and is read as 0"}},
        {"items_position_three_parts", {position.arg(413).arg(1)}},
        {"items_position_one_part", {position.arg(413).arg(1)}},
        {"items_id_twice", {"524: page 2: label 2: an earlier label has the same Id 1"}},
        {"items_entity_bomb",
         {parse
              .arg("The XML entity \"e3\" expands to a string that is too large to process (10000 "
                   "characters > 4096).")
              .arg(258),
          "855: page 2: label 1: ERR: Node 'Id' is missing from node 'Item' and not optional."}},
        {"items_nested_10000_deep", {parse.arg("elements nested too deeply").arg(837)}},
        {"items_control_character",
         {parse.arg("invalid character").arg(113),
          "413: page 2: label 1: the element is not well-formed"}},
    };
}

/// A file with one byte changed in several ways.
QList<QByteArray> Changed_At(const QByteArray& whole, int offset)
{
    const char original = whole.at(offset);
    QList<QByteArray> variants;
    for (const int value : {0, 0xff, original + 1, original ^ 0x10}) {
        if (static_cast<char>(value) == original)
            continue;
        variants.append(whole);
        variants.last()[offset] = static_cast<char>(value);
    }
    return variants;
}

/// Whether a survey has the complete page with that name, at any index.
bool Has_Page(const TProjectSurvey& survey, const QString& name)
{
    const QString lines = Describe(survey).join(QLatin1Char('|'));
    const QStringList wanted = Page_Lines(0, name);
    return lines.contains(wanted.first().mid(QStringLiteral("page 0").size()) + QLatin1Char('|') +
                          QStringList(wanted.mid(1)).join(QLatin1Char('|')));
}

} // namespace

class TestProjectSurvey : public QObject
{
    Q_OBJECT

    /// Surveys a file whose second of three pages is damaged; the other two must be complete.
    /// @param defects  each with its offset from the beginning of the damaged page.
    static void Compare_Middle(const QByteArray& page, const QStringList& defects,
                               const QStringList& lines)
    {
        const TProjectSurvey survey = Survey(Between(page));
        QStringList wanted_defects;
        for (const QString& defect : defects)
            wanted_defects += QString::number(Middle() + defect.section(':', 0, 0).toInt()) +
                              ": page 2:" + defect.section(':', 1);
        QCOMPARE(Defects(survey), wanted_defects);
        const QStringList third =
            Page_Lines(lines.filter(QRegularExpression("^page ")).isEmpty() ? 2 : 3, "third");
        QCOMPARE(Describe(survey), Page_Lines(1, "first") + lines + third);
        QCOMPARE(Survey_Fault(Between(page)), QString());
        const bool is_harmless =
            std::all_of(survey.defects.cbegin(), survey.defects.cend(),
                        [](const TProjectDefect& defect) { return defect.is_harmless; });
        for (const TSurveyedPage& page_there : survey.pages)
            QCOMPARE(page_there.is_whole,
                     is_harmless || page_there.name == "first" || page_there.name == "third");
    }

    static void Compare_Middle_Row()
    {
        QFETCH(const QByteArray, page);
        QFETCH(const QStringList, defects);
        QFETCH(const QStringList, lines);
        Compare_Middle(page, defects, lines);
    }

    static void Add_Columns()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QStringList>("defects");
        QTest::addColumn<QStringList>("lines");
    }

    static QByteArray With_Items(const QByteArray& items)
    {
        return Page_Record("second", Png(Picture(3, 2)), items);
    }

private slots:
    void every_broken_file_is_in_the_table()
    {
        QStringList files;
        for (const QString& file : QDir(QUILLET_TEST_DATA "/broken").entryList({"*.quillet"}))
            files += file.section(QLatin1Char('.'), 0, 0);
        files.sort();
        QCOMPARE(Broken_Files().keys(), files);
    }

    void the_defects_of_a_broken_file_are_reported_with_their_offsets_data()
    {
        QTest::addColumn<QStringList>("defects");
        const QMap<QString, QStringList> files = Broken_Files();
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            QTest::newRow(qPrintable(file.key())) << file.value();
    }

    void the_defects_of_a_broken_file_are_reported_with_their_offsets()
    {
        const QByteArray bytes =
            Support::Read_File(QStringLiteral(QUILLET_TEST_DATA "/broken/%1.quillet")
                                   .arg(QString::fromLatin1(QTest::currentDataTag())));
        QTEST(Defects(Survey(bytes)), "defects");
        QCOMPARE(Survey_Fault(bytes), QString());
    }

    void all_pages_before_a_cut_are_whole()
    {
        const QByteArray whole = Between(Good_Page("second"));
        const int middle = static_cast<int>(Middle());
        const int size_of_second = Good_Page("second").size();
        const int end = whole.size();
        const QVector<int> ends{middle, middle + size_of_second, end};
        const QStringList names{"first", "second", "third"};
        for (int size = 0; size < whole.size(); ++size) {
            const QByteArray cut = whole.left(size);
            const TProjectSurvey survey = Survey(cut);
            QVERIFY2(!survey.defects.empty(), qPrintable(QString::number(size)));
            for (int page = 0; page < ends.size() && ends[page] <= size; ++page) {
                QVERIFY2(survey.pages.at(page).is_whole && Has_Page(survey, names[page]),
                         qPrintable(QStringLiteral("cut at %1").arg(size)));
            }
            QCOMPARE(Survey_Fault(cut), QString());
        }
    }

    void a_changed_byte_loses_no_other_page_and_is_reported_if_the_window_refuses_it()
    {
        const QByteArray whole = Between(Good_Page("second"));
        const int middle = static_cast<int>(Middle());
        const int size_of_second = Good_Page("second").size();
        const int end = whole.size();
        const QVector<int> ends{middle, middle + size_of_second, end};
        const QStringList names{"first", "second", "third"};
        const int pages_begin = Header(32, look, "one", "two", 3).size();
        for (int offset = 0; offset < whole.size(); ++offset) {
            for (const QByteArray& changed : Changed_At(whole, offset)) {
                const TProjectSurvey survey = Survey(changed);
                int begin = pages_begin;
                for (int page = 0; page < ends.size(); begin = ends[page++]) {
                    const bool is_changed = offset >= begin && offset < ends[page];
                    QVERIFY2(is_changed || Has_Page(survey, names[page]),
                             qPrintable(QStringLiteral("byte %1 loses %2: %3")
                                            .arg(offset)
                                            .arg(names[page], Defects(survey).join("; "))));
                }
                QCOMPARE(Survey_Fault(changed), QString());
            }
        }
    }

    void a_good_file_has_no_defects_and_is_read_as_the_window_reads_it()
    {
        const QByteArray bytes = Header(64, look, "one", "", 3) + Good_Page("first") +
                                 Empty_Page("") + Page_Record("bmp", Bytes("BMP"), Good_Items());
        const TProjectSurvey survey = Survey(bytes);
        QCOMPARE(Defects(survey), QStringList());
        QCOMPARE(Window_Difference(bytes, survey), QString());
        QCOMPARE(survey.pages.size(), 3U);
        QCOMPARE(survey.pages[2].image.size(), QSize(5, 4));
        for (const TSurveyedPage& page : survey.pages)
            QVERIFY(page.is_whole);
    }

    void a_document_without_pages_has_no_defects()
    {
        QCOMPARE(Defects(Survey(Support::Empty_Project())), QStringList());
        QCOMPARE(Survey_Fault(Support::Empty_Project()), QString());
    }

    void each_page_is_reported_before_it_is_read()
    {
        const QByteArray bytes = Header(32, look, "", "", 2) +
                                 Page_Record("a", QByteArray(), Good_Items()) +
                                 Page_Record("b", QByteArray(), Good_Items()) +
                                 Page_Record("c", QByteArray(), Good_Items());
        QStringList told;
        ProjectSurvey::Survey(bytes, TImages::Leave_Alone, [&told](int number, int total) {
            told += QStringLiteral("%1/%2").arg(number).arg(total);
        });
        // The third page is beyond the page count.
        QCOMPARE(told, QStringList({"1/2", "2/2", "3/3"}));
    }

    void images_that_are_left_alone_are_not_checked()
    {
        const QByteArray bytes =
            Header(32, look, "", "", 1) + Page_Record("a", "none", Good_Items());
        QCOMPARE(Defects(ProjectSurvey::Survey(bytes)), QStringList());
        QCOMPARE(
            ProjectSurvey::Survey(bytes, TImages::Leave_Alone).pages.at(0).image.Source_Bytes(),
            QByteArray("none"));
        QCOMPARE(Defects(Survey(bytes)).size(), 1);
    }

    void labels_without_a_name_and_an_image_are_a_page()
    {
        const TProjectSurvey survey = Survey(Header(32, look, "", "", 1) + Good_Items());
        QVERIFY(!survey.defects.empty());
        QCOMPARE(survey.pages.size(), 1U);
        QVERIFY(!survey.pages[0].items.empty());
        QCOMPARE(survey.pages[0].name, QString());
        QVERIFY(!survey.pages[0].is_whole);
    }

    void a_page_without_an_image_is_not_a_defect()
    {
        QCOMPARE(Defects(Survey(Header(32, look, "", "", 1) + Empty_Page("a"))), QStringList());
    }

    void a_label_size_out_of_range_is_harmless()
    {
        const TProjectSurvey survey = Survey(Header(15, look, "", "", 1) + Good_Page("a"));
        QCOMPARE(survey.defects.size(), 1U);
        QVERIFY(survey.defects[0].is_harmless);
        QVERIFY(
            !Survey(Header(32, "no colour", "", "", 1) + Good_Page("a")).defects[0].is_harmless);
    }

    void a_damaged_header_is_reported_and_the_pages_are_found_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QStringList>("defects");
        QTest::addColumn<QString>("looks"); // size, colour, header lines
        const QByteArray start = Support::Magic() + Number(32);
        const QByteArray color = Field(look);
        const QByteArray lines = Field("one") + Field("two");
        const QString good = "32 #fa0832 one two";
        const QString astray = "8: the lengths in the header do not lead to the first page";
        QTest::newRow("label size too small")
            << Header(15, look, "one", "two", 1)
            << QStringList{"4: the label size 15 is not between 16 and 128"}
            << "16 #fa0832 one two";
        QTest::newRow("label size too large")
            << Header(129, look, "one", "two", 1)
            << QStringList{"4: the label size 129 is not between 16 and 128"}
            << "128 #fa0832 one two";
        QTest::newRow("label size negative")
            << Header(negative, look, "one", "two", 1)
            << QStringList{"4: the label size -1 is not between 16 and 128"}
            << "16 #fa0832 one two";
        QTest::newRow("colour length negative")
            << start + Number(negative) + look + lines + Number(1)
            << QStringList{"8: the length of the colour name is negative: -1"} << good;
        QTest::newRow("colour length too small")
            << start + Number(2) + look + lines + Number(1)
            << QStringList{"8: the length of the colour name is 2, but it has 7 bytes"} << good;
        QTest::newRow("colour length too large")
            << start + Number(40) + look + lines + Number(1)
            << QStringList{"8: the length of the colour name is 40, but it has 7 bytes"} << good;
        QTest::newRow("colour unknown")
            << Header(32, "colourless", "one", "two", 1)
            << QStringList{"12: unknown colour \"colourless\""} << "32 #000000 one two";
        QTest::newRow("colour by another name")
            << Header(32, "navy", "one", "two", 1) << QStringList() << "32 #000080 one two";
        QTest::newRow("colour with zero byte")
            << Header(32, QByteArray("red\0x", 5), "one", "two", 1)
            << QStringList{"15: the colour name is cut off at a zero byte"} << "32 #ff0000 one two";
        QTest::newRow("header line with zero byte")
            << Header(32, look, QByteArray("o\0e", 3), "two", 1)
            << QStringList{"24: header line 1 is cut off at a zero byte"} << "32 #fa0832 o two";
        QTest::newRow("header line that begins with a zero byte")
            << Header(32, look, QByteArray("\0ne", 3), "two", 1)
            << QStringList{"23: header line 1 is cut off at a zero byte"} << "32 #fa0832  two";
        QTest::newRow("header line 1 past the end")
            << start + color + Number(0x7fffffff) + "one" + Field("two") + Number(1)
            << QStringList{"19: the length of header line 1 points past the end of the file: "
                           "2147483647"}
            << "32 #fa0832  ";
        QTest::newRow("header line 2 negative")
            << start + color + Field("one") + Number(negative) + "two" + Number(1)
            << QStringList{"26: the length of header line 2 is negative: -1"} << "32 #fa0832 one ";
        QTest::newRow("header line 2 swallows a page")
            << start + color + Field("one") + Number(60) + "two" + Number(1)
            << QStringList{astray, "34: header line 2 is cut off at a zero byte"} << QString();
        QTest::newRow("header line 2 too short by one")
            << start + color + Field("one") + Number(2) + "two" + Number(1) << QStringList{astray}
            << "32 #fa0832 one tw";
        QTest::newRow("page count negative")
            << start + color + lines + Number(negative)
            << QStringList{"33: the page count is -1, but there are 1 pages"} << good;
        QTest::newRow("page count zero")
            << start + color + lines + Number(0)
            << QStringList{"33: the page count is 0, but there are 1 pages"} << good;
        QTest::newRow("page count too large")
            << start + color + lines + Number(100000)
            << QStringList{QStringLiteral("%1: the file ends after 1 of 100000 pages")
                               .arg(37 + Good_Page("first").size())}
            << good;
    }

    void a_damaged_header_is_reported_and_the_pages_are_found()
    {
        QFETCH(const QByteArray, header);
        QFETCH(const QString, looks);
        const QByteArray bytes = header + Good_Page("first");
        const TProjectSurvey survey = Survey(bytes);
        QTEST(Defects(survey), "defects");
        QCOMPARE(Describe(survey), Page_Lines(1, "first"));
        if (!looks.isEmpty())
            QCOMPARE(QStringLiteral("%1 %2 %3 %4")
                         .arg(survey.appearance.label_size)
                         .arg(survey.appearance.color_name, survey.appearance.header_1,
                              survey.appearance.header_2),
                     looks);
        QCOMPARE(Survey_Fault(bytes), QString());
    }

    void bytes_after_the_last_page_are_reported()
    {
        const QByteArray whole = Header(32, look, "", "", 1) + Good_Page("first");
        for (const QByteArray& rest :
             {QByteArray("x"), QByteArray(12, '\0'), QByteArray(500, 'x')}) {
            const TProjectSurvey survey = Survey(whole + rest);
            QCOMPARE(Defects(survey),
                     QStringList{QStringLiteral("%1: %2 bytes follow the last page")
                                     .arg(whole.size())
                                     .arg(rest.size())});
            QCOMPARE(Describe(survey), Page_Lines(1, "first"));
            QVERIFY(survey.pages.at(0).is_whole);
        }
    }

    void pages_beyond_the_page_count_are_found()
    {
        const TProjectSurvey survey =
            Survey(Header(32, look, "", "", 1) + Good_Page("first") + Good_Page("second"));
        QCOMPARE(Defects(survey), QStringList{"27: the page count is 1, but there are 2 pages"});
        QCOMPARE(Describe(survey), Page_Lines(1, "first") + Page_Lines(2, "second"));
    }

    void a_file_that_is_not_a_project_has_one_defect()
    {
        for (const QByteArray& bytes :
             {Png(Picture(40, 30)), QByteArray(5000, '\0'), QByteArray(5000, '\xff')})
            QCOMPARE(
                Defects(Survey(bytes)),
                QStringList{"0: the file does not begin with the magic number of a project file"});
    }

    void a_damaged_length_loses_nothing_data()
    {
        Add_Columns();
        const QByteArray image = Png(Picture(3, 2));
        const QByteArray items = Good_Items("second");
        const QStringList page = Page_Lines(2, "second");
        const int image_offset = 10;
        const int items_offset = image_offset + 4 + image.size();
        const QList<std::pair<quint32, QString>> lengths{
            {negative, "is negative: -1"},
            {0x7fffffff, "points past the end of the file: 2147483647"}};
        for (const auto& [length, what] : lengths) {
            QTest::newRow(qPrintable("name " + what))
                << Number(length) + "second" + Field(image) + Field(items)
                << QStringList{"0: the length of the name " + what} << page;
            QTest::newRow(qPrintable("image " + what))
                << Field("second") + Number(length) + image + Field(items)
                << QStringList{QStringLiteral("%1: the length of the image ").arg(image_offset) +
                               what}
                << page;
            QTest::newRow(qPrintable("labels " + what))
                << Field("second") + Field(image) + Number(length) + items
                << QStringList{QStringLiteral("%1: the length of the label document ")
                                   .arg(items_offset) +
                               what}
                << page;
        }
        const QString wrong = "%1: the length of %2 is %3, but it has %4 bytes";
        for (const int error : {-6, -1, 1, 2, 40, 300}) {
            const auto damaged = [error](const QByteArray& content) {
                return Number(static_cast<quint32>(content.size() + error)) + content;
            };
            QTest::addRow("name wrong by %d", error)
                << damaged("second") + Field(image) + Field(items)
                << QStringList{wrong.arg(0).arg("the name").arg(6 + error).arg(6)} << page;
            QTest::addRow("image wrong by %d", error)
                << Field("second") + damaged(image) + Field(items)
                << QStringList{wrong.arg(image_offset)
                                   .arg("the image")
                                   .arg(image.size() + error)
                                   .arg(image.size())}
                << page;
            QTest::addRow("labels wrong by %d", error)
                << Field("second") + Field(image) + damaged(items)
                << QStringList{wrong.arg(items_offset)
                                   .arg("the label document")
                                   .arg(items.size() + error)
                                   .arg(items.size())}
                << page;
        }
    }

    void a_damaged_length_loses_nothing() { Compare_Middle_Row(); }

    void a_damaged_label_document_loses_no_readable_label_data()
    {
        Add_Columns();
        const QByteArray first = Item_Element("1", "7", "a", "2", "1.00,2.00");
        const QByteArray last = Item_Element("3", "9", "c", "0", "5,6");
        const QStringList title{"page 2 second 3x2"};
        const QStringList around =
            title + QStringList{"label 1 7 'a' 2 1,2", "label 3 9 'c' 0 5,6"};
        const int items_begin = With_Items(QByteArray()).size();
        const int item_begin = items_begin + Item_List("x").lastIndexOf('x') + first.size();
        const auto at_item = [&](const QString& what) {
            return QStringList{QStringLiteral("%1: label 2: ").arg(item_begin) + what};
        };
        const auto row = [&](const char* name, const QByteArray& item, const QStringList& defects,
                             const QStringList& lines) {
            QTest::newRow(name) << With_Items(Item_List(first + item + last)) << defects << lines;
        };
        const auto kept = [&](const QString& label) {
            return QStringList{around[0], around[1], label, around[2]};
        };
        row("part missing", "<Item><Id>2</Id></Item>",
            at_item("ERR: Node 'Value' is missing from node 'Item' and not optional."), around);
        row("position missing",
            Item_Element("2", "8", "b", "1", "").replace("<Position></Position>", ""),
            at_item("ERR: Node 'Position' is missing from node 'Item' and not optional."), around);
        row("position empty", Item_Element("2", "8", "b", "1", ""),
            at_item("XML Item position invalid"), around);
        row("id no number", Item_Element("two", "8", "b", "1", "3,4"),
            at_item("Id \"two\" is not a number and is read as 0"), kept("label 0 8 'b' 1 3,4"));
        row("value too large", Item_Element("2", "2147483648", "b", "1", "3,4"),
            at_item("Value \"2147483648\" is not a number and is read as 0"),
            kept("label 2 0 'b' 1 3,4"));
        row("border no number", Item_Element("2", "8", "b", "round", "3,4"),
            at_item("Border_Type \"round\" is not a number and is read as 0"),
            kept("label 2 8 'b' 0 3,4"));
        row("border unknown", Item_Element("2", "8", "b", "3", "3,4"),
            at_item("unknown border code 3"), kept("label 2 8 'b' 3 3,4"));
        row("coordinate no number", Item_Element("2", "8", "b", "1", "left,4"),
            at_item("Position \"left,4\" is not a pair of numbers"), kept("label 2 8 'b' 1 0,4"));
        row("coordinate not finite", Item_Element("2", "8", "b", "1", "3,inf"),
            at_item("Position \"3,inf\" is not a pair of numbers"), kept("label 2 8 'b' 1 3,0"));
        row("id twice", Item_Element("1", "8", "b", "1", "3,4"),
            at_item("an earlier label has the same Id 1"), kept("label 0 8 'b' 1 3,4"));

        const QString parse =
            QStringLiteral("%1: label document, line 1, column %3: %2").arg(items_begin);
        const int column = item_begin - items_begin;
        row("element not closed",
            Item_Element("2", "8", "b", "1", "3,4").replace("</Item>", "</Itex>"),
            QStringList{parse.arg("tag mismatch").arg(column + 105)} +
                at_item("the element is not closed"),
            around);
        row("part not closed",
            Item_Element("2", "8", "b", "1", "3,4").replace("</Value>", "<Value>"),
            QStringList{parse.arg("tag mismatch").arg(column + 104)} +
                at_item("the element is not well-formed"),
            around);
        row("ampersand alone", Item_Element("2", "8", "b & b", "1", "3,4"),
            QStringList{parse.arg("letter is expected").arg(column + 42)} +
                at_item("the element is not well-formed"),
            around);
        row("between the labels", "<>",
            {parse.arg("error occurred while parsing content").arg(column + 2)}, around);
        row("bytes that are no UTF-8", Item_Element("2", "8", "Ri\xdf", "1", "3,4"),
            {QStringLiteral("%1: the label document is not valid UTF-8").arg(items_begin)},
            kept(QString::fromUtf8("label 2 8 'Ri\xef\xbf\xbd' 1 3,4")));
        QTest::newRow("other version")
            << With_Items(
                   Item_List(first + last).replace("File_Version=\"1\"", "File_Version=\"3\""))
            << QStringList{QStringLiteral("%1: XML Version not recognized").arg(items_begin)}
            << around;
        QTest::newRow("other root")
            << With_Items(Item_List(first + last).replace("Quillet_Data", "Quillet_Date"))
            << QStringList{QStringLiteral("%1: label document, line 1, column 69: Identification "
                                          "'Quillet_Data' does not match "
                                          "'Quillet_Date'")
                               .arg(items_begin)}
            << around;
        QTest::newRow("empty") << With_Items(QByteArray())
                               << QStringList{parse.arg("unexpected end of file").arg(1)} << title;
    }

    void a_damaged_label_document_loses_no_readable_label() { Compare_Middle_Row(); }

    void a_changed_byte_loses_at_most_one_label()
    {
        QByteArray labels;
        QStringList lines;
        for (int i = 1; i <= 4; ++i) {
            labels += Item_Element(QByteArray::number(i), QByteArray::number(10 * i), "some text",
                                   "8", QByteArray::number(i) + ".50,33.25");
            lines += QStringLiteral(" %1 'some text' 8 %2,33.25").arg(10 * i).arg(i + 0.5);
        }
        const QByteArray whole = Header(32, look, "", "", 1) + With_Items(Item_List(labels));
        for (int offset = whole.indexOf("<Item>"); offset < whole.lastIndexOf("</Quillet_Data>");
             ++offset) {
            for (const QByteArray& changed : Changed_At(whole, offset)) {
                // Ids are not compared: a repeated one is replaced.
                const QString found = Describe(Survey(changed)).join(QLatin1Char('|'));
                const auto kept =
                    std::count_if(lines.cbegin(), lines.cend(),
                                  [&found](const QString& line) { return found.contains(line); });
                QVERIFY2(kept >= lines.size() - 1, qPrintable(QString::number(offset) + found));
            }
        }
    }

    void an_unreadable_page_between_others_is_counted()
    {
        // No lengths and no label document, only bytes up to the next page.
        Compare_Middle(QByteArray(200, '\xff'),
                       {"0: the length of the name is negative: -1", "0: 200 bytes cannot be read"},
                       {});
    }

    void a_page_whose_label_document_is_lost_keeps_its_image()
    {
        const QByteArray image = Png(Picture(3, 2));
        const int items_offset = 14 + image.size();
        Compare_Middle(Field("second") + Field(image) + Number(negative) + QByteArray(300, 'x'),
                       {QStringLiteral("%1: the length of the label document is negative: -1")
                            .arg(items_offset),
                        QStringLiteral("%1: label document, line 1, column 1: error occurred "
                                       "while parsing element")
                            .arg(items_offset + 4)},
                       {"page 2 second 3x2"});
    }

    void hostile_bytes_take_linear_time_and_memory_data()
    {
        QTest::addColumn<QByteArray>("piece");
        const QByteArray image = Png(Picture(3, 2));
        QTest::newRow("zero bytes") << QByteArray(1, '\0');
        QTest::newRow("roots") << QByteArray("<Quillet_Data");
        QTest::newRow("root ends") << QByteArray("</Quillet_Data>");
        QTest::newRow("empty roots") << QByteArray("<Quillet_Data/>");
        QTest::newRow("images") << QByteArray("\x89PNG\r\n\x1a\n");
        QTest::newRow("images and roots") << QByteArray("\x89PNG\r\n\x1a\n<Quillet_Data");
        QTest::newRow("items") << QByteArray("<Item>");
        QTest::newRow("closed items") << QByteArray("<Item></Item>");
        QTest::newRow("positions") << QByteArray("<Item><Position></Item>");
        QTest::newRow("item ends") << QByteArray("</Item>");
        QTest::newRow("pages with damaged lengths") << Number(negative) + "name" +
                                                           Number(negative) + image +
                                                           Number(negative) + Good_Items();
        QTest::newRow("pages without labels") << Field("name") + Field(image) + Field("");
        QTest::newRow("lengths of 1") << Number(1);
    }

    void hostile_bytes_take_linear_time_and_memory()
    {
        QFETCH(const QByteArray, piece);
        constexpr int size = 300'000;
        // Quadratic time would exceed the time limit of the test.
        for (const QByteArray& head : {Header(32, look, "", "", 0x7fffffff),
                                       Header(32, look, "", "", 1) + Field("a") + Field(""),
                                       Header(32, look, "", "", 1) + Field("a") + Field("") +
                                           Number(size) + Item_List("x").left(60)}) {
            const QByteArray bytes = head + piece.repeated(size / piece.size());
            const TProjectSurvey survey = Survey(bytes);
            QVERIFY(!survey.defects.empty());
            QCOMPARE(Order_Fault(bytes, survey), QString());
        }
    }
};

QTEST_MAIN(TestProjectSurvey)
#include "test_projectsurvey.moc"
