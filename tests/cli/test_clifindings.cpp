// The list of findings as the tool exports it: in the report, as a web page, as data.

#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QRegularExpressionMatchIterator>
#include <QTest>

using namespace Support;

namespace {

QByteArray Label(int value, const QByteArray& text = QByteArray())
{
    const QByteArray number = QByteArray::number(value);
    return Item_Element(QByteArray::number(value + 1000), number, text, "2", "20.00,20.00");
}

/// A project with a page for each list of labels.
QByteArray Project(const QList<QByteArray>& pages)
{
    QByteArray project =
        Header(32, "#0a141e", "First header", "", static_cast<quint32>(pages.size()));
    int number = 0;
    for (const QByteArray& labels : pages)
        project += Page_Record("Sheet " + QByteArray::number(++number), Png(Picture(60, 40)),
                               Item_List(labels));
    return project;
}

/// A report without the lines that contain its date.
QByteArray Without_Date(const QByteArray& pdf)
{
    QList<QByteArray> lines = pdf.split('\n');
    lines.erase(
        std::remove_if(lines.begin(), lines.end(),
                       [](const QByteArray& line) { return line.startsWith("/CreationDate"); }),
        lines.end());
    return lines.join('\n');
}

} // namespace

class TestCliFindings : public TToolTest
{
    Q_OBJECT

    /// Runs a command that has to succeed without a message.
    void Do(const QStringList& arguments) const
    {
        const TToolResult result = Run(arguments);
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
    }

private slots:
    void items_are_exported_with_the_columns_of_the_table()
    {
        Write("a.quillet", Project({Label(7, "x")}));
        Write("t.csv", "page,value,Finding\n1,7,\"a\nb\"\n");
        Do({"export-items", "a.quillet", "--csv", "out.csv", "--findings", "t.csv"});
        QCOMPARE(Content("out.csv"), QByteArray("page,value,text,border,x,y,id,Finding\r\n"
                                                "1,7,x,ellipse,20,20,1007,\"a\nb\"\r\n"));
        // The exported table can be used as input.
        Do({"export-items", "a.quillet", "--csv", "again.csv", "--findings", "out.csv"});
        QCOMPARE(Content("again.csv"), Content("out.csv"));
    }

    void tables_with_page_names_fit_any_order_of_the_pages()
    {
        Write("a.quillet", Project({QByteArray(), Label(7)}));
        Do({"pages", "a.quillet", "--rename", "1=North", "--rename", "2=South", "-o", "b.quillet"});
        Do({"pages", "b.quillet", "--order", "2", "-o", "c.quillet"});
        Write("t.csv", "page,value,x,y,Finding\nSouth,7,1,2,crack\n");
        for (const char* const document : {"b.quillet", "c.quillet"}) {
            Do({"export-items", document, "--findings", "t.csv", "--strict", "--csv", "out.csv",
                "--force"});
            QVERIFY(Content("out.csv").contains(",7,,ellipse,20,20,1007,crack\r\n"));
            Do({"import-items", document, "--csv", "t.csv", "-fo", "out.quillet"});
            QVERIFY(Run({"pages", "out.quillet"}).output.contains("labels: 2, South"));
        }
    }

    void items_are_printed_as_json()
    {
        Write("a.quillet", Project({Label(7), QByteArray()}));
        Write("t.csv", "page,value,Finding\n1,7,a\n");
        const TToolResult result =
            Run({"export-items", "a.quillet", "--json", "--findings", "t.csv"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const QJsonObject object = QJsonDocument::fromJson(result.output.toUtf8()).object();
        QCOMPARE(object["headings"].toArray(), QJsonArray{"Finding"});
        const QJsonObject page = object["pages"].toArray()[0].toObject();
        QCOMPARE(page["name"].toString(), QStringLiteral("Sheet 1"));
        QCOMPARE(page["labels"].toArray()[0].toObject()["findings"].toObject(),
                 (QJsonObject{{"Finding", "a"}}));
        QCOMPARE(Entries(d_folder->path()), QStringList({"a.quillet", "t.csv"}));
    }

    void a_mismatch_is_a_warning()
    {
        Write("a.quillet", Project({Label(1) + Label(2)}));
        Write("t.csv", "page,value,Finding\n1,2,a\n1,3,b\n2,1,c\n");
        const TToolResult result =
            Run({"export-html", "a.quillet", "--output", "out.html", "--findings", "t.csv"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: t.csv: warning: page 1: label 1 has no row\n"
                                "quillet-cli: t.csv: warning: line 3: page 1 has no label 3\n"
                                "quillet-cli: t.csv: warning: line 4: there is no page 2\n"));
        QVERIFY(QFile::exists(Path("out.html")));
    }

    void with_strict_a_mismatch_is_an_error_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("web page") << QStringList{"export-html", "--output", "out"};
        QTest::newRow("report") << QStringList{"export-pdf", "--output", "out", "--list"};
        QTest::newRow("items") << QStringList{"export-items", "--csv", "out"};
    }
    void with_strict_a_mismatch_is_an_error()
    {
        QFETCH(const QStringList, command);
        Write("a.quillet", Project({Label(1)}));
        Write("t.csv", "page,value,Finding\n1,2,a\n");
        const TToolResult result =
            Run(command + QStringList{"a.quillet", "--findings", "t.csv", "--strict"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: t.csv: page 1: label 1 has no row\n"
                                "quillet-cli: t.csv: line 2: page 1 has no label 2\n"));
        QVERIFY(!QFile::exists(Path("out")));
        Write("t.csv", "page,value,Finding\n1,1,a\n");
        Do(command + QStringList{"a.quillet", "--findings", "t.csv", "--strict"});
    }

    void a_bad_table_is_an_error_and_nothing_is_written_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("defect");
        QTest::newRow("column missing") << QByteArray("page,Finding\n1,a\n")
                                        << "line 1, column 1: there is no column \"value\"";
        QTest::newRow("invalid line") << QByteArray("page,value,Finding\n1,1,a\n1,one,b\n")
                                      << "line 3, column 3: \"one\" is not a whole number";
    }
    void a_bad_table_is_an_error_and_nothing_is_written()
    {
        QFETCH(const QByteArray, table);
        QFETCH(const QString, defect);
        Write("a.quillet", Project({Label(1)}));
        Write("t.csv", table);
        const TToolResult result =
            Run({"export-html", "a.quillet", "--output", "out", "--findings", "t.csv"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "quillet-cli: t.csv: " + defect + "\n");
        QVERIFY(!QFile::exists(Path("out")));
    }

    void options_that_make_no_sense_are_wrong_usage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        const auto row = [](const char* name, const QStringList& arguments) {
            QTest::newRow(name) << arguments;
        };
        row("strict alone", {"export-html", "a.quillet", "--output", "out", "--strict"});
        row("findings without list",
            {"export-pdf", "a.quillet", "--output", "out", "--findings", "t.csv"});
        row("width 0", {"export-html", "a.quillet", "--output", "out", "--max-width", "0"});
        row("width as a word", {"export-html", "a.quillet", "--output", "out", "--max-width", "x"});
        row("neither csv nor json", {"export-items", "a.quillet"});
        row("empty csv", {"export-items", "a.quillet", "--csv", ""});
        row("empty findings in a web page",
            {"export-html", "a.quillet", "--output", "out", "--findings", ""});
        row("empty findings in a report",
            {"export-pdf", "a.quillet", "--output", "out", "--list", "--findings", ""});
        row("empty findings of items",
            {"export-items", "a.quillet", "--csv", "out", "--findings", ""});
        row("empty csv with json", {"export-items", "a.quillet", "--csv", "", "--json"});
    }
    void options_that_make_no_sense_are_wrong_usage()
    {
        QFETCH(const QStringList, arguments);
        Write("a.quillet", Project({Label(1)}));
        Write("t.csv", "page,value,Finding\n1,1,a\n");
        const TToolResult result = Run(arguments);
        QCOMPARE(result.status, 2);
        QVERIFY(!result.errors.isEmpty());
        QVERIFY(!QFile::exists(Path("out")));
    }

    void no_input_is_overwritten()
    {
        Write("a.quillet", Project({Label(1)}));
        Write("t.csv", "page,value,Finding\n1,1,a\n");
        for (const QString& input : {QStringLiteral("a.quillet"), QStringLiteral("t.csv")}) {
            const QByteArray before = Content(input);
            for (const QStringList& command :
                 {QStringList{"export-html", "--output", input},
                  QStringList{"export-pdf", "--list", "--output", input},
                  QStringList{"export-items", "--csv", input}}) {
                const TToolResult result =
                    Run(command + QStringList{"a.quillet", "--findings", "t.csv", "--force"});
                QCOMPARE(result.status, 1);
                QVERIFY2(result.errors.startsWith("quillet-cli: " + input + ": "),
                         qPrintable(result.errors));
                QCOMPARE(Content(input), before);
            }
        }
    }

    void a_web_page_is_not_half_written()
    {
        Write("a.quillet", Project({Label(1)}));
        Write("out", "old");
        d_options.file_size = "4";
        const TToolResult result = Run({"export-html", "a.quillet", "--output", "out", "--force"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: out: cannot be written: File too large\n"));
        QCOMPARE(Content("out"), QByteArray("old"));
        QCOMPARE(Entries(d_folder->path()), QStringList({"a.quillet", "out"}));
    }

    void the_title_of_a_web_page_is_the_option_or_the_first_header_line()
    {
        Write("a.quillet", Project({Label(1)}));
        Do({"export-html", "a.quillet", "--output", "one.html"});
        QVERIFY(Content("one.html").contains("<title>First header</title>"));
        Do({"export-html", "a.quillet", "--output", "two.html", "--title", "My <title>"});
        QVERIFY(Content("two.html").contains("<title>My &lt;title&gt;</title>"));
    }

    void without_pages_there_is_no_web_page()
    {
        Write("a.quillet", Project({}));
        const TToolResult result = Run({"export-html", "a.quillet", "--output", "out"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, QStringLiteral("quillet-cli: a.quillet: has no pages\n"));
    }

    void the_list_follows_the_pages_of_the_report_data()
    {
        QTest::addColumn<QString>("orientation");
        QTest::addColumn<QString>("resolution");
        for (const char* const orientation : {"portrait", "landscape"}) {
            for (const char* const resolution : {"96", "180", "276", "372"})
                QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(orientation, resolution)))
                    << QString(orientation) << QString(resolution);
        }
    }
    void the_list_follows_the_pages_of_the_report()
    {
        QFETCH(const QString, orientation);
        QFETCH(const QString, resolution);
        Write("a.quillet", Project({Label(1, "C1") + Label(2), Label(3)}));
        Write("t.csv", "page,value,Finding,Severity\n1,1,\"upper\nlower\",high\n1,2,b,\n"
                       "2,3,\xe6\xbc\x8f\xe6\xb0\xb4,low\n");
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv",
            "--orientation", orientation, "--resolution", resolution});
        const QStringList pages = Text_Of_Pages(Path("a.pdf"));
        QCOMPARE(pages.size(), 3);
        const QStringList lines =
            QString(pages[2]).simplified().split(QRegularExpression("(?=Sheet|No\\.|The Quillet)"));
        QCOMPARE(lines, QStringList({"First header ", "No. Label Finding Severity ",
                                     "Sheet 1 1 C1 upper high lower 2 b ",
                                     QStringLiteral("Sheet 2 3 \u6f0f\u6c34 low "),
                                     "The Quillet Project - www.quillet.example Page 3"}));
    }

    void the_list_continues_on_further_pages_with_its_headings_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("1") << 1;
        QTest::newRow("40") << 40;
        QTest::newRow("2000") << 2000;
    }
    void the_list_continues_on_further_pages_with_its_headings()
    {
        QFETCH(const int, count);
        QByteArray labels;
        QByteArray table = "page,value,Finding\n";
        for (int value = 1; value <= count; ++value) {
            labels += Label(value);
            table += "1," + QByteArray::number(value) + ",\"top " + QByteArray::number(value) +
                     "\nbottom " + QByteArray::number(value) + "\"\n";
        }
        Write("a.quillet", Project({labels}));
        Write("t.csv", table);
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv"});
        QStringList pages = Text_Of_Pages(Path("a.pdf"));
        pages.removeFirst();
        QStringList found;
        int number = 1;
        for (const QString& page : std::as_const(pages)) {
            QCOMPARE(page.count("Finding"), 1);
            QCOMPARE(page.count("Sheet 1"), 1);
            QVERIFY(page.contains(QStringLiteral("Page %1\n").arg(++number)));
            QRegularExpressionMatchIterator rows =
                QRegularExpression("(top|bottom) (\\d+)").globalMatch(page);
            QStringList on_page;
            while (rows.hasNext())
                on_page += rows.next().captured();
            // No row is split: each page begins with the upper line of one.
            QVERIFY(on_page.first().startsWith("top") && on_page.last().startsWith("bottom"));
            found += on_page;
        }
        QStringList expected;
        for (int value = 1; value <= count; ++value)
            expected +=
                {QStringLiteral("top %1").arg(value), QStringLiteral("bottom %1").arg(value)};
        QCOMPARE(found, expected);
    }

    void a_row_that_is_higher_than_a_page_is_split_and_nothing_is_lost()
    {
        QByteArray cell;
        QStringList words;
        for (int line = 1; line <= 150; ++line) {
            words += QStringLiteral("line%1").arg(line);
            cell += words.last().toUtf8() + "\n";
        }
        Write("a.quillet", Project({Label(1) + Label(2)}));
        Write("t.csv", "page,value,Finding\n1,1,\"" + cell + "\"\n1,2,last\n");
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv"});
        const QString text = Text_Of_Pages(Path("a.pdf")).join(' ');
        QStringList found;
        QRegularExpressionMatchIterator lines = QRegularExpression("line\\d+").globalMatch(text);
        while (lines.hasNext())
            found += lines.next().captured();
        QCOMPARE(found, words);
        QVERIFY(text.contains("last"));
    }

    void a_row_that_is_higher_than_a_page_begins_below_the_name_of_its_page()
    {
        QByteArray cell;
        for (int line = 1; line <= 300; ++line)
            cell += "line" + QByteArray::number(line) + "\n";
        Write("a.quillet", Project({Label(1)}));
        Write("t.csv", "page,value,Finding\n1,1,\"" + cell + "\"\n");
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv"});
        const QString first = Text_Of_Pages(Path("a.pdf")).at(1).simplified();
        QVERIFY2(first.contains("No. Finding Sheet 1 1 line1 line2 "), qPrintable(first));
    }

    void long_texts_wrap_within_the_page()
    {
        Write("a.quillet", Project({Label(1)}));
        const QByteArray words = QByteArray("word ").repeated(200).trimmed();
        const QByteArray letters = QByteArray("abc").repeated(200);
        const QByteArray chinese = QByteArray("\xe6\xbc\x8f\xe6\xb0\xb4").repeated(200);
        Write("t.csv", "page,value,A,B,C\n1,1," + words + "," + letters + "," + chinese + "\n");
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv"});
        // Poppler reads nothing that lies beyond the edges.
        const QString text = Text_Of_Pages(Path("a.pdf")).at(1);
        QCOMPARE(text.count("word"), 200);
        QCOMPARE(text.count('b'), 200);
        QCOMPARE(text.count(QStringLiteral("\u6f0f")), 200);
    }

    void a_list_with_the_most_columns_is_complete_data()
    {
        QTest::addColumn<QString>("resolution");
        for (const char* const resolution : {"96", "180", "276", "372"})
            QTest::newRow(resolution) << QString(resolution);
    }
    void a_list_with_the_most_columns_is_complete()
    {
        QFETCH(const QString, resolution);
        Write("a.quillet", Project({Label(1, "text of a label")}));
        QByteArray headings = "page,value";
        QByteArray cells = "1,1";
        for (int column = 0; column < 24; ++column) {
            headings += ",Column" + QByteArray::number(column);
            cells += ",WWWWW\xe6\xbc\x8f\xe6\xb0\xb4WWWWW";
        }
        Write("t.csv", headings + "\n" + cells + "\n");
        Do({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv",
            "--resolution", resolution});
        const QString text = Text_Of_Pages(Path("a.pdf")).at(1);
        QCOMPARE(text.count('W'), 24 * 10);
        QCOMPARE(text.count(QStringLiteral("\u6f0f")), 24);
        QCOMPARE(text.count(QStringLiteral("\u6c34")), 24);
    }

    void a_list_with_too_many_columns_is_refused()
    {
        Write("a.quillet", Project({Label(1)}));
        QByteArray headings = "page,value";
        for (int column = 0; column < 25; ++column)
            headings += ",Column" + QByteArray::number(column);
        Write("t.csv", headings + "\n");
        const TToolResult result =
            Run({"export-pdf", "a.quillet", "--output", "a.pdf", "--list", "--findings", "t.csv"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.endsWith("quillet-cli: t.csv: has 25 columns for the list; a report "
                                        "has room for 24\n"),
                 qPrintable(result.errors));
        QVERIFY(!QFile::exists(Path("a.pdf")));
    }

    void without_list_the_report_is_as_before()
    {
        Write("a.quillet", Project({Label(1), Label(2)}));
        Do({"export-pdf", "a.quillet", "--output", "a.pdf"});
        QCOMPARE(Text_Of_Pages(Path("a.pdf")).size(), 2);
        Do({"export-pdf", "a.quillet", "--output", "list.pdf", "--list"});
        QCOMPARE(Text_Of_Pages(Path("list.pdf")).mid(0, 2), Text_Of_Pages(Path("a.pdf")));
        Do({"export-pdf", "a.quillet", "--output", "again.pdf"});
        QCOMPARE(
            Byte_Difference(Without_Date(Content("again.pdf")), Without_Date(Content("a.pdf"))),
            QString());
    }
};

QTEST_MAIN(TestCliFindings)
#include "test_clifindings.moc"
