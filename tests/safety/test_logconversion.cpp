// Conversion of work logs to project files at the next start.

#include "core/safefile.h"
#include "src/format/projectfile.h"
#include "src/safety/backup.h"
#include "src/safety/logconversion.h"
#include "src/safety/logreader.h"
#include "src/safety/worklog.h"
#include "support/support.h"
#include "support/worklogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <unistd.h>

using Support::Byte_Difference;
using Support::Entries;
using Support::Picture;
using Support::Project_Of;
using Support::Read_File;
using Support::State_Of;

namespace {

constexpr int frame_size = 24 + TDatabase::Page_Size;

void Damage(const QString& path, qint64 offset)
{
    QByteArray bytes = Read_File(path);
    const int index = static_cast<int>(offset);
    bytes[index] = static_cast<char>(~bytes[index]);
    Support::Write_File(path, bytes);
}

} // namespace

class TestLogConversion : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void an_abandoned_log_becomes_a_copy();
    void the_log_of_a_running_process_stays();
    void a_log_without_a_document_is_deleted_data();
    void a_log_without_a_document_is_deleted();
    void an_unreadable_log_stays_data();
    void an_unreadable_log_stays();
    void a_log_that_cannot_be_converted_is_reported_once();
    void a_missing_image_leaves_the_labels();
    void a_log_with_missing_images_stays_beside_its_copy();
    void the_base_file_is_found_data();
    void the_base_file_is_found();
    void a_renamed_page_has_only_its_new_name();
    void a_new_first_page_has_the_header_lines();
    void each_page_is_reported();
    void a_log_that_another_process_converts_meanwhile_is_no_problem();
    void an_existing_file_in_a_read_only_folder_is_not_overwritten();
    void a_killed_conversion_is_repeated_data();
    void a_killed_conversion_is_repeated();
    void a_full_disk_leaves_the_log();
    void an_empty_log_beside_commits_stays();
    void a_log_with_changes_after_damage_stays_beside_its_copy_data();
    void a_log_with_changes_after_damage_stays_beside_its_copy();
    void a_damaged_header_of_the_write_ahead_log_is_reported();
    void frames_of_an_older_write_ahead_log_are_no_damage();
    void an_unfinished_transaction_is_no_damage();
    void damage_neither_crashes_nor_deletes_data();
    void damage_neither_crashes_nor_deletes();
    void a_damaged_log_is_not_converted_even_if_it_is_readable();
    void a_damaged_log_is_read_as_far_as_possible();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QStringList Files(const QString& pattern) const { return QDir(Folder()).entryList({pattern}); }
    QString Folder() const { return In("recovery"); }
    QString Log_Path() const { return Folder() + '/' + Files("*.log").value(0); }
    QByteArray Copy() const { return Read_File(Folder() + '/' + Files("*.quillet").value(0)); }
    bool Leave_Log();
    QList<qint64> Leave_Changes(int count, QList<QByteArray>* documents);
    QStringList Convert(const TProgressReport& report = nullptr) const
    {
        QStringList problems;
        for (const TKeptFile& log :
             LogConversion::Convert_Abandoned(TKeptFolder(Folder()), In("backup"), report))
            problems += log.path + ": " + log.problem;
        return problems;
    }
    TData& Data() { return d_document->data; }

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TDocument> d_document;
    TBaseFile d_base;
};

void TestLogConversion::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_document = std::make_unique<TDocument>();
    for (int page = 1; page <= 3; ++page)
        Support::Add_Page(d_document.get(), QString("Page %1").arg(page), Picture(9, 9, page), 3);
    d_base = TBaseFile();
}

void TestLogConversion::cleanup()
{
    d_document.reset();
    d_folder.reset();
}

/// Leaves the log of a process that ended.
bool TestLogConversion::Leave_Log()
{
    TWorkLog log(Folder());
    return log.Update(State_Of(*d_document), &d_base, {In("a.quillet")});
}

/// Leaves the log of a process that made some changes. Returns the sizes of the write-ahead log
/// after each change.
/// @param documents  receives the documents after each change.
QList<qint64> TestLogConversion::Leave_Changes(int count, QList<QByteArray>* documents)
{
    QList<qint64> sizes;
    TWorkLog log(Folder());
    for (int change = 0; change < count; ++change) {
        Data().Change_Item_Text(1, QString("Change %1").arg(change));
        if (!log.Update(State_Of(*d_document), &d_base, {In("a.quillet")}))
            return {};
        sizes += QFileInfo(Log_Path() + "-wal").size();
        *documents += Project_Of(*d_document);
    }
    return sizes;
}

void TestLogConversion::an_abandoned_log_becomes_a_copy()
{
    QVERIFY(Leave_Log());
    const QDateTime left = QDateTime::currentDateTime();
    QTest::qWait(20);
    const QString name = TKeptFolder::Name_Of(Log_Path());
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Entries(Folder()), QStringList({name + ".note", name + ".quillet"}));
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
    QCOMPARE(Support::Mode(Folder() + '/' + name + ".quillet"), QString("600"));
    const std::vector<TKeptFile> copies = TKeptFolder(Folder()).Abandoned_Copies();
    QCOMPARE(copies.size(), size_t(1));
    QCOMPARE(copies.front().document, In("a.quillet"));
    QCOMPARE(copies.front().missing_images, 0);
    // The time of the last change, not of the conversion.
    QVERIFY(copies.front().time <= left);
    QVERIFY(copies.front().time.msecsTo(left) < 5000);
}

void TestLogConversion::the_log_of_a_running_process_stays()
{
    TWorkLog log(Folder());
    QVERIFY(log.Update(State_Of(*d_document), &d_base, {"/a.quillet"}));
    const QStringList before = Entries(Folder());
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Entries(Folder()), before);
}

void TestLogConversion::a_log_without_a_document_is_deleted_data()
{
    QTest::addColumn<QString>("state");
    for (const char* const state : {"empty file", "no tables", "no document"})
        QTest::newRow(state) << state;
}

void TestLogConversion::a_log_without_a_document_is_deleted()
{
    QFETCH(const QString, state);
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    const QString path = Folder() + "/a.log";
    if (state == "empty file") {
        Support::Write_File(path, QByteArray());
    } else if (state == "no tables") {
        TDatabase database;
        QVERIFY(database.Create(path));
    } else {
        TLogWriter writer;
        QVERIFY(writer.Create(path));
    }
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Entries(Folder()), QStringList());
}

void TestLogConversion::an_unreadable_log_stays_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no database") << QByteArray() << "not a database";
    QTest::newRow("other database") << QByteArray("PRAGMA application_id=7") << "not a work log";
    QTest::newRow("later version") << QByteArray("PRAGMA user_version=3") << "another version";
    QTest::newRow("missing table") << QByteArray("DROP TABLE labels") << "damaged";
}

void TestLogConversion::an_unreadable_log_stays()
{
    QFETCH(const QByteArray, change);
    QFETCH(const QString, reason);
    QVERIFY(Leave_Log());
    if (change.isEmpty()) {
        Support::Write_File(Log_Path(), QByteArray(5000, 'x'));
        QVERIFY(QFile::remove(Log_Path() + "-wal"));
    } else {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Execute(change));
    }
    const QStringList before = Entries(Folder());
    const QStringList problems = Convert();
    QCOMPARE(problems.size(), 1);
    QVERIFY2(problems.first().startsWith(Log_Path()) && problems.first().contains(reason),
             qPrintable(problems.first()));
    QCOMPARE(Entries(Folder()), before);
    QCOMPARE(TKeptFolder(Folder()).Abandoned_Logs().size(), size_t(1));
}

void TestLogConversion::a_log_that_cannot_be_converted_is_reported_once()
{
    QVERIFY(Leave_Log());
    {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Checkpoint());
    }
    const QByteArray whole = Read_File(Log_Path());
    Support::Write_File(Log_Path(), QByteArray(5000, 'x'));
    QCOMPARE(Convert().size(), 1);
    QCOMPARE(Convert(), QStringList());
    const TKeptFile log = TKeptFolder(Folder()).Abandoned_Logs().front();
    QCOMPARE(log.document, In("a.quillet"));
    // It is tried again.
    Support::Write_File(Log_Path(), whole);
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
    QCOMPARE(Read_File(TKeptFolder(Folder()).Note_Path(TKeptFolder::Name_Of(log.path))),
             In("a.quillet").toUtf8());
}

void TestLogConversion::a_missing_image_leaves_the_labels()
{
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    for (const int page_id : {1, 2}) {
        Data().Set_Active_Page(page_id);
        Data().Change_Item_Text(1, QString("Changed %1").arg(page_id));
    }
    Data().Set_Page_Image(Picture(7, 7));
    QVERIFY(Leave_Log());
    QVERIFY(QFile::remove(In("a.quillet")));
    QVERIFY(QFile::remove(Log_Path().replace(".log", ".base")));
    QCOMPARE(Convert(), QStringList());
    const TFileContent content = ProjectFile::Read(Copy());
    QVERIFY(content.pages && content.fault.isEmpty());
    QCOMPARE(content.pages->size(), size_t(3));
    QVERIFY(content.pages->at(0).image.isNull());
    QCOMPARE(content.pages->at(0).items.at(0).text, QString("Changed 1"));
    QVERIFY(content.pages->at(1).image == Picture(7, 7));
    QCOMPARE(content.pages->at(1).items.at(0).text, QString("Changed 2"));
    QCOMPARE(content.pages->at(2).name, QString("Page 3"));
    QCOMPARE(TKeptFolder(Folder()).Abandoned_Copies().front().missing_images, 2);
}

void TestLogConversion::a_log_with_missing_images_stays_beside_its_copy()
{
    const QString path = In("a.quillet");
    d_base = Support::Save_As_Base(*d_document, path);
    Data().Change_Item_Text(1, "Changed");
    QVERIFY(Leave_Log());
    const QStringList log = Entries(Folder());
    const QString name = TKeptFolder::Name_Of(Log_Path());
    QVERIFY(log.contains(name + ".base"));
    const TKeptFolder folder(Folder());
    // For some time, neither name has the file.
    const qint64 size = QFileInfo(path).size();
    QVERIFY(QFile::resize(path, size + 1));
    QCOMPARE(Convert(), QStringList());
    const QStringList both = Entries(Folder());
    QCOMPARE(both.size(), log.size() + 1);
    QVERIFY(both.contains(name + ".quillet"));
    QCOMPARE(folder.Abandoned_Copies().front().missing_images, 3);
    QVERIFY(folder.Abandoned_Logs().empty());
    QVERIFY(QFile::resize(path, size));
    // The copy may be open.
    const QByteArray copy = Copy();
    QCOMPARE(Convert(), QStringList());
    folder.Clean_Up();
    QCOMPARE(Entries(Folder()), both);
    QCOMPARE(Copy(), copy);
    QCOMPARE(Byte_Difference(Support::Recovered(Log_Path()), Project_Of(*d_document)), QString());
    folder.Remove_Abandoned(folder.Copy_Path(name));
    QCOMPARE(Entries(Folder()), QStringList());
}

void TestLogConversion::the_base_file_is_found_data()
{
    QTest::addColumn<QString>("where");
    for (const char* const where :
         {"protected", "at its path", "backed up", "backed up separately"})
        QTest::newRow(where) << where;
}

void TestLogConversion::the_base_file_is_found()
{
    QFETCH(const QString, where);
    const QString path = In("a.quillet");
    d_base = Support::Save_As_Base(*d_document, path);
    Data().Change_Item_Text(1, "Changed");
    QVERIFY(Leave_Log());
    if (where != "protected")
        QVERIFY(QFile::remove(Log_Path().replace(".log", ".base")));
    if (where == "backed up") {
        QVERIFY(QDir(d_folder->path()).mkdir("backup"));
        QVERIFY(QFile::copy(path, TBackup(In("backup")).Path_For(path)));
    }
    if (where == "backed up separately") {
        QVERIFY(QDir(d_folder->path()).mkdir("backup"));
        QString backup = TBackup(In("backup")).Path_For(path);
        QVERIFY(QFile::copy(path, backup.insert(backup.lastIndexOf('.'), "-20260102-030405")));
    }
    if (where != "at its path") {
        QVERIFY(QFile::remove(path));
        Support::Write_File(path, Support::Empty_Project());
    }
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
}

void TestLogConversion::a_renamed_page_has_only_its_new_name()
{
    // Latin-1 represents both names by the same characters.
    for (TNamedPage& page : d_document->pages)
        page.name = "План";
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    d_document->pages[0].name = "Цена";
    d_document->pages[1].name = "Plan";
    QVERIFY(Leave_Log());
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
}

void TestLogConversion::a_new_first_page_has_the_header_lines()
{
    d_document->appearance.header_1 = "Заголовок";
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    std::swap(d_document->pages[0], d_document->pages[1]);
    QVERIFY(Leave_Log());
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
}

void TestLogConversion::each_page_is_reported()
{
    QVERIFY(Leave_Log());
    QStringList reports;
    Convert(
        [&reports](int number, int total) { reports += QString("%1/%2").arg(number).arg(total); });
    QCOMPARE(reports, QStringList({"1/3", "2/3", "3/3"}));
}

void TestLogConversion::a_log_that_another_process_converts_meanwhile_is_no_problem()
{
    QVERIFY(Leave_Log());
    QVERIFY(Leave_Log());
    QCOMPARE(Files("*.log").size(), 2);
    // The first log is open by now.
    const auto remove_logs = [this](int, int) {
        for (const QString& name : Files("*.log"))
            QFile::remove(Folder() + '/' + name);
    };
    QCOMPARE(Convert(remove_logs), QStringList());
    QCOMPARE(Files("*.quillet").size(), 1);
}

void TestLogConversion::an_existing_file_in_a_read_only_folder_is_not_overwritten()
{
    QVERIFY(Leave_Log());
    QVERIFY(QDir(d_folder->path()).mkdir("read-only"));
    const QString path = In("read-only/a.quillet");
    Support::Write_File(path, "old");
    QVERIFY(QFile::setPermissions(In("read-only"), QFile::ReadOwner | QFile::ExeOwner));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        TLogReader log;
        if (log.Open(Log_Path(), In("backup")) != TLogReader::TContent::Work)
            return 1;
        TSafeFile target(path, TSafeFile::TKind::Private);
        const LogConversion::TResult written =
            LogConversion::Write(&log, LogConversion::TDamage::Accept, &target, nullptr);
        return written.is_written ? 2 : 0;
    });
    QFile::setPermissions(In("read-only"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(path), QByteArray("old"));
}

void TestLogConversion::a_killed_conversion_is_repeated_data()
{
    QTest::addColumn<int>("page");
    for (int page = 1; page <= 3; ++page)
        QTest::addRow("at page %d", page) << page;
    QTest::newRow("before the log is deleted") << 4;
}

void TestLogConversion::a_killed_conversion_is_repeated()
{
    QFETCH(const int, page);
    d_base = Support::Save_As_Base(*d_document, In("a.quillet"));
    Data().Change_Item_Text(1, "Changed");
    QVERIFY(Leave_Log());
    const QString log = Log_Path();
    if (page == 4) {
        Support::Write_File(QString(log).replace(".log", ".quillet"), Project_Of(*d_document));
    } else {
        const Support::TChildResult result = Support::Run_In_Child([this, page] {
            Convert([page](int number, int) {
                if (number == page)
                    kill(getpid(), SIGKILL);
            });
            return 1;
        });
        QCOMPARE(result.signal, SIGKILL);
    }
    QVERIFY(QFile::exists(log));
    QCOMPARE(Convert(), QStringList());
    QVERIFY(!QFile::exists(log));
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
    QCOMPARE(TKeptFolder(Folder()).Abandoned_Copies().size(), size_t(1));
}

void TestLogConversion::a_full_disk_leaves_the_log()
{
    QVERIFY(Leave_Log());
    const QStringList before = Entries(Folder());
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(500);
        return Convert().size() == 1 ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Entries(Folder()), before);
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
}

void TestLogConversion::an_empty_log_beside_commits_stays()
{
    QVERIFY(Leave_Log());
    Support::Write_File(Log_Path(), QByteArray());
    const QStringList before = Entries(Folder());
    const QByteArray tail = Read_File(Log_Path() + "-wal");
    QCOMPARE(Convert(), QStringList(Log_Path() + ": is damaged"));
    QCOMPARE(Entries(Folder()), before);
    QVERIFY(Read_File(Log_Path() + "-wal") == tail);
}

void TestLogConversion::a_log_with_changes_after_damage_stays_beside_its_copy_data()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<int>("offset");
    for (const int change : {5, 99}) {
        QTest::addRow("size in change %d", change) << change << 4;
        QTest::addRow("first salt in change %d", change) << change << 8;
        QTest::addRow("second salt in change %d", change) << change << 12;
        QTest::addRow("checksum in change %d", change) << change << 16;
        QTest::addRow("page in change %d", change) << change << 100;
    }
}

void TestLogConversion::a_log_with_changes_after_damage_stays_beside_its_copy()
{
    QFETCH(const int, change);
    QFETCH(const int, offset);
    QList<QByteArray> documents;
    const QList<qint64> sizes = Leave_Changes(100, &documents);
    QCOMPARE(sizes.size(), 100);
    Damage(Log_Path() + "-wal", sizes[change] - frame_size + offset);
    const QByteArray tail = Read_File(Log_Path() + "-wal");
    const QStringList log = Entries(Folder());
    QCOMPARE(Convert(),
             QStringList(Log_Path() + ": is damaged; only earlier changes were recovered"));
    QCOMPARE(Byte_Difference(Copy(), documents[change - 1]), QString());
    const QStringList both = Entries(Folder());
    QCOMPARE(both.size(), log.size() + 1);
    QVERIFY(Read_File(Log_Path() + "-wal") == tail);
    // It is reported once.
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Entries(Folder()), both);
    const TKeptFolder folder(Folder());
    folder.Remove_Abandoned(folder.Abandoned_Copies().front().path);
    QCOMPARE(Entries(Folder()), QStringList());
}

void TestLogConversion::a_damaged_header_of_the_write_ahead_log_is_reported()
{
    QVERIFY(Leave_Log());
    {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Checkpoint() &&
                database.Execute("UPDATE document SET label_size=77"));
    }
    constexpr int first_salt_offset = 16;
    constexpr int second_salt_offset = 20;
    Damage(Log_Path() + "-wal", first_salt_offset);
    Damage(Log_Path() + "-wal", second_salt_offset);
    QCOMPARE(Convert().size(), 1);
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
    QCOMPARE(Files("*.log*").size(), 2);
}

void TestLogConversion::frames_of_an_older_write_ahead_log_are_no_damage()
{
    QList<QByteArray> documents;
    const QList<qint64> sizes = Leave_Changes(10, &documents);
    {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Execute("PRAGMA wal_checkpoint(RESTART)") &&
                database.Execute("UPDATE document SET label_size=77"));
    }
    // The new frame replaces the first one of many.
    QCOMPARE(QFileInfo(Log_Path() + "-wal").size(), sizes.last());
    d_document->appearance.label_size = 77;
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), Project_Of(*d_document)), QString());
    QCOMPARE(Files("*.log*"), QStringList());
}

void TestLogConversion::an_unfinished_transaction_is_no_damage()
{
    QList<QByteArray> documents;
    const QList<qint64> sizes = Leave_Changes(2, &documents);
    QVERIFY(QFile::resize(Log_Path() + "-wal", sizes.last() - frame_size / 2));
    QCOMPARE(Convert(), QStringList());
    QCOMPARE(Byte_Difference(Copy(), documents.first()), QString());
    QCOMPARE(Files("*.log*"), QStringList());
}

void TestLogConversion::damage_neither_crashes_nor_deletes_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::newRow("database") << "";
    QTest::newRow("write-ahead log") << "-wal";
}

void TestLogConversion::damage_neither_crashes_nor_deletes()
{
    QFETCH(const QString, suffix);
    QVERIFY(Leave_Log());
    if (suffix.isEmpty()) {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Checkpoint());
    }
    const QString name = TKeptFolder::Name_Of(Log_Path());
    const QByteArray database = Read_File(Log_Path());
    const QByteArray tail = Read_File(Log_Path() + "-wal");
    const int size = suffix.isEmpty() ? database.size() : tail.size();
    QVERIFY(size > 5000);
    for (int offset = 0; offset < size; offset += 101) {
        QByteArray damaged = suffix.isEmpty() ? database : tail;
        damaged[offset] = static_cast<char>(~damaged[offset]);
        Support::Write_File(Folder() + '/' + name + ".log", suffix.isEmpty() ? damaged : database);
        Support::Write_File(Folder() + '/' + name + ".log-wal", suffix.isEmpty() ? tail : damaged);
        const QStringList problems = Convert();
        const QString copy = Folder() + '/' + name + ".quillet";
        const bool is_tail = !suffix.isEmpty();
        const bool has_copy = problems.isEmpty() || (is_tail && QFile::exists(copy));
        QVERIFY2(has_copy ? ProjectFile::Is_Whole(copy) : !QFile::exists(copy),
                 qPrintable(QString::number(offset)));
        QVERIFY2(problems.isEmpty() ? !is_tail : !Files("*.log").isEmpty(),
                 qPrintable(QString::number(offset)));
        QFile::remove(copy);
        // The next damage is reported again.
        QFile::remove(Folder() + '/' + name + ".note");
    }
}

void TestLogConversion::a_damaged_log_is_not_converted_even_if_it_is_readable()
{
    QVERIFY(Leave_Log());
    {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Checkpoint());
    }
    // The number of unused pages, of which there are none.
    constexpr int offset = 36;
    QByteArray bytes = Read_File(Log_Path());
    QCOMPARE(bytes.mid(offset, 4), QByteArray(4, '\0'));
    bytes[offset + 3] = 1;
    Support::Write_File(Log_Path(), bytes);
    QCOMPARE(Convert().size(), 1);
    QCOMPARE(Files("*.quillet"), QStringList());
    QCOMPARE(Files("*.log").size(), 1);
}

void TestLogConversion::a_damaged_log_is_read_as_far_as_possible()
{
    QVERIFY(Leave_Log());
    {
        TDatabase database;
        QVERIFY(database.Open(Log_Path()) && database.Execute("DROP TABLE labels"));
    }
    TLogReader log;
    QCOMPARE(log.Open(Log_Path(), In("backup")), TLogReader::TContent::Work);
    TSafeFile target(In("recovered.quillet"));
    const LogConversion::TResult result =
        LogConversion::Write(&log, LogConversion::TDamage::Accept, &target, nullptr);
    QVERIFY(result.is_written);
    QVERIFY(!log.Is_Whole());
    const TFileContent content = ProjectFile::Read(Read_File(In("recovered.quillet")));
    QVERIFY(content.pages && content.fault.isEmpty());
    QCOMPARE(content.pages->size(), size_t(3));
    QVERIFY(content.pages->at(2).image == Picture(9, 9, 3));
}

QTEST_MAIN(TestLogConversion)
#include "test_logconversion.moc"
