// The folders of safety copies: notes and their locks, access rights, listing and cleaning up.

#include "core/safefile.h"
#include "src/safety/keptfiles.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

using Support::Entries;
using Support::Make_Old;
using Support::Mode;
using Support::Read_File;
using Support::Write_File;

class TestKeptFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_note_holds_the_last_path_written();
    void a_note_that_is_not_open_cannot_be_written();
    void a_note_is_accessible_to_its_owner_only_data();
    void a_note_is_accessible_to_its_owner_only();
    void an_existing_note_is_reused_or_refused();
    void a_link_in_place_of_a_note_is_refused();
    void a_locked_note_cannot_be_opened();
    void a_note_is_unlocked_by_close_destructor_and_the_next_open();
    void closing_a_closed_note_is_a_no_op();
    void a_note_is_unlocked_when_its_process_is_killed();
    void a_started_program_does_not_inherit_the_lock();

    void the_folder_is_created_for_its_owner();
    void the_mode_of_an_existing_folder_is_corrected_data();
    void the_mode_of_an_existing_folder_is_corrected();
    void a_folder_behind_a_link_is_refused_data();
    void a_folder_behind_a_link_is_refused();
    void a_folder_that_cannot_be_created_is_refused();
    void copy_and_note_share_a_name();
    void removing_deletes_one_copy_and_its_note();
    void links_of_all_files_in_the_folder_are_counted();
    void the_list_has_all_copies_newest_first();
    void a_copy_without_a_note_has_no_document();
    void only_project_files_are_listed();
    void a_folder_that_does_not_exist_has_no_copies();
    void the_number_of_missing_images_is_listed();
    void the_stamp_of_the_document_is_listed();
    void a_document_has_changed_if_it_has_another_stamp();
    void files_of_running_processes_are_not_abandoned();
    void the_time_of_a_log_is_that_of_its_last_change();
    void only_abandoned_copies_of_the_folder_can_be_removed();
    void a_log_is_not_listed_beside_a_copy_of_which_images_are_missing();
    void removing_a_log_leaves_the_copy();
    void stale_files_are_deleted_data();
    void stale_files_are_deleted();
    void locked_files_are_not_deleted();
    void files_directly_in_the_folder_are_contained();
    void a_file_is_free_unless_it_is_locked();
    void locks_work_without_standard_input();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Path() const { return In("settings/kept"); }
    TKeptFolder Folder() const { return TKeptFolder(Path()); }
    void Add_Copy(const QString& name, const QByteArray& document, int age) const;

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestKeptFiles::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(d_folder->path()).mkpath("settings/kept"));
}

void TestKeptFiles::cleanup()
{
    d_folder.reset();
}

/// @param age  in seconds.
void TestKeptFiles::Add_Copy(const QString& name, const QByteArray& document, int age) const
{
    Write_File(Folder().Copy_Path(name), Support::Empty_Project());
    Write_File(Folder().Note_Path(name), document);
    Make_Old(Folder().Copy_Path(name), age);
    Make_Old(Folder().Note_Path(name), age);
}

void TestKeptFiles::a_note_holds_the_last_path_written()
{
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    for (const QString& document :
         {QString("/a/longer/path.quillet"), QString::fromUtf8("/\xc3\xa4.quillet"), QString()}) {
        QVERIFY(note.Write({document}));
        QCOMPARE(Read_File(In("a.note")), document.toUtf8());
    }
}

void TestKeptFiles::a_note_that_is_not_open_cannot_be_written()
{
    TKeptNote note;
    QVERIFY(!note.Write({"/a"}));
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    note.Close();
    QVERIFY(!note.Write({"/a"}));
    QCOMPARE(Read_File(In("a.note")), QByteArray());
}

void TestKeptFiles::a_note_is_accessible_to_its_owner_only_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<bool>("exists");
    QTest::newRow("new, empty umask") << 0 << false;
    QTest::newRow("new, full umask") << 0777 << false;
    QTest::newRow("existing") << 022 << true;
}

void TestKeptFiles::a_note_is_accessible_to_its_owner_only()
{
    QFETCH(int, mask);
    QFETCH(bool, exists);
    if (exists) {
        Write_File(In("a.note"), "/a");
        QVERIFY(QFile::setPermissions(In("a.note"), QFile::Permissions(0x6644)));
    }
    const mode_t before = umask(static_cast<mode_t>(mask));
    TKeptNote note;
    const bool opened = note.Open(In("a.note"), TKeptNote::TExisting::Reuse);
    umask(before);
    QVERIFY(opened);
    QCOMPARE(Mode(In("a.note")), QString("600"));
}

void TestKeptFiles::an_existing_note_is_reused_or_refused()
{
    Write_File(In("a.note"), "/a");
    TKeptNote note;
    QVERIFY(!note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Reuse));
    QCOMPARE(Read_File(In("a.note")), QByteArray("/a"));
    QVERIFY(note.Write({"/b"}));
    QCOMPARE(Read_File(In("a.note")), QByteArray("/b"));
}

void TestKeptFiles::a_link_in_place_of_a_note_is_refused()
{
    Write_File(In("other"), "content");
    const QString mode = Mode(In("other"));
    QVERIFY(QFile::link(In("other"), In("a.note")));
    QVERIFY(QFile::link(In("missing"), In("b.note")));
    for (const char* const name : {"a.note", "b.note"}) {
        for (const auto existing : {TKeptNote::TExisting::Reuse, TKeptNote::TExisting::Refuse})
            QVERIFY(!TKeptNote().Open(In(name), existing));
    }
    QCOMPARE(Read_File(In("other")), QByteArray("content"));
    QCOMPARE(Mode(In("other")), mode);
    QVERIFY(!QFile::exists(In("missing")));
}

void TestKeptFiles::a_locked_note_cannot_be_opened()
{
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    TKeptNote other;
    QVERIFY(!other.Open(In("a.note"), TKeptNote::TExisting::Reuse));
    QVERIFY(!other.Write({"/b"}));
    QVERIFY(note.Write({"/a"}));
}

void TestKeptFiles::a_note_is_unlocked_by_close_destructor_and_the_next_open()
{
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Reuse));
    note.Close();
    QVERIFY(TKeptFolder::Is_Free(In("a.note")));
    {
        TKeptNote other;
        QVERIFY(other.Open(In("a.note"), TKeptNote::TExisting::Reuse));
        QVERIFY(!TKeptFolder::Is_Free(In("a.note")));
    }
    QVERIFY(TKeptFolder::Is_Free(In("a.note")));
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Reuse));
    QVERIFY(note.Open(In("b.note"), TKeptNote::TExisting::Reuse));
    QVERIFY(TKeptFolder::Is_Free(In("a.note")));
}

void TestKeptFiles::closing_a_closed_note_is_a_no_op()
{
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    note.Close();
    // The kernel gives this file the descriptor that the note had.
    QFile file(In("file"));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    note.Close();
    QCOMPARE(file.write("content"), qint64(7));
}

void TestKeptFiles::a_note_is_unlocked_when_its_process_is_killed()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TKeptNote note;
        if (note.Open(In("a.note"), TKeptNote::TExisting::Refuse))
            kill(getpid(), SIGKILL);
        return 1;
    });
    QCOMPARE(result.signal, SIGKILL);
    QVERIFY(TKeptNote().Open(In("a.note"), TKeptNote::TExisting::Reuse));
}

void TestKeptFiles::a_started_program_does_not_inherit_the_lock()
{
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    QProcess program;
    program.start("/bin/sleep", {"100"});
    QVERIFY(program.waitForStarted());
    note.Close();
    const bool is_free = TKeptFolder::Is_Free(In("a.note"));
    program.kill();
    QVERIFY(program.waitForFinished());
    QVERIFY(is_free);
}

void TestKeptFiles::the_folder_is_created_for_its_owner()
{
    QVERIFY(QDir().rmdir(Path()));
    const mode_t before = umask(0777);
    const bool prepared = Folder().Prepare();
    umask(before);
    QVERIFY(prepared);
    QCOMPARE(Mode(Path()), QString("700"));
}

void TestKeptFiles::the_mode_of_an_existing_folder_is_corrected_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("readable by all") << 0755;
    QTest::newRow("sticky") << 01700;
    QTest::newRow("read-only") << 0500;
}

void TestKeptFiles::the_mode_of_an_existing_folder_is_corrected()
{
    QFETCH(int, mode);
    QCOMPARE(chmod(QFile::encodeName(Path()).constData(), static_cast<mode_t>(mode)), 0);
    QVERIFY(Folder().Prepare());
    QCOMPARE(Mode(Path()), QString("700"));
}

void TestKeptFiles::a_folder_behind_a_link_is_refused_data()
{
    QTest::addColumn<QString>("link");
    QTest::newRow("folder") << "settings/kept";
    QTest::newRow("parent") << "settings";
}

void TestKeptFiles::a_folder_behind_a_link_is_refused()
{
    QFETCH(QString, link);
    QVERIFY(QDir(d_folder->path()).mkpath("other/kept"));
    QCOMPARE(chmod(QFile::encodeName(In("other")).constData(), 0755), 0);
    QVERIFY(QDir(In(link)).removeRecursively());
    QVERIFY(QFile::link(In("other"), In(link)));
    QVERIFY(!Folder().Prepare());
    QCOMPARE(Mode(In("other")), QString("755"));
}

void TestKeptFiles::a_folder_that_cannot_be_created_is_refused()
{
    QVERIFY(!TKeptFolder(Path() + "/missing/kept").Prepare());
    QVERIFY(!QFile::exists(Path() + "/missing"));
    Write_File(In("file"), "content");
    QVERIFY(!TKeptFolder(In("file")).Prepare());
    QCOMPARE(Read_File(In("file")), QByteArray("content"));
}

void TestKeptFiles::copy_and_note_share_a_name()
{
    for (const QString& name : {QString("20240229-101500"), QString("a.b")}) {
        QCOMPARE(Folder().Copy_Path(name), Path() + '/' + name + ".quillet");
        QCOMPARE(Folder().Note_Path(name), Path() + '/' + name + ".note");
        QCOMPARE(TKeptFolder::Name_Of(Folder().Copy_Path(name)), name);
    }
}

void TestKeptFiles::removing_deletes_one_copy_and_its_note()
{
    Add_Copy("a", "/a", 0);
    Add_Copy("b", "/b", 0);
    Folder().Remove("a");
    QCOMPARE(Entries(Path()), QStringList({"b.note", "b.quillet"}));
}

void TestKeptFiles::links_of_all_files_in_the_folder_are_counted()
{
    const TKeptFolder folder(In("kept"));
    QVERIFY(folder.Prepare());
    Write_File(In("file"), "content");
    Write_File(In("kept/other.quillet"), "content");
    const auto links = [this, &folder] {
        struct stat state = {};
        lstat(QFile::encodeName(In("file")).constData(), &state);
        return folder.Links_To(state);
    };
    QCOMPARE(links(), 0);
    int count = 0;
    for (const char* const name : {"a.quillet", "b.base", ".quillet-abcdef"}) {
        QVERIFY(link(QFile::encodeName(In("file")).constData(),
                     QFile::encodeName(In("kept/") + name).constData()) == 0);
        QCOMPARE(links(), ++count);
    }
    QVERIFY(link(QFile::encodeName(In("file")).constData(),
                 QFile::encodeName(In("elsewhere")).constData()) == 0);
    QCOMPARE(links(), count);
}

void TestKeptFiles::the_list_has_all_copies_newest_first()
{
    Add_Copy("old", "/x", 300);
    Add_Copy("new", QByteArray("/\xc3\xa4"), 100);
    Add_Copy("middle", "", 200);
    const std::vector<TKeptFile> list = Folder().List();
    QCOMPARE(list.size(), size_t(3));
    const QStringList names = {"new", "middle", "old"};
    const QStringList documents = {QString::fromUtf8("/\xc3\xa4"), QString(), "/x"};
    for (int i = 0; i < 3; ++i) {
        const TKeptFile& file = list[static_cast<size_t>(i)];
        QCOMPARE(file.path, Folder().Copy_Path(names.at(i)));
        QCOMPARE(file.document, documents.at(i));
        QCOMPARE(file.time, QFileInfo(file.path).lastModified());
        QCOMPARE(file.size, qint64(Support::Empty_Project().size()));
    }
}

void TestKeptFiles::a_copy_without_a_note_has_no_document()
{
    Write_File(Folder().Copy_Path("a"), Support::Empty_Project());
    const std::vector<TKeptFile> list = Folder().List();
    QCOMPARE(list.size(), size_t(1));
    QCOMPARE(list.front().document, QString());
}

void TestKeptFiles::only_project_files_are_listed()
{
    Write_File(Path() + "/alone.note", "/a");
    Write_File(Path() + "/.quillet-abc123", "unfinished");
    Write_File(Path() + "/a.txt", "other");
    QVERIFY(QDir(Path()).mkdir("folder.quillet"));
    QVERIFY(Folder().List().empty());
}

void TestKeptFiles::a_folder_that_does_not_exist_has_no_copies()
{
    QVERIFY(QDir().rmdir(Path()));
    QVERIFY(Folder().List().empty());
    Folder().Clean_Up();
    QVERIFY(!QFile::exists(Path()));
}

void TestKeptFiles::the_number_of_missing_images_is_listed()
{
    for (const std::optional<int> number : {std::optional<int>(3), {0}, {}}) {
        Add_Copy("a", "", 0);
        TKeptNote note;
        QVERIFY(note.Open(Folder().Note_Path("a"), TKeptNote::TExisting::Reuse));
        QVERIFY(note.Write({"/document"}, number));
        QCOMPARE(Folder().List().front().missing_images, number.value_or(0));
        QCOMPARE(Folder().List().front().document, QString("/document"));
    }
    QCOMPARE(Read_File(Folder().Note_Path("a")), QByteArray("/document"));
}

void TestKeptFiles::the_stamp_of_the_document_is_listed()
{
    Add_Copy("a", "", 0);
    TKeptNote note;
    QVERIFY(note.Open(Folder().Note_Path("a"), TKeptNote::TExisting::Reuse));
    const TFileStamp stamp = {123, 4567890123, 987654321};
    for (const std::optional<int> number : {std::optional<int>(3), {}}) {
        QVERIFY(note.Write({"/document", stamp}, number));
        const TKeptFile file = Folder().List().front();
        QCOMPARE(file.document, QString("/document"));
        QCOMPARE(file.missing_images, number.value_or(0));
        QVERIFY(file.document_stamp == stamp);
    }
    QVERIFY(note.Write({"/document"}));
    QVERIFY(!Folder().List().front().document_stamp.Exists());
}

void TestKeptFiles::a_document_has_changed_if_it_has_another_stamp()
{
    const QString document = In("a.quillet");
    Write_File(document, "version one");
    TKeptFile file;
    file.document = document;
    QVERIFY(!file.Is_Document_Changed()); // nothing is known
    file.document_stamp = TFileStamp::Of(document);
    QVERIFY(!file.Is_Document_Changed());
    Write_File(document, "longer version two");
    QVERIFY(file.Is_Document_Changed());
    QVERIFY(QFile::remove(document));
    QVERIFY(!file.Is_Document_Changed());
}

void TestKeptFiles::files_of_running_processes_are_not_abandoned()
{
    for (const char* const name : {"one", "two"}) {
        Add_Copy(name, "/a", 0);
        Write_File(Folder().Log_Path(name), "log");
    }
    QCOMPARE(Folder().Abandoned_Copies().size(), size_t(2));
    QCOMPARE(Folder().Abandoned_Logs().size(), size_t(2));
    TKeptNote note;
    QVERIFY(note.Open(Folder().Note_Path("one"), TKeptNote::TExisting::Reuse));
    QCOMPARE(Folder().Abandoned_Copies().size(), size_t(1));
    QCOMPARE(Folder().Abandoned_Logs().size(), size_t(1));
    QCOMPARE(Folder().Abandoned_Logs().front().path, Folder().Log_Path("two"));
    QCOMPARE(Folder().Abandoned_Logs().front().document, QString("/a"));
}

void TestKeptFiles::the_time_of_a_log_is_that_of_its_last_change()
{
    Write_File(Folder().Log_Path("a"), "log");
    Make_Old(Folder().Log_Path("a"), 100);
    Write_File(Folder().Log_Path("a") + "-wal", "last change");
    const TKeptFile log = Folder().Abandoned_Logs().front();
    QCOMPARE(log.time, QFileInfo(Folder().Log_Path("a") + "-wal").lastModified());
    QCOMPARE(log.size, qint64(qstrlen("log") + qstrlen("last change")));
}

void TestKeptFiles::only_abandoned_copies_of_the_folder_can_be_removed()
{
    Add_Copy("one", "/a", 0);
    Add_Copy("two", "/a", 0);
    const QString path = Folder().Copy_Path("one");
    // A user's copy of the file has the same name.
    const QString same_name = In("one.quillet");
    QVERIFY(QFile::copy(path, same_name));
    const QStringList before = Entries(Path());
    Folder().Remove_Abandoned(same_name);
    Folder().Remove_Abandoned(QString());
    TKeptNote note;
    QVERIFY(note.Open(Folder().Note_Path("one"), TKeptNote::TExisting::Reuse));
    Folder().Remove_Abandoned(path);
    QCOMPARE(Entries(Path()), before);
    note.Close();
    Folder().Remove_Abandoned(Path() + "/../kept/one.quillet");
    QCOMPARE(Entries(Path()), QStringList({"two.note", "two.quillet"}));
    QVERIFY(QFile::exists(same_name));
}

void TestKeptFiles::a_log_is_not_listed_beside_a_copy_of_which_images_are_missing()
{
    const QByteArray note = QByteArrayLiteral("/a\0") + "2";
    Add_Copy("a", note, 0);
    QVERIFY(!Folder().Has_Log_To_Convert("a"));
    Write_File(Folder().Log_Path("a"), "log");
    QVERIFY(Folder().Abandoned_Logs().empty());
    Write_File(Folder().Note_Path("a"), "/a");
    QCOMPARE(Folder().Abandoned_Logs().size(), size_t(1));
    Write_File(Folder().Note_Path("a"), note);
    QVERIFY(QFile::remove(Folder().Copy_Path("a")));
    QCOMPARE(Folder().Abandoned_Logs().size(), size_t(1));
}

void TestKeptFiles::removing_a_log_leaves_the_copy()
{
    Add_Copy("a", "/a", 0);
    const QStringList copy = Entries(Path());
    for (const char* const suffix : {".log", ".log-wal", ".base"})
        Write_File(Path() + "/a" + suffix, "log");
    Folder().Remove_Log("a");
    QCOMPARE(Entries(Path()), copy);
    Write_File(Folder().Log_Path("a"), "log");
    Folder().Remove("a");
    QCOMPARE(Entries(Path()), QStringList());
}

void TestKeptFiles::stale_files_are_deleted_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("age");
    QTest::addColumn<bool>("deleted");
    constexpr int recent = 50;
    constexpr int stale = 65;
    QTest::newRow("stale unfinished file") << ".quillet-abc123" << stale << true;
    QTest::newRow("recent unfinished file") << ".quillet-abc123" << recent << false;
    QTest::newRow("unfinished file of the future") << ".quillet-abc123" << -stale << false;
    QTest::newRow("stale note without a copy") << "alone.note" << stale << true;
    QTest::newRow("recent note without a copy") << "alone.note" << recent << false;
    QTest::newRow("stale note of a copy") << "whole.note" << stale << false;
    QTest::newRow("stale copy") << "whole.quillet" << stale << false;
    QTest::newRow("stale log") << "logged.log" << stale << false;
    QTest::newRow("stale note of a log") << "logged.note" << stale << false;
    QTest::newRow("stale tail of a log") << "logged.log-wal" << stale << false;
    QTest::newRow("stale base of a log") << "logged.base" << stale << false;
    QTest::newRow("stale tail without a log") << "alone.log-wal" << stale << true;
    QTest::newRow("stale base without a log") << "alone.base" << stale << true;
    QTest::newRow("stale base beside a copy") << "whole.base" << stale << true;
    QTest::newRow("recent base without a log") << "alone.base" << recent << false;
    QTest::newRow("other stale file") << "quillet-abc123" << stale << false;
}

void TestKeptFiles::stale_files_are_deleted()
{
    QFETCH(QString, name);
    QFETCH(int, age);
    QFETCH(bool, deleted);
    Add_Copy("whole", "/a", 0);
    Write_File(Path() + "/logged.log", "content");
    Write_File(Path() + '/' + name, "content");
    Make_Old(Path() + '/' + name, age);
    QStringList expected = Entries(Path());
    if (deleted)
        expected.removeOne(name);
    Folder().Clean_Up();
    QCOMPARE(Entries(Path()), expected);
}

void TestKeptFiles::locked_files_are_not_deleted()
{
    TKeptNote note;
    QVERIFY(note.Open(Folder().Note_Path("a"), TKeptNote::TExisting::Refuse));
    TSafeFile unfinished(Folder().Copy_Path("a"), TSafeFile::TKind::Private);
    QVERIFY(unfinished.Is_Beside());
    Make_Old(Folder().Note_Path("a"), 3600);
    Make_Old(unfinished.Path_To_Write(), 3600);
    const QStringList files = Entries(Path());
    QCOMPARE(files.size(), 2);
    Folder().Clean_Up();
    QCOMPARE(Entries(Path()), files);
}

void TestKeptFiles::files_directly_in_the_folder_are_contained()
{
    QVERIFY(QFile::link(Path(), In("link")));
    QVERIFY(QDir(Path()).mkdir("deeper"));
    QVERIFY(Folder().Contains(Path() + "/a"));
    QVERIFY(Folder().Contains(Path() + "/../kept/a"));
    QVERIFY(Folder().Contains(In("link/a")));
    QVERIFY(!Folder().Contains(Path() + "/deeper/a"));
    QVERIFY(!Folder().Contains(Path()));
    QVERIFY(!Folder().Contains(In("settings/a")));
    QVERIFY(!TKeptFolder(In("missing")).Contains(In("missing/a")));
}

void TestKeptFiles::a_file_is_free_unless_it_is_locked()
{
    QVERIFY(TKeptFolder::Is_Free(In("missing")));
    QVERIFY(!QFile::exists(In("missing")));
    TKeptNote note;
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Refuse));
    QVERIFY(!TKeptFolder::Is_Free(In("a.note")));
    note.Close();
    // The check itself leaves no lock behind.
    QVERIFY(TKeptFolder::Is_Free(In("a.note")));
    QVERIFY(note.Open(In("a.note"), TKeptNote::TExisting::Reuse));
}

/// The lowest descriptor is 0 then.
void TestKeptFiles::locks_work_without_standard_input()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TKeptNote held;
        if (!held.Open(In("held.note"), TKeptNote::TExisting::Refuse))
            return 1;
        close(STDIN_FILENO);
        if (TKeptFolder::Is_Free(In("held.note")))
            return 2;
        TKeptNote note;
        if (!note.Open(In("a.note"), TKeptNote::TExisting::Refuse))
            return 3;
        note.Close();
        return TKeptFolder::Is_Free(In("a.note")) ? 0 : 4;
    });
    QCOMPARE(result.exit_code, 0);
}

QTEST_MAIN(TestKeptFiles)
#include "test_keptfiles.moc"
