// Recovery copies: when one is due, how it is written, and which ones are abandoned.

#include "core/safefile.h"
#include "src/format/projectfile.h"
#include "src/safety/recovery.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using Support::Entries;
using Support::Mode;
using Support::Read_File;

namespace {

/// A project without pages, recognizable by its label size.
TProjectWriter Project(int label_size, int filling = 0)
{
    TProjectWriter writer;
    writer.Write_Integer(label_size);
    writer.Write_Text(QStringLiteral("#f79741"));
    writer.Write_Text(QString(filling, QLatin1Char('f')));
    writer.Write_Text(QString());
    writer.Write_Integer(0);
    return writer;
}

} // namespace

class TestRecovery : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void copying_takes_at_most_a_fiftieth_of_the_time_data();
    void copying_takes_at_most_a_fiftieth_of_the_time();
    void the_first_change_is_copied_at_once();

    void a_copy_is_a_complete_project_file();
    void a_copy_replaces_the_previous_one();
    void the_note_has_the_last_path_of_the_document();
    void the_note_of_the_copy_after_a_discarded_one_names_the_document();
    void an_existing_copy_without_a_note_is_not_replaced();
    void a_copy_is_named_after_the_time();
    void an_existing_note_without_a_copy_is_not_reused();
    void a_hundred_names_are_tried_data();
    void a_hundred_names_are_tried();
    void a_folder_that_is_a_link_is_refused();
    void folder_and_files_are_accessible_to_their_owner_only_data();
    void folder_and_files_are_accessible_to_their_owner_only();
    void a_discarded_copy_leaves_no_files();
    void a_released_copy_stays_and_the_next_has_another_name();
    void a_failed_copy_leaves_the_previous_one();
    void a_failed_first_copy_leaves_no_files();
    void a_folder_that_cannot_be_created_is_refused();
    void the_copy_of_a_running_process_is_not_abandoned();
    void the_copy_of_a_killed_process_is_abandoned();
    void a_copy_without_a_note_is_abandoned();
    void abandoned_copies_come_newest_first();
    void later_processes_do_not_change_abandoned_copies();
    void only_abandoned_copies_of_the_folder_can_be_removed();
    void the_unfinished_file_of_a_running_process_stays();

private:
    QString Folder() const { return d_folder->filePath("recovery"); }
    void Take_Names(const QString& suffix, int count) const;

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestRecovery::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(d_folder->isValid());
}

void TestRecovery::cleanup()
{
    d_folder.reset();
}

/// Creates files with the first names that a copy can get within the next seconds.
void TestRecovery::Take_Names(const QString& suffix, int count) const
{
    const QDateTime now = QDateTime::currentDateTime();
    constexpr int seconds = 20;
    for (int second = 0; second < seconds; ++second) {
        const QString base = Folder() + now.addSecs(second).toString("/yyyyMMdd-hhmmss");
        for (int attempt = 1; attempt <= count; ++attempt)
            Support::Write_File(
                base + (attempt == 1 ? QString() : '-' + QString::number(attempt)) + suffix, "x");
    }
}

void TestRecovery::copying_takes_at_most_a_fiftieth_of_the_time_data()
{
    QTest::addColumn<qint64>("begin");
    QTest::addColumn<qint64>("end");
    QTest::addColumn<qint64>("now");
    QTest::addColumn<bool>("due");
    QTest::newRow("at once") << qint64(1000) << qint64(1100) << qint64(1100) << false;
    QTest::newRow("just before") << qint64(1000) << qint64(1100) << qint64(6099) << false;
    QTest::newRow("fifty times as long") << qint64(1000) << qint64(1100) << qint64(6100) << true;
    QTest::newRow("much later") << qint64(1000) << qint64(1100) << qint64(99999) << true;
    QTest::newRow("nothing measured, early")
        << qint64(1000) << qint64(1000) << qint64(1049) << false;
    QTest::newRow("nothing measured, later")
        << qint64(1000) << qint64(1000) << qint64(1050) << true;
}

void TestRecovery::copying_takes_at_most_a_fiftieth_of_the_time()
{
    QFETCH(qint64, begin);
    QFETCH(qint64, end);
    QFETCH(qint64, now);
    TCopyPolicy policy;
    policy.Record_Copy(begin, end);
    QTEST(policy.Is_Due(now), "due");
}

void TestRecovery::the_first_change_is_copied_at_once()
{
    TCopyPolicy policy;
    QVERIFY(policy.Is_Due(0));
    policy.Record_Copy(0, 100);
    QVERIFY(!policy.Is_Due(101));
    policy.Reset();
    QVERIFY(policy.Is_Due(101));
}

void TestRecovery::a_copy_is_a_complete_project_file()
{
    TRecovery recovery(Folder());
    QVERIFY(!recovery.Has_Copy());
    QVERIFY(recovery.Path().isEmpty());
    QVERIFY(recovery.Write(Project(40), "/home/somebody/a.quillet"));
    QVERIFY(recovery.Has_Copy());
    QVERIFY(ProjectFile::Is_Whole(recovery.Path()));
    QCOMPARE(Read_File(recovery.Path()), Support::Empty_Project(40));
    QVERIFY(recovery.Path().endsWith(".quillet"));
    QCOMPARE(QFileInfo(recovery.Path()).path(), Folder());
}

void TestRecovery::a_copy_replaces_the_previous_one()
{
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40, 100), QString()));
    const QString path = recovery.Path();
    QVERIFY(recovery.Write(Project(41), QString()));
    QCOMPARE(recovery.Path(), path);
    QCOMPARE(Read_File(path), Support::Empty_Project(41));
    QCOMPARE(Entries(Folder()).size(), 2);
}

void TestRecovery::the_note_has_the_last_path_of_the_document()
{
    for (const QString& document :
         {QString(), QString("/a/long/path.quillet"), QString::fromUtf8("/\xc3\xa4.quillet")}) {
        {
            TRecovery recovery(Folder());
            QVERIFY(recovery.Write(Project(40), "/before"));
            QVERIFY(recovery.Write(Project(41), document));
        }
        TRecovery later(Folder());
        const std::vector<TKeptFile> found = later.Abandoned();
        QCOMPARE(found.size(), size_t(1));
        QCOMPARE(found.front().document, document);
        later.Remove_Abandoned(found.front().path);
    }
}

void TestRecovery::the_note_of_the_copy_after_a_discarded_one_names_the_document()
{
    TRecovery recovery(Folder());
    for (int i = 0; i < 2; ++i) {
        QVERIFY(recovery.Write(Project(40), "/a"));
        QCOMPARE(TKeptFolder(Folder()).List().front().document, QString("/a"));
        recovery.Discard();
    }
}

void TestRecovery::an_existing_copy_without_a_note_is_not_replaced()
{
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    // Names are times: one of these is the name that the copy would get.
    const QDateTime now = QDateTime::currentDateTime();
    constexpr int seconds = 30;
    for (int i = 0; i < seconds; ++i)
        Support::Write_File(Folder() + now.addSecs(i).toString("/yyyyMMdd-hhmmss") + ".quillet",
                            "other");
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    QCOMPARE(Read_File(recovery.Path()), Support::Empty_Project(40));
    int untouched = 0;
    for (const QString& name : QDir(Folder()).entryList({"*.quillet"}))
        untouched += Read_File(Folder() + '/' + name) == "other" ? 1 : 0;
    QCOMPARE(untouched, seconds);
}

void TestRecovery::a_copy_is_named_after_the_time()
{
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    const QString name = QFileInfo(recovery.Path()).fileName();
    QVERIFY2(QRegularExpression("^\\d{8}-\\d{6}\\.quillet$").match(name).hasMatch(),
             qPrintable(name));
}

void TestRecovery::an_existing_note_without_a_copy_is_not_reused()
{
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    Take_Names(".note", 1);
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    QVERIFY2(recovery.Path().endsWith("-2.quillet"), qPrintable(recovery.Path()));
}

void TestRecovery::a_hundred_names_are_tried_data()
{
    QTest::addColumn<int>("taken");
    QTest::newRow("the last one is free") << 99;
    QTest::newRow("none is free") << 100;
}

void TestRecovery::a_hundred_names_are_tried()
{
    QFETCH(int, taken);
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    Take_Names(".quillet", taken);
    TRecovery recovery(Folder());
    QCOMPARE(recovery.Write(Project(40), "/a"), taken < 100);
    QCOMPARE(recovery.Path().endsWith("-100.quillet"), taken < 100);
}

void TestRecovery::a_folder_that_is_a_link_is_refused()
{
    QVERIFY(QDir(d_folder->path()).mkdir("elsewhere"));
    QVERIFY(QFile::link(d_folder->filePath("elsewhere"), Folder()));
    TRecovery recovery(Folder());
    QVERIFY(!recovery.Write(Project(40), "/a"));
    QVERIFY(Entries(d_folder->filePath("elsewhere")).isEmpty());
}

void TestRecovery::folder_and_files_are_accessible_to_their_owner_only_data()
{
    QTest::addColumn<int>("mask");
    QTest::newRow("none") << 0;
    QTest::newRow("usual") << 022;
    QTest::newRow("all") << 0777;
}

void TestRecovery::folder_and_files_are_accessible_to_their_owner_only()
{
    QFETCH(int, mask);
    const mode_t before = umask(static_cast<mode_t>(mask));
    TRecovery recovery(Folder());
    const bool written = recovery.Write(Project(40), "/a");
    umask(before);
    QVERIFY(written);
    QCOMPARE(Mode(Folder()), QString("700"));
    const QStringList files = Entries(Folder());
    QCOMPARE(files.size(), 2);
    for (const QString& file : files)
        QCOMPARE(Mode(Folder() + '/' + file), QString("600"));
}

void TestRecovery::a_discarded_copy_leaves_no_files()
{
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    recovery.Discard();
    QVERIFY(!recovery.Has_Copy());
    QVERIFY(Entries(Folder()).isEmpty());
    recovery.Discard();
    QVERIFY(recovery.Write(Project(41), "/a"));
    QVERIFY(recovery.Has_Copy());
}

void TestRecovery::a_released_copy_stays_and_the_next_has_another_name()
{
    TRecovery recovery(Folder());
    QStringList paths;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(recovery.Write(Project(40 + i), "/a"));
        QVERIFY(!paths.contains(recovery.Path()));
        paths += recovery.Path();
        recovery.Release();
        QVERIFY(!recovery.Has_Copy());
    }
    for (int i = 0; i < 5; ++i)
        QCOMPARE(Read_File(paths.at(i)), Support::Empty_Project(40 + i));
    QCOMPARE(recovery.Abandoned().size(), size_t(5));
}

void TestRecovery::a_failed_copy_leaves_the_previous_one()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TRecovery recovery(Folder());
        if (!recovery.Write(Project(40), "/a"))
            return 1;
        Support::Limit_File_Size(2000);
        return recovery.Write(Project(41, 5000), "/a") ? 2 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    const std::vector<TKeptFile> found = TRecovery(Folder()).Abandoned();
    QCOMPARE(found.size(), size_t(1));
    QCOMPARE(Read_File(found.front().path), Support::Empty_Project(40));
    QCOMPARE(Entries(Folder()).size(), 2);
}

void TestRecovery::a_failed_first_copy_leaves_no_files()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        Support::Limit_File_Size(2000);
        TRecovery recovery(Folder());
        return recovery.Write(Project(41, 5000), "/a") || recovery.Has_Copy() ? 1 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QVERIFY(Entries(Folder()).isEmpty());
}

void TestRecovery::a_folder_that_cannot_be_created_is_refused()
{
    Support::Write_File(Folder(), "a file is in the way");
    TRecovery recovery(Folder());
    QVERIFY(!recovery.Is_Possible());
    QVERIFY(!recovery.Write(Project(40), "/a"));
    QVERIFY(recovery.Abandoned().empty());
    TRecovery deeper(Folder() + "/settings/recovery");
    QVERIFY(!deeper.Write(Project(40), "/a"));
}

void TestRecovery::the_copy_of_a_running_process_is_not_abandoned()
{
    TRecovery running(Folder());
    QVERIFY(running.Write(Project(40), "/a"));
    TRecovery other(Folder());
    QVERIFY(other.Write(Project(41), "/a"));
    QVERIFY(running.Path() != other.Path());
    QVERIFY(other.Abandoned().empty());
    other.Remove_Abandoned(running.Path());
    QCOMPARE(Read_File(running.Path()), Support::Empty_Project(40));
    // Checking the lock does not release it.
    QVERIFY(running.Write(Project(42), "/a"));
    QVERIFY(other.Abandoned().empty());
}

void TestRecovery::the_copy_of_a_killed_process_is_abandoned()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TRecovery recovery(Folder());
        if (recovery.Write(Project(40), "/a"))
            kill(getpid(), SIGKILL);
        return 1;
    });
    QCOMPARE(result.signal, SIGKILL);
    const std::vector<TKeptFile> found = TRecovery(Folder()).Abandoned();
    QCOMPARE(found.size(), size_t(1));
    QCOMPARE(found.front().document, QString("/a"));
    QCOMPARE(found.front().size, qint64(Support::Empty_Project(40).size()));
    QCOMPARE(Read_File(found.front().path), Support::Empty_Project(40));
}

void TestRecovery::a_copy_without_a_note_is_abandoned()
{
    QVERIFY(QDir(d_folder->path()).mkdir("recovery"));
    Support::Write_File(Folder() + "/some.quillet", Support::Empty_Project());
    const std::vector<TKeptFile> found = TRecovery(Folder()).Abandoned();
    QCOMPARE(found.size(), size_t(1));
    QVERIFY(found.front().document.isEmpty());
}

void TestRecovery::abandoned_copies_come_newest_first()
{
    TRecovery recovery(Folder());
    QStringList paths;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(recovery.Write(Project(40 + i), "/a"));
        paths += recovery.Path();
        recovery.Release();
    }
    Support::Make_Old(paths.at(0), 10);
    Support::Make_Old(paths.at(1), 30);
    Support::Make_Old(paths.at(2), 20);
    QStringList found;
    for (const TKeptFile& file : recovery.Abandoned())
        found += file.path;
    QCOMPARE(found, QStringList({paths.at(0), paths.at(2), paths.at(1)}));
}

void TestRecovery::later_processes_do_not_change_abandoned_copies()
{
    QString path;
    {
        TRecovery recovery(Folder());
        QVERIFY(recovery.Write(Project(40), "/a"));
        path = recovery.Path();
    }
    Support::Make_Old(path, 100000);
    TRecovery later(Folder());
    later.Clean_Up();
    QVERIFY(later.Write(Project(41), "/a"));
    later.Discard();
    QCOMPARE(Read_File(path), Support::Empty_Project(40));
    QCOMPARE(Entries(Folder()).size(), 2);
}

void TestRecovery::only_abandoned_copies_of_the_folder_can_be_removed()
{
    const QString elsewhere = d_folder->filePath("a.quillet");
    Support::Write_File(elsewhere, Support::Empty_Project());
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    const QString path = recovery.Path();
    TRecovery later(Folder());
    later.Remove_Abandoned(elsewhere);
    later.Remove_Abandoned(QString());
    later.Remove_Abandoned(path);
    QVERIFY(QFile::exists(elsewhere) && QFile::exists(path));
    recovery.Release();
    // A user's copy of the file has the same name.
    const QString same_name = d_folder->filePath(QFileInfo(path).fileName());
    QVERIFY(QFile::copy(path, same_name));
    later.Remove_Abandoned(same_name);
    QVERIFY(QFile::exists(same_name) && QFile::exists(path));
    later.Remove_Abandoned(Folder() + "/../recovery/" + QFileInfo(path).fileName());
    QVERIFY(Entries(Folder()).isEmpty());
}

void TestRecovery::the_unfinished_file_of_a_running_process_stays()
{
    TRecovery recovery(Folder());
    QVERIFY(recovery.Write(Project(40), "/a"));
    TSafeFile unfinished(Folder() + "/x.quillet", TSafeFile::TKind::Private);
    const QString path = unfinished.Path_To_Write();
    Support::Make_Old(path, 3600);
    TRecovery(Folder()).Clean_Up();
    QVERIFY(QFile::exists(path));
    QVERIFY(QFile::exists(recovery.Path()));
}

QTEST_MAIN(TestRecovery)
#include "test_recovery.moc"
