// Files with several names.

#include "core/samefile.h"

#include "support/support.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using Support::Write_File;

class TestSameFile : public QObject
{
    Q_OBJECT

private slots:
    void a_hard_link_is_the_same_file();
    void a_symbolic_link_is_the_same_file();
    void a_copy_is_another_file();
    void a_file_with_the_same_number_in_another_file_system_is_another_file();
    void a_missing_file_equals_none();

private:
    QString In(const QString& name) const { return d_folder.filePath(name); }

    QTemporaryDir d_folder;
};

void TestSameFile::a_hard_link_is_the_same_file()
{
    Write_File(In("hard"), "content");
    QCOMPARE(link(QFile::encodeName(In("hard")).constData(),
                  QFile::encodeName(In("hard link")).constData()),
             0);
    QVERIFY(Is_Same_File(In("hard"), In("hard link")));
}

void TestSameFile::a_symbolic_link_is_the_same_file()
{
    Write_File(In("target"), "content");
    QVERIFY(QFile::link(In("target"), In("symbolic link")));
    QVERIFY(Is_Same_File(In("target"), In("symbolic link")));
    QVERIFY(Is_Same_File(In("symbolic link"), In("target")));
}

void TestSameFile::a_copy_is_another_file()
{
    Write_File(In("original"), "content");
    QVERIFY(QFile::copy(In("original"), In("copy")));
    QVERIFY(!Is_Same_File(In("original"), In("copy")));
}

void TestSameFile::a_file_with_the_same_number_in_another_file_system_is_another_file()
{
    struct stat proc = {};
    struct stat sys = {};
    QVERIFY(stat("/proc", &proc) == 0 && stat("/sys", &sys) == 0);
    QCOMPARE(proc.st_ino, sys.st_ino);
    QVERIFY(!Is_Same_File("/proc", "/sys"));
}

void TestSameFile::a_missing_file_equals_none()
{
    Write_File(In("present"), "content");
    QVERIFY(!Is_Same_File(In("present"), In("missing")));
    QVERIFY(!Is_Same_File(In("missing"), In("missing")));
}

QTEST_GUILESS_MAIN(TestSameFile)
#include "test_samefile.moc"
