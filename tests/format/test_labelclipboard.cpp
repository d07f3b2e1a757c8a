// Labels on the clipboard, as tables.

#include "support/project.h"

#include "src/format/csv.h"
#include "src/format/itemtable.h"
#include "src/format/labelclipboard.h"

#include <QMimeData>
#include <QTest>

using Support::Label;

namespace {

const std::vector<TDataItem> labels{
    Label(17, 5, QStringLiteral("Riß, \"A\"\tB"), 2, {120.5, 0.1}),
    Label(18, -7, QString(), 0, {-1.25, 0}),
    Label(19, 8, QStringLiteral("C\tD"), 8, {0, 1}),
};

/// Labels as lines of text, without their ids.
QStringList Describe(const std::vector<TDataItem>& items)
{
    QStringList lines;
    for (TDataItem item : items) {
        item.id = 0;
        lines += Support::Describe_Label(item);
    }
    return lines;
}

std::vector<TDataItem> Paste_Text(const QString& text)
{
    QMimeData data;
    data.setText(text);
    return LabelClipboard::Paste(data);
}

/// Message of the exception that reading a text throws.
QString Refusal(const QString& text)
{
    try {
        Paste_Text(text);
    } catch (const TCsvException& exception) {
        return exception.Message();
    }
    return QString();
}

} // namespace

class TestLabelClipboard : public QObject
{
    Q_OBJECT

private slots:
    void labels_are_copied_as_a_csv_table()
    {
        const QByteArray table = LabelClipboard::Copy(labels, 3)->data("text/csv");
        QCOMPARE(table, QByteArray("page,value,text,border,x,y,id\r\n"
                                   "3,5,\"Ri\xc3\x9f, \"\"A\"\"\tB\",ellipse,120.5,0.1,17\r\n"
                                   "3,-7,,none,-1.25,0,18\r\n"
                                   "3,8,C\tD,diamond,0,1,19\r\n"));
        QCOMPARE(ItemTable::Read(table).size(), labels.size());
    }

    void spreadsheets_get_the_columns_separated_by_tabs()
    {
        QCOMPARE(LabelClipboard::Copy(labels, 3)->text(),
                 QStringLiteral("page\tvalue\ttext\tborder\tx\ty\tid\r\n"
                                "3\t5\t\"Riß, \"\"A\"\"\tB\"\tellipse\t120.5\t0.1\t17\r\n"
                                "3\t-7\t\tnone\t-1.25\t0\t18\r\n"
                                "3\t8\t\"C\tD\"\tdiamond\t0\t1\t19\r\n"));
    }

    void pasting_returns_what_was_copied()
    {
        const std::unique_ptr<QMimeData> data = LabelClipboard::Copy(labels, 3);
        QCOMPARE(Describe(LabelClipboard::Paste(*data)), Describe(labels));
        QCOMPARE(Describe(Paste_Text(data->text())), Describe(labels));
        QCOMPARE(Describe(Paste_Text(QString::fromUtf8(data->data("text/csv")))), Describe(labels));
    }

    void an_unknown_border_becomes_none()
    {
        const std::unique_ptr<QMimeData> data =
            LabelClipboard::Copy({Label(1, 2, "A", 3, {5, 6})}, 1);
        QCOMPARE(Describe(LabelClipboard::Paste(*data)), Describe({Label(1, 2, "A", 0, {5, 6})}));
    }

    void cells_of_a_spreadsheet_are_read_by_their_headings()
    {
        QCOMPARE(
            Describe(Paste_Text("Remark\tY\tX\tText\tPage\tValue\nwet\t6\t5\tPump, old\t1\t2\n")),
            Describe({Label(0, 2, "Pump, old", 0, {5, 6})}));
    }

    void the_first_column_needs_no_heading()
    {
        QCOMPARE(Describe(Paste_Text("\tpage\tvalue\tx\ty\nleft\t1\t2\t5\t6\n")),
                 Describe({Label(0, 2, "", 0, {5, 6})}));
    }

    void a_tab_in_a_text_does_not_separate_columns()
    {
        QCOMPARE(Describe(Paste_Text("page,value,x,y,text\n1,2,5,6,\"A\tB\"\n")),
                 Describe({Label(0, 2, "A\tB", 0, {5, 6})}));
    }

    void other_content_is_refused_with_a_reason()
    {
        QCOMPARE(Refusal(QString()), QStringLiteral("the table is empty"));
        QCOMPARE(Refusal("Pump"),
                 QStringLiteral("there is only one column: columns are separated by commas"));
        QCOMPARE(Refusal("1\t2\t3"), QStringLiteral("there is no column \"page\""));
        QCOMPARE(Refusal("page\tvalue\tx\ty\n1\t2\t5,5\t6\n"),
                 QStringLiteral("\"5,5\" is not an x coordinate: expected a number such as 12.5"));
    }
};

QTEST_APPLESS_MAIN(TestLabelClipboard)
#include "test_labelclipboard.moc"
