// Stamps of files, which differ after another program has changed a file.

#include "core/filestamp.h"

#include "support/support.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

class TestFileStamp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void an_unchanged_file_keeps_its_stamp();
    void another_size_or_time_is_another_stamp_data();
    void another_size_or_time_is_another_stamp();
    void a_missing_file_has_no_stamp();
    void links_have_the_stamp_of_their_file();
    void a_copy_with_the_same_times_has_the_same_stamp();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    void Write(const QString& name, const QByteArray& content, const timespec& time) const;

    std::unique_ptr<QTemporaryDir> d_folder;
};

namespace {

const timespec some_time = {1600000000, 500};

} // namespace

void TestFileStamp::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
}

/// Writes a file with a modification time.
void TestFileStamp::Write(const QString& name, const QByteArray& content,
                          const timespec& time) const
{
    Support::Write_File(In(name), content);
    const timespec times[] = {time, time};
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(In(name)).constData(), times, 0), 0);
}

void TestFileStamp::an_unchanged_file_keeps_its_stamp()
{
    Write("a", "text", some_time);
    const TFileStamp stamp = TFileStamp::Of(In("a"));
    QVERIFY(stamp.Exists());
    QCOMPARE(stamp.size, qint64(4));
    QCOMPARE(stamp.seconds, qint64(some_time.tv_sec));
    QCOMPARE(stamp.nanoseconds, qint64(some_time.tv_nsec));
    QVERIFY(TFileStamp::Of(In("a")) == stamp);
}

void TestFileStamp::another_size_or_time_is_another_stamp_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<qint64>("nanoseconds");
    QTest::newRow("size") << QByteArray("text.") << qint64(1600000000) << qint64(500);
    QTest::newRow("seconds") << QByteArray("text") << qint64(1600000001) << qint64(500);
    QTest::newRow("nanoseconds") << QByteArray("text") << qint64(1600000000) << qint64(501);
}

void TestFileStamp::another_size_or_time_is_another_stamp()
{
    QFETCH(QByteArray, content);
    QFETCH(qint64, seconds);
    QFETCH(qint64, nanoseconds);
    Write("a", "text", some_time);
    const TFileStamp stamp = TFileStamp::Of(In("a"));
    Write("a", content, {seconds, nanoseconds});
    QVERIFY(TFileStamp::Of(In("a")) != stamp);
}

void TestFileStamp::a_missing_file_has_no_stamp()
{
    QVERIFY(!TFileStamp::Of(In("a")).Exists());
    QVERIFY(TFileStamp::Of(In("a")) == TFileStamp());
    Write("a", "", some_time);
    QVERIFY(TFileStamp::Of(In("a")).Exists());
}

void TestFileStamp::links_have_the_stamp_of_their_file()
{
    Write("a", "text", some_time);
    QVERIFY(QFile::link(In("a"), In("b")));
    QVERIFY(TFileStamp::Of(In("b")) == TFileStamp::Of(In("a")));
}

void TestFileStamp::a_copy_with_the_same_times_has_the_same_stamp()
{
    Write("a", "text", some_time);
    Write("b", "text", some_time);
    QVERIFY(TFileStamp::Of(In("b")) == TFileStamp::Of(In("a")));
}

QTEST_APPLESS_MAIN(TestFileStamp)
#include "test_filestamp.moc"
