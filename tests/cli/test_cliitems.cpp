#include "support/project.h"
#include "support/support.h"
#include "support/tool.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <unistd.h>

using namespace Support;

namespace {

const QByteArray head = "page,value,text,border,x,y\r\n";
const QByteArray exported_head = "page,value,text,border,x,y,id\r\n";

QByteArray Project(const QByteArray& first_items, const QByteArray& second_items)
{
    return Header(32, "#0a141e", "", "", 2) +
           Page_Record("a", QByteArray(), Item_List(first_items)) +
           Page_Record("b", QByteArray(), Item_List(second_items));
}

} // namespace

/// Tests export-items, import-items and kept.
class TestCliItems : public TToolTest
{
    Q_OBJECT

    /// Writes a backup or recovery copy with an age in seconds.
    void Keep(const QString& name, const QByteArray& content, const QString& document,
              int age) const
    {
        const QString path = Path("home/.quillet/" + name);
        QDir(d_folder->path()).mkpath("home/.quillet/" + name.section('/', 0, 0));
        Write_File(path + ".quillet", content);
        Write_File(path + ".note", document.toUtf8());
        Make_Old(path + ".quillet", age);
        Make_Old(path + ".note", age);
    }

    /// Returns names, sizes and times of all files in the home folder.
    QStringList Home() const
    {
        QStringList lines;
        QDirIterator files(Path("home"), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            const QFileInfo file = files.fileInfo();
            lines += QStringLiteral("%1 %2 %3")
                         .arg(file.filePath())
                         .arg(file.size())
                         .arg(file.lastModified().toMSecsSinceEpoch());
        }
        lines.sort();
        return lines;
    }

private slots:
    void init()
    {
        TToolTest::init();
        d_options.home = Path("home");
        QVERIFY(QDir(d_folder->path()).mkdir("home"));
    }

    void labels_are_exported_page_by_page()
    {
        Write("a.quillet", Project(Item_Element("9", "-3", "a, \"b\"", "8", "1.50,2.00"),
                                   Item_Element("4", "7",
                                                "Gr\xc3\xb6\xc3\x9f"
                                                "e",
                                                "0", "10.00,-20.25") +
                                       Item_Element("3", "8", "", "2", "0.00,0.00")));
        const TToolResult result = Run({"export-items", "a.quillet", "--csv", "items.csv"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(Content("items.csv"), exported_head + "1,-3,\"a, \"\"b\"\"\",diamond,1.5,2,9\r\n"
                                                       "2,7,Gr\xc3\xb6\xc3\x9f"
                                                       "e,none,10,-20.25,4\r\n"
                                                       "2,8,,ellipse,0,0,3\r\n");
    }

    void imported_labels_are_appended_under_new_ids()
    {
        Write("a.quillet", Project(Item_Element("2", "5", "", "0", "1.00,2.00"), QByteArray()));
        Write("items.csv", head + "2,1,,triangle,1,2\r\n"
                                  "1,7,first,square,3,4\r\n"
                                  "1,7,second,,5.25,6\r\n");
        const TToolResult result =
            Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const QByteArray expected = Project(Item_Element("2", "5", "", "0", "1.00,2.00") +
                                                Item_Element("1", "7", "first", "1", "3.00,4.00") +
                                                Item_Element("3", "7", "second", "0", "5.25,6.00"),
                                            Item_Element("1", "1", "", "4", "1.00,2.00"));
        QCOMPARE(Byte_Difference(Content("out"), expected), QString());
    }

    void line_breaks_in_texts_become_blanks()
    {
        Write("a.quillet", Project(QByteArray(), QByteArray()));
        Write("items.csv", head + "1,7,\"Pump\r\nleaks\n\",,3,4\r\n");
        QCOMPARE(Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out"}).errors,
                 QString());
        QCOMPARE(Byte_Difference(Content("out"),
                                 Project(Item_Element("1", "7", "Pump leaks ", "0", "3.00,4.00"),
                                         QByteArray())),
                 QString());
    }

    void exported_labels_can_be_imported()
    {
        Write("a.quillet", Project(Item_Element("1", "5", "x", "4", "1.25,2.00"),
                                   Item_Element("1", "6", "y", "2", "3.00,4.00")));
        Write("empty.quillet", Project(QByteArray(), QByteArray()));
        QCOMPARE(Run({"export-items", "a.quillet", "--csv", "items.csv"}).status, 0);
        QCOMPARE(
            Run({"import-items", "empty.quillet", "--csv", "items.csv", "--output", "out"}).status,
            0);
        QCOMPARE(Byte_Difference(Content("out"), Content("a.quillet")), QString());
    }

    void a_table_can_be_imported_twice()
    {
        const QByteArray project = Project(Item_Element("9", "5", "x", "4", "1.25,2.00") +
                                               Item_Element("3", "6", "", "0", "3.00,4.00"),
                                           QByteArray());
        Write("a.quillet", project);
        QCOMPARE(Run({"export-items", "a.quillet", "--csv", "items.csv"}).status, 0);
        const QStringList import{"import-items", "a.quillet", "--csv",  "items.csv",
                                 "--output",     "a.quillet", "--force"};
        QCOMPARE(Run(import).errors, QString());
        QCOMPARE(Run(import).errors, QString());
        QCOMPARE(Byte_Difference(Content("a.quillet"), project), QString());
    }

    void a_known_id_changes_its_label()
    {
        Write("a.quillet", Project(Item_Element("9", "5", "x", "4", "1.25,2.00") +
                                       Item_Element("3", "6", "y", "1", "3.00,4.00"),
                                   QByteArray()));
        // There is no column for the border, and 8 is the id of no label.
        Write("items.csv", "text,id,page,value,x,y,note\r\n"
                           "new,9,1,7,10,20,ignored\r\n"
                           "other,8,1,1,0,1,\r\n"
                           "z,,1,2,5,5,\r\n");
        QCOMPARE(Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out"}).errors,
                 QString());
        const QByteArray changed = Item_Element("9", "7", "new", "4", "10.00,20.00");
        const QByteArray added = Item_Element("8", "1", "other", "0", "0.00,1.00") +
                                 Item_Element("1", "2", "z", "0", "5.00,5.00");
        const QByteArray unnamed = Item_Element("3", "6", "y", "1", "3.00,4.00");
        QCOMPARE(Byte_Difference(Content("out"), Project(changed + unnamed + added, QByteArray())),
                 QString());
        QCOMPARE(Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out",
                      "--replace", "--force"})
                     .errors,
                 QString());
        QCOMPARE(Byte_Difference(Content("out"), Project(changed + added, QByteArray())),
                 QString());
    }

    void a_dry_run_prints_what_would_happen()
    {
        Write("a.quillet", Project(Item_Element("9", "5", "%1", "4", "1.25,2.00") +
                                       Item_Element("3", "6", "", "0", "3.00,4.00"),
                                   Item_Element("3", "8", "", "0", "3.00,4.00")));
        Write("items.csv", exported_head + "1,7,%1,triangle,10,2,9\r\n"
                                           "2,8,,,3,4,3\r\n"
                                           "2,1,,square,5,6,\r\n");
        const QStringList before = Entries(d_folder->path());
        const TToolResult result =
            Run({"import-items", "a.quillet", "--csv", "items.csv", "--replace", "--dry-run"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output,
                 QStringLiteral("page 1: remove 6 none at 3,4\n"
                                "page 1: change 5 \"%1\" triangle at 1.25,2 to 7 \"%1\" triangle "
                                "at 10,2\n"
                                "page 2: add 1 square at 5,6\n"
                                "labels added: 1, changed: 1, removed: 1, unchanged: 1\n"));
        QCOMPARE(Entries(d_folder->path()), before);
    }

    void an_invalid_row_is_reported_and_nothing_is_written_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("complaint");
        QTest::newRow("page 0") << head + "1,1,,,1,1\r\n0,1,,,1,1\r\n"
                                << "line 3, column 1: ";
        QTest::newRow("page 3 of 2") << head + "3,1,,,1,1\r\n"
                                     << "line 2, column 1: there is no page 3\n";
        QTest::newRow("id no number") << exported_head + "1,1,,,1,1,a\r\n"
                                      << "line 2, column 11: \"a\" is not an id";
        QTest::newRow("id twice") << exported_head + "1,1,,,1,1,5\r\n2,1,,,1,1,5\r\n1,2,,,1,1,5\r\n"
                                  << "line 4, column 1: an earlier row has the same id 5\n";
        QTest::newRow("no value") << head + "1,one,,,1,1\r\n"
                                  << "line 2, column 3: ";
        QTest::newRow("no coordinate") << head + "1,1,,,1,\r\n"
                                       << "line 2, column 9: ";
        QTest::newRow("no header") << QByteArray("1,1,,,1,1\r\n") << "line 1, column 1: ";
        QTest::newRow("empty") << QByteArray() << "line 1, column 1: ";
    }
    void an_invalid_row_is_reported_and_nothing_is_written()
    {
        QFETCH(const QByteArray, table);
        QFETCH(const QString, complaint);
        Write("a.quillet", Project(QByteArray(), QByteArray()));
        Write("items.csv", table);
        const TToolResult result =
            Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out"});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.startsWith("quillet-cli: items.csv: " + complaint),
                 qPrintable(result.errors));
        QCOMPARE(result.errors.count('\n'), 1);
        QVERIFY(!QFile::exists(Path("out")));
    }

    void a_missing_table_is_reported()
    {
        Write("a.quillet", Project(QByteArray(), QByteArray()));
        const TToolResult result =
            Run({"import-items", "a.quillet", "--csv", "items.csv", "--output", "out"});
        QCOMPARE(result.status, 1);
        QCOMPARE(
            result.errors,
            QStringLiteral("quillet-cli: items.csv: cannot be read: No such file or directory\n"));
    }

    void a_text_that_cannot_be_saved_is_an_error()
    {
        Write("a.quillet", Project(QByteArray(), QByteArray()));
        Write("items.csv", head + "1,1,,,1,1\r\n1,1,\x01,,1,1\r\n");
        for (const QStringList& option : {QStringList{"--output", "out"}, {"--dry-run"}}) {
            const TToolResult result =
                Run(QStringList{"import-items", "a.quillet", "--csv", "items.csv"} + option);
            QCOMPARE(result.status, 1);
            QCOMPARE(result.output, QString());
            QCOMPARE(result.errors,
                     QString("quillet-cli: items.csv: line 3, column 1: the text has a character "
                             "that a project cannot store\n"));
            QVERIFY(!QFile::exists(Path("out")));
        }
    }

    void kept_without_copies_prints_a_message()
    {
        const TToolResult result = Run({"kept"});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, QStringLiteral("There are no copies.\n"));
        QCOMPARE(result.home, QStringList());
    }

    void kept_lists_copies_newest_first()
    {
        Keep("backup/one", Empty_Project(), "/tmp/one.quillet", 100);
        Keep("recovery/20260501-010203", Empty_Project() + "longer", "", 200);
        Keep("backup/two", Empty_Project(), "/tmp/%1 two.quillet", 300);
        const QStringList before = Home();
        const TToolResult result = Run({"kept"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const auto time = [this](const QString& name) {
            return QFileInfo(Path("home/.quillet/" + name + ".quillet"))
                .lastModified()
                .toString("yyyy-MM-dd hh:mm:ss");
        };
        QCOMPARE(result.output, "1: backup, " + time("backup/one") +
                                    ", 31 bytes, /tmp/one.quillet\n" + "2: recovery, " +
                                    time("recovery/20260501-010203") + ", 37 bytes, never saved\n" +
                                    "3: backup, " + time("backup/two") +
                                    ", 31 bytes, /tmp/%1 two.quillet\n");
        QCOMPARE(Home(), before);
    }

    void kept_lists_copies_of_the_same_time_with_unsaved_work_first()
    {
        for (const char* const name : {"backup/one", "recovery/two"}) {
            Keep(name, Empty_Project(), "/tmp/a.quillet", 0);
            for (const char* const suffix : {".quillet", ".note"}) {
                QFile file(Path("home/.quillet/") + name + suffix);
                QVERIFY(file.open(QIODevice::ReadWrite));
                QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'000),
                                         QFileDevice::FileModificationTime));
            }
        }
        const QString output = Run({"kept"}).output;
        QVERIFY2(output.startsWith("1: recovery, "), qPrintable(output));
    }

    void kept_copies_a_file_without_removing_it()
    {
        Keep("backup/one", Empty_Project(40), "/tmp/one.quillet", 100);
        Keep("recovery/two", Empty_Project(50), "", 200);
        const QStringList before = Home();
        const TToolResult result = Run({"kept", "--copy", "2", "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(Content("out"), Empty_Project(50));
        QCOMPARE(Home(), before);
    }

    void kept_overwrites_only_with_force()
    {
        Keep("backup/one", Empty_Project(40), "/tmp/one.quillet", 100);
        Write("out", "old");
        const TToolResult refused = Run({"kept", "--copy", "1", "--output", "out"});
        QCOMPARE(refused.status, 1);
        QCOMPARE(refused.errors,
                 QStringLiteral("quillet-cli: out: already exists; use --force to overwrite it\n"));
        QCOMPARE(Content("out"), QByteArray("old"));
        QCOMPARE(Run({"kept", "--copy", "1", "--output", "out", "--force"}).status, 0);
        QCOMPARE(Content("out"), Empty_Project(40));
    }

    void a_link_that_protects_unsaved_work_keeps_the_old_content_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("file") << QStringList({"export-items", "a.quillet", "--csv", "out"});
        QTest::newRow("project") << QStringList(
            {"reindex", "a.quillet", "--first", "1", "--over-page", "1", "--output", "out"});
        QTest::newRow("copy") << QStringList({"kept", "--copy", "1", "--output", "out"});
    }

    void a_link_that_protects_unsaved_work_keeps_the_old_content()
    {
        QFETCH(QStringList, command);
        Write("a.quillet", Empty_Project(40));
        Keep("recovery/one", Empty_Project(50), "", 100);
        Write("out", "old");
        const QString base = Path("home/.quillet/recovery/two.base");
        QVERIFY(link(QFile::encodeName(Path("out")).constData(),
                     QFile::encodeName(base).constData()) == 0);
        const TToolResult result = Run(command << "--force");
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(Content("out") != "old");
        QCOMPARE(Read_File(base), QByteArray("old"));
    }

    void kept_refuses_a_number_beyond_the_list()
    {
        Keep("backup/one", Empty_Project(), "/tmp/one.quillet", 100);
        const TToolResult result = Run({"kept", "--copy", "2", "--output", "out"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 QStringLiteral("quillet-cli: 2: there is no copy with this number\n"));
        QVERIFY(!QFile::exists(Path("out")));
    }
};

QTEST_MAIN(TestCliItems)
#include "test_cliitems.moc"
