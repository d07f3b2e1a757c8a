// The files of a work log: when they appear, what they are called, and when they disappear.

#include "src/safety/worklog.h"

#include "src/format/projectfile.h"
#include "support/support.h"
#include "support/worklogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using Support::Byte_Difference;
using Support::Entries;
using Support::Mode;
using Support::Project_Of;
using Support::Recovered;
using Support::State_Of;

class TestWorkLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_first_update_creates_the_log();
    void a_log_is_named_after_the_time();
    void an_existing_name_is_not_reused_data();
    void an_existing_name_is_not_reused();
    void a_hundred_names_are_tried();
    void the_note_names_the_document();
    void folder_and_files_are_accessible_to_their_owner_only_data();
    void folder_and_files_are_accessible_to_their_owner_only();
    void a_folder_that_cannot_be_used_is_refused_data();
    void a_folder_that_cannot_be_used_is_refused();
    void a_failed_first_update_leaves_no_files();
    void a_discarded_log_leaves_no_files();
    void a_released_log_stays_and_the_next_has_another_name();
    void a_deleted_log_is_written_again();
    void the_log_of_a_running_process_is_not_abandoned();
    void the_log_of_a_killed_process_is_abandoned();
    void the_base_file_is_protected_as_long_as_the_log_exists();
    void only_images_of_a_base_file_that_was_replaced_are_referred_to();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Folder() const { return In("recovery"); }
    QStringList Logs() const { return QDir(Folder()).entryList({"*.log"}); }
    QString Log_Path() const { return Folder() + '/' + Logs().value(0); }
    bool Update(TWorkLog* log, const QString& document = "/a.quillet")
    {
        return log->Update(State_Of(*d_document), &d_base, {document});
    }
    void Take_Names(const QString& suffix, int count) const;

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TDocument> d_document;
    TBaseFile d_base;
};

void TestWorkLog::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_document = std::make_unique<TDocument>();
    Support::Add_Page(d_document.get(), "Page 1", Support::Picture(9, 9), 3);
    d_base = TBaseFile();
}

void TestWorkLog::cleanup()
{
    d_document.reset();
    d_folder.reset();
}

/// Creates files that have the names of the next seconds.
void TestWorkLog::Take_Names(const QString& suffix, int count) const
{
    const QDateTime now = QDateTime::currentDateTime();
    for (int second = 0; second < 60; ++second) {
        const QString base = now.addSecs(second).toString("yyyyMMdd-hhmmss");
        for (int i = 1; i <= count; ++i)
            Support::Write_File(
                Folder() + '/' + base + (i == 1 ? "" : QString("-%1").arg(i)) + suffix, "other");
    }
}

void TestWorkLog::the_first_update_creates_the_log()
{
    TWorkLog log(Folder());
    QVERIFY(!log.Exists());
    QVERIFY(!QFile::exists(Folder()));
    QVERIFY(Update(&log));
    QVERIFY(log.Exists());
    QCOMPARE(Logs().size(), 1);
    QCOMPARE(Byte_Difference(Recovered(Log_Path()), Project_Of(*d_document)), QString());
    QVERIFY(log.Sync());
}

void TestWorkLog::a_log_is_named_after_the_time()
{
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    QVERIFY2(QRegularExpression("^\\d{8}-\\d{6}\\.log$").match(Logs().first()).hasMatch(),
             qPrintable(Logs().first()));
}

void TestWorkLog::an_existing_name_is_not_reused_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char* const suffix : {".quillet", ".log", ".note"})
        QTest::newRow(suffix) << suffix;
}

void TestWorkLog::an_existing_name_is_not_reused()
{
    QFETCH(const QString, suffix);
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    Take_Names(suffix, 1);
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    QCOMPARE(QDir(Folder()).entryList({"*-2.log"}).size(), 1);
    for (const QString& name : QDir(Folder()).entryList({'*' + suffix}))
        QVERIFY(name.contains("-2.") || Support::Read_File(Folder() + '/' + name) == "other");
}

void TestWorkLog::a_hundred_names_are_tried()
{
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    Take_Names(".quillet", 99);
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    QVERIFY(Logs().first().endsWith("-100.log"));
    log.Discard();
    Take_Names(".quillet", 100);
    QVERIFY(!Update(&log));
}

void TestWorkLog::the_note_names_the_document()
{
    TWorkLog log(Folder());
    for (const QString& document : {QString(), QString("/a.quillet"), QString("/b.quillet")}) {
        QVERIFY(Update(&log, document));
        QCOMPARE(Support::Read_File(Log_Path().replace(".log", ".note")), document.toUtf8());
    }
}

void TestWorkLog::folder_and_files_are_accessible_to_their_owner_only_data()
{
    QTest::addColumn<int>("mask");
    QTest::newRow("none") << 0;
    QTest::newRow("usual") << 022;
    QTest::newRow("all") << 0777;
}

void TestWorkLog::folder_and_files_are_accessible_to_their_owner_only()
{
    QFETCH(const int, mask);
    const mode_t before = umask(static_cast<mode_t>(mask));
    TWorkLog log(Folder());
    const bool is_written = Update(&log);
    umask(before);
    QVERIFY(is_written);
    QCOMPARE(Mode(Folder()), QString("700"));
    QCOMPARE(Entries(Folder()).size(), 3);
    for (const QString& file : Entries(Folder()))
        QCOMPARE(Mode(Folder() + '/' + file), QString("600"));
}

void TestWorkLog::a_folder_that_cannot_be_used_is_refused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("link") << "recovery";
    QTest::newRow("file") << "file";
    QTest::newRow("below a missing folder") << "missing/recovery";
}

void TestWorkLog::a_folder_that_cannot_be_used_is_refused()
{
    QFETCH(const QString, folder);
    QVERIFY(QDir(d_folder->path()).mkdir("elsewhere"));
    QVERIFY(QFile::link(In("elsewhere"), Folder()));
    Support::Write_File(In("file"), "a file is in the way");
    TWorkLog log(In(folder));
    QVERIFY(!Update(&log));
    QVERIFY(!log.Exists());
    QVERIFY(Entries(In("elsewhere")).isEmpty());
    QCOMPARE(Entries(d_folder->path()), QStringList({"elsewhere", "file", "recovery"}));
}

void TestWorkLog::a_failed_first_update_leaves_no_files()
{
    for (const int limit : {0, 3000, 20000}) {
        const Support::TChildResult result = Support::Run_In_Child([this, limit] {
            Support::Add_Page(d_document.get(), "Many", TPageImage(), 1000);
            Support::Limit_File_Size(limit);
            TWorkLog log(Folder());
            return Update(&log) || log.Exists() ? 1 : 0;
        });
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(Entries(Folder()), QStringList());
    }
}

void TestWorkLog::a_discarded_log_leaves_no_files()
{
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    log.Discard();
    QVERIFY(!log.Exists());
    QVERIFY(Entries(Folder()).isEmpty());
    log.Discard();
    QVERIFY(Update(&log));
    QVERIFY(log.Exists());
}

void TestWorkLog::a_released_log_stays_and_the_next_has_another_name()
{
    TWorkLog log(Folder());
    for (int count = 1; count <= 5; ++count) {
        QVERIFY(Update(&log));
        QCOMPARE(Logs().size(), count);
        log.Release();
        QVERIFY(!log.Exists());
    }
    for (const QString& name : Logs())
        QCOMPARE(Byte_Difference(Recovered(Folder() + '/' + name), Project_Of(*d_document)),
                 QString());
    QCOMPARE(TKeptFolder(Folder()).Abandoned_Logs().size(), size_t(5));
}

void TestWorkLog::a_deleted_log_is_written_again()
{
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    QVERIFY(QDir(Folder()).removeRecursively());
    d_document->data.Change_Item_Value(1, 100);
    QVERIFY(Update(&log));
    QCOMPARE(Byte_Difference(Recovered(Log_Path()), Project_Of(*d_document)), QString());
}

void TestWorkLog::the_log_of_a_running_process_is_not_abandoned()
{
    TWorkLog log(Folder());
    QVERIFY(Update(&log));
    const TKeptFolder folder(Folder());
    QVERIFY(folder.Abandoned_Logs().empty());
    folder.Clean_Up();
    QCOMPARE(Entries(Folder()).size(), 3);
    TWorkLog other(Folder());
    QVERIFY(Update(&other));
    QCOMPARE(Logs().size(), 2);
}

void TestWorkLog::the_log_of_a_killed_process_is_abandoned()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TWorkLog log(Folder());
        if (Update(&log))
            kill(getpid(), SIGKILL);
        return 1;
    });
    QCOMPARE(result.signal, SIGKILL);
    const std::vector<TKeptFile> found = TKeptFolder(Folder()).Abandoned_Logs();
    QCOMPARE(found.size(), size_t(1));
    QCOMPARE(found.front().document, QString("/a.quillet"));
    QCOMPARE(Byte_Difference(Recovered(found.front().path), Project_Of(*d_document)), QString());
}

void TestWorkLog::the_base_file_is_protected_as_long_as_the_log_exists()
{
    TWorkLog log(Folder());
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    const QByteArray saved = Support::Read_File(In("a.quillet"));
    QVERIFY(Update(&log));
    QVERIFY(log.Has_References());
    QVERIFY(QFile::remove(In("a.quillet")));
    QCOMPARE(Support::Read_File(Log_Path().replace(".log", ".base")), saved);
    QCOMPARE(Byte_Difference(Recovered(Log_Path()), Project_Of(*d_document)), QString());
    log.Discard();
    QVERIFY(Entries(Folder()).isEmpty());
}

void TestWorkLog::only_images_of_a_base_file_that_was_replaced_are_referred_to()
{
    TWorkLog log(Folder());
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    Support::Write_File(In("a.quillet"), "other");
    QVERIFY(Update(&log));
    QVERIFY(log.Has_References());
    int missing_images = 0;
    const TFileContent content = ProjectFile::Read(Recovered(Log_Path(), &missing_images));
    QCOMPARE(missing_images, 1);
    QCOMPARE(content.pages.value().size(), size_t(1));
    QCOMPARE(content.pages->front().items.size(), size_t(3));
    QVERIFY(log.Store_Reference(d_document->data));
    QVERIFY(!log.Has_References());
    QCOMPARE(Byte_Difference(Recovered(Log_Path()), Project_Of(*d_document)), QString());
}

QTEST_MAIN(TestWorkLog)
#include "test_worklog.moc"
