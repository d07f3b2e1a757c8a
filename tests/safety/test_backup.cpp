// Backups of saved documents: content, name, list and total size; and which kinds of files become
// backups themselves instead of being copied.

#include "src/safety/backup.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <functional>
#include <limits>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

using Support::Entries;
using Support::Make_Old;
using Support::Mode;
using Support::Read_File;
using Support::Write_File;

namespace {

/// Sets the time of a backup, which is that of its note, to some seconds ago.
void Make_Backup_Old(const QString& copy, int seconds)
{
    Make_Old(QString(copy).replace(".quillet", ".note"), seconds);
}

/// Called by the next sync.
std::function<void()> on_sync;

} // namespace

extern "C" int fsync(int descriptor)
{
    if (const auto call = std::exchange(on_sync, nullptr))
        call();
    return fdatasync(descriptor);
}

class TestBackup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_backup_has_the_documents_content();
    void each_document_has_one_backup();
    void documents_do_not_share_a_backup();
    void there_is_no_backup_of_a_missing_or_empty_file_data();
    void there_is_no_backup_of_a_missing_or_empty_file();
    void there_is_no_backup_of_a_read_only_document();
    void every_path_of_a_document_has_the_same_backup();
    void a_deleted_document_still_has_its_backup();
    void the_list_has_document_time_and_size_newest_first();
    void the_oldest_backups_are_deleted_beyond_the_limit();
    void backups_that_add_up_to_the_limit_stay();
    void the_limit_is_2_gib();
    void the_newest_backup_stays_even_beyond_the_limit();
    void folder_and_files_are_accessible_to_their_owner_only();
    void a_folder_that_is_a_link_is_refused_data();
    void a_folder_that_is_a_link_is_refused();
    void a_failed_backup_leaves_the_previous_one();
    void a_link_in_place_of_the_note_is_refused();
    void a_backup_that_another_process_is_writing_stays();
    void stale_files_of_ended_processes_are_deleted();

    void a_plain_file_becomes_the_backup_and_an_empty_one_replaces_it();
    void a_plain_file_becomes_the_backup_in_a_sticky_folder();
    void the_new_file_has_the_permissions_of_the_old_one_data();
    void the_new_file_has_the_permissions_of_the_old_one();
    void other_kinds_of_files_are_copied_and_stay_data();
    void other_kinds_of_files_are_copied_and_stay();
    void a_document_on_another_file_system_is_copied();
    void a_document_in_a_read_only_folder_is_copied();
    void a_document_that_leaves_no_room_for_a_second_version_is_copied();
    void a_document_that_an_interrupted_save_linked_becomes_the_backup();
    void extra_links_of_a_document_do_not_count();
    void a_version_that_replaces_the_document_meanwhile_is_copied();
    void the_time_of_a_backup_is_that_of_the_save();
    void a_separate_backup_stays_when_the_next_one_is_made();
    void separate_backups_count_towards_the_limit();
    void the_newest_separate_backup_of_each_document_stays_beyond_the_limit();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Document(const QString& name, const QByteArray& content) const;
    bool Keep(const QString& document, bool force_to_disk = false) const
    {
        QFile file(document);
        return Backup().Keep(&file, {force_to_disk, false, 0}).has_value();
    }
    bool Keep_Limited(const QString& document, qint64 limit) const
    {
        QFile file(document);
        return Backup(limit).Keep(&file, {false, false, 0}).has_value();
    }
    QString Keep_Separately(const QString& document) const
    {
        QFile file(document);
        return Backup().Keep(&file, {false, true, 0}).value_or(QString());
    }
    bool Moves(const QString& document, qint64 new_size = 0) const;
    TBackup Backup(qint64 limit = TBackup::Default_Limit) const
    {
        return TBackup(In("settings/backup"), limit);
    }

    static void Add_Name(const QString& document);
    static ino_t Inode(const QString& path);

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestBackup::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(d_folder->path()).mkdir("settings"));
    QVERIFY(QDir(d_folder->path()).mkdir("documents"));
}

void TestBackup::cleanup()
{
    d_folder.reset();
}

QString TestBackup::Document(const QString& name, const QByteArray& content) const
{
    const QString path = In("documents/" + name);
    Write_File(path, content);
    return path;
}

void TestBackup::a_backup_has_the_documents_content()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document, true));
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version one"));
}

void TestBackup::each_document_has_one_backup()
{
    const QString document = Document("a.quillet", "version one, the longer one");
    QVERIFY(Keep(document));
    Document("a.quillet", "version two");
    QVERIFY(Keep(document));
    QCOMPARE(Backup().List().size(), size_t(1));
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version two"));
    QCOMPARE(Entries(In("settings/backup")).size(), 2);
}

void TestBackup::documents_do_not_share_a_backup()
{
    const QString first = Document("a.quillet", "a");
    const QString second = Document("b.quillet", "b");
    QVERIFY(Keep(first) && Keep(second));
    QCOMPARE(Read_File(Backup().Path_For(first)), QByteArray("a"));
    QCOMPARE(Read_File(Backup().Path_For(second)), QByteArray("b"));
}

void TestBackup::there_is_no_backup_of_a_missing_or_empty_file_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no such file") << "missing.quillet";
    QTest::newRow("empty file") << "empty.quillet";
    QTest::newRow("folder") << "folder";
}

void TestBackup::there_is_no_backup_of_a_missing_or_empty_file()
{
    QFETCH(QString, name);
    Document("empty.quillet", QByteArray());
    QVERIFY(QDir(In("documents")).mkdir("folder"));
    QVERIFY(Keep(In("documents/" + name), true));
    QVERIFY(Backup().List().empty());
}

void TestBackup::there_is_no_backup_of_a_read_only_document()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::setPermissions(document, QFile::ReadOwner));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        return Keep(document) && Backup().List().empty() ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestBackup::every_path_of_a_document_has_the_same_backup()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::link(In("documents"), In("other")));
    QVERIFY(Keep(In("other/../documents/./a.quillet")));
    QCOMPARE(Backup().Path_For(In("other/a.quillet")), Backup().Path_For(document));
    QCOMPARE(Backup().List().front().document, QFileInfo(document).canonicalFilePath());
}

void TestBackup::a_deleted_document_still_has_its_backup()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::link(In("documents"), In("other")));
    QVERIFY(Keep(document));
    QVERIFY(QFile::remove(document));
    QCOMPARE(Read_File(Backup().Path_For(In("other/a.quillet"))), QByteArray("content"));
}

void TestBackup::the_list_has_document_time_and_size_newest_first()
{
    const QString names[] = {"a.quillet", "b.quillet", "c.quillet"};
    const int ages[] = {300, 100, 200};
    for (int i = 0; i < 3; ++i) {
        QVERIFY(Keep(Document(names[i], QByteArray(i + 1, 'x'))));
        Make_Backup_Old(Backup().Path_For(In("documents/" + names[i])), ages[i]);
    }
    const std::vector<TKeptFile> list = Backup().List();
    QCOMPARE(list.size(), size_t(3));
    const int order[] = {1, 2, 0};
    for (size_t place = 0; place < list.size(); ++place) {
        const int i = order[place];
        QCOMPARE(list[place].document, In("documents/" + names[i]));
        QCOMPARE(list[place].size, qint64(i + 1));
        QCOMPARE(list[place].path, Backup().Path_For(list[place].document));
        const qint64 age = list[place].time.secsTo(QDateTime::currentDateTime());
        QVERIFY2(age >= ages[i] && age < ages[i] + 60, qPrintable(QString::number(age)));
    }
}

void TestBackup::the_oldest_backups_are_deleted_beyond_the_limit()
{
    const char* const names[] = {"a", "b", "c", "d"};
    for (int i = 0; i < 4; ++i) {
        const QString document = Document(names[i], QByteArray(100, 'x'));
        QVERIFY(Keep_Limited(document, 250));
        Make_Backup_Old(Backup().Path_For(document), 1000 - i);
    }
    QStringList left;
    for (const TKeptFile& file : Backup().List())
        left += QFileInfo(file.document).fileName();
    QCOMPARE(left, QStringList({"d", "c"}));
    QCOMPARE(Entries(In("settings/backup")).size(), 4);
}

void TestBackup::backups_that_add_up_to_the_limit_stay()
{
    for (const char* const name : {"a", "b", "c"})
        QVERIFY(Keep_Limited(Document(name, QByteArray(100, 'x')), 300));
    QCOMPARE(Backup().List().size(), size_t(3));
    // One byte more is too much.
    QVERIFY(Keep_Limited(Document("c", QByteArray(101, 'x')), 300));
    QCOMPARE(Backup().List().size(), size_t(2));
}

void TestBackup::the_limit_is_2_gib()
{
    // The file has no blocks on the disk.
    const QString large = Document("large", QByteArray());
    QVERIFY(QFile::resize(large, 0x7fffffff));
    QVERIFY(Keep(large));
    Make_Backup_Old(Backup().Path_For(large), 1000);
    QVERIFY(Keep(Document("a", "x")));
    QCOMPARE(Backup().List().size(), size_t(2));
    QVERIFY(Keep(Document("b", "x")));
    QCOMPARE(Backup().List().size(), size_t(2));
    QVERIFY(!QFile::exists(Backup().Path_For(large)));
}

void TestBackup::the_newest_backup_stays_even_beyond_the_limit()
{
    QVERIFY(Keep_Limited(Document("small", "x"), 250));
    const QString large = Document("large", QByteArray(1000, 'x'));
    QVERIFY(Keep_Limited(large, 250));
    QCOMPARE(Backup().List().size(), size_t(1));
    QCOMPARE(Backup().List().front().document, large);
}

void TestBackup::folder_and_files_are_accessible_to_their_owner_only()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::setPermissions(document, QFile::ReadOwner | QFile::WriteOwner |
                                                QFile::ReadGroup | QFile::ReadOther));
    QVERIFY(QDir(In("settings")).mkdir("backup"));
    QVERIFY(QFile::setPermissions(In("settings/backup"), QFile::ReadOwner | QFile::WriteOwner |
                                                             QFile::ExeOwner | QFile::ReadOther |
                                                             QFile::ExeOther));
    QVERIFY(Keep(document, true));
    QCOMPARE(Mode(In("settings/backup")), QString("700"));
    const QStringList files = Entries(In("settings/backup"));
    QCOMPARE(files.size(), 2);
    for (const QString& file : files)
        QCOMPARE(Mode(In("settings/backup/" + file)), QString("600"));
}

void TestBackup::a_folder_that_is_a_link_is_refused_data()
{
    QTest::addColumn<QString>("link");
    QTest::newRow("the folder itself") << "settings/backup";
    QTest::newRow("the settings folder") << "settings";
}

void TestBackup::a_folder_that_is_a_link_is_refused()
{
    QFETCH(QString, link);
    QVERIFY(QDir(d_folder->path()).rmdir("settings"));
    QVERIFY(QDir(d_folder->path()).mkpath("elsewhere/backup"));
    if (link != "settings")
        QVERIFY(QDir(d_folder->path()).mkdir("settings"));
    QVERIFY(QFile::link(In("elsewhere"), In(link)));
    QVERIFY(!Keep(Document("a.quillet", "content")));
    QCOMPARE(Entries(In("elsewhere")), QStringList{"backup"});
    QVERIFY(Entries(In("elsewhere/backup")).isEmpty());
}

void TestBackup::a_failed_backup_leaves_the_previous_one()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document));
    Document("a.quillet", QByteArray(5000, 'x'));
    Add_Name(document);
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Limit_File_Size(4000);
        return Keep(document) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version one"));
    QCOMPARE(Entries(In("settings/backup")).size(), 2);
}

void TestBackup::a_link_in_place_of_the_note_is_refused()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document));
    const QString copy = Backup().Path_For(document);
    const QString note = copy.left(copy.lastIndexOf('.')) + ".note";
    Write_File(In("other"), "not ours");
    QVERIFY(QFile::remove(note));
    QVERIFY(QFile::link(In("other"), note));
    Document("a.quillet", "version two");
    QVERIFY(!Keep(document));
    QCOMPARE(Read_File(copy), QByteArray("version one"));
    QCOMPARE(Read_File(In("other")), QByteArray("not ours"));
}

void TestBackup::a_backup_that_another_process_is_writing_stays()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document));
    Document("a.quillet", "version two");
    const QString copy = Backup().Path_For(document);
    TKeptNote note;
    QVERIFY(note.Open(copy.left(copy.lastIndexOf('.')) + ".note", TKeptNote::TExisting::Reuse));
    QVERIFY(!Keep(document));
    QCOMPARE(Read_File(copy), QByteArray("version one"));
    note.Close();
    QVERIFY(Keep(document));
    QCOMPARE(Read_File(copy), QByteArray("version two"));
}

void TestBackup::stale_files_of_ended_processes_are_deleted()
{
    const QString folder = In("settings/backup/");
    QVERIFY(Keep(Document("a.quillet", "content")));
    const QStringList finished = Entries(folder);
    for (const char* const name : {".quillet-old123", "note_alone.note", ".quillet-new123"})
        Write_File(folder + name, "rest");
    Write_File(folder + "something else", "not ours");
    for (const char* const name : {".quillet-old123", "note_alone.note", "something else"})
        Make_Old(folder + name, 3600);
    TKeptNote held;
    QVERIFY(held.Open(folder + "held.note", TKeptNote::TExisting::Refuse));
    Make_Old(folder + "held.note", 3600);
    Backup().Clean_Up();
    QStringList expected = finished;
    expected << ".quillet-new123"
             << "something else"
             << "held.note";
    QStringList left = Entries(folder);
    expected.sort();
    left.sort();
    QCOMPARE(left, expected);
}

/// Whether a document's file becomes its backup. Otherwise it is copied.
bool TestBackup::Moves(const QString& document, qint64 new_size) const
{
    const ino_t inode = Inode(document);
    const QByteArray content = Read_File(document);
    QFile file(document);
    const std::optional<QString> copy = Backup().Keep(&file, {true, false, new_size});
    if (!copy || Read_File(*copy) != content || Mode(*copy) != "600")
        qFatal("no backup");
    const bool is_moved = Inode(*copy) == inode;
    // Either the document is a new, empty, open file, or nothing has happened to it.
    if (file.isOpen() != is_moved || Inode(document) == Inode(*copy) ||
        Read_File(document) != (is_moved ? QByteArray() : content))
        qFatal("the document is neither replaced nor unchanged");
    return is_moved;
}

/// Adds a hard link.
void TestBackup::Add_Name(const QString& document)
{
    QVERIFY(link(QFile::encodeName(document).constData(),
                 QFile::encodeName(document + ".link").constData()) == 0);
}

ino_t TestBackup::Inode(const QString& path)
{
    struct stat state = {};
    return stat(QFile::encodeName(path).constData(), &state) == 0 ? state.st_ino : 0;
}

void TestBackup::a_plain_file_becomes_the_backup_and_an_empty_one_replaces_it()
{
    const QString document = Document("a.quillet", "version one");
    QFile file(document);
    QVERIFY(Backup().Keep(&file, {true, false, 0}).has_value());
    QVERIFY(file.isOpen());
    QCOMPARE(Read_File(document), QByteArray());
    QCOMPARE(file.write("version two"), 11);
    file.close();
    QCOMPARE(Read_File(document), QByteArray("version two"));
    QVERIFY(Moves(document));
    QCOMPARE(Entries(In("documents")), QStringList{"a.quillet"});
    QCOMPARE(Entries(In("settings/backup")).size(), 2);
}

void TestBackup::a_plain_file_becomes_the_backup_in_a_sticky_folder()
{
    QVERIFY(chmod(QFile::encodeName(In("documents")).constData(), 01777) == 0);
    QVERIFY(Moves(Document("a.quillet", "content")));
}

void TestBackup::the_new_file_has_the_permissions_of_the_old_one_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("has_other_group");
    for (const int mode : {0600, 0644, 0664, 0666, 0640, 0755, 0700})
        QTest::newRow(qPrintable(QString::number(mode, 8))) << mode << false;
    if (geteuid() == 0)
        QTest::newRow("another group") << 02664 << true;
}

void TestBackup::the_new_file_has_the_permissions_of_the_old_one()
{
    QFETCH(int, mode);
    QFETCH(bool, has_other_group);
    constexpr gid_t other_group = 12345;
    const QString document = Document("a.quillet", "content");
    const QByteArray path = QFile::encodeName(document);
    if (has_other_group)
        QVERIFY(chown(path.constData(), geteuid(), other_group) == 0);
    QVERIFY(chmod(path.constData(), static_cast<mode_t>(mode)) == 0);
    struct stat before = {};
    QVERIFY(stat(path.constData(), &before) == 0);
    QVERIFY(Moves(document));
    struct stat after = {};
    QVERIFY(stat(path.constData(), &after) == 0);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_gid, before.st_gid);
}

void TestBackup::other_kinds_of_files_are_copied_and_stay_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("symbolic link") << "symbolic link";
    QTest::newRow("two names") << "two names";
    QTest::newRow("extended attribute") << "extended attribute";
    if (geteuid() == 0)
        QTest::newRow("another owner") << "another owner";
}

void TestBackup::other_kinds_of_files_are_copied_and_stay()
{
    QFETCH(QString, kind);
    QString document = Document("a.quillet", "content");
    const QByteArray path = QFile::encodeName(document);
    if (kind == "symbolic link") {
        QVERIFY(QFile::link(document, In("documents/symbolic")));
        document = In("documents/symbolic");
    } else if (kind == "two names") {
        Add_Name(document);
    } else if (kind == "extended attribute") {
        QVERIFY(setxattr(path.constData(), "user.note", "x", 1, 0) == 0);
    } else {
        constexpr uid_t other_user = 12345;
        QVERIFY(chown(path.constData(), other_user, other_user) == 0);
    }
    QVERIFY(!Moves(document));
    QVERIFY(kind != "symbolic link" || QFileInfo(document).isSymLink());
}

void TestBackup::a_document_on_another_file_system_is_copied()
{
    QTemporaryDir other("/dev/shm/quillet-XXXXXX");
    QVERIFY(other.isValid());
    const QString document = other.filePath("a.quillet");
    Write_File(document, "content");
    QVERIFY(!Moves(document));
}

void TestBackup::a_document_in_a_read_only_folder_is_copied()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(chmod(QFile::encodeName(In("documents")).constData(), 0500) == 0);
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        return Moves(document) ? 1 : 0;
    });
    chmod(QFile::encodeName(In("documents")).constData(), 0700);
    QCOMPARE(result.exit_code, 0);
}

void TestBackup::a_document_that_leaves_no_room_for_a_second_version_is_copied()
{
    QVERIFY(!Moves(Document("a.quillet", "content"), std::numeric_limits<qint64>::max()));
}

void TestBackup::a_document_that_an_interrupted_save_linked_becomes_the_backup()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document));
    Document("a.quillet", "version two");
    const QString copy = Backup().Path_For(document);
    for (const QString& name : {copy, copy.left(copy.lastIndexOf('.')) + "-separate.quillet"}) {
        QFile::remove(name);
        QVERIFY(link(QFile::encodeName(document).constData(),
                     QFile::encodeName(name).constData()) == 0);
    }
    QVERIFY(Moves(document));
    QCOMPARE(Entries(In("settings/backup")).size(), 3);
}

void TestBackup::extra_links_of_a_document_do_not_count()
{
    const QString document = Document("a.quillet", "content");
    Add_Name(document);
    QVERIFY(!Moves(document));
    QFile file(document);
    QVERIFY(Backup().Keep(&file, {true, false, 0, 1}));
    QVERIFY(file.isOpen());
}

void TestBackup::a_version_that_replaces_the_document_meanwhile_is_copied()
{
    const QString document = Document("a.quillet", "version one");
    const QString other = Document("other", "version of another program");
    // Creates and syncs the folder.
    QVERIFY(Keep(Document("earlier", "content")));
    bool is_replaced = false;
    on_sync = [&] {
        is_replaced = std::rename(QFile::encodeName(other).constData(),
                                  QFile::encodeName(document).constData()) == 0;
    };
    QFile file(document);
    const std::optional<QString> copy = Backup().Keep(&file, {true, false, 0});
    QVERIFY(is_replaced);
    QVERIFY(copy);
    QVERIFY(!file.isOpen());
    QCOMPARE(Read_File(*copy), QByteArray("version of another program"));
    QCOMPARE(Read_File(document), QByteArray("version of another program"));
}

void TestBackup::the_time_of_a_backup_is_that_of_the_save()
{
    const QString document = Document("a.quillet", "content");
    Make_Old(document, 3600);
    QVERIFY(Moves(document));
    QVERIFY(Backup().List().front().time.secsTo(QDateTime::currentDateTime()) < 60);
}

void TestBackup::a_separate_backup_stays_when_the_next_one_is_made()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Keep(document));
    QStringList separate;
    for (const char* const content : {"version of another program", "another one"}) {
        Document("a.quillet", content);
        separate += Keep_Separately(document);
        QCOMPARE(Read_File(separate.last()), QByteArray(content));
    }
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version one"));
    Document("a.quillet", "version two");
    QVERIFY(Keep(document));
    QCOMPARE(Read_File(separate.first()), QByteArray("version of another program"));
    QCOMPARE(Read_File(separate.last()), QByteArray("another one"));
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version two"));
    QCOMPARE(Backup().List().size(), size_t(3));
    for (const TKeptFile& file : Backup().List())
        QCOMPARE(file.document, document);
}

void TestBackup::separate_backups_count_towards_the_limit()
{
    const QString document = Document("a.quillet", QByteArray(100, 'x'));
    const QString oldest = Keep_Separately(document);
    Make_Backup_Old(oldest, 200);
    Document("a.quillet", QByteArray(100, 'y'));
    const QString newest = Keep_Separately(document);
    Make_Backup_Old(newest, 100);
    Document("a.quillet", QByteArray(100, 'z'));
    QVERIFY(Keep_Limited(document, 250));
    QVERIFY(!QFile::exists(oldest));
    QVERIFY(QFile::exists(newest));
    QVERIFY(QFile::exists(Backup().Path_For(document)));
}

void TestBackup::the_newest_separate_backup_of_each_document_stays_beyond_the_limit()
{
    QStringList newest;
    QStringList others;
    for (const char* const name : {"a.quillet", "b.quillet"}) {
        const QString document = Document(name, QByteArray(100, 'x'));
        QVERIFY(Keep(document));
        others += Backup().Path_For(document);
        Make_Backup_Old(others.last(), 1000);
        Document(name, QByteArray(100, 'y'));
        others += Keep_Separately(document);
        Make_Backup_Old(others.last(), 3000);
        Document(name, QByteArray(100, 'z'));
        newest += Keep_Separately(document);
        Make_Backup_Old(newest.last(), 2000);
    }
    const QString saved = Document("c.quillet", QByteArray(100, 'c'));
    QVERIFY(Keep_Limited(saved, 150));
    for (const QString& backup : newest + QStringList{Backup().Path_For(saved)})
        QVERIFY2(QFile::exists(backup), qPrintable(backup));
    for (const QString& backup : std::as_const(others))
        QVERIFY2(!QFile::exists(backup), qPrintable(backup));
}

QTEST_MAIN(TestBackup)
#include "test_backup.moc"
