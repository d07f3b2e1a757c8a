// Bytes in memory and in files, which have to behave in the same way.

#include "core/bytesource.h"

#include "support/support.h"

#include "core/openfile.h"
#include "core/spool.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

Q_DECLARE_METATYPE(TByteSource)

namespace {

constexpr qint64 mebibyte = 1024 * 1024;

} // namespace

class TestByteSource : public QObject
{
    Q_OBJECT

private slots:
    void init() { d_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { qunsetenv("TMPDIR"); }
    void a_part_is_clipped_data();
    void a_part_is_clipped();
    void a_part_of_a_part_counts_from_its_beginning_data() { Both("0123abcdefgh5678"); }
    void a_part_of_a_part_counts_from_its_beginning();
    void bytes_are_found_data();
    void bytes_are_found();
    void bytes_are_written_data() { Both("content"); }
    void bytes_are_written();
    void a_small_file_is_in_memory_and_a_large_one_is_not();
    void what_is_no_regular_file_has_no_bytes();
    void bytes_of_a_changed_file_are_lost();
    void large_arrays_are_spooled();
    void arrays_stay_in_memory_without_a_folder_for_the_spool();
    void the_space_of_a_spooled_array_is_returned();

private:
    /// The same bytes in memory and in a file.
    void Both(const QByteArray& bytes) const
    {
        QTest::addColumn<TByteSource>("bytes");
        QTest::newRow("memory") << TByteSource(bytes);
        QTest::newRow("file") << In_File(bytes);
    }
    static TByteSource In_File(const QByteArray& bytes)
    {
        const auto file = TOpenFile::Create_Unnamed();
        return file->Write(0, bytes) ? TByteSource(file, 0, bytes.size()) : TByteSource();
    }
    qint64 Space() const;
    QString In(const QString& name) const { return d_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestByteSource::a_part_is_clipped_data()
{
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<qint64>("length");
    QTest::addColumn<QByteArray>("part");
    constexpr qint64 far = 1LL << 40;
    QTest::newRow("inside") << 2LL << 3LL << QByteArray("cde");
    QTest::newRow("the whole") << 0LL << 8LL << QByteArray("abcdefgh");
    QTest::newRow("past the end") << 5LL << 100LL << QByteArray("fgh");
    QTest::newRow("far past the end") << 5LL << far << QByteArray("fgh");
    QTest::newRow("from the end") << 8LL << 4LL << QByteArray();
    QTest::newRow("from after the end") << far << far << QByteArray();
    QTest::newRow("no length") << 3LL << 0LL << QByteArray();
    QTest::newRow("negative length") << 3LL << -2LL << QByteArray();
}

void TestByteSource::a_part_is_clipped()
{
    QFETCH(const qint64, offset);
    QFETCH(const qint64, length);
    QFETCH(const QByteArray, part);
    for (const TByteSource& bytes : {TByteSource("abcdefgh"), In_File("abcdefgh")}) {
        QCOMPARE(bytes.Part(offset, length).Read(), part);
        QCOMPARE(bytes.Part(offset, length).Size(), qint64(part.size()));
        QCOMPARE(bytes.Part(offset, length).Is_Empty(), part.isEmpty());
        QCOMPARE(bytes.Read(offset, length), part);
    }
}

void TestByteSource::a_part_of_a_part_counts_from_its_beginning()
{
    QFETCH(const TByteSource, bytes);
    const TByteSource part = bytes.Part(4, 8);
    QCOMPARE(part.Read(), QByteArray("abcdefgh"));
    QCOMPARE(part.Part(2, 100).Read(), QByteArray("cdefgh"));
    QCOMPARE(part.Read(1, 2), QByteArray("bc"));
    QCOMPARE(part.Index_Of("ef"), qint64(4));
    QCOMPARE(part.Index_Of("56"), qint64(-1));
    QCOMPARE(part.Last_Index_Of("ab"), qint64(0));
    QVERIFY(part.Begins_With("abc"));
    QVERIFY(!part.Begins_With("0123"));
    QVERIFY(part.Begins_With(""));
    QVERIFY(!part.Begins_With("abcdefgh5"));
}

void TestByteSource::bytes_are_found_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QVector<qint64>>("places");
    QTest::newRow("nowhere") << 3 * mebibyte << QVector<qint64>{};
    QTest::newRow("at the beginning") << 3 * mebibyte << QVector<qint64>{0};
    QTest::newRow("at the end") << 3 * mebibyte << QVector<qint64>{3 * mebibyte - 4};
    QTest::newRow("across the boundary of a block")
        << 3 * mebibyte << QVector<qint64>{mebibyte - 1, 2 * mebibyte - 3};
    QTest::newRow("in a source of no whole blocks")
        << 2 * mebibyte + 7 << QVector<qint64>{5, mebibyte + 5, 2 * mebibyte + 1};
}

void TestByteSource::bytes_are_found()
{
    QFETCH(const qint64, size);
    QFETCH(const QVector<qint64>, places);
    QByteArray array(static_cast<int>(size), 'x');
    for (const qint64 place : places)
        array.replace(static_cast<int>(place), 4, "mark");
    for (const TByteSource& bytes : {TByteSource(array), In_File(array)}) {
        qint64 from = 0;
        for (const qint64 place : places) {
            QCOMPARE(bytes.Index_Of("mark", from), place);
            QCOMPARE(bytes.Index_Of("mark", place), place);
            from = place + 1;
        }
        QCOMPARE(bytes.Index_Of("mark", from), qint64(-1));
        QCOMPARE(bytes.Last_Index_Of("mark"), places.isEmpty() ? -1 : places.last());
    }
}

void TestByteSource::bytes_are_written()
{
    QFETCH(const TByteSource, bytes);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(bytes.Write_To(&buffer));
    QVERIFY(bytes.Part(3, 2).Write_To(&buffer));
    QCOMPARE(buffer.data(), QByteArray("contentte"));
    QFile file(In("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(bytes.Write_To(&file) && bytes.Part(3, 2).Write_To(&file) && file.flush());
    QCOMPARE(Support::Read_File(In("file")), QByteArray("contentte"));
    QFile full("/dev/full");
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(!bytes.Write_To(&full));
}

void TestByteSource::a_small_file_is_in_memory_and_a_large_one_is_not()
{
    const QByteArray small(int(TByteSource::Smallest_Open_File) - 1, 'x');
    Support::Write_File(In("file"), small);
    QVERIFY(TByteSource::Of_File(In("file")).Is_In_Memory());
    QCOMPARE(TByteSource::Of_File(In("file")).Read(), small);
    Support::Write_File(In("file"), small + 'y');
    QVERIFY(!TByteSource::Of_File(In("file")).Is_In_Memory());
    QCOMPARE(TByteSource::Of_File(In("file")).Read(), small + 'y');
}

void TestByteSource::what_is_no_regular_file_has_no_bytes()
{
    for (const QString& path : {In("missing"), QDir::tempPath(), QStringLiteral("/dev/zero")})
        QVERIFY(TByteSource::Of_File(path).Is_Empty());
}

void TestByteSource::bytes_of_a_changed_file_are_lost()
{
    Support::Write_File(In("file"), QByteArray(int(TByteSource::Smallest_Open_File), 'x'));
    const TByteSource bytes = TByteSource::Of_File(In("file"));
    QVERIFY(!bytes.Is_Lost());
    Support::Write_File(In("file"), "other");
    QVERIFY(bytes.Is_Lost() && bytes.Part(3, 4).Is_Lost());
    QCOMPARE(bytes.Read(0, 3), QByteArray());
    QCOMPARE(bytes.Index_Of("x"), qint64(-1));
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(!bytes.Write_To(&buffer));
}

void TestByteSource::large_arrays_are_spooled()
{
    const QByteArray small(Spool::Smallest_Array - 1, 'x');
    QVERIFY(Spool::Keep(small).Is_In_Memory());
    const TByteSource first = Spool::Keep(small + 'y');
    const TByteSource second = Spool::Keep(small + "zz");
    QVERIFY(!first.Is_In_Memory() && !second.Is_In_Memory());
    QCOMPARE(first.Read(), small + 'y');
    QCOMPARE(second.Read(), small + "zz");
}

void TestByteSource::arrays_stay_in_memory_without_a_folder_for_the_spool()
{
    qputenv("TMPDIR", QFile::encodeName(In("missing")));
    const QByteArray large(Spool::Smallest_Array, 'x');
    const TByteSource bytes = Spool::Keep(large);
    QVERIFY(bytes.Is_In_Memory());
    QCOMPARE(bytes.Read(), large);
}

/// Space on the disk, in bytes, of the file without a name that this process has in the folder.
qint64 TestByteSource::Space() const
{
    const QFileInfoList files = QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo& file : files) {
        struct stat state = {};
        if (file.symLinkTarget().startsWith(d_folder->path()) &&
            stat(qPrintable(file.filePath()), &state) == 0)
            return 512LL * state.st_blocks;
    }
    return -1;
}

void TestByteSource::the_space_of_a_spooled_array_is_returned()
{
    qputenv("TMPDIR", QFile::encodeName(d_folder->path()));
    const QByteArray large(mebibyte, 'x');
    auto first = std::make_unique<TByteSource>(Spool::Keep(large));
    auto part = std::make_unique<TByteSource>(first->Part(10, 3));
    const TByteSource second = Spool::Keep(large);
    QVERIFY(Space() >= 2 * mebibyte);
    first.reset();
    QCOMPARE(part->Read(), QByteArray("xxx"));
    part.reset();
    QVERIFY(Space() >= mebibyte && Space() < 2 * mebibyte);
    QVERIFY(second.Read() == large);
}

QTEST_MAIN(TestByteSource)
#include "test_bytesource.moc"
