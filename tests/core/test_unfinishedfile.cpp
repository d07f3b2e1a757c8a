// Which files are deleted when a signal ends the process.

#include "core/safefile.h"
#include "core/unfinishedfile.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <climits>
#include <csignal>
#include <memory>
#include <vector>

using Support::Entries;
using Support::Write_File;

class TestUnfinishedFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_signal_deletes_unfinished_files_and_ends_the_process_data();
    void a_signal_deletes_unfinished_files_and_ends_the_process();
    void an_ignored_signal_stays_ignored();
    void finished_files_stay();
    void files_without_a_slot_stay();
    void without_the_handler_files_stay();
    void a_path_that_is_too_long_is_not_cut();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    /// Writes and registers a file.
    std::unique_ptr<TUnfinishedFile> New_File(const QString& name) const
    {
        Write_File(In(name), "content");
        return std::make_unique<TUnfinishedFile>(In(name));
    }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestUnfinishedFile::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
}

void TestUnfinishedFile::cleanup()
{
    d_folder.reset();
}

void TestUnfinishedFile::a_signal_deletes_unfinished_files_and_ends_the_process_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestUnfinishedFile::a_signal_deletes_unfinished_files_and_ends_the_process()
{
    QFETCH(int, signal);
    Write_File(In("target"), "old");
    const Support::TChildResult result = Support::Run_In_Child([&] {
        std::signal(signal, SIG_DFL);
        TUnfinishedFile::Handle_Signals();
        const TSafeFile file(In("target"));
        Write_File(file.Path_To_Write(), "new");
        const auto another = New_File("another");
        raise(signal);
        return 0;
    });
    QCOMPARE(result.signal, signal);
    QCOMPARE(Entries(d_folder->path()), QStringList{"target"});
}

void TestUnfinishedFile::an_ignored_signal_stays_ignored()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        std::signal(SIGHUP, SIG_IGN);
        TUnfinishedFile::Handle_Signals();
        const auto file = New_File("file");
        raise(SIGHUP);
        return Entries(d_folder->path()).size();
    });
    QCOMPARE(result.exit_code, 1);
}

void TestUnfinishedFile::finished_files_stay()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TUnfinishedFile::Handle_Signals();
        for (int i = 0; i < 10; ++i)
            New_File(QString::number(i));
        TSafeFile::Replace(In("target"), "new");
        const auto unfinished = New_File("unfinished");
        raise(SIGTERM);
        return 0;
    });
    QCOMPARE(result.signal, SIGTERM);
    QCOMPARE(Entries(d_folder->path()).size(), 11);
    QVERIFY(!Entries(d_folder->path()).contains("unfinished"));
}

void TestUnfinishedFile::files_without_a_slot_stay()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TUnfinishedFile::Handle_Signals();
        std::vector<std::unique_ptr<TUnfinishedFile>> files;
        for (int i = 0; i < 6; ++i)
            files.push_back(New_File(QString::number(i)));
        raise(SIGTERM);
        return 0;
    });
    QCOMPARE(result.signal, SIGTERM);
    QCOMPARE(Entries(d_folder->path()), QStringList({"4", "5"}));
}

void TestUnfinishedFile::without_the_handler_files_stay()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        std::signal(SIGTERM, SIG_DFL);
        const auto file = New_File("file");
        raise(SIGTERM);
        return 0;
    });
    QCOMPARE(result.signal, SIGTERM);
    QCOMPARE(Entries(d_folder->path()), QStringList{"file"});
}

void TestUnfinishedFile::a_path_that_is_too_long_is_not_cut()
{
    QString path = d_folder->path();
    constexpr int longest_name = 255;
    while (path.size() + longest_name + 1 < PATH_MAX - 2) {
        path += '/' + QString(longest_name, 'd');
        QVERIFY(QDir().mkdir(path));
    }
    path += '/';
    path = path.leftJustified(PATH_MAX - 1, 'f');
    Write_File(path, "of the user");
    QVERIFY(QFile::exists(path));
    const Support::TChildResult result = Support::Run_In_Child([&path] {
        TUnfinishedFile::Handle_Signals();
        const TUnfinishedFile file(path + 'x');
        raise(SIGTERM);
        return 0;
    });
    QCOMPARE(result.signal, SIGTERM);
    QVERIFY(QFile::exists(path));
}

QTEST_MAIN(TestUnfinishedFile)
#include "test_unfinishedfile.moc"
