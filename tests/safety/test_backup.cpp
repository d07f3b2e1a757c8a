// Backups of saved documents: content, name, list and total size.

#include "src/safety/backup.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using Support::Entries;
using Support::Make_Old;
using Support::Mode;
using Support::Read_File;
using Support::Write_File;

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
    void the_newest_backup_stays_even_beyond_the_limit();
    void folder_and_files_are_accessible_to_their_owner_only();
    void a_folder_that_is_a_link_is_refused_data();
    void a_folder_that_is_a_link_is_refused();
    void a_failed_backup_leaves_the_previous_one();
    void a_link_in_place_of_the_note_is_refused();
    void a_backup_that_another_process_is_writing_stays();
    void stale_files_of_ended_processes_are_deleted();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Document(const QString& name, const QByteArray& content) const;
    TBackup Backup(qint64 limit = TBackup::Default_Limit) const
    {
        return TBackup(In("settings/backup"), limit);
    }

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
    QVERIFY(Backup().Keep(document, true));
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version one"));
}

void TestBackup::each_document_has_one_backup()
{
    const QString document = Document("a.quillet", "version one, the longer one");
    QVERIFY(Backup().Keep(document, false));
    Document("a.quillet", "version two");
    QVERIFY(Backup().Keep(document, false));
    QCOMPARE(Backup().List().size(), size_t(1));
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version two"));
    QCOMPARE(Entries(In("settings/backup")).size(), 2);
}

void TestBackup::documents_do_not_share_a_backup()
{
    const QString first = Document("a.quillet", "a");
    const QString second = Document("b.quillet", "b");
    QVERIFY(Backup().Keep(first, false) && Backup().Keep(second, false));
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
    QVERIFY(Backup().Keep(In("documents/" + name), true));
    QVERIFY(Backup().List().empty());
}

void TestBackup::there_is_no_backup_of_a_read_only_document()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::setPermissions(document, QFile::ReadOwner));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Obey_File_Permissions();
        return Backup().Keep(document, false) && Backup().List().empty() ? 0 : 1;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestBackup::every_path_of_a_document_has_the_same_backup()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::link(In("documents"), In("other")));
    QVERIFY(Backup().Keep(In("other/../documents/./a.quillet"), false));
    QCOMPARE(Backup().Path_For(In("other/a.quillet")), Backup().Path_For(document));
    QCOMPARE(Backup().List().front().document, QFileInfo(document).canonicalFilePath());
}

void TestBackup::a_deleted_document_still_has_its_backup()
{
    const QString document = Document("a.quillet", "content");
    QVERIFY(QFile::link(In("documents"), In("other")));
    QVERIFY(Backup().Keep(document, false));
    QVERIFY(QFile::remove(document));
    QCOMPARE(Read_File(Backup().Path_For(In("other/a.quillet"))), QByteArray("content"));
}

void TestBackup::the_list_has_document_time_and_size_newest_first()
{
    const QString names[] = {"a.quillet", "b.quillet", "c.quillet"};
    const int ages[] = {300, 100, 200};
    for (int i = 0; i < 3; ++i) {
        QVERIFY(Backup().Keep(Document(names[i], QByteArray(i + 1, 'x')), false));
        Make_Old(Backup().Path_For(In("documents/" + names[i])), ages[i]);
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
        QVERIFY(Backup(250).Keep(document, false));
        Make_Old(Backup().Path_For(document), 1000 - i);
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
        QVERIFY(Backup(300).Keep(Document(name, QByteArray(100, 'x')), false));
    QCOMPARE(Backup().List().size(), size_t(3));
    // One byte more is too much.
    QVERIFY(Backup(300).Keep(Document("c", QByteArray(101, 'x')), false));
    QCOMPARE(Backup().List().size(), size_t(2));
}

void TestBackup::the_newest_backup_stays_even_beyond_the_limit()
{
    QVERIFY(Backup(250).Keep(Document("small", "x"), false));
    const QString large = Document("large", QByteArray(1000, 'x'));
    QVERIFY(Backup(250).Keep(large, false));
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
    QVERIFY(Backup().Keep(document, true));
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
    QVERIFY(!Backup().Keep(Document("a.quillet", "content"), false));
    QCOMPARE(Entries(In("elsewhere")), QStringList{"backup"});
    QVERIFY(Entries(In("elsewhere/backup")).isEmpty());
}

void TestBackup::a_failed_backup_leaves_the_previous_one()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Backup().Keep(document, false));
    Document("a.quillet", QByteArray(5000, 'x'));
    const Support::TChildResult result = Support::Run_In_Child([&] {
        Support::Limit_File_Size(4000);
        return Backup().Keep(document, false) ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Read_File(Backup().Path_For(document)), QByteArray("version one"));
    QCOMPARE(Entries(In("settings/backup")).size(), 2);
}

void TestBackup::a_link_in_place_of_the_note_is_refused()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Backup().Keep(document, false));
    const QString copy = Backup().Path_For(document);
    const QString note = copy.left(copy.lastIndexOf('.')) + ".note";
    Write_File(In("other"), "not ours");
    QVERIFY(QFile::remove(note));
    QVERIFY(QFile::link(In("other"), note));
    Document("a.quillet", "version two");
    QVERIFY(!Backup().Keep(document, false));
    QCOMPARE(Read_File(copy), QByteArray("version one"));
    QCOMPARE(Read_File(In("other")), QByteArray("not ours"));
}

void TestBackup::a_backup_that_another_process_is_writing_stays()
{
    const QString document = Document("a.quillet", "version one");
    QVERIFY(Backup().Keep(document, false));
    Document("a.quillet", "version two");
    const QString copy = Backup().Path_For(document);
    TKeptNote note;
    QVERIFY(note.Open(copy.left(copy.lastIndexOf('.')) + ".note", TKeptNote::TExisting::Reuse));
    QVERIFY(!Backup().Keep(document, false));
    QCOMPARE(Read_File(copy), QByteArray("version one"));
    note.Close();
    QVERIFY(Backup().Keep(document, false));
    QCOMPARE(Read_File(copy), QByteArray("version two"));
}

void TestBackup::stale_files_of_ended_processes_are_deleted()
{
    const QString folder = In("settings/backup/");
    QVERIFY(Backup().Keep(Document("a.quillet", "content"), false));
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

QTEST_MAIN(TestBackup)
#include "test_backup.moc"
