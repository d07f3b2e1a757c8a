// Which backups, work logs and recovery copies exist after which event.

#include "src/format/projectfile.h"
#include "src/safety/safetynet.h"
#include "support/support.h"
#include "support/worklogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <limits>
#include <sys/resource.h>
#include <unistd.h>

using Support::Empty_Project;
using Support::Entries;
using Support::Read_File;
using Support::Recovered;
using Support::Write_File;

class TestSafetyNet : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void every_change_is_stored_at_once();
    void a_pause_stores_changes_that_were_not_recorded();
    void a_complete_save_deletes_the_log();
    void the_first_change_after_a_save_is_stored_at_once();
    void the_note_after_a_save_names_the_saved_file();
    void an_incomplete_save_leaves_a_log_data();
    void an_incomplete_save_leaves_a_log();
    void a_saved_file_of_another_size_leaves_a_log();
    void a_failed_save_leaves_a_log();
    void discarding_deletes_the_log();
    void releasing_leaves_the_log();
    void a_save_backs_up_the_previous_version();
    void an_incomplete_file_does_not_replace_the_backup();
    void a_damaged_document_is_backed_up();
    void a_version_of_another_program_is_kept_separately_data();
    void a_version_of_another_program_is_kept_separately();
    void a_document_that_only_this_program_writes_has_one_backup();
    void a_file_that_was_not_opened_is_kept_separately();
    void a_deleted_document_is_saved_again();
    void a_document_that_cannot_be_opened_stays();
    void a_log_is_recovered_once_its_process_has_released_it();
    void an_opened_copy_is_deleted_after_a_save_elsewhere();
    void recovered_work_is_deleted_after_a_save_of_its_document();
    void discarding_recovered_work_deletes_it();
    void recovered_work_that_is_opened_again_stays();
    void recovered_work_stays_after_an_incomplete_save();
    void releasing_leaves_recovered_work();
    void a_document_changed_after_the_recovered_work_is_kept_separately_data();
    void a_document_changed_after_the_recovered_work_is_kept_separately();
    void an_abandoned_copy_stays_otherwise_data();
    void an_abandoned_copy_stays_otherwise();
    void an_unusable_settings_folder_is_reported_once_data();
    void an_unusable_settings_folder_is_reported_once();
    void an_unusable_backup_folder_is_reported_once();
    void a_failed_update_is_not_repeated_at_once();
    void a_full_disk_is_reported_once();
    void a_document_without_pages_has_no_work_to_lose();
    void stale_files_are_deleted_at_the_start();
    void unchanged_pages_are_not_stored_data();
    void unchanged_pages_are_not_stored();
    void a_save_after_a_save_leaves_a_whole_log();
    void everything_is_stored_before_a_document_without_backup_is_overwritten();
    void a_document_without_another_complete_copy_needs_room_to_be_overwritten_data();
    void a_document_without_another_complete_copy_needs_room_to_be_overwritten();
    void changes_that_could_not_be_stored_are_stored_by_a_save();
    void everything_is_stored_before_an_overwritten_document_is_saved();
    void the_labels_of_an_overwritten_file_are_stored_with_the_next_sync();
    void a_saved_file_that_is_overwritten_is_stored_bit_by_bit();
    void a_saved_file_that_cannot_be_protected_is_stored_bit_by_bit();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Settings() const { return In("settings"); }
    std::unique_ptr<TSafetyNet> Net();
    QStringList Logs() const { return QDir(In("settings/recovery")).entryList({"*.log"}); }
    /// What the only log would be recovered to.
    QByteArray Only_Log() const
    {
        return Logs().size() == 1 ? Recovered(In("settings/recovery/" + Logs().first()))
                                  : QByteArray("not one log");
    }
    /// Names of all recovery copies and logs.
    QStringList Copies() const
    {
        return QDir(In("settings/recovery")).entryList({"*.quillet", "*.log"});
    }
    QByteArray Only_Copy() const
    {
        return Copies().size() == 1 ? Read_File(In("settings/recovery/" + Copies().first()))
                                    : QByteArray("not one copy");
    }
    void Set_Label_Size(int size) { d_document.appearance.label_size = size; }
    QString Abandon_Copy(const QString& document = QStringLiteral("/original.quillet"));
    std::unique_ptr<TSafetyNet> Net_With_Recovered(const QString& document);
    void Save(TSafetyNet* net, const QString& path, const QByteArray& content,
              const TFilePlaces& places = {});
    void Save_Document(TSafetyNet* net, const QString& path);
    void Save_And_Change(TSafetyNet* net, const QString& path);
    Support::TChildResult Run_Without_Backup(const QString& path,
                                             const std::function<void(TSafetyNet*)>& work);
    void Add_Pages();
    QString Difference() const
    {
        return Support::Byte_Difference(Only_Log(), Support::Project_Of(d_document));
    }

    std::unique_ptr<QTemporaryDir> d_folder;
    QString d_other_version; ///< from the last save
    TDocument d_document;
};

void TestSafetyNet::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(d_folder->path()).mkdir("settings"));
    d_other_version.clear();
    d_document = TDocument();
}

void TestSafetyNet::cleanup()
{
    d_folder.reset();
}

std::unique_ptr<TSafetyNet> TestSafetyNet::Net()
{
    return std::make_unique<TSafetyNet>(Settings(),
                                        [this] { return Support::State_Of(d_document); });
}

/// Leaves an abandoned copy; returns its path, or an empty one on failure.
QString TestSafetyNet::Abandon_Copy(const QString& document)
{
    Set_Label_Size(77);
    const auto net = Net();
    net->After_Open(document, TFileStamp::Of(document), {});
    net->Record_Change(document);
    net->Release();
    Set_Label_Size(32);
    Net()->Convert_Abandoned_Logs(nullptr);
    const QStringList copies = QDir(In("settings/recovery")).entryList({"*.quillet"});
    return copies.size() == 1 ? In("settings/recovery/" + copies.first()) : QString();
}

/// A new start that has opened the abandoned work of a document.
std::unique_ptr<TSafetyNet> TestSafetyNet::Net_With_Recovered(const QString& document)
{
    const QString copy = Abandon_Copy(document);
    auto net = Net();
    net->After_Open(copy, TFileStamp::Of(copy), {});
    net->After_Recovery(net->Abandoned().front());
    return net;
}

/// Saves as the window does. The content may be incomplete.
void TestSafetyNet::Save(TSafetyNet* net, const QString& path, const QByteArray& content,
                         const TFilePlaces& places)
{
    d_other_version.clear();
    QFile file(path);
    QVERIFY(net->Open_For_Saving(&file, content.size(), &d_other_version));
    QCOMPARE(file.write(content), qint64{content.size()});
    file.close();
    net->After_Save(path, places.empty() ? Empty_Project().size() : content.size(), places);
}

/// Saves the document with its pages.
void TestSafetyNet::Save_Document(TSafetyNet* net, const QString& path)
{
    TFilePlaces places;
    const QByteArray content = Support::Saved(d_document, &places);
    Save(net, path, content, places);
}

/// Saves the document with its pages, and changes a label's value after that.
void TestSafetyNet::Save_And_Change(TSafetyNet* net, const QString& path)
{
    Save_Document(net, path);
    d_document.data.Change_Item_Value(1, 100);
    net->Record_Change(path);
}

/// Makes backups fail and kills a process after it has saved and changed the document and done
/// some work.
Support::TChildResult
TestSafetyNet::Run_Without_Backup(const QString& path, const std::function<void(TSafetyNet*)>& work)
{
    Add_Pages();
    Write_File(In("settings/backup"), "in the way");
    return Support::Run_In_Child([&] {
        const auto net = Net();
        Save_And_Change(net.get(), path);
        work(net.get());
        kill(getpid(), SIGKILL);
        return 0;
    });
}

void TestSafetyNet::Add_Pages()
{
    for (int page = 1; page <= 3; ++page)
        Support::Add_Page(&d_document, QString("Page %1").arg(page), Support::Picture(9, 9, page),
                          3);
}

void TestSafetyNet::every_change_is_stored_at_once()
{
    const auto net = Net();
    QVERIFY(!QFile::exists(In("settings/recovery")));
    for (int size = 40; size < 50; ++size) {
        Set_Label_Size(size);
        net->Record_Change("/a");
        QCOMPARE(Only_Log(), Empty_Project(size));
    }
}

void TestSafetyNet::a_pause_stores_changes_that_were_not_recorded()
{
    const auto net = Net();
    net->Flush("/a");
    QVERIFY(Logs().isEmpty());
    net->Record_Change("/a");
    Set_Label_Size(40);
    net->Flush("/a");
    QCOMPARE(Only_Log(), Empty_Project(40));
}

void TestSafetyNet::a_complete_save_deletes_the_log()
{
    const auto net = Net();
    net->Record_Change("/a");
    QCOMPARE(Logs().size(), 1);
    Save(net.get(), In("a.quillet"), Empty_Project());
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
    net->Flush("/a");
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
}

void TestSafetyNet::the_first_change_after_a_save_is_stored_at_once()
{
    const auto net = Net();
    net->Record_Change("/a");
    Save(net.get(), In("a.quillet"), Empty_Project());
    Set_Label_Size(40);
    net->Record_Change("/a");
    QCOMPARE(Only_Log(), Empty_Project(40));
}

void TestSafetyNet::the_note_after_a_save_names_the_saved_file()
{
    const auto net = Net();
    const auto note = [this] {
        return Read_File(In("settings/recovery/" + Logs().value(0).replace(".log", ".note")))
            .split('\0')
            .first();
    };
    net->Record_Change(QString());
    QCOMPARE(note(), QByteArray());
    for (const QString& path : {In("a.quillet"), In("a.quillet"), In("b.quillet")}) {
        Save(net.get(), path, Empty_Project());
        QVERIFY(Logs().isEmpty());
        net->Record_Change(path);
        QCOMPARE(note(), path.toUtf8());
    }
}

void TestSafetyNet::an_incomplete_save_leaves_a_log_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("cut") << Empty_Project().chopped(1);
    QTest::newRow("longer") << Empty_Project() + 'x';
    QByteArray twisted = Empty_Project();
    twisted[8] = 127;
    QTest::newRow("right length, wrong structure") << twisted;
}

void TestSafetyNet::an_incomplete_save_leaves_a_log()
{
    QFETCH(QByteArray, content);
    const auto net = Net();
    // There is no earlier copy.
    Save(net.get(), In("a.quillet"), content);
    QCOMPARE(Only_Log(), Empty_Project(32));
    Set_Label_Size(40);
    net->Record_Change(In("a.quillet"));
    Save(net.get(), In("a.quillet"), content);
    QCOMPARE(Only_Log(), Empty_Project(40));
    QCOMPARE(Read_File(In("a.quillet")), content);
}

void TestSafetyNet::a_saved_file_of_another_size_leaves_a_log()
{
    const auto net = Net();
    Write_File(In("a.quillet"), Empty_Project());
    net->After_Save(In("a.quillet"), Empty_Project().size() + 1, {});
    QCOMPARE(Only_Log(), Empty_Project(32));
}

void TestSafetyNet::a_failed_save_leaves_a_log()
{
    const auto net = Net();
    net->After_Failed_Save("/a");
    QCOMPARE(Only_Log(), Empty_Project(32));
}

void TestSafetyNet::discarding_deletes_the_log()
{
    const auto net = Net();
    net->Record_Change("/a");
    net->Discard();
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
    net->Flush("/a");
    QVERIFY(Logs().isEmpty());
}

void TestSafetyNet::releasing_leaves_the_log()
{
    const auto net = Net();
    net->Record_Change("/a");
    net->Release();
    Set_Label_Size(40);
    net->Record_Change("/b");
    QCOMPARE(Logs().size(), 2);
    net->Discard();
    QCOMPARE(Only_Log(), Empty_Project(32));
}

void TestSafetyNet::a_save_backs_up_the_previous_version()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    const TBackup backup(In("settings/backup"));
    for (int version = 41; version < 44; ++version) {
        Save(net.get(), path, Empty_Project(version));
        if (version > 41)
            QCOMPARE(Read_File(backup.Path_For(path)), Empty_Project(version - 1));
    }
}

void TestSafetyNet::an_incomplete_file_does_not_replace_the_backup()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    const TBackup backup(In("settings/backup"));
    Write_File(path, Empty_Project(41));
    net->After_Open(path, TFileStamp::Of(path), {});
    Save(net.get(), path, "short");
    Save(net.get(), path, "short again");
    QCOMPARE(Read_File(backup.Path_For(path)), Empty_Project(41));
    Save(net.get(), path, Empty_Project(42));
    Save(net.get(), path, Empty_Project(43));
    QCOMPARE(Read_File(backup.Path_For(path)), Empty_Project(42));
}

void TestSafetyNet::a_damaged_document_is_backed_up()
{
    // The exception is a file that a save of this program left incomplete.
    const auto net = Net();
    const QString path = In("a.quillet");
    Write_File(path, "damaged");
    net->After_Open(path, TFileStamp::Of(path), {});
    Save(net.get(), path, Empty_Project());
    QCOMPARE(Read_File(TBackup(In("settings/backup")).Path_For(path)), QByteArray("damaged"));
    Save(net.get(), path, "short");
    Write_File(path, "damaged after an incomplete save");
    Save(net.get(), path, Empty_Project());
    QCOMPARE(Read_File(d_other_version), QByteArray("damaged after an incomplete save"));
}

void TestSafetyNet::a_version_of_another_program_is_kept_separately_data()
{
    QTest::addColumn<QString>("known_from");
    QTest::addColumn<QString>("change");
    for (const char* const known_from : {"opened", "saved", "left incomplete"}) {
        for (const char* const change : {"written", "replaced"})
            QTest::addRow("%s, then %s", known_from, change) << known_from << change;
    }
}

void TestSafetyNet::a_version_of_another_program_is_kept_separately()
{
    QFETCH(QString, known_from);
    QFETCH(QString, change);
    const auto net = Net();
    const QString path = In("a.quillet");
    const QByteArray other = "of another program";
    Write_File(path, Empty_Project(41));
    net->After_Open(path, TFileStamp::Of(path), {});
    if (known_from != "opened")
        Save(net.get(), path, known_from == "saved" ? Empty_Project(42) : QByteArray("short"));
    QCOMPARE(d_other_version, QString());
    const QString backup = TBackup(In("settings/backup")).Path_For(path);
    const QByteArray backed_up = Read_File(backup);
    if (change == "replaced") {
        Write_File(In("new"), other);
        QVERIFY(QFile::remove(path) && QFile::rename(In("new"), path));
    } else {
        Write_File(path, other);
    }
    Save(net.get(), path, Empty_Project(43));
    const QString kept = d_other_version;
    QCOMPARE(Read_File(kept), other);
    QCOMPARE(Read_File(backup), backed_up);
    // The next save replaces the version that this program saved.
    Save(net.get(), path, Empty_Project(44));
    QCOMPARE(d_other_version, QString());
    QCOMPARE(Read_File(kept), other);
    QCOMPARE(Read_File(backup), Empty_Project(43));
}

void TestSafetyNet::a_document_that_only_this_program_writes_has_one_backup()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    QVERIFY(QFile::link(path, In("symbolic")));
    Write_File(path, Empty_Project(40));
    net->After_Open(path, TFileStamp::Of(path), {});
    for (int version = 41; version < 44; ++version) {
        Save(net.get(), version == 42 ? In("symbolic") : path, Empty_Project(version));
        QCOMPARE(d_other_version, QString());
    }
    QCOMPARE(TBackup(In("settings/backup")).List().size(), size_t(1));
}

void TestSafetyNet::a_file_that_was_not_opened_is_kept_separately()
{
    const auto net = Net();
    const TBackup backup(In("settings/backup"));
    Write_File(In("a.quillet"), Empty_Project(40));
    Write_File(In("b.quillet"), "another document");
    net->After_Open(In("a.quillet"), TFileStamp::Of(In("a.quillet")), {});
    // Save As over another document.
    QVERIFY(!net->Is_Changed_Elsewhere(In("b.quillet")));
    Save(net.get(), In("b.quillet"), Empty_Project(41));
    const QString replaced = d_other_version;
    QVERIFY(replaced != backup.Path_For(In("b.quillet")));
    Save(net.get(), In("b.quillet"), Empty_Project(42));
    QCOMPARE(d_other_version, QString());
    QCOMPARE(Read_File(replaced), QByteArray("another document"));
    QCOMPARE(Read_File(backup.Path_For(In("b.quillet"))), Empty_Project(41));
    // A new document with the name of the previous one.
    net->Discard();
    Save(net.get(), In("b.quillet"), Empty_Project(43));
    QCOMPARE(Read_File(d_other_version), Empty_Project(42));
    QCOMPARE(Read_File(backup.Path_For(In("b.quillet"))), Empty_Project(41));
}

void TestSafetyNet::a_deleted_document_is_saved_again()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    Save(net.get(), path, Empty_Project(41));
    QVERIFY(QFile::remove(path));
    Save(net.get(), path, Empty_Project(42));
    QCOMPARE(Read_File(path), Empty_Project(42));
    QCOMPARE(d_other_version, QString());
    QVERIFY(TBackup(In("settings/backup")).List().empty());
}

void TestSafetyNet::a_document_that_cannot_be_opened_stays()
{
    const QString path = In("a.quillet");
    Write_File(path, Empty_Project(41));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        const auto net = Net();
        net->Record_Change(path);
        // No more files can be opened.
        const rlimit none = {3, 3};
        setrlimit(RLIMIT_NOFILE, &none);
        QFile file(path);
        return net->Open_For_Saving(&file, 1, &d_other_version) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(path), Empty_Project(41));
}

void TestSafetyNet::a_log_is_recovered_once_its_process_has_released_it()
{
    const auto running = Net();
    running->Record_Change("/a");
    QVERIFY(!Net()->Has_Abandoned_Logs());
    const QString name = Logs().first();
    running->Release();
    const auto later = Net();
    QVERIFY(later->Has_Abandoned_Logs());
    QVERIFY(later->Abandoned().empty());
    later->Convert_Abandoned_Logs(nullptr);
    QVERIFY(!later->Has_Abandoned_Logs());
    QCOMPARE(later->Abandoned().size(), size_t(1));
    QCOMPARE(QFileInfo(later->Abandoned().front().path).fileName(),
             QString(name).replace(".log", ".quillet"));
    QCOMPARE(later->Abandoned().front().document, QString("/a"));
    QCOMPARE(Net()->Abandoned().size(), size_t(1));
}

void TestSafetyNet::an_opened_copy_is_deleted_after_a_save_elsewhere()
{
    const QString kept = Abandon_Copy();
    QVERIFY(!kept.isEmpty());
    const auto net = Net();
    net->After_Open(kept, TFileStamp::Of(kept), {});
    net->Record_Change(kept);
    Save(net.get(), In("a.quillet"), "short");
    QVERIFY(QFile::exists(kept));
    Save(net.get(), In("a.quillet"), Empty_Project());
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
}

void TestSafetyNet::recovered_work_is_deleted_after_a_save_of_its_document()
{
    const auto net = Net_With_Recovered(In("a.quillet"));
    Save(net.get(), In("a.quillet"), Empty_Project());
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
    // What the user discards from now on is not the recovered work.
    Write_File(In("settings/recovery/other.quillet"), Empty_Project());
    net->Discard();
    QCOMPARE(Copies(), QStringList("other.quillet"));
}

void TestSafetyNet::discarding_recovered_work_deletes_it()
{
    const auto net = Net_With_Recovered(In("a.quillet"));
    net->Record_Change(In("a.quillet"));
    QCOMPARE(Copies().size(), 2);
    net->Discard();
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
}

void TestSafetyNet::recovered_work_that_is_opened_again_stays()
{
    const auto net = Net_With_Recovered(In("a.quillet"));
    net->Discard(net->Abandoned().front().path);
    QCOMPARE(Only_Copy(), Empty_Project(77));
}

void TestSafetyNet::recovered_work_stays_after_an_incomplete_save()
{
    const auto net = Net_With_Recovered(In("a.quillet"));
    Save(net.get(), In("a.quillet"), Empty_Project().left(20));
    QCOMPARE(Copies().size(), 2);
    Save(net.get(), In("a.quillet"), Empty_Project());
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
}

void TestSafetyNet::releasing_leaves_recovered_work()
{
    const auto net = Net_With_Recovered(In("a.quillet"));
    net->Release();
    net->Discard();
    QCOMPARE(Only_Copy(), Empty_Project(77));
}

void TestSafetyNet::a_document_changed_after_the_recovered_work_is_kept_separately_data()
{
    QTest::addColumn<QString>("changed");
    for (const char* const changed : {"never", "before the recovery", "after the recovery"})
        QTest::newRow(changed) << changed;
}

void TestSafetyNet::a_document_changed_after_the_recovered_work_is_kept_separately()
{
    QFETCH(QString, changed);
    const QString path = In("a.quillet");
    const QByteArray other = "of another program";
    Write_File(path, Empty_Project(50));
    const QString copy = Abandon_Copy(path);
    if (changed == "before the recovery")
        Write_File(path, other);
    const auto net = Net();
    QCOMPARE(net->Abandoned().front().Is_Document_Changed(), changed == "before the recovery");
    net->After_Open(copy, TFileStamp::Of(copy), {});
    net->After_Recovery(net->Abandoned().front());
    if (changed == "after the recovery")
        Write_File(path, other);
    Save(net.get(), path, Empty_Project());
    QCOMPARE(d_other_version.isEmpty(), changed == "never");
    QVERIFY(changed == "never" || Read_File(d_other_version) == other);
}

void TestSafetyNet::an_abandoned_copy_stays_otherwise_data()
{
    QTest::addColumn<QString>("what");
    for (const char* const what :
         {"not opened", "released", "discarded", "another file opened since"})
        QTest::newRow(what) << what;
}

void TestSafetyNet::an_abandoned_copy_stays_otherwise()
{
    QFETCH(QString, what);
    const QString kept = Abandon_Copy();
    const auto net = Net();
    if (what != "not opened")
        net->After_Open(kept, TFileStamp::Of(kept), {});
    if (what == "released")
        net->Release();
    if (what == "discarded")
        net->Discard();
    if (what == "another file opened since")
        net->After_Open(In("other.quillet"), TFileStamp::Of(In("other.quillet")), {});
    net->Record_Change("/a");
    Save(net.get(), In("a.quillet"), Empty_Project());
    QCOMPARE(Read_File(kept), Empty_Project(77));
}

void TestSafetyNet::an_unusable_settings_folder_is_reported_once_data()
{
    QTest::addColumn<QString>("defect");
    for (const char* const defect : {"link", "not writable", "missing", "recovery is a link"})
        QTest::newRow(defect) << defect;
}

void TestSafetyNet::an_unusable_settings_folder_is_reported_once()
{
    QFETCH(QString, defect);
    const QDir folder(d_folder->path());
    if (defect == "link" || defect == "missing")
        QVERIFY(QDir(d_folder->path()).rmdir("settings"));
    QVERIFY(folder.mkdir("elsewhere"));
    if (defect == "link")
        QVERIFY(QFile::link(In("elsewhere"), Settings()));
    if (defect == "recovery is a link")
        QVERIFY(QFile::link(In("elsewhere"), In("settings/recovery")));
    if (defect == "not writable")
        QVERIFY(QFile::setPermissions(Settings(), QFile::ReadOwner | QFile::ExeOwner));
    Write_File(In("a.quillet"), Empty_Project(41));
    Add_Pages();
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Obey_File_Permissions();
        const auto net = Net();
        for (int i = 0; i < 3; ++i) {
            net->Record_Change(In("a.quillet"));
            net->Flush(In("a.quillet"));
            Save(net.get(), In("a.quillet"), Empty_Project());
        }
        return 0;
    });
    QFile::setPermissions(Settings(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.error_output,
             QByteArray("quillet: cannot write unsaved work to the settings folder\n"));
    QVERIFY(Entries(In("elsewhere")).isEmpty());
    QCOMPARE(Read_File(In("a.quillet")), Empty_Project());
}

void TestSafetyNet::an_unusable_backup_folder_is_reported_once()
{
    QVERIFY(QDir(d_folder->path()).mkdir("elsewhere"));
    QVERIFY(QFile::link(In("elsewhere"), In("settings/backup")));
    Write_File(In("a.quillet"), Empty_Project(41));
    const Support::TChildResult result = Support::Run_In_Child([this] {
        const auto net = Net();
        for (int i = 0; i < 3; ++i)
            Save(net.get(), In("a.quillet"), Empty_Project());
        return 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.error_output,
             QByteArray("quillet: cannot write backups to the settings folder\n"));
    QCOMPARE(Read_File(In("a.quillet")), Empty_Project());
}

void TestSafetyNet::a_failed_update_is_not_repeated_at_once()
{
    QVERIFY(QDir(d_folder->path()).mkdir("elsewhere"));
    QVERIFY(QFile::link(In("elsewhere"), In("settings/recovery")));
    Add_Pages();
    const Support::TChildResult result = Support::Run_In_Child([this] {
        int updates = 0;
        TSafetyNet net(Settings(), [&] {
            ++updates;
            return Support::State_Of(d_document);
        });
        constexpr int changes = 200;
        for (int change = 0; change < changes; ++change)
            net.Record_Change("/a");
        // The rest lasts longer than these changes, unless the machine is very slow.
        return updates < changes / 2 ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestSafetyNet::a_full_disk_is_reported_once()
{
    Add_Pages();
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(4);
        const auto net = Net();
        for (int i = 0; i < 3; ++i) {
            net->Record_Change("/a");
            net->Flush("/a");
        }
        return 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.error_output,
             QByteArray("quillet: cannot write unsaved work to the settings folder\n"));
    QVERIFY(Entries(In("settings/recovery")).isEmpty());
}

void TestSafetyNet::a_document_without_pages_has_no_work_to_lose()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(4);
        const auto net = Net();
        Set_Label_Size(50);
        net->Record_Change(QString());
        net->Flush(QString());
        return 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.error_output, QByteArray());
}

void TestSafetyNet::stale_files_are_deleted_at_the_start()
{
    for (const char* const name : {"settings/recovery", "settings/backup"}) {
        QVERIFY(QDir(d_folder->path()).mkdir(name));
        Write_File(In(name) + "/.quillet-abc123", "unfinished");
        Support::Make_Old(In(name) + "/.quillet-abc123", 3600);
    }
    Net();
    for (const char* const name : {"settings/recovery", "settings/backup"})
        QCOMPARE(Entries(In(name)), QStringList());
}

void TestSafetyNet::unchanged_pages_are_not_stored_data()
{
    QTest::addColumn<bool>("is_opened");
    QTest::newRow("after opening") << true;
    QTest::newRow("after a save") << false;
}

void TestSafetyNet::unchanged_pages_are_not_stored()
{
    QFETCH(const bool, is_opened);
    const auto net = Net();
    const QString path = In("a.quillet");
    Add_Pages();
    TFilePlaces places;
    Write_File(path, Support::Saved(d_document, &places));
    if (is_opened)
        net->After_Open(path, TFileStamp::Of(path), places);
    else
        Save_Document(net.get(), path);
    d_document.data.Change_Item_Value(1, 100);
    net->Record_Change(path);
    QCOMPARE(Difference(), QString());
    const QByteArray image = d_document.data.Page(1).image.Source_Bytes();
    const QByteArray log = Read_File(In("settings/recovery/" + Logs().first() + "-wal"));
    QVERIFY(!log.contains(image.mid(40, 40)));
}

void TestSafetyNet::a_save_after_a_save_leaves_a_whole_log()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    Add_Pages();
    for (int save = 1; save <= 3; ++save) {
        Save_Document(net.get(), path);
        d_document.data.Change_Item_Value(1, 100 * save);
        net->Record_Change(path);
        QCOMPARE(Difference(), QString());
        // The log refers to the version that this save replaces.
        Save(net.get(), path, "short");
        QCOMPARE(Difference(), QString());
    }
}

void TestSafetyNet::everything_is_stored_before_a_document_without_backup_is_overwritten()
{
    const QString path = In("a.quillet");
    const Support::TChildResult result = Run_Without_Backup(path, [&](TSafetyNet* net) {
        QFile file(path);
        net->Open_For_Saving(&file, 1, &d_other_version);
    });
    QCOMPARE(result.signal, SIGKILL);
    QCOMPARE(Read_File(path), QByteArray());
    d_document.data.Change_Item_Value(1, 100);
    QCOMPARE(Difference(), QString());
}

void TestSafetyNet::a_document_without_another_complete_copy_needs_room_to_be_overwritten_data()
{
    QTest::addColumn<QString>("copy");
    QTest::addColumn<bool>("is_opened");
    QTest::newRow("no other copy") << "none" << false;
    QTest::newRow("log that refers to the document") << "incomplete log" << false;
    QTest::newRow("log without references") << "log" << true;
    QTest::newRow("backup") << "backup" << true;
}

void TestSafetyNet::a_document_without_another_complete_copy_needs_room_to_be_overwritten()
{
    QFETCH(QString, copy);
    QFETCH(bool, is_opened);
    const QString path = In("a.quillet");
    Add_Pages();
    if (copy != "backup")
        Write_File(In("settings/backup"), "in the way");
    const Support::TChildResult result = Support::Run_In_Child([&] {
        const auto net = Net();
        Save_Document(net.get(), path);
        if (copy != "none") {
            d_document.data.Change_Item_Value(1, 100);
            net->Record_Change(path);
        }
        if (copy == "incomplete log")
            Support::Limit_File_Size(100);
        QFile file(path);
        const qint64 too_large = std::numeric_limits<qint64>::max();
        const bool is_open = net->Open_For_Saving(&file, too_large, &d_other_version);
        return is_open == is_opened && file.isOpen() == is_opened ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(path), is_opened ? QByteArray() : Support::Project_Of(d_document));
}

void TestSafetyNet::changes_that_could_not_be_stored_are_stored_by_a_save()
{
    const QString path = In("a.quillet");
    const Support::TChildResult result = Run_Without_Backup(path, [&](TSafetyNet* net) {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        // Limit_File_Size cannot be undone, but this limit is lifted below.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit less = {100, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &less);
        d_document.data.Remove_Page(2);
        d_document.pages.erase(d_document.pages.begin() + 1);
        net->Record_Change(path);
        d_document.data.Remove_Page(1);
        d_document.pages.erase(d_document.pages.begin());
        net->Record_Change(path);
        setrlimit(RLIMIT_FSIZE, &limit);
        QFile file(path);
        if (net->Open_For_Saving(&file, 1, &d_other_version))
            Write_File(In("expected"), Support::Project_Of(d_document));
    });
    QCOMPARE(result.signal, SIGKILL);
    QCOMPARE(Support::Byte_Difference(Only_Log(), Read_File(In("expected"))), QString());
}

void TestSafetyNet::everything_is_stored_before_an_overwritten_document_is_saved()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    Add_Pages();
    Save_And_Change(net.get(), path);
    Write_File(path, "overwritten");
    QFile file(path);
    QVERIFY(net->Open_For_Saving(&file, 1, &d_other_version));
    QCOMPARE(Difference(), QString());
    QCOMPARE(Read_File(d_other_version), QByteArray("overwritten"));
}

void TestSafetyNet::the_labels_of_an_overwritten_file_are_stored_with_the_next_sync()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    Add_Pages();
    Save_Document(net.get(), path);
    d_document.data.Change_Item_Value(1, 100);
    net->Record_Change(path);
    Write_File(path, "overwritten");
    net->Flush(path);
    const TFileContent content = ProjectFile::Read(Only_Log());
    QCOMPARE(content.pages.value().size(), size_t(3));
    for (const TFilePage& page : content.pages.value())
        QCOMPARE(page.items.size(), size_t(3));
}

void TestSafetyNet::a_saved_file_that_is_overwritten_is_stored_bit_by_bit()
{
    const auto net = Net();
    const QString path = In("a.quillet");
    Add_Pages();
    Save_And_Change(net.get(), path);
    Write_File(path, "overwritten");
    QVERIFY(!Difference().isEmpty());
    // A pause detects that the file was overwritten. Further changes store its content.
    net->Flush(path);
    QTRY_VERIFY((net->Record_Change(path), Difference().isEmpty()));
}

void TestSafetyNet::a_saved_file_that_cannot_be_protected_is_stored_bit_by_bit()
{
    QTemporaryDir elsewhere("/dev/shm/quillet-XXXXXX");
    QVERIFY(elsewhere.isValid());
    const auto net = Net();
    const QString path = elsewhere.filePath("a.quillet");
    Add_Pages();
    Save_And_Change(net.get(), path);
    QCOMPARE(Difference(), QString());
    QTRY_VERIFY((net->Record_Change(path),
                 Read_File(In("settings/recovery/" + Logs().first() + "-wal"))
                     .contains(d_document.data.Page(2).image.Source_Bytes().mid(0, 40))));
    QVERIFY(QFile::remove(path));
    QTRY_VERIFY((net->Record_Change(path), Difference().isEmpty()));
}

QTEST_MAIN(TestSafetyNet)
#include "test_safetynet.moc"
