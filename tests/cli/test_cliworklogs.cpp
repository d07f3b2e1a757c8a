// What kept and recover do with work logs.

#include "src/safety/keptfiles.h"
#include "src/safety/logconversion.h"
#include "src/safety/worklog.h"
#include "support/support.h"
#include "support/tool.h"
#include "support/worklogs.h"

#include <QTest>

using Support::Byte_Difference;
using Support::Project_Of;
using Support::Read_File;
using Support::TToolResult;

class TestCliWorkLogs : public Support::TToolTest
{
    Q_OBJECT

    TDocument d_document;

    QString Folder() const { return Path("home/.quillet/recovery"); }
    QString Log_Path() const
    {
        return Folder() + '/' + QDir(Folder()).entryList({"*.log"}).value(0);
    }

    /// Leaves the log of a process that ended, with a changed page.
    bool Leave_Log(TBaseFile base = TBaseFile())
    {
        TWorkLog log(Folder());
        d_document.data.Change_Item_Text(1, "Changed");
        return log.Update(Support::State_Of(d_document), &base, {"/tmp/a.quillet"});
    }

private slots:
    void init()
    {
        TToolTest::init();
        d_options.home = Path("home");
        QVERIFY(QDir(d_folder->path()).mkpath("home/.quillet"));
        d_document = TDocument();
        for (int page = 1; page <= 2; ++page)
            Support::Add_Page(&d_document, QString("Page %1").arg(page),
                              Support::Picture(9, 9, page), 3);
    }

    void kept_lists_and_converts_logs()
    {
        QVERIFY(Leave_Log());
        const QStringList before = Support::Entries(Folder());
        const TToolResult listed = Run({"kept"});
        QCOMPARE(listed.errors, QString());
        QVERIFY2(listed.output.startsWith("1: work log, ") &&
                     listed.output.endsWith(" bytes, /tmp/a.quillet\n"),
                 qPrintable(listed.output));
        const TToolResult copied = Run({"kept", "--copy", "1", "--output", "out"});
        QCOMPARE(copied.errors, QString());
        QCOMPARE(copied.output, QString("out: pages: 2, missing images: 0\n"));
        QCOMPARE(Byte_Difference(Read_File(Path("out")), Project_Of(d_document)), QString());
        QCOMPARE(Support::Entries(Folder()), before);
    }

    void a_log_is_not_overwritten_by_the_project_that_is_made_from_it()
    {
        QVERIFY(Leave_Log());
        const QByteArray before = Read_File(Log_Path());
        for (const QStringList& command :
             {QStringList{"recover", Log_Path()}, QStringList{"kept", "--copy", "1"}}) {
            const TToolResult result =
                Run(command + QStringList{"--output", Log_Path(), "--force"});
            QCOMPARE(result.status, 1);
            QCOMPARE(result.errors,
                     "quillet-cli: " + Log_Path() + ": is an input and cannot be overwritten\n");
            QCOMPARE(Byte_Difference(Read_File(Log_Path()), before), QString());
        }
    }

    void kept_does_not_list_the_log_of_a_running_process()
    {
        TWorkLog log(Folder());
        TBaseFile no_base;
        QVERIFY(log.Update(Support::State_Of(d_document), &no_base, {"/tmp/a.quillet"}));
        QCOMPARE(Run({"kept"}).output, QString("There are no copies.\n"));
        const TToolResult recovered = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(recovered.status, 1);
        QVERIFY2(recovered.errors.contains("locked"), qPrintable(recovered.errors));
    }

    void kept_lists_missing_images()
    {
        QVERIFY(QDir(d_folder->path()).mkpath("home/.quillet/recovery"));
        Support::Write_File(Folder() + "/a.quillet", Support::Empty_Project());
        TKeptNote note;
        QVERIFY(note.Open(Folder() + "/a.note", TKeptNote::TExisting::Refuse));
        QVERIFY(note.Write({"/tmp/a.quillet"}, 3));
        const QString output = Run({"kept"}).output;
        QVERIFY2(output.endsWith(", 31 bytes, missing images: 3, /tmp/a.quillet\n"),
                 qPrintable(output));
    }

    void kept_lists_documents_that_have_changed_since()
    {
        const QString document = Path("a.quillet");
        Support::Write_File(document, "version one");
        {
            TWorkLog log(Folder());
            TBaseFile no_base;
            QVERIFY(log.Update(Support::State_Of(d_document), &no_base,
                               {document, TFileStamp::Of(document)}));
        }
        // A work log first, then the copy that it becomes.
        for (const char* const kind : {"1: work log, ", "1: recovery, "}) {
            Support::Write_File(document, "version two");
            QString output = Run({"kept"}).output;
            QVERIFY2(output.startsWith(kind), qPrintable(output));
            QVERIFY2(output.endsWith(" bytes, document changed since, " + document + '\n'),
                     qPrintable(output));
            QVERIFY(QFile::remove(document));
            output = Run({"kept"}).output;
            QVERIFY2(output.endsWith(" bytes, " + document + '\n'), qPrintable(output));
            LogConversion::Convert_Abandoned(TKeptFolder(Folder()), QString(), nullptr);
        }
    }

    void recover_converts_a_log()
    {
        QVERIFY(Leave_Log(Support::Save_As_Base(d_document, Path("base.quillet"))));
        const TToolResult result = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString("out: pages: 2, missing images: 0\n"));
        QCOMPARE(Byte_Difference(Read_File(Path("out")), Project_Of(d_document)), QString());
    }

    void recover_reports_missing_images()
    {
        QVERIFY(Leave_Log(Support::Save_As_Base(d_document, Path("base.quillet"))));
        QVERIFY(QFile::remove(Path("base.quillet")));
        QVERIFY(QFile::remove(Log_Path().replace(".log", ".base")));
        const TToolResult result = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString("out: pages: 2, missing images: 2\n"));
    }

    void recover_finds_the_images_that_a_copy_lacks()
    {
        const QString base = Path("base.quillet");
        QVERIFY(Leave_Log(Support::Save_As_Base(d_document, base)));
        const QString log = Log_Path();
        const qint64 size = QFileInfo(base).size();
        QVERIFY(QFile::resize(base, size + 1));
        LogConversion::Convert_Abandoned(TKeptFolder(Folder()), QString(), nullptr);
        QVERIFY(QFile::resize(base, size));
        const QString listed = Run({"kept"}).output;
        QVERIFY2(listed.startsWith("1: recovery, ") &&
                     listed.endsWith(", missing images: 2, /tmp/a.quillet\n") &&
                     listed.count('\n') == 1,
                 qPrintable(listed));
        const TToolResult result = Run({"recover", log, "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString("out: pages: 2, missing images: 0\n"));
        QCOMPARE(Byte_Difference(Read_File(Path("out")), Project_Of(d_document)), QString());
    }

    void recover_reports_changes_after_damage()
    {
        QVERIFY(Leave_Log());
        {
            TDatabase database;
            QVERIFY(database.Open(Log_Path()) &&
                    database.Execute("UPDATE document SET label_size=77"));
        }
        const QString tail = Log_Path() + "-wal";
        QByteArray bytes = Read_File(tail);
        bytes[bytes.size() - 1] = static_cast<char>(~bytes[bytes.size() - 1]);
        Support::Write_File(tail, bytes);
        const TToolResult result = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, Log_Path() + ": damaged, a part is not readable\n" +
                                    "out: pages: 2, missing images: 0\n");
        QCOMPARE(Byte_Difference(Read_File(Path("out")), Project_Of(d_document)), QString());
    }

    void recover_saves_the_readable_part_of_a_damaged_log()
    {
        QVERIFY(Leave_Log());
        {
            TDatabase database;
            QVERIFY(database.Open(Log_Path()) && database.Execute("DROP TABLE labels"));
        }
        const TToolResult result = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, Log_Path() + ": damaged, a part is not readable\n" +
                                    "out: pages: 2, missing images: 0\n");
        QCOMPARE(Run({"check", "out"}).status, 0);
    }

    void recover_refuses_a_log_of_another_version()
    {
        QVERIFY(Leave_Log());
        {
            TDatabase database;
            QVERIFY(database.Open(Log_Path()) && database.Execute("PRAGMA user_version=3"));
        }
        const TToolResult result = Run({"recover", Log_Path(), "--output", "out"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
                 "quillet-cli: " + Log_Path() + ": is from another version of the program\n");
        QVERIFY(!QFile::exists(Path("out")));
    }
};

QTEST_MAIN(TestCliWorkLogs)
#include "test_cliworklogs.moc"
