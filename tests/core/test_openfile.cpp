// Files that are read while other programs change them.

#include "core/openfile.h"

#include "support/support.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using Support::Read_File;
using Support::Write_File;

class TestOpenFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { qunsetenv("TMPDIR"); }
    void parts_are_read_when_they_are_needed();
    void nothing_is_read_past_the_end();
    void only_regular_files_are_opened_data();
    void only_regular_files_are_opened();
    void the_content_survives_data();
    void the_content_survives();
    void nothing_is_read_after_a_change_data();
    void nothing_is_read_after_a_change();
    void a_part_is_appended_to_another_file();
    void nothing_is_copied_after_a_change();
    void a_full_disk_is_a_failure();
    void a_file_without_a_name_has_no_entry_in_its_folder();
    void discarded_parts_need_no_space();
    void files_are_copied_before_they_are_overwritten();
    void other_files_are_not_copied();
    void copying_fails_without_a_folder_for_the_copy();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestOpenFile::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    Write_File(In("file"), "abcdefgh");
}

void TestOpenFile::parts_are_read_when_they_are_needed()
{
    const auto file = TOpenFile::Open(In("file"));
    QCOMPARE(file->Size(), qint64(8));
    QCOMPARE(file->Read(0, 8), QByteArray("abcdefgh"));
    QCOMPARE(file->Read(2, 3), QByteArray("cde"));
    QCOMPARE(file->Read(2, 0), QByteArray());
}

void TestOpenFile::nothing_is_read_past_the_end()
{
    const auto file = TOpenFile::Open(In("file"));
    QCOMPARE(file->Read(5, 3), QByteArray("fgh"));
    QCOMPARE(file->Read(5, 4), QByteArray());
}

void TestOpenFile::only_regular_files_are_opened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << In("missing");
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("device") << "/dev/zero";
    QTest::newRow("pipe without a writer") << "pipe";
}

void TestOpenFile::only_regular_files_are_opened()
{
    QFETCH(QString, path);
    if (path == "pipe") {
        path = In("pipe");
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    }
    QVERIFY(!TOpenFile::Open(path));
}

void TestOpenFile::the_content_survives_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("deleting") << "delete";
    QTest::newRow("renaming") << "rename";
    QTest::newRow("replacing") << "replace";
    QTest::newRow("another name") << "link";
    QTest::newRow("other permissions") << "chmod";
}

void TestOpenFile::the_content_survives()
{
    QFETCH(const QString, action);
    const auto file = TOpenFile::Open(In("file"));
    if (action == "delete")
        QVERIFY(QFile::remove(In("file")));
    if (action == "rename")
        QVERIFY(QFile::rename(In("file"), In("other")));
    if (action == "replace") {
        Write_File(In("other"), "other");
        QCOMPARE(std::rename(qPrintable(In("other")), qPrintable(In("file"))), 0);
    }
    if (action == "link")
        QCOMPARE(link(qPrintable(In("file")), qPrintable(In("other"))), 0);
    if (action == "chmod")
        QCOMPARE(chmod(qPrintable(In("file")), 0444), 0);
    QVERIFY(!file->Is_Changed());
    QCOMPARE(file->Read(0, 8), QByteArray("abcdefgh"));
}

void TestOpenFile::nothing_is_read_after_a_change_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("truncated") << QByteArray("abc");
    QTest::newRow("overwritten") << QByteArray("ABCDEFGH");
    QTest::newRow("longer") << QByteArray("abcdefghi");
}

void TestOpenFile::nothing_is_read_after_a_change()
{
    QFETCH(const QByteArray, content);
    const auto file = TOpenFile::Open(In("file"));
    // A change within a clock tick would leave the time as it is.
    QTest::qSleep(20);
    Write_File(In("file"), content);
    QVERIFY(file->Is_Changed());
    QCOMPARE(file->Read(0, 3), QByteArray());
}

void TestOpenFile::a_part_is_appended_to_another_file()
{
    // More than one block.
    const QByteArray content(20'000'003, 'x');
    Write_File(In("file"), content + "end");
    const auto file = TOpenFile::Open(In("file"));
    for (const char* const folder : {"", "/dev/shm/"}) {
        QTemporaryDir other(*folder ? folder + QStringLiteral("quillet-XXXXXX") : In("XXXXXX"));
        QFile copy(other.filePath("copy"));
        QVERIFY(copy.open(QIODevice::WriteOnly));
        copy.write("before ");
        QVERIFY(file->Copy_To(&copy, 1, content.size() + 1));
        copy.write(" after");
        copy.close();
        QVERIFY(Read_File(copy.fileName()) == "before " + content.mid(1) + "en after");
    }
}

void TestOpenFile::nothing_is_copied_after_a_change()
{
    const auto file = TOpenFile::Open(In("file"));
    Write_File(In("file"), "abc");
    QFile copy(In("copy"));
    QVERIFY(copy.open(QIODevice::WriteOnly));
    QVERIFY(!file->Copy_To(&copy, 0, 3));
    copy.close();
    QCOMPARE(Read_File(In("copy")), QByteArray());
}

void TestOpenFile::a_full_disk_is_a_failure()
{
    const auto file = TOpenFile::Open(In("file"));
    QFile full("/dev/full");
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(!file->Copy_To(&full, 0, 8));
}

void TestOpenFile::a_file_without_a_name_has_no_entry_in_its_folder()
{
    qputenv("TMPDIR", QFile::encodeName(d_folder->path()));
    const auto file = TOpenFile::Create_Unnamed();
    QVERIFY(file->Write(0, "abcdef"));
    QVERIFY(file->Write(2, "XY"));
    QCOMPARE(file->Read(0, 6), QByteArray("abXYef"));
    QCOMPARE(Support::Entries(d_folder->path()), QStringList{"file"});
    qputenv("TMPDIR", QFile::encodeName(In("missing")));
    QVERIFY(!TOpenFile::Create_Unnamed());
}

void TestOpenFile::discarded_parts_need_no_space()
{
    const auto file = TOpenFile::Create_Unnamed();
    constexpr int size = 1024 * 1024;
    QVERIFY(file->Write(0, QByteArray(2 * size, 'x')));
    file->Discard(0, size);
    QCOMPARE(file->Read(0, size), QByteArray(size, '\0'));
    QCOMPARE(file->Read(size, size), QByteArray(size, 'x'));
}

void TestOpenFile::files_are_copied_before_they_are_overwritten()
{
    QVERIFY(QFile::link(In("file"), In("symbolic")));
    QCOMPARE(link(qPrintable(In("file")), qPrintable(In("second"))), 0);
    const auto file = TOpenFile::Open(In("file"));
    const auto again = TOpenFile::Open(In("second"));
    QVERIFY(TOpenFile::Copy_Before_Overwriting(In("symbolic")));
    Write_File(In("file"), "other");
    for (const auto& open : {file, again}) {
        QVERIFY(!open->Is_Changed());
        QCOMPARE(open->Read(0, 8), QByteArray("abcdefgh"));
    }
}

void TestOpenFile::other_files_are_not_copied()
{
    const auto file = TOpenFile::Open(In("file"));
    Write_File(In("other"), "other");
    QVERIFY(TOpenFile::Copy_Before_Overwriting(In("other")));
    QVERIFY(TOpenFile::Copy_Before_Overwriting(In("missing")));
    Write_File(In("file"), "abc");
    QVERIFY(file->Is_Changed());
}

void TestOpenFile::copying_fails_without_a_folder_for_the_copy()
{
    const auto file = TOpenFile::Open(In("file"));
    qputenv("TMPDIR", QFile::encodeName(In("missing")));
    QVERIFY(!TOpenFile::Copy_Before_Overwriting(In("file")));
    QCOMPARE(file->Read(0, 8), QByteArray("abcdefgh"));
}

QTEST_MAIN(TestOpenFile)
#include "test_openfile.moc"
