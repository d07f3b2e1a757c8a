// The list of findings: labels joined to a table, and the list as data.

#include "support/project.h"
#include "support/tables.h"

#include "src/data.h"
#include "src/findings/findings.h"
#include "src/findings/findingsdata.h"
#include "src/findings/findingstable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using Support::Label;

namespace {

/// A document of pages that have labels with these values.
TFindings Labels(const std::vector<std::vector<int>>& pages)
{
    TData data;
    std::vector<TNamedPage> names;
    for (const std::vector<int>& values : pages) {
        const int page_id = data.Add_Page();
        data.Set_Active_Page(page_id);
        int id = 0;
        for (const int value : values)
            data.Add_Item(Label(++id, value, QString(), No_Border, QPointF(1, 2)));
        names.push_back({page_id, QStringLiteral("name %1").arg(page_id)});
    }
    return Findings::Of(data, names);
}

QStringList Join(const QByteArray& table, TFindings* findings)
{
    return Findings::Join(TFindingsTable::Read(table), findings);
}

/// Value and cells of each label.
QStringList Describe(const TFindings& findings)
{
    QStringList lines;
    for (const TFindingsPage& page : findings.pages) {
        for (const TFinding& finding : page.rows)
            lines += (QStringList{QString::number(finding.label.value)} + finding.cells).join('|');
    }
    return lines;
}

QString Refusal(const QByteArray& table)
{
    return Support::Table_Refusal([](const QByteArray& bytes) { TFindingsTable::Read(bytes); },
                                  table);
}

} // namespace

class TestFindings : public QObject
{
    Q_OBJECT

private slots:
    void labels_are_listed_in_the_order_of_the_page_list()
    {
        TData data;
        const int first = data.Add_Page();
        const int second = data.Add_Page();
        data.Set_Active_Page(first);
        data.Add_Item(Label(1, 5, QString(), No_Border, QPointF()));
        data.Set_Active_Page(second);
        data.Add_Item(Label(9, 7, QStringLiteral("x"), No_Border, QPointF()));
        data.Add_Item(Label(3, 6, QString(), No_Border, QPointF()));
        const TFindings findings =
            Findings::Of(data, {{second, QStringLiteral("B")}, {first, QStringLiteral("A")}});
        QCOMPARE(Describe(findings), QStringList({"7", "6", "5"}));
        QCOMPARE(findings.pages.front().name, QStringLiteral("B"));
        QCOMPARE(findings.Count(), 3);
        QVERIFY(findings.Has_Texts());
    }

    void a_page_without_a_name_is_called_by_its_number()
    {
        QCOMPARE((TFindingsPage{4, 2, QString(), {}}.Title()), QStringLiteral("Page 2"));
        QCOMPARE((TFindingsPage{4, 2, QStringLiteral("  "), {}}.Title()), QStringLiteral("Page 2"));
        QCOMPARE((TFindingsPage{4, 2, QStringLiteral("Cellar"), {}}.Title()),
                 QStringLiteral("Cellar"));
    }

    void further_columns_become_headings_in_their_order()
    {
        TFindings findings = Labels({{1}, {1}});
        const QByteArray table = " Finding ,VALUE,Page,text,border,x,y,Severity\r\n"
                                 "second,1,2,,,,,high\r\n"
                                 "\"two\r\nlines\",1,1,t,none,0,0,low\r\n";
        QCOMPARE(Join(table, &findings), QStringList());
        QCOMPARE(findings.headings, QStringList({"Finding", "Severity"}));
        QCOMPARE(Describe(findings), QStringList({"1|two\nlines|low", "1|second|high"}));
    }

    void rows_without_a_label_and_labels_without_a_row_are_warnings()
    {
        TFindings findings = Labels({{1, 2}, {}});
        const QByteArray table = "page,value,Note\n1,3,a\n2,1,b\n3,1,c\n1,2,d\n";
        QCOMPARE(Join(table, &findings),
                 QStringList({"page 1: label 1 has no row", "line 2: page 1 has no label 3",
                              "line 3: page 2 has no label 1", "line 4: there is no page 3"}));
        QCOMPARE(Describe(findings), QStringList({"1|", "2|d"}));
    }

    void two_labels_with_the_same_number_get_the_same_row_and_a_warning()
    {
        TFindings findings = Labels({{4, 4, 4}});
        QCOMPARE(Join("page,value,Note\n1,4,a\n", &findings),
                 QStringList("page 1: several labels have the number 4"));
        QCOMPARE(Describe(findings), QStringList({"4|a", "4|a", "4|a"}));
    }

    void labels_with_the_same_number_get_their_rows_in_order()
    {
        TFindings findings = Labels({{4, 4}});
        QCOMPARE(Join("page,value,Note\n1,4,a\n1,4,b\n1,4,c\n", &findings),
                 QStringList({"page 1: several labels have the number 4",
                              "line 4: page 1 has no further label 4"}));
        QCOMPARE(Describe(findings), QStringList({"4|a", "4|b"}));
    }

    void a_bad_table_is_refused_with_its_place_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("refusal");
        const auto row = [](const char* name, const QByteArray& table, const char* refusal) {
            QTest::newRow(name) << table << QString::fromLatin1(refusal);
        };
        row("empty", "", "1:1: the table is empty");
        row("one column", "page;value\n",
            "1:1: there is only one column: columns are separated by commas");
        row("no page", "value,Note\n", "1:1: there is no column \"page\"");
        row("no value", "\npage,Note\n", "2:1: there is no column \"value\"");
        row("value twice", "page,value,Value\n", "1:12: there are two columns \"value\"");
        row("heading twice", "page,value,A, A\n", "1:14: there are two columns \"A\"");
        row("page 0", "page,value\n1,1\n0,1\n",
            "3:1: \"0\" is neither a page number nor the name of one page");
        row("page as a word", "page,value\none,1\n",
            "2:1: \"one\" is neither a page number nor the name of one page");
        row("value with a fraction", "page,value\n1,1.5\n", "2:3: \"1.5\" is not a whole number");
        row("field missing", "page,value,A\n1,1\n", "2:1: 2 fields, but there are 3 columns");
        row("cell without a heading", "page,value,\n1,1,x\n",
            "2:5: \"x\" is in a column without a name");
        row("quote", "page,value,A\n1,1,\"x\n", "2:5: a quoted field is not closed");
        row("not in UTF-8", "page,value,A\n1,1,\xff\n", "2:5: the table is not in UTF-8");
    }
    void a_bad_table_is_refused_with_its_place()
    {
        QFETCH(const QByteArray, table);
        QTEST(Refusal(table), "refusal");
    }

    void empty_columns_without_a_name_are_skipped()
    {
        const TFindingsTable table = TFindingsTable::Read("page,value,,A\n1,1,,x\n");
        QCOMPARE(table.headings, QStringList("A"));
        QCOMPARE(table.rows.front().cells, QStringList("x"));
    }

    void as_csv_the_columns_of_the_labels_come_first()
    {
        TFindings findings = Labels({{3}});
        Join("page,value,A,\"B, C\"\n1,3,\"x\ny\",\n", &findings);
        QCOMPARE(FindingsData::Csv(findings),
                 QByteArray(
                     "page,value,text,border,x,y,id,A,\"B, C\"\r\n1,3,,none,1,2,1,\"x\ny\",\r\n"));
    }

    void csv_that_is_read_again_gives_the_same_list()
    {
        TFindings findings = Labels({{3, 3}, {1}});
        Join("page,value,A\n1,3,\"one\n\"\"1\"\"\"\n1,3,two\n2,1,\n", &findings);
        TFindings again = Labels({{3, 3}, {1}});
        Join(FindingsData::Csv(findings), &again);
        QCOMPARE(again.headings, findings.headings);
        QCOMPARE(Describe(again), Describe(findings));
    }

    void as_json_every_label_has_its_cells_by_heading()
    {
        TFindings findings = Labels({{3}, {}});
        Join("page,value,Z,A\n1,3,x,\n", &findings);
        const QJsonObject object = QJsonDocument::fromJson(FindingsData::Json(findings)).object();
        QCOMPARE(object["headings"].toArray(), (QJsonArray{"Z", "A"}));
        const QJsonArray pages = object["pages"].toArray();
        QCOMPARE(pages.size(), 2);
        QCOMPARE(pages[1].toObject(),
                 (QJsonObject{{"number", 2}, {"name", "name 2"}, {"labels", QJsonArray()}}));
        const QJsonArray labels = pages[0].toObject()["labels"].toArray();
        QCOMPARE(labels,
                 (QJsonArray{QJsonObject{{"id", 1},
                                         {"value", 3},
                                         {"text", ""},
                                         {"border", "none"},
                                         {"x", 1},
                                         {"y", 2},
                                         {"findings", QJsonObject{{"A", ""}, {"Z", "x"}}}}}));
    }
};

QTEST_APPLESS_MAIN(TestFindings)
#include "test_findings.moc"
