#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QBuffer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QTransform>

using namespace Support;

namespace {

/// The page of a letter: each has an image and a label of its own.
QByteArray Page(char name, const QByteArray& item = QByteArray())
{
    const QByteArray number = QByteArray::number(name - 'a' + 1);
    const QByteArray label =
        item.isEmpty() ? Item_Element(number, number, "", "1", "10.00,20.00") : item;
    return Page_Record(QByteArray(1, name), Png(Picture(60, 40, name)), Item_List(label));
}

QByteArray Project(const QByteArray& pages, quint32 count)
{
    return Header(32, "#0a141e", "first", "second", count) + pages;
}

QByteArray Three_Pages()
{
    return Project(Page('a') + Page('b') + Page('c'), 3);
}

} // namespace

/// Tests set, pages, merge and diff. Each test has a folder with a document of three pages.
class TestCliEditing : public TToolTest
{
    Q_OBJECT

    /// Runs a command that has to succeed silently, and returns the file "out".
    QByteArray Edited(const QStringList& arguments) const
    {
        const TToolResult result = Run(arguments + QStringList{"--output", "out", "--force"});
        return result.status == 0 && result.errors.isEmpty() && result.output.isEmpty()
                   ? Content("out")
                   : result.errors.toUtf8();
    }

    /// What `diff` prints about three.quillet and another project.
    QStringList Diff(const QByteArray& right) const
    {
        Write("right", right);
        const TToolResult result = Run({"diff", "three.quillet", "right"});
        QStringList lines = (result.output + result.errors).split('\n', Qt::SkipEmptyParts);
        const int status = lines.isEmpty() ? 0 : 1;
        return result.status == status ? lines : QStringList{QString::number(result.status)};
    }

private slots:
    void init()
    {
        TToolTest::init();
        Write("three.quillet", Three_Pages());
    }

    void set_changes_only_the_named_settings_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("label size")
            << QStringList{"--label-size", "16"} << Header(16, "#0a141e", "first", "second", 3);
        QTest::newRow("largest label size")
            << QStringList{"--label-size", "128"} << Header(128, "#0a141e", "first", "second", 3);
        QTest::newRow("colour") << QStringList{"--label-color", "#D5006D"}
                                << Header(32, "#d5006d", "first", "second", 3);
        QTest::newRow("name of a colour")
            << QStringList{"--label-color", "red"} << Header(32, "#ff0000", "first", "second", 3);
        QTest::newRow("header line 1") << QStringList{"--header-1", "M\u00fchle %1"}
                                       << Header(32, "#0a141e", "M\xfchle %1", "second", 3);
        QTest::newRow("no header line 2")
            << QStringList{"--header-2", ""} << Header(32, "#0a141e", "first", "", 3);
    }
    void set_changes_only_the_named_settings()
    {
        QFETCH(const QStringList, options);
        QFETCH(const QByteArray, header);
        QCOMPARE(Byte_Difference(Edited(QStringList{"set", "three.quillet"} + options),
                                 header + Page('a') + Page('b') + Page('c')),
                 QString());
    }

    void a_document_can_be_edited_in_place()
    {
        QCOMPARE(Run({"set", "three.quillet", "--label-size", "44", "-fo", "three.quillet"}).status,
                 0);
        QCOMPARE(Run({"pages", "three.quillet", "--remove", "2-3", "-fo", "three.quillet"}).status,
                 0);
        QCOMPARE(Byte_Difference(Content("three.quillet"),
                                 Header(44, "#0a141e", "first", "second", 1) + Page('a')),
                 QString());
    }

    void pages_are_listed()
    {
        Write("a.quillet", Project(Page_Record("x, %1", "", Item_List()) + Page('b'), 2));
        QCOMPARE(Run({"pages", "a.quillet"}).output,
                 QString("1: labels: 0, x, %1\n2: labels: 1, b\n"));
        const QJsonArray list =
            QJsonDocument::fromJson(Run({"pages", "a.quillet", "--json"}).output.toUtf8()).array();
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(1).toObject(), (QJsonObject{{"number", 2}, {"name", "b"}, {"labels", 1}}));
    }

    void pages_are_reordered_removed_and_extracted_unchanged_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("names");
        const auto row = [](const QString& options, const QByteArray& names) {
            QTest::newRow(qPrintable(options)) << options.split(' ') << names;
        };
        row("--order 3", "cab");
        row("--order 3,1-2", "cab");
        row("--order 2-3", "bca");
        row("--remove 2", "ac");
        row("--remove 1,3", "b");
        row("--remove 1-3", "");
        row("--order 3,2 --remove 2", "ca");
        row("--extract 3,1", "ca");
    }
    void pages_are_reordered_removed_and_extracted_unchanged()
    {
        QFETCH(const QStringList, options);
        QFETCH(const QByteArray, names);
        QByteArray expected;
        for (const char name : names)
            expected += Page(name);
        // Images that are decoded and encoded again would have other bytes.
        QCOMPARE(Byte_Difference(Edited(QStringList{"pages", "three.quillet"} + options),
                                 Project(expected, static_cast<quint32>(names.size()))),
                 QString());
    }

    void pages_are_renamed()
    {
        const QByteArray edited = Edited(
            {"pages", "three.quillet", "--rename", "3=x=y", "--rename", "1=", "--order", "3"});
        const auto renamed = [](char name, const QByteArray& new_name) {
            return Field(new_name) + Page(name).mid(5);
        };
        QCOMPARE(
            Byte_Difference(edited, Project(renamed('c', "x=y") + renamed('a', "") + Page('b'), 3)),
            QString());
    }

    void pages_are_rotated_with_their_labels_data()
    {
        QTest::addColumn<QString>("angle");
        QTest::addColumn<QByteArray>("position");
        QTest::addColumn<int>("degrees");
        QTest::newRow("left") << "left" << QByteArray("20.00,50.00") << -90;
        QTest::newRow("right") << "Right" << QByteArray("20.00,10.00") << 90;
        QTest::newRow("90") << "90" << QByteArray("20.00,10.00") << 90;
        QTest::newRow("270") << "270" << QByteArray("20.00,50.00") << -90;
        QTest::newRow("180") << "180" << QByteArray("50.00,20.00") << 180;
    }
    void pages_are_rotated_with_their_labels()
    {
        QFETCH(const QString, angle);
        QFETCH(const QByteArray, position);
        QFETCH(const int, degrees);
        const QImage picture = Picture(60, 40, 'b').transformed(QTransform().rotate(degrees));
        const QByteArray page =
            Page_Record("b", Png(picture), Item_List(Item_Element("2", "2", "", "1", position)));
        QCOMPARE(Byte_Difference(Edited({"pages", "three.quillet", "--rotate", "2=" + angle}),
                                 Project(Page('a') + page + Page('c'), 3)),
                 QString());
    }

    void an_edit_that_is_not_possible_is_refused_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("complaint");
        const auto row = [](const QString& command, int status, const QString& complaint) {
            QTest::newRow(qPrintable(command)) << command << status << complaint;
        };
        row("pages three.quillet -o out --order 4", 1, "three.quillet: there is no page 4");
        row("pages three.quillet -o out --remove 2-9", 1, "three.quillet: there is no page 9");
        row("pages three.quillet -o out --extract 5", 1, "three.quillet: there is no page 5");
        row("pages three.quillet -o out --rename 4=x", 1, "three.quillet: there is no page 4");
        row("pages three.quillet -o out --rotate 4=left", 1, "three.quillet: there is no page 4");
        row("pages empty.quillet -o out --rotate 1=left", 1, "empty.quillet: page 1 has no image");
        row("pages three.quillet -fo three.quillet --extract 1", 1,
            "three.quillet: is an input and cannot be overwritten");
        row("merge three.quillet empty.quillet -fo empty.quillet", 1,
            "empty.quillet: is an input and cannot be overwritten");
        row("pages three.quillet -o out --order 1,1", 2, "Page 1 is named twice.");
        row("pages three.quillet -o out --order 2-", 2,
            "Invalid value '2-' for option 'order': expected page numbers and ranges such as "
            "1-3,7.");
        for (const char* const value : {"1", "left", "x=left", "1=", "1=up"})
            row(QString("pages three.quillet -o out --rotate ") + value, 2,
                QString("Invalid value '%1' for option 'rotate': expected pages and left, right, "
                        "90, 180 or 270, such as 1-3=left.")
                    .arg(QString(value).section('=', QString(value).startsWith("1=") ? 1 : 0)));
        row("pages three.quillet -o out --rename x", 2,
            "Invalid value 'x' for option 'rename': expected a page and its name such as 3=Cover.");
        row("pages three.quillet -o out --rename 1=a\tb", 2,
            "Invalid value '1=a\tb' for option 'rename': expected one line of text without "
            "control characters.");
        row("pages three.quillet --order 1", 2, "Missing option 'output'.");
        row("pages three.quillet -o out", 2,
            "Option 'output' needs 'order', 'remove', 'extract', 'rename' or 'rotate'.");
        row("pages three.quillet -o out --extract 1 --remove 1", 2,
            "Options 'extract' and 'remove' exclude each other.");
        row("pages three.quillet -o out --extract 1 --order 1", 2,
            "Options 'extract' and 'order' exclude each other.");
        row("pages three.quillet -o out --order 1 --json", 2,
            "Options 'json' and 'order' exclude each other.");
        row("set three.quillet -o out", 2,
            "Missing option 'label-size', 'label-color', 'header-1' or 'header-2'.");
        for (const char* const size : {"15", "129", "big"})
            row(QString("set three.quillet -o out --label-size ") + size, 2,
                QString("Invalid value '%1' for option 'label-size': expected a whole number from "
                        "16 to 128.")
                    .arg(size));
        for (const char* const color : {"d5006d", "#80ff0000", "transparent", "ink"})
            row(QString("set three.quillet -o out --label-color ") + color, 2,
                QString("Invalid value '%1' for option 'label-color': expected #rrggbb or the name "
                        "of a colour.")
                    .arg(color));
        row("set three.quillet -o out --header-2 a\tb", 2,
            "Invalid value 'a\tb' for option 'header-2': expected one line of text without control "
            "characters.");
        row("diff three.quillet", 2, "Missing argument 'RIGHT'.");
        row("diff a b c", 2, "Unexpected argument 'c'.");
        row("diff three.quillet missing", 2, "missing: cannot be read: No such file or directory");
    }
    void an_edit_that_is_not_possible_is_refused()
    {
        QFETCH(const QString, command);
        QFETCH(const int, status);
        QFETCH(const QString, complaint);
        Write("empty.quillet", Project(Page_Record("a", "", Item_List()), 1));
        const TToolResult result = Run(command.split(' '));
        QCOMPARE(result.errors.section('\n', 0, 0), "quillet-cli: " + complaint);
        QCOMPARE(result.status, status);
        QCOMPARE(result.output, QString());
        QVERIFY(!QFile::exists(Path("out")));
        QCOMPARE(Content("three.quillet"), Three_Pages());
    }

    void documents_are_merged_in_the_given_order()
    {
        Write("b.quillet", Project(Page('b') + Page('a'), 2));
        Write("none.quillet", Project(QByteArray(), 0));
        // Names and ids of labels may repeat. Nothing about a page changes.
        QCOMPARE(Byte_Difference(
                     Edited({"merge", "b.quillet", "none.quillet", "three.quillet", "b.quillet"}),
                     Project(Page('b') + Page('a') + Page('a') + Page('b') + Page('c') + Page('b') +
                                 Page('a'),
                             7)),
                 QString());
    }

    void details_of_a_merge_are_the_numbers_of_the_pages()
    {
        Write("b.quillet", Project(Page('b') + Page('a'), 2));
        const TToolResult result =
            Run({"merge", "b.quillet", "three.quillet", "-o", "out", "--verbose"});
        QCOMPARE(result.status, 0);
        for (const char* const detail :
             {"b.quillet: pages 1 to 2\n", "three.quillet: pages 3 to 5\n"})
            QVERIFY2(result.errors.contains(detail), qPrintable(result.errors));
    }

    void a_merged_document_has_the_settings_of_the_first()
    {
        Write("b.quillet", Header(44, "#0a141e", "first", "second", 1) + Page('b'));
        const TToolResult result =
            Run({"merge", "b.quillet", "three.quillet", "b.quillet", "-o", "out"});
        QCOMPARE(result.errors,
                 QString("quillet-cli: three.quillet: warning: label size, colour and header lines "
                         "are taken from the first document\n"));
        QCOMPARE(result.status, 0);
        QVERIFY(Content("out").startsWith(Header(44, "#0a141e", "first", "second", 5)));
    }

    void full_names_and_header_lines_survive_a_merge()
    {
        const auto document = [](const QByteArray& attributes) {
            return Header(32, "#0a141e", "?", "", 1) +
                   Page_Record("?", "", Item_List("", attributes));
        };
        Write("x.quillet", document(" Page_Name=\"\xce\xb1\" Header_1=\"\xce\xa9\""));
        Write("y.quillet", document(" Page_Name=\"\xce\xb2\" Header_1=\"\xce\xa9\""));
        Edited({"merge", "x.quillet", "y.quillet"});
        const QString info = Run({"info", "out"}).output;
        for (const char* const line : {"Header 1: \u03a9\n", ", \u03b1\n", ", \u03b2\n"})
            QVERIFY2(info.contains(QString::fromUtf8(line)), qPrintable(info));
    }

    void equal_documents_have_no_difference()
    {
        QCOMPARE(Diff(Three_Pages()), QStringList());
        QCOMPARE(Run({"diff", "three.quillet", "three.quillet", "--json"}).output,
                 QString("{\n    \"differences\": [\n    ],\n    \"equal\": true\n}\n"));
    }

    void each_difference_is_a_line_data()
    {
        QTest::addColumn<QByteArray>("right");
        QTest::addColumn<QStringList>("lines");
        const QByteArray abc = Page('a') + Page('b') + Page('c');
        QTest::newRow("settings") << Header(33, "#0a141f", "a \"b\"\n", "", 3) + abc
                                  << QStringList{"label size: 32 -> 33",
                                                 "label color: \"#0a141e\" -> \"#0a141f\"",
                                                 "header 1: \"first\" -> \"a \\\"b\\\"\\n\"",
                                                 "header 2: \"second\" -> \"\""};
        QTest::newRow("removed and added")
            << Project(Page('a') + Page('d') + Page('b'), 3)
            << QStringList{"page 3 \"c\": removed", "page 2 \"d\": added"};
        QTest::newRow("one page moved") << Project(Page('b') + Page('c') + Page('a'), 3)
                                        << QStringList{"page 1 \"a\": moved, now page 3"};
        QTest::newRow("renamed") << Project(Page('a') + Field("B") + Page('b').mid(5) + Page('c'),
                                            3)
                                 << QStringList{"page 2 \"b\": name: \"b\" -> \"B\""};
        const auto label = [](const QByteArray& item) {
            return Project(Page('a') + Page('b', item) + Page('c'), 3);
        };
        QTest::newRow("label changed")
            << label(Item_Element("2", "8", "Pump", "4", "10.50,20.25"))
            << QStringList{"page 2 \"b\": label 2 (id 2): value: 2 -> 8",
                           "page 2 \"b\": label 2 (id 2): text: \"\" -> \"Pump\"",
                           "page 2 \"b\": label 2 (id 2): border: \"square\" -> \"triangle\"",
                           "page 2 \"b\": label 2 (id 2): x: 10 -> 10.5",
                           "page 2 \"b\": label 2 (id 2): y: 20 -> 20.25"};
        QTest::newRow("another label") << label(Item_Element("5", "6", "", "1", "10.00,20.00"))
                                       << QStringList{"page 2 \"b\": label 2 (id 2): removed",
                                                      "page 2 \"b\": label 6 (id 5): added"};
        QTest::newRow("another image size")
            << Project(Page('a') + Page('b') +
                           Page_Record("c", "",
                                       Item_List(Item_Element("3", "3", "", "1", "10.00,20.00"))),
                       3)
            << QStringList{"page 3 \"c\": image: \"60 x 40\" -> \"no image\""};
    }
    void each_difference_is_a_line()
    {
        QFETCH(const QByteArray, right);
        QTEST(Diff(right), "lines");
    }

    void images_are_compared_by_their_pixels()
    {
        const auto project = [](const QByteArray& image) {
            return Project(Page_Record("a", image, Item_List()), 1);
        };
        QImage picture = Picture(60, 40).convertToFormat(QImage::Format_RGB32);
        Write("three.quillet", project(Png(picture)));
        // The same pixels in another format, and in a larger one.
        QByteArray other;
        QBuffer buffer(&other);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(picture.save(&buffer, "BMP"));
        QCOMPARE(Diff(project(other)), QStringList());
        QCOMPARE(Diff(project(Png(picture.convertToFormat(QImage::Format_RGBA64)))), QStringList());
        picture.setPixelColor(59, 39, Qt::red);
        picture.setPixelColor(0, 0, Qt::red);
        QCOMPARE(Diff(project(Png(picture))), QStringList{"page 1 \"a\": image: 2 pixels differ"});
    }

    void labels_in_another_order_are_a_difference()
    {
        const QByteArray first = Item_Element("1", "1", "", "1", "1.00,1.00");
        const QByteArray second = Item_Element("2", "2", "", "1", "1.00,1.00");
        Write("three.quillet", Project(Page('a', first + second), 1));
        QCOMPARE(Diff(Project(Page('a', second + first), 1)),
                 QStringList{"page 1 \"a\": labels are in another order"});
    }

    void pages_of_the_same_name_correspond_in_their_order()
    {
        Write("three.quillet", Project(Page('a') + Page('a') + Page('b'), 3));
        QCOMPARE(Diff(Project(Page('a') + Page('b'), 2)), QStringList{"page 2 \"a\": removed"});
    }

    void differences_are_listed_as_json()
    {
        Write("right", Header(33, "#0a141e", "first", "second", 3) + Page('b') + Page('d') +
                           Page('a', Item_Element("1", "1", "x", "1", "10.00,20.00")));
        const TToolResult result = Run({"diff", "three.quillet", "right", "--json", "--quiet"});
        QCOMPARE(result.status, 1);
        const QJsonObject object = QJsonDocument::fromJson(result.output.toUtf8()).object();
        QCOMPARE(object.value("equal"), QJsonValue(false));
        const QJsonArray expected{
            QJsonObject{
                {"kind", "changed"}, {"property", "label_size"}, {"left", 32}, {"right", 33}},
            QJsonObject{{"kind", "moved"}, {"left_page", 1}, {"right_page", 3}, {"page_name", "a"}},
            QJsonObject{{"kind", "changed"},
                        {"left_page", 1},
                        {"right_page", 3},
                        {"page_name", "a"},
                        {"label_id", 1},
                        {"label_value", 1},
                        {"property", "text"},
                        {"left", ""},
                        {"right", "x"}},
            QJsonObject{{"kind", "removed"}, {"left_page", 3}, {"page_name", "c"}},
            QJsonObject{{"kind", "added"}, {"right_page", 2}, {"page_name", "d"}}};
        QCOMPARE(object.value("differences").toArray(), expected);
    }

    void a_quiet_comparison_prints_nothing()
    {
        Write("right", Header(33, "#0a141e", "first", "second", 0));
        const TToolResult result = Run({"diff", "-q", "three.quillet", "right"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output + result.errors, QString());
    }
};

QTEST_MAIN(TestCliEditing)
#include "test_cliediting.moc"
