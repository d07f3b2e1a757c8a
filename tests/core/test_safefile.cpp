// Files that replace others only when they are complete.

#include "core/safefile.h"
#include "core/unfinishedfile.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <memory>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using Support::Entries;
using Support::Mode;
using Support::Read_File;
using Support::Write_File;

namespace {

bool Accept(const QString&)
{
    return true;
}

bool Refuse(const QString&)
{
    return false;
}

/// Sets the umask and restores it at the end of the scope.
class TMask
{
public:
    explicit TMask(mode_t mask)
        : d_before(umask(mask))
    {
    }
    ~TMask() { umask(d_before); }
    Q_DISABLE_COPY(TMask)

private:
    mode_t d_before;
};

} // namespace

class TestSafeFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_old_file_stays_until_the_new_one_is_complete();
    void an_uncommitted_file_is_removed();
    void an_incomplete_file_does_not_replace_the_old_one();
    void a_replaced_file_keeps_its_permissions();
    void a_new_file_gets_the_permissions_of_the_umask_data();
    void a_new_file_gets_the_permissions_of_the_umask();
    void the_umask_does_not_change();
    void a_private_file_has_mode_0600_with_any_umask_data();
    void a_private_file_has_mode_0600_with_any_umask();
    void a_link_is_followed();
    void a_link_to_a_missing_file_creates_that_file();
    void a_file_with_two_hard_links_keeps_both();
    void an_extra_link_keeps_the_old_content();
    void a_file_with_more_hard_links_than_extra_links_keeps_all();
    void a_file_of_another_user_keeps_its_owner_data();
    void a_file_of_another_user_keeps_its_owner();
    void a_file_that_appears_can_be_kept();
    void the_problem_of_a_failed_write_is_that_of_the_system();
    void there_is_no_problem_if_the_file_can_be_written();
    void a_failed_overwrite_leaves_the_complete_new_file_data();
    void a_failed_overwrite_leaves_the_complete_new_file();
    void a_signal_while_overwriting_leaves_the_complete_new_file_and_names_it();
    void existing_files_named_like_the_new_one_stay();
    void the_visible_file_has_a_number_up_to_100_data();
    void the_visible_file_has_a_number_up_to_100();
    void without_a_visible_name_the_target_is_not_overwritten();
    void a_private_file_replaces_only_one_of_two_hard_links();
    void an_unfinished_file_is_locked();
    void a_target_that_became_a_folder_fails_the_commit_data();
    void a_target_that_became_a_folder_fails_the_commit();
    void in_a_write_protected_folder_the_target_is_written_directly();
    void a_private_file_is_never_written_directly();
    void a_write_protected_target_is_refused();
    void a_missing_folder_is_not_created();
    void a_failed_write_leaves_the_old_file();
    void a_copy_has_the_content_of_its_source_data();
    void a_copy_has_the_content_of_its_source();
    void a_copy_of_a_missing_file_fails();
    void a_short_copy_fails();
    void a_copy_is_never_written_directly();
    void a_committed_file_is_unlocked();
    void a_complete_file_has_the_right_size_and_end_data();
    void a_complete_file_has_the_right_size_and_end();
    void only_existing_files_can_be_synced();
    void a_device_needs_no_sync();
    void a_file_is_synced_even_without_standard_input();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    void Write_File_With_Two_Hard_Links(const QString& name) const;

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestSafeFile::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(d_folder->isValid());
}

void TestSafeFile::cleanup()
{
    d_folder.reset();
}

void TestSafeFile::the_old_file_stays_until_the_new_one_is_complete()
{
    Write_File(In("file"), "old");
    TSafeFile file(In("file"));
    QVERIFY(file.Is_Beside());
    QCOMPARE(QFileInfo(file.Path_To_Write()).path(), d_folder->path());
    QCOMPARE(QFileInfo(file.Path_To_Write()).size(), 0);
    Write_File(file.Path_To_Write(), "new");
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
    QVERIFY(file.Commit(Accept));
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
    QCOMPARE(Entries(d_folder->path()), QStringList{"file"});
}

void TestSafeFile::an_uncommitted_file_is_removed()
{
    Write_File(In("file"), "old");
    {
        TSafeFile file(In("file"));
        Write_File(file.Path_To_Write(), "new");
        QCOMPARE(Entries(d_folder->path()).size(), 2);
    }
    QCOMPARE(Entries(d_folder->path()), QStringList{"file"});
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
}

void TestSafeFile::an_incomplete_file_does_not_replace_the_old_one()
{
    Write_File(In("file"), "old");
    TSafeFile file(In("file"));
    Write_File(file.Path_To_Write(), "ne");
    QVERIFY(!file.Commit(Refuse));
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
}

void TestSafeFile::a_replaced_file_keeps_its_permissions()
{
    Write_File(In("file"), "old");
    QVERIFY(chmod(QFile::encodeName(In("file")).constData(), 0640) == 0);
    QVERIFY(TSafeFile::Replace(In("file"), "new"));
    QCOMPARE(Mode(In("file")), QString("640"));
}

void TestSafeFile::a_new_file_gets_the_permissions_of_the_umask_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<QString>("mode");
    QTest::newRow("none") << 0 << "666";
    QTest::newRow("usual") << 022 << "644";
    QTest::newRow("for the group") << 027 << "640";
}

void TestSafeFile::a_new_file_gets_the_permissions_of_the_umask()
{
    QFETCH(int, mask);
    const TMask set(static_cast<mode_t>(mask));
    QVERIFY(TSafeFile::Replace(In("file"), "new"));
    QTEST(Mode(In("file")), "mode");
}

void TestSafeFile::the_umask_does_not_change()
{
    const TMask mask(027);
    QVERIFY(TSafeFile::Replace(In("file"), "new"));
    const mode_t after = umask(027);
    QCOMPARE(after, mode_t{027});
}

void TestSafeFile::a_private_file_has_mode_0600_with_any_umask_data()
{
    QTest::addColumn<int>("mask");
    QTest::newRow("none") << 0;
    QTest::newRow("usual") << 022;
    QTest::newRow("all") << 0777;
}

void TestSafeFile::a_private_file_has_mode_0600_with_any_umask()
{
    QFETCH(int, mask);
    Write_File(In("file"), "old");
    QVERIFY(chmod(QFile::encodeName(In("file")).constData(), 0666) == 0);
    const TMask set(static_cast<mode_t>(mask));
    TSafeFile file(In("file"), TSafeFile::TKind::Private);
    QCOMPARE(Mode(file.Path_To_Write()), QString("600"));
    Write_File(file.Path_To_Write(), "new");
    QVERIFY(file.Commit(Accept));
    QCOMPARE(Mode(In("file")), QString("600"));
}

void TestSafeFile::a_link_is_followed()
{
    Write_File(In("file"), "old");
    QVERIFY(QFile::link(In("file"), In("link")));
    QVERIFY(TSafeFile::Replace(In("link"), "new"));
    QVERIFY(QFileInfo(In("link")).isSymLink());
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
}

void TestSafeFile::a_link_to_a_missing_file_creates_that_file()
{
    QVERIFY(QFile::link(QStringLiteral("file"), In("link")));
    QVERIFY(TSafeFile::Replace(In("link"), "new"));
    QVERIFY(QFileInfo(In("link")).isSymLink());
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
    QCOMPARE(Entries(d_folder->path()), QStringList({"file", "link"}));
}

void TestSafeFile::a_file_with_two_hard_links_keeps_both()
{
    Write_File_With_Two_Hard_Links("one");
    QVERIFY(TSafeFile::Replace(In("one"), "new"));
    QCOMPARE(Read_File(In("two")), QByteArray("new"));
    QCOMPARE(Entries(d_folder->path()), QStringList({"one", "two"}));
}

void TestSafeFile::an_extra_link_keeps_the_old_content()
{
    Write_File_With_Two_Hard_Links("one");
    QVERIFY(TSafeFile::Replace(In("one"), "new", 1));
    QCOMPARE(Read_File(In("one")), QByteArray("new"));
    QCOMPARE(Read_File(In("two")), QByteArray("old and long"));
}

void TestSafeFile::a_file_with_more_hard_links_than_extra_links_keeps_all()
{
    Write_File_With_Two_Hard_Links("one");
    QVERIFY(link(QFile::encodeName(In("one")).constData(),
                 QFile::encodeName(In("three")).constData()) == 0);
    QVERIFY(TSafeFile::Replace(In("one"), "new", 1));
    QCOMPARE(Read_File(In("two")), QByteArray("new"));
    QCOMPARE(Read_File(In("three")), QByteArray("new"));
}

/// Writes a file that has two hard links: the given name and "two".
void TestSafeFile::Write_File_With_Two_Hard_Links(const QString& name) const
{
    Write_File(In(name), "old and long");
    QVERIFY(link(QFile::encodeName(In(name)).constData(),
                 QFile::encodeName(In("two")).constData()) == 0);
}

void TestSafeFile::a_file_of_another_user_keeps_its_owner_data()
{
    QTest::addColumn<int>("folder_mode");
    QTest::newRow("ordinary folder") << 0777;
    QTest::newRow("sticky folder") << 01777;
}

void TestSafeFile::a_file_of_another_user_keeps_its_owner()
{
    // Only root can change the owner of a file.
    QFETCH(int, folder_mode);
    const uid_t other_user = geteuid() == 0 ? 12345 : geteuid();
    Write_File(In("file"), "old and long");
    const QByteArray path = QFile::encodeName(In("file"));
    QVERIFY(chown(path.constData(), other_user, static_cast<gid_t>(-1)) == 0);
    QVERIFY(chmod(QFile::encodeName(d_folder->path()).constData(),
                  static_cast<mode_t>(folder_mode)) == 0);
    QVERIFY(TSafeFile::Replace(In("file"), "new"));
    struct stat state = {};
    QVERIFY(stat(path.constData(), &state) == 0);
    QCOMPARE(state.st_uid, other_user);
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
    QCOMPARE(Entries(d_folder->path()), QStringList{"file"});
}

void TestSafeFile::a_failed_overwrite_leaves_the_complete_new_file_data()
{
    QTest::addColumn<bool>("has_other_owner");
    QTest::newRow("two names") << false;
    if (geteuid() == 0)
        QTest::newRow("another owner") << true;
}

void TestSafeFile::a_failed_overwrite_leaves_the_complete_new_file()
{
    QFETCH(bool, has_other_owner);
    constexpr uid_t other_user = 12345;
    Write_File(In("file"), "old");
    if (has_other_owner)
        QVERIFY(chown(QFile::encodeName(In("file")).constData(), other_user, other_user) == 0);
    else
        Write_File_With_Two_Hard_Links("file");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        // The message goes to standard error.
        qInstallMessageHandler(nullptr);
        TSafeFile file(In("file"));
        Write_File(file.Path_To_Write(), QByteArray(2000, 'n'));
        return file.Commit([](const QString&) {
            Support::Limit_File_Size(1000);
            return true;
        })
                   ? 1
                   : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("file.new")), QByteArray(2000, 'n'));
    QVERIFY2(result.error_output.contains(QFile::encodeName(In("file.new"))),
             result.error_output.constData());
    QVERIFY(!Entries(d_folder->path()).first().startsWith('.'));
}

void TestSafeFile::a_signal_while_overwriting_leaves_the_complete_new_file_and_names_it()
{
    Write_File_With_Two_Hard_Links("file");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TUnfinishedFile::Handle_Signals();
        TSafeFile file(In("file"));
        Write_File(file.Path_To_Write(), QByteArray(2000, 'n'));
        return file.Commit([](const QString&) {
            // The first byte beyond the limit raises SIGXFSZ.
            std::signal(SIGXFSZ, [](int) { raise(SIGTERM); });
            const rlimit limit = {1000, 1000};
            setrlimit(RLIMIT_FSIZE, &limit);
            return true;
        })
                   ? 1
                   : 0;
    });
    QCOMPARE(result.signal, SIGTERM);
    QCOMPARE(Entries(d_folder->path()), QStringList({"file", "file.new", "two"}));
    QCOMPARE(Read_File(In("file.new")), QByteArray(2000, 'n'));
    // The message is the same as after a failure.
    QCOMPARE(QString::fromUtf8(result.error_output),
             QString("%1: '%2' is incomplete; the complete new version is in '%3'\n")
                 .arg(QCoreApplication::applicationName(), In("file"), In("file.new")));
}

void TestSafeFile::existing_files_named_like_the_new_one_stay()
{
    Write_File_With_Two_Hard_Links("file");
    for (const char* const name : {"file.new", "file.new-2"})
        Write_File(In(name), "of the user");
    QVERIFY(TSafeFile::Replace(In("file"), "new"));
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
    for (const char* const name : {"file.new", "file.new-2"})
        QCOMPARE(Read_File(In(name)), QByteArray("of the user"));
    QCOMPARE(Entries(d_folder->path()).size(), 4);
}

void TestSafeFile::the_visible_file_has_a_number_up_to_100_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("is_replaced");
    QTest::newRow("the last one is unused") << 99 << true;
    QTest::newRow("all are used") << 100 << false;
}

void TestSafeFile::the_visible_file_has_a_number_up_to_100()
{
    QFETCH(int, count);
    QFETCH(bool, is_replaced);
    Write_File_With_Two_Hard_Links("file");
    Write_File(In("file.new"), "of the user");
    for (int number = 2; number <= count; ++number)
        Write_File(In("file.new-" + QString::number(number)), "of the user");
    QCOMPARE(TSafeFile::Replace(In("file"), "new"), is_replaced);
    QCOMPARE(Read_File(In("two")), QByteArray(is_replaced ? "new" : "old and long"));
    QCOMPARE(Entries(d_folder->path()).size(), count + 2);
}

void TestSafeFile::without_a_visible_name_the_target_is_not_overwritten()
{
    // With a suffix it would exceed the 255 bytes of a file name.
    const QString longest(254, 'n');
    Write_File_With_Two_Hard_Links(longest);
    QVERIFY(!TSafeFile::Replace(In(longest), "new"));
    QCOMPARE(Read_File(In("two")), QByteArray("old and long"));
    QCOMPARE(Entries(d_folder->path()).size(), 2);
}

void TestSafeFile::a_private_file_replaces_only_one_of_two_hard_links()
{
    Write_File(In("one"), "old");
    QVERIFY(link(QFile::encodeName(In("one")).constData(),
                 QFile::encodeName(In("two")).constData()) == 0);
    TSafeFile file(In("one"), TSafeFile::TKind::Private);
    Write_File(file.Path_To_Write(), "new");
    QVERIFY(file.Commit(Accept));
    QCOMPARE(Read_File(In("one")), QByteArray("new"));
    QCOMPARE(Read_File(In("two")), QByteArray("old"));
}

void TestSafeFile::an_unfinished_file_is_locked()
{
    const TSafeFile file(In("file"));
    QFile unfinished(file.Path_To_Write());
    QVERIFY(unfinished.open(QIODevice::ReadOnly));
    QVERIFY(flock(unfinished.handle(), LOCK_SH | LOCK_NB) != 0);
}

void TestSafeFile::a_target_that_became_a_folder_fails_the_commit_data()
{
    QTest::addColumn<bool>("is_private");
    QTest::newRow("like the target") << false;
    QTest::newRow("private") << true;
}

void TestSafeFile::a_target_that_became_a_folder_fails_the_commit()
{
    QFETCH(bool, is_private);
    TSafeFile file(In("file"),
                   is_private ? TSafeFile::TKind::Private : TSafeFile::TKind::Like_Target);
    Write_File(file.Path_To_Write(), "new");
    QVERIFY(QDir().mkdir(In("file")));
    QVERIFY(!file.Commit(Accept));
    QVERIFY(QFileInfo(In("file")).isDir());
}

void TestSafeFile::in_a_write_protected_folder_the_target_is_written_directly()
{
    Write_File(In("file"), "old");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        chmod(QFile::encodeName(d_folder->path()).constData(), 0500);
        Support::Obey_File_Permissions();
        const bool is_direct = !TSafeFile(In("file")).Is_Beside();
        return is_direct && TSafeFile::Replace(In("file"), "new") ? 0 : 1;
    });
    chmod(QFile::encodeName(d_folder->path()).constData(), 0700);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("file")), QByteArray("new"));
}

void TestSafeFile::a_private_file_is_never_written_directly()
{
    const QString folder_in_place = In("folder");
    QVERIFY(QDir().mkdir(folder_in_place));
    TSafeFile file(folder_in_place, TSafeFile::TKind::Private);
    QVERIFY(!file.Is_Beside());
    QVERIFY(!file.Commit(Accept));
}

void TestSafeFile::a_write_protected_target_is_refused()
{
    Write_File(In("file"), "old");
    chmod(QFile::encodeName(In("file")).constData(), 0400);
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Obey_File_Permissions();
        return TSafeFile::Replace(In("file"), "new") ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
}

void TestSafeFile::a_missing_folder_is_not_created()
{
    QVERIFY(!TSafeFile::Replace(In("missing/file"), "new"));
    QVERIFY(Entries(d_folder->path()).isEmpty());
}

void TestSafeFile::a_failed_write_leaves_the_old_file()
{
    Write_File(In("file"), "old");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(1000);
        return TSafeFile::Replace(In("file"), QByteArray(1001, 'n')) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
    QCOMPARE(Entries(d_folder->path()), QStringList{"file"});
}

void TestSafeFile::a_copy_has_the_content_of_its_source_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("empty") << 0;
    QTest::newRow("small") << 10;
    QTest::newRow("several blocks") << 3 * 1024 * 1024 + 7;
}

void TestSafeFile::a_copy_has_the_content_of_its_source()
{
    QFETCH(int, size);
    QByteArray content(size, 'c');
    for (int i = 0; i < size; i += 1000)
        content[i] = static_cast<char>(i / 1000);
    Write_File(In("source"), content);
    TSafeFile copy(In("copy"));
    QVERIFY(copy.Copy_From(In("source")));
    QVERIFY(copy.Commit(Accept));
    QVERIFY(Read_File(In("copy")) == content);
}

void TestSafeFile::a_copy_of_a_missing_file_fails()
{
    TSafeFile copy(In("copy"));
    QVERIFY(!copy.Copy_From(In("missing")));
}

void TestSafeFile::a_short_copy_fails()
{
    Write_File(In("source"), QByteArray(2000, 'c'));
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(1000);
        TSafeFile copy(In("copy"));
        return copy.Copy_From(In("source")) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestSafeFile::a_copy_is_never_written_directly()
{
    Write_File(In("source"), "new");
    Write_File(In("file"), "old");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        chmod(QFile::encodeName(d_folder->path()).constData(), 0500);
        Support::Obey_File_Permissions();
        TSafeFile copy(In("file"));
        return copy.Is_Beside() || copy.Copy_From(In("source")) ? 1 : 0;
    });
    chmod(QFile::encodeName(d_folder->path()).constData(), 0700);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("file")), QByteArray("old"));
}

void TestSafeFile::a_committed_file_is_unlocked()
{
    TSafeFile file(In("file"));
    Write_File(file.Path_To_Write(), "new");
    QVERIFY(file.Commit(Accept));
    QFile committed(In("file"));
    QVERIFY(committed.open(QIODevice::ReadOnly));
    QCOMPARE(flock(committed.handle(), LOCK_EX | LOCK_NB), 0);
}

void TestSafeFile::a_complete_file_has_the_right_size_and_end_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<bool>("complete");
    QTest::newRow("all right") << 6 << QByteArray("END") << true;
    QTest::newRow("any length") << -1 << QByteArray("END") << true;
    QTest::newRow("any end") << 6 << QByteArray() << true;
    QTest::newRow("too short") << 7 << QByteArray("END") << false;
    QTest::newRow("too long") << 5 << QByteArray("END") << false;
    QTest::newRow("not empty") << 0 << QByteArray() << false;
    QTest::newRow("other end") << 6 << QByteArray("EN") << false;
    QTest::newRow("end longer than the file") << -1 << QByteArray("0abcEND") << false;
}

void TestSafeFile::a_complete_file_has_the_right_size_and_end()
{
    QFETCH(int, size);
    QFETCH(QByteArray, end);
    Write_File(In("file"), "abcEND");
    QTEST(TSafeFile::Is_Complete(In("file"), size, end), "complete");
}

void TestSafeFile::only_existing_files_can_be_synced()
{
    Write_File(In("file"), "content");
    QVERIFY(TSafeFile::Sync(In("file")));
    QVERIFY(TSafeFile::Sync(d_folder->path()));
    QVERIFY(!TSafeFile::Sync(In("missing")));
}

void TestSafeFile::a_device_needs_no_sync()
{
    QVERIFY(TSafeFile::Sync("/dev/null"));
}

void TestSafeFile::a_file_is_synced_even_without_standard_input()
{
    Write_File(In("file"), "content");
    const Support::TChildResult result = Support::Run_In_Child([this] {
        close(STDIN_FILENO);
        return TSafeFile::Sync(In("file")) ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestSafeFile::a_file_that_appears_can_be_kept()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TSafeFile::Keep_Existing_Files();
        TSafeFile late(In("late"));
        Write_File(late.Path_To_Write(), "new");
        Write_File(In("late"), "other");
        TSafeFile in_time(In("in time"));
        Write_File(in_time.Path_To_Write(), "new");
        TSafeFile linked(In("linked"));
        Write_File(linked.Path_To_Write(), "new");
        Write_File_With_Two_Hard_Links("linked");
        return !late.Commit(Accept) && in_time.Commit(Accept) && !linked.Commit(Accept) ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(In("late")), QByteArray("other"));
    QCOMPARE(Read_File(In("in time")), QByteArray("new"));
}

void TestSafeFile::the_problem_of_a_failed_write_is_that_of_the_system()
{
    Write_File(In("target"), "old");
    const Support::TChildResult full = Support::Run_In_Child([this] {
        Support::Limit_File_Size(500);
        QString problem;
        if (TSafeFile::Replace(In("target"), QByteArray(1000, 'x'), 0, &problem))
            return 1;
        return problem == qt_error_string(EFBIG) ? 0 : 2;
    });
    QCOMPARE(full.exit_code, 0);
    QCOMPARE(Read_File(In("target")), QByteArray("old"));
    QString problem;
    QVERIFY(!TSafeFile::Replace(In("missing/target"), "new", 0, &problem));
    QCOMPARE(problem, qt_error_string(ENOENT));
}

void TestSafeFile::there_is_no_problem_if_the_file_can_be_written()
{
    const TSafeFile file(In("target"));
    QCOMPARE(file.Write_Problem(), QString());
    // Another program may have removed it.
    QVERIFY(QFile::remove(file.Path_To_Write()));
    QCOMPARE(file.Write_Problem(), QString());
    QVERIFY(Entries(d_folder->path()).isEmpty());
}

QTEST_MAIN(TestSafeFile)
#include "test_safefile.moc"
