// The order in which files are synced before others are deleted.
//
// Needs tests/faults/faultlibrary.cpp preloaded.

#include "faultlibrary.h"

#include "core/safefile.h"
#include "src/safety/safetynet.h"
#include "support/support.h"
#include "support/worklogs.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <dlfcn.h>
#include <unistd.h>

using Support::Empty_Project;
using Support::Read_File;
using Support::Write_File;

class TestDurability : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void a_new_file_is_synced_then_renamed_then_its_folder_is_synced_data() { Add_Operations(); }
    void a_new_file_is_synced_then_renamed_then_its_folder_is_synced();
    void a_failing_sync_leaves_the_old_file_data() { Add_Operations(); }
    void a_failing_sync_leaves_the_old_file();
    void the_backup_is_on_the_disk_before_the_document_is_replaced();
    void the_backup_is_on_the_disk_before_the_document_is_truncated();
    void the_backup_is_not_synced_while_the_log_has_all_work();
    void a_backup_that_cannot_be_synced_or_renamed_is_copied_data();
    void a_backup_that_cannot_be_synced_or_renamed_is_copied();
    void a_kill_while_the_backup_is_made_leaves_the_document_data();
    void a_kill_while_the_backup_is_made_leaves_the_document();
    void a_file_with_two_hard_links_is_overwritten_from_a_complete_visible_file();
    void the_saved_file_is_on_the_disk_before_the_log_is_deleted();
    void the_saved_file_is_on_the_disk_before_the_opened_recovery_copy_is_deleted();
    void a_work_log_is_deleted_before_the_copy_beside_it();
    void a_failing_sync_of_the_saved_file_keeps_the_log_data();
    void a_failing_sync_of_the_saved_file_keeps_the_log();
    void a_failing_sync_of_the_saved_file_keeps_the_opened_recovery_copy();
    void saved_files_are_synced_only_for_a_recovery_copy();
    void the_log_is_on_the_disk_after_a_pause();
    void the_log_is_synced_after_five_seconds();
    void the_saved_file_is_on_the_disk_before_the_log_refers_to_it();
    void a_recovered_copy_is_on_the_disk_before_its_log_is_deleted();
    void a_failing_sync_of_a_recovered_copy_keeps_its_log();
    void a_new_folder_is_on_the_disk_and_so_is_its_parent();
    void a_note_that_cannot_be_written_does_not_fail_the_backup();
    void the_file_system_copies_where_it_can_data();
    void the_file_system_copies_where_it_can();
    void a_copy_that_the_file_system_does_not_finish_is_complete();
    void a_copy_of_an_unreadable_file_fails();
    void a_failing_close_fails_the_sync();
    void a_file_that_need_not_reach_the_disk_is_not_synced_data();
    void a_file_that_need_not_reach_the_disk_is_not_synced();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    static void Add_Operations();
    bool Keep(const QString& document) const;
    bool Write_New_File(const QString& operation, int label_size);
    QString Target(const QString& operation) const;
    std::unique_ptr<TSafetyNet> Net() const;
    void Save(TSafetyNet* net) const;
    void Arm(Faults::TCall call, Faults::TKind kind, int at) const;
    QStringList Logged(const QString& calls) const;
    QString Only_File(const QString& pattern) const;
    QString Only_Log() const { return Only_File("*.log"); }
    QString Make_Recovery_Copy() const;

    std::unique_ptr<QTemporaryDir> d_folder;
    TDocument d_document;
};

namespace {

template <typename TFunction>
TFunction* From_Library(const char* name)
{
    return reinterpret_cast<TFunction*>(dlsym(RTLD_DEFAULT, name));
}

int Disarm()
{
    return From_Library<decltype(Quillet_Disarm_Fault)>("Quillet_Disarm_Fault")();
}

} // namespace

void TestDurability::initTestCase()
{
    QVERIFY2(dlsym(RTLD_DEFAULT, "Quillet_Arm_Fault"), "the fault library is not preloaded");
}

void TestDurability::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    for (const char* const name : {"documents", "settings/recovery", "settings/backup"})
        QVERIFY(QDir(d_folder->path()).mkpath(name));
    d_document = TDocument();
    Write_File(In("documents/a.quillet"), Empty_Project(32));
}

void TestDurability::cleanup()
{
    d_folder.reset();
}

/// Operations that replace a file with a new one.
void TestDurability::Add_Operations()
{
    QTest::addColumn<QString>("operation");
    for (const char* const operation : {"copied backup", "file"})
        QTest::newRow(operation) << operation;
}

bool TestDurability::Keep(const QString& document) const
{
    QFile file(document);
    return TBackup(In("settings/backup")).Keep(&file, {true, false, 0}).has_value();
}

bool TestDurability::Write_New_File(const QString& operation, int label_size)
{
    if (operation == "file")
        return TSafeFile::Replace(In("documents/a.quillet"), Empty_Project(label_size));
    // Files with two hard links are copied.
    Write_File(In("documents/a.quillet"), Empty_Project(label_size));
    link(QFile::encodeName(In("documents/a.quillet")).constData(),
         QFile::encodeName(In("documents/link")).constData());
    return Keep(In("documents/a.quillet"));
}

QString TestDurability::Target(const QString& operation) const
{
    if (operation == "file")
        return In("documents/a.quillet");
    return TBackup(In("settings/backup")).Path_For(In("documents/a.quillet"));
}

/// A safety net whose document is open.
std::unique_ptr<TSafetyNet> TestDurability::Net() const
{
    auto net = std::make_unique<TSafetyNet>(In("settings"),
                                            [this] { return Support::State_Of(d_document); });
    const QString document = In("documents/a.quillet");
    net->After_Open(document, TFileStamp::Of(document), {});
    return net;
}

/// Saves the document as the window does.
void TestDurability::Save(TSafetyNet* net) const
{
    const QString document = In("documents/a.quillet");
    QFile file(document);
    QString other_version;
    QVERIFY(net->Open_For_Saving(&file, Empty_Project(40).size(), &other_version));
    file.write(Empty_Project(40));
    file.close();
    net->After_Save(document, Empty_Project(40).size(), {});
}

void TestDurability::Arm(Faults::TCall call, Faults::TKind kind, int at) const
{
    From_Library<decltype(Quillet_Arm_Fault)>("Quillet_Arm_Fault")(
        QFile::encodeName(d_folder->path()).constData(), call, kind, at);
}

/// The logged calls whose names match a pattern. Paths are relative to the test's folder, names of
/// unfinished files become NEW.
QStringList TestDurability::Logged(const QString& calls) const
{
    const auto log = From_Library<decltype(Quillet_Logged_Calls)>("Quillet_Logged_Calls");
    QString text = QFile::decodeName(log());
    text.remove(d_folder->path() + '/');
    text.replace(QRegularExpression("\\.quillet-\\w{6}"), "NEW");
    return text.split('\n', Qt::SkipEmptyParts).filter(QRegularExpression("^(" + calls + ") "));
}

/// Path of the only file in the recovery folder with such a name; empty if there are others.
QString TestDurability::Only_File(const QString& pattern) const
{
    const QStringList files = QDir(In("settings/recovery")).entryList({pattern});
    return files.size() == 1 ? "settings/recovery/" + files.first() : QString();
}

/// Leaves a recovery copy and returns its path.
QString TestDurability::Make_Recovery_Copy() const
{
    Net()->Record_Change(QString());
    Net()->Convert_Abandoned_Logs(nullptr);
    return Only_File("*.quillet");
}

void TestDurability::a_new_file_is_synced_then_renamed_then_its_folder_is_synced()
{
    QFETCH(QString, operation);
    QVERIFY(Write_New_File(operation, 40));
    Arm(Faults::Sync, Faults::Fail, 0);
    const bool written = Write_New_File(operation, 41);
    QCOMPARE(Disarm(), 2);
    QVERIFY(written);
    const QString target = QDir(d_folder->path()).relativeFilePath(Target(operation));
    const QString folder = target.section('/', 0, -2);
    const QStringList calls = Logged("write|truncate|sync|rename|unlink");
    QCOMPARE(calls.mid(calls.lastIndexOf("write " + folder + "/NEW")),
             QStringList({"write " + folder + "/NEW", "sync " + folder + "/NEW",
                          "rename " + folder + "/NEW " + target, "sync " + folder}));
}

void TestDurability::a_failing_sync_leaves_the_old_file()
{
    QFETCH(QString, operation);
    QVERIFY(Write_New_File(operation, 40));
    Arm(Faults::Sync, Faults::Fail, 1);
    const bool written = Write_New_File(operation, 41);
    QCOMPARE(Disarm(), 1);
    QVERIFY(!written);
    QCOMPARE(Read_File(Target(operation)), Empty_Project(40));
    QCOMPARE(Logged("rename"), QStringList());
}

void TestDurability::the_backup_is_on_the_disk_before_the_document_is_replaced()
{
    const auto net = Net();
    for (int save = 0; save < 2; ++save) {
        Arm(Faults::Sync, Faults::Fail, 0);
        Save(net.get());
        QCOMPARE(Disarm(), 2);
        const QString backup =
            QDir(d_folder->path())
                .relativeFilePath(
                    TBackup(In("settings/backup")).Path_For(In("documents/a.quillet")));
        QCOMPARE(Logged("truncate|sync|rename|link|unlink").filter("a.quillet").last(),
                 "rename settings/backup/NEW documents/a.quillet");
        QCOMPARE(
            Logged("sync|rename|write"),
            QStringList({"write " + QString(backup).replace(".quillet", ".note"),
                         "sync settings/backup/NEW", "rename settings/backup/NEW " + backup,
                         "sync settings/backup", "rename settings/backup/NEW documents/a.quillet",
                         "write documents/a.quillet"}));
    }
}

void TestDurability::the_backup_is_on_the_disk_before_the_document_is_truncated()
{
    // A document with two hard links is overwritten in place.
    link(QFile::encodeName(In("documents/a.quillet")).constData(),
         QFile::encodeName(In("documents/link")).constData());
    const auto net = Net();
    Arm(Faults::Sync, Faults::Fail, 0);
    Save(net.get());
    Disarm();
    const QStringList calls = Logged("truncate|sync");
    const int truncated = calls.indexOf("truncate documents/a.quillet");
    QVERIFY(truncated > 0);
    QCOMPARE(calls.mid(truncated - 2, 2),
             QStringList({"sync settings/backup/NEW", "sync settings/backup"}));
}

void TestDurability::the_backup_is_not_synced_while_the_log_has_all_work()
{
    const auto net = Net();
    net->Record_Change(In("documents/a.quillet"));
    Arm(Faults::Sync, Faults::Fail, 0);
    QFile file(In("documents/a.quillet"));
    QString other_version;
    QVERIFY(net->Open_For_Saving(&file, 1, &other_version));
    Disarm();
    const QStringList calls = Logged("sync|rename|link");
    QCOMPARE(calls.filter("sync").filter("backup"), QStringList());
    // The log is synced instead, before the document is moved away.
    QVERIFY(calls.indexOf("sync " + Only_Log() + "-wal") >= 0);
    QVERIFY2(calls.indexOf("sync settings/recovery") <
                 calls.indexOf(calls.filter(QRegularExpression("^(rename|link)")).value(0)),
             qPrintable(calls.join('\n')));
}

void TestDurability::a_backup_that_cannot_be_synced_or_renamed_is_copied_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("at");
    QTest::newRow("linking fails") << static_cast<int>(Faults::Rename) << 2;
    QTest::newRow("syncing the document fails") << static_cast<int>(Faults::Sync) << 1;
    QTest::newRow("renaming fails") << static_cast<int>(Faults::Rename) << 3;
    QTest::newRow("syncing the folder fails") << static_cast<int>(Faults::Sync) << 2;
    QTest::newRow("replacing the document fails") << static_cast<int>(Faults::Rename) << 4;
}

void TestDurability::a_backup_that_cannot_be_synced_or_renamed_is_copied()
{
    QFETCH(int, call);
    QFETCH(int, at);
    const QString document = In("documents/a.quillet");
    QVERIFY(Keep(document));
    Write_File(document, Empty_Project(40));
    Arm(static_cast<Faults::TCall>(call), Faults::Fail, at);
    QFile file(document);
    const std::optional<QString> copy =
        TBackup(In("settings/backup")).Keep(&file, {true, false, 0});
    QVERIFY(Disarm() > at);
    QVERIFY(copy.has_value());
    QVERIFY(!file.isOpen());
    QCOMPARE(Read_File(document), Empty_Project(40));
    QCOMPARE(Read_File(*copy), Empty_Project(40));
    // They are separate files: overwriting the document does not change the backup.
    Write_File(document, "x");
    QCOMPARE(Read_File(*copy), Empty_Project(40));
    QCOMPARE(Support::Entries(In("settings/backup")).size(), 2);
    QCOMPARE(Support::Entries(In("documents")), QStringList{"a.quillet"});
}

void TestDurability::a_kill_while_the_backup_is_made_leaves_the_document_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("at");
    // Calls that link or rename a file: a temporary file gets a name, the document gets a second
    // name, this replaces the previous backup, and the temporary file replaces the document.
    for (int at = 1; at <= 4; ++at) {
        QTest::addRow("before call %d", at) << static_cast<int>(Faults::Kill) << at;
        QTest::addRow("after call %d", at) << static_cast<int>(Faults::Kill_After) << at;
    }
}

void TestDurability::a_kill_while_the_backup_is_made_leaves_the_document()
{
    QFETCH(int, kind);
    QFETCH(int, at);
    const QString document = In("documents/a.quillet");
    QVERIFY(Keep(document));
    Write_File(document, Empty_Project(40));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Arm(Faults::Rename, static_cast<Faults::TKind>(kind), at);
        Keep(document);
        return 0;
    });
    QCOMPARE(result.signal, SIGKILL);
    const TBackup backup(In("settings/backup"));
    const bool is_replaced = kind == Faults::Kill_After && at == 4;
    QCOMPARE(Read_File(document), is_replaced ? QByteArray() : Empty_Project(40));
    QVERIFY(!is_replaced || Read_File(backup.Path_For(document)) == Empty_Project(40));
    // The next save backs up the document again, and the next start cleans up.
    if (!is_replaced)
        QVERIFY(Keep(document));
    QCOMPARE(Read_File(backup.Path_For(document)), Empty_Project(40));
    for (const QString& name : Support::Entries(In("settings/backup")))
        Support::Make_Old(In("settings/backup/") + name, 3600);
    backup.Clean_Up();
    QCOMPARE(Support::Entries(In("settings/backup")).size(), 2);
    QCOMPARE(Support::Entries(In("documents")), QStringList{"a.quillet"});
}

void TestDurability::a_file_with_two_hard_links_is_overwritten_from_a_complete_visible_file()
{
    Write_File(In("documents/target"), "old");
    link(QFile::encodeName(In("documents/target")).constData(),
         QFile::encodeName(In("documents/link")).constData());
    Arm(Faults::Sync, Faults::Fail, 0);
    QVERIFY(TSafeFile::Replace(In("documents/target"), "new"));
    Disarm();
    QCOMPARE(
        Logged("sync|truncate|unlink"),
        QStringList({"truncate documents/NEW", "sync documents/NEW", "truncate documents/target",
                     "sync documents/target", "unlink documents/target.new", "sync documents"}));
}

void TestDurability::the_saved_file_is_on_the_disk_before_the_log_is_deleted()
{
    const auto net = Net();
    net->Record_Change(In("documents/a.quillet"));
    const QString log = Only_Log();
    QVERIFY(!log.isEmpty());
    Arm(Faults::Sync, Faults::Fail, 0);
    Save(net.get());
    Disarm();
    const QStringList calls = Logged("write|sync|unlink");
    QCOMPARE(calls.mid(calls.indexOf("write documents/a.quillet"), 4).join('\n'),
             QStringList({"write documents/a.quillet", "sync documents/a.quillet", "sync documents",
                          "unlink " + log})
                 .join('\n'));
}

void TestDurability::the_saved_file_is_on_the_disk_before_the_opened_recovery_copy_is_deleted()
{
    const QString copy = Make_Recovery_Copy();
    QVERIFY(!copy.isEmpty());
    const auto net = Net();
    net->After_Open(In(copy), TFileStamp::Of(In(copy)), {});
    Arm(Faults::Sync, Faults::Fail, 0);
    Save(net.get());
    Disarm();
    const QStringList calls = Logged("write|sync|unlink");
    // A log beside the copy would be deleted before it.
    QCOMPARE(calls.mid(calls.indexOf("write documents/a.quillet"), 4),
             QStringList({"write documents/a.quillet", "sync documents/a.quillet", "sync documents",
                          "unlink " + QString(copy).replace(".quillet", ".log")}));
    QVERIFY(calls.indexOf("unlink " + copy) > calls.indexOf("sync documents"));
}

void TestDurability::a_work_log_is_deleted_before_the_copy_beside_it()
{
    const QString copy = In(Make_Recovery_Copy());
    const QString log = QString(copy).replace(".quillet", ".log");
    Write_File(log, "log");
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Arm(Faults::Remove, Faults::Kill_After, 1);
        TKeptFolder(In("settings/recovery")).Remove(TKeptFolder::Name_Of(copy));
        return 0;
    });
    QCOMPARE(result.signal, SIGKILL);
    QVERIFY(!QFile::exists(log));
    QVERIFY(QFile::exists(copy));
}

void TestDurability::a_failing_sync_of_the_saved_file_keeps_the_log_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("file") << "documents/a.quillet";
    QTest::newRow("folder") << "documents";
}

void TestDurability::a_failing_sync_of_the_saved_file_keeps_the_log()
{
    QFETCH(const QString, target);
    // The rehearsal finds the number of the call that fails later.
    int at = 0;
    for (const bool is_rehearsal : {true, false}) {
        const auto net = Net();
        net->Record_Change(In("documents/a.quillet"));
        const QString log = Only_Log();
        Arm(Faults::Sync, Faults::Fail, at);
        Save(net.get());
        Disarm();
        at = Logged("sync").indexOf("sync " + target) + 1;
        QVERIFY(at > 0);
        QCOMPARE(QFile::exists(In(log)), !is_rehearsal);
        QCOMPARE(Logged("unlink").contains("unlink " + log), is_rehearsal);
        // The next save succeeds.
        Save(net.get());
        QVERIFY(!QFile::exists(In(log)));
    }
}

void TestDurability::a_failing_sync_of_the_saved_file_keeps_the_opened_recovery_copy()
{
    const QString copy = Make_Recovery_Copy();
    const auto net = Net();
    net->After_Open(In(copy), TFileStamp::Of(In(copy)), {});
    Write_File(In("documents/a.quillet"), Empty_Project());
    Arm(Faults::Sync, Faults::Fail, 1);
    net->After_Save(In("documents/a.quillet"), Empty_Project().size(), {});
    Disarm();
    QVERIFY(QFile::exists(In(copy)));
}

void TestDurability::saved_files_are_synced_only_for_a_recovery_copy()
{
    const QString copy = Make_Recovery_Copy();
    const auto net = Net();
    net->After_Open(In(copy), TFileStamp(), {});
    QList<int> syncs;
    for (int i = 0; i < 2; ++i) {
        Arm(Faults::Sync, Faults::Fail, 0);
        net->After_Save(In("documents/a.quillet"), Empty_Project().size(), {});
        syncs += Disarm();
    }
    // The first save deletes the copy.
    QCOMPARE(syncs, QList<int>({2, 0}));
}

void TestDurability::the_log_is_on_the_disk_after_a_pause()
{
    const auto net = Net();
    Arm(Faults::Sync, Faults::Fail, 0);
    net->Record_Change("/a");
    net->Record_Change("/a");
    QCOMPARE(Logged("sync"), QStringList());
    net->Flush("/a");
    const QStringList calls = Logged("sync");
    QVERIFY(calls.contains("sync " + Only_Log()));
    QVERIFY(calls.contains("sync " + Only_Log() + "-wal"));
    QCOMPARE(calls.last(), "sync settings/recovery");
    // Only changes are synced.
    net->Flush("/a");
    QCOMPARE(Logged("sync"), calls);
    d_document.appearance.label_size = 40;
    net->Flush("/a");
    QCOMPARE(Disarm(), calls.size() + 2);
}

void TestDurability::the_log_is_synced_after_five_seconds()
{
    const auto advance = From_Library<decltype(Quillet_Advance_Clock)>("Quillet_Advance_Clock");
    const auto net = Net();
    Arm(Faults::Sync, Faults::Fail, 0);
    constexpr int interval = 3;
    for (int seconds = 0; seconds <= 4 * interval; seconds += interval) {
        ++d_document.appearance.label_size;
        net->Record_Change("/a");
        QCOMPARE(Logged("sync").count("sync " + Only_Log() + "-wal"), seconds / (2 * interval));
        advance(interval);
    }
    Disarm();
}

void TestDurability::the_saved_file_is_on_the_disk_before_the_log_refers_to_it()
{
    Support::Add_Page(&d_document, "a", TPageImage(), 1);
    const auto net = Net();
    const QString path = In("documents/b.quillet");
    TFilePlaces places;
    Write_File(path, Support::Saved(d_document, &places));
    net->After_Save(path, QFileInfo(path).size(), places);
    ++d_document.appearance.label_size;
    Arm(Faults::Sync, Faults::Fail, 0);
    net->Record_Change(path);
    net->Flush(path);
    Disarm();
    QCOMPARE(Logged("sync").value(0), "sync " + QString(Only_Log()).replace(".log", ".base"));
}

void TestDurability::a_recovered_copy_is_on_the_disk_before_its_log_is_deleted()
{
    Net()->Record_Change("/a");
    const QString log = Only_Log();
    const QString copy = QString(log).replace(".log", ".quillet");
    Arm(Faults::Sync, Faults::Fail, 0);
    Net()->Convert_Abandoned_Logs(nullptr);
    Disarm();
    const QStringList calls = Logged("sync|rename|unlink");
    QCOMPARE(calls.mid(0, 4),
             QStringList({"sync settings/recovery/NEW", "rename settings/recovery/NEW " + copy,
                          "sync settings/recovery", "unlink " + log}));
}

void TestDurability::a_failing_sync_of_a_recovered_copy_keeps_its_log()
{
    Net()->Record_Change("/a");
    const QString log = Only_Log();
    Arm(Faults::Sync, Faults::Fail, 1);
    Net()->Convert_Abandoned_Logs(nullptr);
    Disarm();
    QCOMPARE(Only_Log(), log);
    QCOMPARE(Only_File("*.quillet"), QString());
    Net()->Convert_Abandoned_Logs(nullptr);
    QCOMPARE(Read_File(In(Only_File("*.quillet"))), Empty_Project(32));
}

void TestDurability::a_new_folder_is_on_the_disk_and_so_is_its_parent()
{
    QVERIFY(QDir(d_folder->path()).mkpath("home/settings"));
    const TKeptFolder folder(In("home/settings/recovery"));
    Arm(Faults::Sync, Faults::Fail, 0);
    QVERIFY(folder.Prepare());
    QVERIFY(folder.Prepare());
    Disarm();
    QCOMPARE(Logged("sync"), QStringList({"sync home/settings", "sync home"}));
}

void TestDurability::a_note_that_cannot_be_written_does_not_fail_the_backup()
{
    const QString document = In("documents/a.quillet");
    QVERIFY(Keep(document));
    Write_File(document, Empty_Project(40));
    Arm(Faults::Write, Faults::Fail, 1);
    const bool kept = Keep(document);
    QVERIFY(Disarm() > 0);
    QVERIFY(kept);
    const TKeptFile backup = TBackup(In("settings/backup")).List().front();
    QCOMPARE(Read_File(backup.path), Empty_Project(40));
    // The note of the previous backup has the same path.
    QCOMPARE(backup.document, document);
}

void TestDurability::the_file_system_copies_where_it_can_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("one byte") << 1;
    QTest::newRow("several blocks") << 3'000'000;
}

void TestDurability::the_file_system_copies_where_it_can()
{
    QFETCH(int, size);
    Write_File(In("documents/source"), QByteArray(size, 'c'));
    const auto calls = [this](Faults::TCall call) {
        TSafeFile copy(In("documents/copy"));
        Arm(call, Faults::Fail, 0);
        return copy.Copy_From(In("documents/source")) ? Disarm() : -1;
    };
    const int clones = calls(Faults::Clone);
    QVERIFY(clones > 0);
    // No other writes.
    QCOMPARE(calls(Faults::Write), clones);
}

void TestDurability::a_copy_that_the_file_system_does_not_finish_is_complete()
{
    const QString document = In("documents/a.quillet");
    link(QFile::encodeName(document).constData(),
         QFile::encodeName(In("documents/link")).constData());
    QByteArray content;
    for (int i = 0; i < 300000; ++i)
        content += QByteArray::number(i);
    Write_File(document, content);
    Arm(Faults::Clone, Faults::Short, 1);
    const bool kept = Keep(document);
    QVERIFY(Disarm() > 0);
    QVERIFY(kept);
    QVERIFY(Read_File(TBackup(In("settings/backup")).Path_For(document)) == content);
}

void TestDurability::a_copy_of_an_unreadable_file_fails()
{
    Write_File(In("documents/source"), QByteArray(3'000'000, 'c'));
    TSafeFile copy(In("documents/copy"));
    Arm(Faults::Read, Faults::Short, 1);
    const bool copied = copy.Copy_From(In("documents/source"));
    QVERIFY(Disarm() > 1);
    QVERIFY(!copied);
}

void TestDurability::a_failing_close_fails_the_sync()
{
    Arm(Faults::Close, Faults::Fail, 1);
    const bool synced = TSafeFile::Sync(In("documents/a.quillet"));
    QCOMPARE(Disarm(), 1);
    QVERIFY(!synced);
}

void TestDurability::a_file_that_need_not_reach_the_disk_is_not_synced_data()
{
    QTest::addColumn<bool>("has_two_hard_links");
    QTest::newRow("replaced") << false;
    QTest::newRow("overwritten") << true;
}

void TestDurability::a_file_that_need_not_reach_the_disk_is_not_synced()
{
    QFETCH(bool, has_two_hard_links);
    const QString document = In("documents/a.quillet");
    if (has_two_hard_links)
        link(QFile::encodeName(document).constData(),
             QFile::encodeName(In("documents/link")).constData());
    TSafeFile target(document);
    Write_File(target.Path_To_Write(), "new");
    Arm(Faults::Sync, Faults::Fail, 0);
    const bool committed =
        target.Commit([](const QString&) { return true; }, TSafeFile::TReach::System);
    QCOMPARE(Disarm(), 0);
    QVERIFY(committed);
    QCOMPARE(Read_File(document), QByteArray("new"));
}

QTEST_MAIN(TestDurability)
#include "test_durability.moc"
