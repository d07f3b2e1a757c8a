// Labels as a table in comma-separated values.

#include "support/project.h"
#include "support/tables.h"

#include "src/format/itemtable.h"

#include <QLocale>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using Support::Label;

namespace {

const QByteArray header = "page,value,text,border,x,y\r\n";
const QByteArray written_header = "page,value,text,border,x,y,id\r\n";
const QString number_hint = ": expected a number such as 12.5";

/// Rows as lines of text.
QStringList Describe(const std::vector<TItemRow>& rows)
{
    QStringList lines;
    for (const TItemRow& row : rows)
        lines += QStringLiteral("%1: %2 '%3' %4 %5,%6%7")
                     .arg(row.page)
                     .arg(row.item.value)
                     .arg(row.item.text)
                     .arg(row.item.border_type)
                     .arg(row.item.position.x())
                     .arg(row.item.position.y())
                     .arg(row.item.selected ? QStringLiteral(" selected") : QString());
    return lines;
}

QString Refusal(const QByteArray& table)
{
    const auto read = [](const QByteArray& bytes) { ItemTable::Read(bytes); };
    return Support::Table_Refusal(read, table);
}

} // namespace

class TestItemTable : public QObject
{
    Q_OBJECT

private slots:
    void a_table_without_labels_is_the_header_line()
    {
        QCOMPARE(ItemTable::Write({}), written_header);
        QVERIFY(ItemTable::Read(header).empty());
    }

    void each_label_is_written_in_one_line_in_utf_8()
    {
        const std::vector<TItemRow> rows{
            {1, Label(17, 5, QStringLiteral("Riß"), 2, {120.5, 33})},
            {12, Label(18, -7, QString(), 0, {-1.25, 0})},
        };
        QCOMPARE(ItemTable::Write(rows),
                 written_header +
                     "1,5,Ri\xc3\x9f,ellipse,120.5,33,17\r\n12,-7,,none,-1.25,0,18\r\n");
    }

    void borders_are_written_as_words_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("word");
        QTest::newRow("none") << 0 << QByteArray("none");
        QTest::newRow("square") << 1 << QByteArray("square");
        QTest::newRow("ellipse") << 2 << QByteArray("ellipse");
        QTest::newRow("triangle") << 4 << QByteArray("triangle");
        QTest::newRow("diamond") << 8 << QByteArray("diamond");
    }

    void borders_are_written_as_words()
    {
        QFETCH(const int, code);
        QFETCH(const QByteArray, word);
        QCOMPARE(ItemTable::Write({{1, Label(1, 1, QString(), code, {})}}),
                 written_header + "1,1,," + word + ",0,0,1\r\n");
        for (const QByteArray& written :
             {word, word.toUpper(), ' ' + word + ' ', QByteArray::number(code)})
            QCOMPARE(
                ItemTable::Read(header + "1,1,," + written + ",0,0\r\n").at(0).item.border_type,
                code);
    }

    void an_unknown_border_code_is_written_as_a_number()
    {
        QCOMPARE(ItemTable::Write({{1, Label(1, 1, QString(), 3, {})}}),
                 written_header + "1,1,,3,0,0,1\r\n");
    }

    void texts_are_quoted_when_necessary_and_read_back_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("field");
        QTest::newRow("plain") << "crack 3 mm" << QByteArray("crack 3 mm");
        QTest::newRow("blanks") << "  a  " << QByteArray("  a  ");
        QTest::newRow("comma") << "a,b" << QByteArray("\"a,b\"");
        QTest::newRow("quote") << "2\" pipe" << QByteArray("\"2\"\" pipe\"");
        QTest::newRow("quotes alone") << "\"\"" << QByteArray("\"\"\"\"\"\"");
        QTest::newRow("line break") << "a\nb" << QByteArray("\"a\nb\"");
        QTest::newRow("both line breaks") << "a\r\nb\r" << QByteArray("\"a\r\nb\r\"");
        QTest::newRow("formula") << "=1+1" << QByteArray("=1+1");
        QTest::newRow("plus") << "+A1" << QByteArray("+A1");
        QTest::newRow("minus") << "-A1" << QByteArray("-A1");
        QTest::newRow("at") << "@SUM(A1)" << QByteArray("@SUM(A1)");
        QTest::newRow("semicolon") << "a;b" << QByteArray("a;b");
        QTest::newRow("beyond 16 bits")
            << QString::fromUtf8("\xf0\x9f\x94\xa5") << QByteArray("\xf0\x9f\x94\xa5");
        QTest::newRow("mark within") << QString(QChar(0xfeff)) << QByteArray("\xef\xbb\xbf");
    }

    void texts_are_quoted_when_necessary_and_read_back()
    {
        QFETCH(const QString, text);
        QFETCH(const QByteArray, field);
        const QByteArray table = ItemTable::Write({{1, Label(1, 2, text, 1, {3, 4})}});
        QCOMPARE(table, written_header + "1,2," + field + ",square,3,4,1\r\n");
        const std::vector<TItemRow> rows = ItemTable::Read(table);
        QCOMPARE(rows.size(), 1U);
        QCOMPARE(rows.at(0).item.text, text);
        QCOMPARE(rows.at(0).item.position, QPointF(3, 4));
    }

    void coordinates_are_read_back_exactly()
    {
        for (const double number :
             {0.1, 1.0 / 3, -2e-17, 123456789.987654321, 1e300, 5e-324,
              std::numeric_limits<double>::max(), std::nextafter(1.0, 2.0), -0.0, 1048576.01}) {
            const std::vector<TItemRow> rows = ItemTable::Read(
                ItemTable::Write({{1, Label(1, 1, QString(), 0, {number, -number})}}));
            // Compare exactly: QCOMPARE allows a tolerance.
            QVERIFY(std::equal_to<>()(rows.at(0).item.position.x(), number));
            QVERIFY(std::equal_to<>()(rows.at(0).item.position.y(), -number));
        }
    }

    void the_users_locale_does_not_matter()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        const QByteArray table =
            ItemTable::Write({{1000, Label(1, 12345, QString(), 0, {0.5, 1234.5})}});
        const QStringList rows = Describe(ItemTable::Read(table));
        QLocale::setDefault(before);
        QCOMPARE(table, written_header + "1000,12345,,none,0.5,1234.5,1\r\n");
        QCOMPARE(rows, QStringList{"1000: 12345 '' 0 0.5,1234.5"});
    }

    void an_id_is_read_unless_it_is_ignored()
    {
        const QByteArray table = written_header + "1,2,,none,3,4,-17\r\n1,2,,none,3,4,\r\n";
        const std::vector<TItemRow> rows = ItemTable::Read(table);
        QVERIFY(rows.at(0).has_id);
        QCOMPARE(rows.at(0).item.id, -17);
        QVERIFY(!rows.at(1).has_id);
        const QByteArray other = QByteArray(table).replace("-17", "B-4");
        QVERIFY(!ItemTable::Read(other, Csv::Comma, {}, ItemTable::TIds::Ignore).at(0).has_id);
        QCOMPARE(Refusal(other).section(": expected", 0, 0), QString("2:15: \"B-4\" is not an id"));
    }

    void a_row_says_which_optional_columns_there_are()
    {
        const TItemRow without = ItemTable::Read("page,value,x,y\r\n1,2,3,4\r\n").at(0);
        QVERIFY(!without.has_text && !without.has_border && !without.has_id);
        const TItemRow with = ItemTable::Read(header + "1,2,,,3,4\r\n").at(0);
        QVERIFY(with.has_text && with.has_border && !with.has_id);
        QVERIFY(ItemTable::Read("text,page,value,x,y\r\n,1,2,3,4\r\n").at(0).has_text);
        QVERIFY(ItemTable::Read("border,page,value,x,y\r\n,1,2,3,4\r\n").at(0).has_border);
    }

    void other_forms_of_a_table_are_read_data()
    {
        QTest::addColumn<QByteArray>("table");
        const QByteArray row = "2,7,t,2,1.5,2";
        QTest::newRow("line feeds") << QByteArray(header + row + '\n').replace("\r\n", "\n");
        QTest::newRow("carriage returns")
            << QByteArray(header + row + "\r\n").replace("\r\n", "\r");
        QTest::newRow("no line end at the end") << header + row;
        QTest::newRow("byte order mark") << "\xef\xbb\xbf" + header + row;
        QTest::newRow("empty rows") << ",,\r\n" + header + ",,,,,\r\n" + row + "\r\n,,\r\n";
        QTest::newRow("empty lines") << "\r\n" + header + "\r\n\n" + row + "\r\n\r\n";
        QTest::newRow("all quoted")
            << QByteArray("\"page\",\"value\",\"text\",\"border\",\"x\",\"y\"\r\n"
                          "\"2\",\"7\",\"t\",\"2\",\"1.5\",\"2\"\r\n");
        QTest::newRow("mark and quotes")
            << QByteArray("\xef\xbb\xbf\"page\",value,text,border,x,y\n") + row;
        QTest::newRow("other order") << QByteArray("y,x,border,text,value,page\n2,1.5,2,t,7,2\n");
        QTest::newRow("upper case") << QByteArray("PAGE,Value,TEXT,Border,X,Y\n") + row;
        QTest::newRow("blanks") << QByteArray(
            " page , value,text,border,x,y\n 2, 7 ,t, 2 , 1.5,2 \n");
        QTest::newRow("other columns")
            << QByteArray("who,page,value,text,border,x,y,who\nA,") + row + ",B\n";
        QTest::newRow("exponent") << QByteArray(header + "2,7,t,2,15e-1,2\r\n");
    }

    void other_forms_of_a_table_are_read()
    {
        QFETCH(const QByteArray, table);
        QCOMPARE(Describe(ItemTable::Read(table)), QStringList{"2: 7 't' 2 1.5,2"});
    }

    void text_and_border_may_be_missing_or_empty()
    {
        QCOMPARE(Describe(ItemTable::Read("page,value,x,y\n1,2,3,4\n")),
                 QStringList{"1: 2 '' 0 3,4"});
        QCOMPARE(Describe(ItemTable::Read(header + "1,2,,,3,4\n")), QStringList{"1: 2 '' 0 3,4"});
    }

    void a_defect_is_reported_with_its_place_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("refusal");
        const QByteArray good = "1,2,t,none,3,4\r\n";
        QTest::newRow("empty") << QByteArray() << "1:1: the table is empty";
        QTest::newRow("mark alone") << QByteArray("\xef\xbb\xbf") << "1:1: the table is empty";
        for (const char* name : {"page", "value", "x", "y"}) {
            QByteArray without = "page,value,x,y";
            without.replace(name, "other");
            QTest::addRow("no %s", name)
                << without + "\n1,2,3,4\n"
                << QStringLiteral("1:1: there is no column \"%1\"").arg(QLatin1String(name));
        }
        for (const char* separator : {";", "\t"})
            QTest::addRow("separated by '%s'", separator)
                << QByteArray(header + good).replace(",", separator)
                << QStringLiteral("1:1: there is only one column: columns are separated by commas");
        QTest::newRow("column twice")
            << QByteArray("\npage,value,x,y,Value\n") << "2:16: there are two columns \"value\"";
        QTest::newRow("too few fields") << header + good + "1,2,t,none,3\r\n"
                                        << "3:1: 5 fields, but there are 6 columns";
        QTest::newRow("too many fields") << header + "1,2,a,b,none,3,4\r\n"
                                         << "2:1: 7 fields, but there are 6 columns";
        QTest::newRow("page no number")
            << header + "one,2,t,none,3,4"
            << "2:1: \"one\" is neither a page number nor the name of one page";
        QTest::newRow("page 0") << header + "0,2,t,none,3,4"
                                << "2:1: \"0\" is neither a page number nor the name of one page";
        QTest::newRow("page empty")
            << header + ",2,t,none,3,4"
            << "2:1: \"\" is neither a page number nor the name of one page";
        QTest::newRow("value with fraction")
            << header + "1,2.5,t,none,3,4"
            << "2:3: \"2.5\" is not a value: expected a whole number";
        QTest::newRow("value too large")
            << header + "1,2147483648,t,none,3,4"
            << "2:3: \"2147483648\" is not a value: expected a whole number";
        for (const char* border : {"round", "3", "-1", "16"})
            QTest::addRow("border %s", border)
                << header + "1,2,t," + border + ",3,4"
                << QStringLiteral("2:7: \"%1\" is not a border: expected one of: none, square, "
                                  "ellipse, triangle, diamond")
                       .arg(QLatin1String(border));
        QTest::newRow("x no number") << header + "1,2,t,none,left,4"
                                     << "2:12: \"left\" is not an x coordinate" + number_hint;
        QTest::newRow("x infinite") << header + "1,2,t,none,inf,4"
                                    << "2:12: \"inf\" is not an x coordinate" + number_hint;
        QTest::newRow("y nan") << header + "1,2,t,none,3,nan"
                               << "2:14: \"nan\" is not a y coordinate" + number_hint;
        QTest::newRow("y in another locale") << header + "1,2,t,none,3,\"4,5\""
                                             << "2:14: \"4,5\" is not a y coordinate" + number_hint;
        QTest::newRow("quote not closed") << header + "1,2,\"t,none,3,4\r\n\r\n"
                                          << "2:5: a quoted field is not closed";
        QTest::newRow("quote within") << header + good + "1,2,2\" pipe,none,3,4"
                                      << "3:5: a quote within an unquoted field";
        QTest::newRow("after a quoted field") << header + "1,2,\"t\" ,none,3,4"
                                              << "2:5: characters after a quoted field";
        QTest::newRow("not utf-8") << header + good + "1,2,Ri\xdf,none,3,4"
                                   << "3:7: the table is not in UTF-8";
        QTest::newRow("not utf-8 after a replacement character")
            << header + "1,2,\xef\xbf\xbd,none,3,4\n" + "1,2,Ri\xdf,none,3,4"
            << "3:7: the table is not in UTF-8";
        QTest::newRow("not utf-8 after lines that end with CR")
            << QByteArray(header).replace("\r\n", "\r") + "1,2,,none,3,4\r1,2,Ri\xdf,none,3,4"
            << "3:7: the table is not in UTF-8";
        QTest::newRow("cut in a character") << header + "1,2,Ri\xc3"
                                            << "2:7: the table is not in UTF-8";
    }

    void a_defect_is_reported_with_its_place()
    {
        QFETCH(const QByteArray, table);
        QTEST(Refusal(table), "refusal");
    }

    void the_reported_place_is_that_of_the_field()
    {
        QCOMPARE(
            Refusal(header + "1,2,\"two\r\nlines\",none,3,4\r\n1,2,\"three\n\n\",none,3,bad\n"),
            "6:10: \"bad\" is not a y coordinate" + number_hint);
    }

    void columns_are_counted_in_characters()
    {
        // One character of one, two, three and four bytes in UTF-8.
        QCOMPARE(Refusal(header + "1,2,a\xc3\xa4\xe2\x82\xac\xf0\x9f\x9a\xb0,none,3,bad\n"),
                 "2:17: \"bad\" is not a y coordinate" + number_hint);
    }

    void a_row_that_is_too_short_is_reported_where_it_begins()
    {
        QCOMPARE(Refusal(header + "1,2,\"a\nb\",none,3\n"),
                 QString("2:1: 5 fields, but there are 6 columns"));
    }

    void a_page_may_be_given_by_its_name_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QString>("result");
        const auto row = [](const QByteArray& page, const QString& result) {
            QTest::newRow(page) << page << result;
        };
        const QString refusal = "2:1: \"%1\" is neither a page number nor the name of one page";
        row("2", "2");
        row("Roof", "2");
        row("\"a, b\"", "3");
        row("5", "5"); // also the name of page 1
        row("Twice", refusal.arg("Twice"));
        row("roof", refusal.arg("roof"));
    }
    void a_page_may_be_given_by_its_name()
    {
        QFETCH(const QByteArray, page);
        const QStringList names{"5", "Roof", "a, b", "Twice", "Twice"};
        QString result;
        const auto read = [&](const QByteArray& table) {
            result = QString::number(ItemTable::Read(table, Csv::Comma, names).front().page);
        };
        const QString refusal =
            Support::Table_Refusal(read, "page,value,x,y\n" + page + ",1,2,3\n");
        QTEST(refusal.isEmpty() ? result : refusal, "result");
    }

    void a_large_table_is_read_in_linear_time()
    {
        constexpr int count = 20000;
        std::vector<TItemRow> rows;
        for (int i = 0; i < count; ++i)
            rows.push_back(
                {i + 1, Label(0, i, QStringLiteral("a \"quoted\"\ntext"), 8, {0.5 * i, 1})});
        QCOMPARE(Describe(ItemTable::Read(ItemTable::Write(rows))), Describe(rows));
    }
};

QTEST_MAIN(TestItemTable)
#include "test_itemtable.moc"
