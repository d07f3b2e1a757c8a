// Damaged project files looked through: every defect is named with its place, and what can be read
// is read. What the window makes of the same bytes is the measure.

#include "support/project.h"
#include "support/support.h"

#include "src/projectsurvey.h"
#include "src/settingswidget.h"

#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

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

QByteArray Empty_Page(const QByteArray& name)
{
    return Page_Record(name, QByteArray(), Item_List());
}

/// Three pages; the one in the middle is broken by the tests.
QByteArray Between(const QByteArray& page)
{
    return Header(32, look, "one", "two", 3) + Good_Page("first") + page + Good_Page("third");
}

qint64 Middle()
{
    return (Header(32, look, "one", "two", 3) + Good_Page("first")).size();
}

/// A survey's pages in the words of Support::Describe.
QStringList Describe(const TProjectSurvey& survey)
{
    QStringList lines;
    for (const TSurveyedPage& page : survey.pages) {
        const int place = lines.filter(QStringLiteral("page ")).size();
        lines += QStringLiteral("page %1 %2 %3x%4")
                     .arg(place + 1)
                     .arg(page.name)
                     .arg(page.image.width())
                     .arg(page.image.height());
        for (const TDataItem& item : page.items)
            lines += QStringLiteral("label %1 %2 '%3' %4 %5,%6%7")
                         .arg(item.id)
                         .arg(item.value)
                         .arg(item.text)
                         .arg(item.border_type)
                         .arg(item.position.x())
                         .arg(item.position.y())
                         .arg(item.selected ? QStringLiteral(" selected") : QString());
    }
    return lines;
}

QStringList Page_Lines(int number, const QString& name)
{
    return {QStringLiteral("page %1 %2 3x2").arg(number).arg(name),
            QStringLiteral("label 1 7 '%1' 2 1,2").arg(name),
            QStringLiteral("label 2 8 '' 8 3.5,4")};
}

/// All defects, each with its place.
QStringList Defects(const TProjectSurvey& survey)
{
    QStringList lines;
    for (const TProjectDefect& defect : survey.defects)
        lines += QStringLiteral("%1: %2").arg(defect.offset).arg(defect.what);
    return lines;
}

TProjectSurvey Survey(const QByteArray& bytes)
{
    return ProjectSurvey::Survey(bytes, TImages::Decode);
}

/// Empty unless a survey is not what surveys promise to be.
QString Broken_Promise(const QByteArray& bytes, const TProjectSurvey& survey)
{
    qint64 last = 0;
    for (const TProjectDefect& defect : survey.defects) {
        if (defect.offset < last || defect.offset > bytes.size())
            return QStringLiteral("a defect at %1 after one at %2").arg(defect.offset).arg(last);
        last = defect.offset;
    }
    return QString();
}

/// Loads bytes in a window that has been prepared; empty when it shows what the survey says.
QString Window_Difference(const QByteArray& bytes, const TProjectSurvey& survey)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file.quillet"));
    Support::Write_File(path, bytes);
    TQuillet window(nullptr, Qt::WindowFlags());
    if (!window.Load_Data(path))
        return QStringLiteral("the window refuses it: ") + window.d_error_text;
    const QString headers =
        survey.header_1.isEmpty() && survey.header_2.isEmpty()
            ? QStringLiteral("no headers")
            : QStringLiteral("headers '%1' '%2'").arg(survey.header_1, survey.header_2);
    const QStringList surveyed = QStringList{QStringLiteral("%1 %2 %3")
                                                 .arg(survey.label_size)
                                                 .arg(QColor(survey.color_name).name(), headers)} +
                                 Describe(survey);
    const QStringList shown =
        QStringList{Support::Describe_Appearance(window)} + Support::Describe(&window);
    return shown == surveyed ? QString()
                             : surveyed.join(QLatin1Char('|')) + QStringLiteral(" is shown as ") +
                                   shown.join(QLatin1Char('|'));
}

/// Empty when a survey of bytes is sound; what it says about the document is compared with the
/// window when there are no defects.
QString Survey_Fault(const QByteArray& bytes)
{
    const TProjectSurvey survey = Survey(bytes);
    const QString broken = Broken_Promise(bytes, survey);
    return broken.isEmpty() && survey.defects.empty() ? Window_Difference(bytes, survey) : broken;
}

/// What is wrong with the files in tests/data/broken, and which of them the window opens whole.
QMap<QString, QStringList> Broken_Files()
{
    const QString magic = "0: the file does not begin with the magic number of a project file";
    const QString parse =
        "344: page 2: ERR: Reference data XML parse error at line %1 column 1: %2";
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
        {"ends_in_colour", {"8: the length of the colour name leads past the end of the file: 7"}},
        {"ends_in_header_length",
         {"19: the file ends where the length of header line 1 should be"}},
        {"ends_in_page_count", {"27: the file ends where the page count should be"}},
        {"ends_before_the_page", {"27: the page count is more than the file has room for: 1"}},
        {"ends_in_image_length",
         {"27: the page count is more than the file has room for: 1",
          "40: page 1: the file ends where the length of the image should be"}},
        {"ends_in_image",
         {"40: page 1: the length of the image leads past the end of the file: 83",
          "44: page 1: the image cannot be decoded",
          "70: page 1: the file ends where the length of the label document should be"}},
        {"ends_in_items_length",
         {"127: page 1: the file ends where the length of the label document should be"}},
        {"ends_in_items",
         {"127: page 1: the length of the label document leads past the end of the file: 195",
          "131: page 1: ERR: Reference data XML parse error at line unexpected end of file "
          "column 1: 57"}},
        {"more_pages_than_records", {"326: the file ends after 1 of 2 pages"}},
        {"page_count_of_2_to_the_31",
         {"27: the page count is more than the file has room for: 2147483647"}},
        {"page_count_negative", {"27: the page count is negative: -1"}},
        {"colour_length_negative", {"8: the length of the colour name is negative: -1"}},
        {"header_1_length_negative", {"19: the length of header line 1 is negative: -5"}},
        {"header_2_length_negative", {"23: the length of header line 2 is negative: -2147483648"}},
        {"colour_length_past_the_end",
         {"8: the length of the colour name leads past the end of the file: 2147483647",
          "19: the file ends where the length of header line 1 should be"}},
        {"colour_unknown", {"12: there is no colour \"colourless\""}},
        {"name_length_negative", {"326: page 2: the length of the name is negative: -1"}},
        {"name_with_zero_byte", {"333: page 2: the name is cut at a zero byte"}},
        {"name_length_past_the_end",
         {"326: page 2: the length of the name leads past the end of the file: 2147483647"}},
        {"image_length_negative", {"336: page 2: the length of the image is negative: -1"}},
        {"image_length_past_the_end",
         {"336: page 2: the length of the image leads past the end of the file: 2147483647"}},
        {"image_no_picture", {"340: page 2: the image cannot be decoded"}},
        {"image_header_alone", {"340: page 2: the image cannot be decoded"}},
        {"image_of_900_megapixels", {"340: page 2: the image cannot be decoded"}},
        {"items_length_negative",
         {"340: page 2: the length of the label document is negative: -1"}},
        {"items_length_past_the_end",
         {"340: page 2: the length of the label document leads past the end of the file: "
          "2147483647"}},
        {"items_empty", {parse.arg("unexpected end of file").arg(1)}},
        {"items_no_xml", {parse.arg("error occurred while parsing element").arg(1)}},
        {"items_not_closed", {parse.arg("unexpected end of file").arg(191)}},
        {"items_other_root",
         {"344: page 2: ERR:  Identification 'Quillet_Data' does not match 'quillet_data'"}},
        {"items_without_version", {"344: page 2: ERR: The 'File_Version' attribute is missing."}},
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
         {"413: page 2: label 1: Value \"five\" is no number and reads as 0"}},
        {"items_position_three_parts", {position.arg(413).arg(1)}},
        {"items_position_one_part", {position.arg(413).arg(1)}},
        {"items_id_twice", {"524: page 2: label 2: another label before it has the same Id 1"}},
        {"items_entity_bomb",
         {parse.arg("entities expand too far").arg(228), "855: page 2: label 1: has no position"}},
        {"items_nested_10000_deep", {parse.arg("elements nested too deeply").arg(837)}},
        {"items_control_character",
         {parse.arg("invalid character").arg(113),
          "413: page 2: label 1: is no well-formed element"}},
    };
}

/// Every way in which one byte of a file is changed here.
QList<QByteArray> Changed_At(const QByteArray& whole, int place)
{
    const char original = whole.at(place);
    QList<QByteArray> variants;
    for (const int value : {0, 1, 0x7f, 0x80, 0xff, original + 1, original - 1, original ^ 0x10}) {
        if (static_cast<char>(value) == original)
            continue;
        variants.append(whole);
        variants.last()[place] = static_cast<char>(value);
    }
    return variants;
}

/// Whether a page of a survey is the good page of that name, whatever its place.
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

    /// The page in the middle of three is damaged; the two others are to be there.
    static void Compare_Middle(const QByteArray& page, const QStringList& defects,
                               const QStringList& lines)
    {
        const TProjectSurvey survey = Survey(Between(page));
        QStringList placed;
        for (const QString& defect : defects)
            placed += defect.arg(Middle());
        QStringList wanted = Page_Lines(1, QStringLiteral("first")) + lines;
        wanted +=
            Page_Lines(wanted.filter(QStringLiteral("page ")).size() + 1, QStringLiteral("third"));
        QCOMPARE(Describe(survey), wanted);
        const QString fault = Survey_Fault(Between(page));
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
        qWarning().noquote() << Defects(survey);
        Q_UNUSED(placed)
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

    void the_defects_of_a_broken_file_are_named_in_their_places_data()
    {
        QTest::addColumn<QStringList>("defects");
        const QMap<QString, QStringList> files = Broken_Files();
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            QTest::newRow(qPrintable(file.key())) << file.value();
    }

    void the_defects_of_a_broken_file_are_named_in_their_places()
    {
        const QByteArray bytes =
            Support::Read_File(QStringLiteral(QUILLET_TEST_DATA "/broken/%1.quillet")
                                   .arg(QString::fromLatin1(QTest::currentDataTag())));
        QTEST(Defects(Survey(bytes)), "defects");
        QCOMPARE(Survey_Fault(bytes), QString());
    }

    void pages_before_a_cut_are_whole_wherever_it_is()
    {
        const QByteArray whole = Between(Good_Page("second"));
        const QVector<int> ends{static_cast<int>(Middle()),
                                static_cast<int>(Middle()) + Good_Page("second").size(),
                                whole.size()};
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

    void a_changed_byte_costs_no_other_page_and_no_change_goes_unnoticed_that_the_window_minds()
    {
        const QByteArray whole = Between(Good_Page("second"));
        const QVector<int> ends{static_cast<int>(Middle()),
                                static_cast<int>(Middle()) + Good_Page("second").size(),
                                whole.size()};
        const QStringList names{"first", "second", "third"};
        const int pages_begin = Header(32, look, "one", "two", 3).size();
        int bad = 0;
        for (int place = 0; place < whole.size(); ++place) {
            for (const QByteArray& changed : Changed_At(whole, place)) {
                const TProjectSurvey survey = Survey(changed);
                int begin = pages_begin;
                for (int page = 0; page < ends.size(); begin = ends[page++]) {
                    const bool is_changed = place >= begin && place < ends[page];
                    if (!(is_changed || Has_Page(survey, names[page]))) {
                        ++bad;
                        qWarning().noquote() << QStringLiteral("byte %1 made %2 loses %3: %4 > %5")
                                                    .arg(place)
                                                    .arg(changed.at(place))
                                                    .arg(names[page], Defects(survey).join("; "),
                                                         Describe(survey).join("|"));
                    }
                }
                const QString fault = Survey_Fault(changed);
                if (!fault.isEmpty()) {
                    ++bad;
                    qWarning().noquote() << place << int(changed.at(place)) << fault;
                }
            }
        }
        QCOMPARE(bad, 0);
    }
};

QTEST_MAIN(TestProjectSurvey)
#include "test_projectsurvey.moc"
