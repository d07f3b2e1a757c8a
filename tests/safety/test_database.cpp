// The SQLite wrapper: values, transactions, files.

#include "src/safety/database.h"
#include "support/support.h"

#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using Support::Entries;
using Support::Mode;

class TestDatabase : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void values_come_back_as_they_were_data();
    void values_come_back_as_they_were();
    void numbers_and_nulls_come_back_as_they_were();
    void an_existing_file_is_not_overwritten();
    void a_folder_behind_a_link_is_accepted();
    void files_are_accessible_to_their_owner_only();
    void a_query_can_be_started_again();
    void a_database_without_a_write_ahead_log_has_a_log_size_of_0();
    void a_failed_statement_reports_its_reason();
    void a_statement_that_cannot_be_prepared_fails_without_crashing();
    void a_transaction_ends_with_its_commit();
    void committed_rows_stay_after_a_crash();
    void a_database_in_use_cannot_be_read();
    void a_file_that_is_no_database_is_refused();
    void closing_leaves_the_write_ahead_log();
    void a_checkpoint_empties_the_write_ahead_log();

private:
    QString Path() const { return d_folder->filePath("a.log"); }
    bool Create(TDatabase* database) const
    {
        return database->Create(Path()) &&
               database->Execute("CREATE TABLE t(a INTEGER PRIMARY KEY, b BLOB)");
    }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestDatabase::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
}

void TestDatabase::cleanup()
{
    d_folder.reset();
}

void TestDatabase::values_come_back_as_they_were_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString("");
    QTest::newRow("plain") << QString("Pump 7");
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("Насос \xf0\x9f\x98\x80");
    QTest::newRow("lone surrogates") << QString(QChar(0xdc00)) + QChar(0xd800) + 'x';
    QTest::newRow("zero character") << QString("a") + QChar(0) + 'b';
    QTest::newRow("control characters and line breaks") << QString("\x01\r\n\t ");
}

void TestDatabase::values_come_back_as_they_were()
{
    QFETCH(const QString, text);
    TDatabase database;
    QVERIFY(Create(&database));
    TStatement insert(&database, "INSERT INTO t VALUES(?, ?)");
    QVERIFY(insert.Run(1, text));
    QVERIFY(insert.Run(2, text.toUtf8()));
    TStatement query(&database, "SELECT b FROM t ORDER BY a");
    QVERIFY(query.Start());
    QVERIFY(query.Next());
    QCOMPARE(query.Text(0), text);
    QVERIFY(query.Next());
    QCOMPARE(query.Bytes(0), text.toUtf8());
    QVERIFY(!query.Next());
    QVERIFY(!query.Has_Failed());
}

void TestDatabase::numbers_and_nulls_come_back_as_they_were()
{
    TDatabase database;
    QVERIFY(Create(&database));
    const quint64 large = std::numeric_limits<quint64>::max() - 5;
    TStatement query(&database, "SELECT ?, ?, ?");
    QVERIFY(query.Start(-7, large, nullptr));
    QVERIFY(query.Next());
    QCOMPARE(query.Integer(0), qint64(-7));
    QCOMPARE(static_cast<quint64>(query.Integer(1)), large);
    QVERIFY(query.Is_Null(2));
    QVERIFY(!query.Is_Null(0));
}

void TestDatabase::an_existing_file_is_not_overwritten()
{
    Support::Write_File(Path(), "other");
    TDatabase database;
    QVERIFY(!database.Create(Path()));
    QCOMPARE(Support::Read_File(Path()), QByteArray("other"));
}

void TestDatabase::a_folder_behind_a_link_is_accepted()
{
    // Homes may be behind links.
    const QTemporaryDir elsewhere;
    QVERIFY(QFile::link(elsewhere.path(), d_folder->filePath("link")));
    TDatabase database;
    QVERIFY2(database.Create(d_folder->filePath("link/a.log")), qPrintable(database.Error()));
    QVERIFY(database.Execute("CREATE TABLE t(a)"));
    database.Close();
    QVERIFY(database.Open(d_folder->filePath("link/a.log")));
}

void TestDatabase::files_are_accessible_to_their_owner_only()
{
    const mode_t before = umask(0);
    TDatabase database;
    const bool is_created = Create(&database);
    umask(before);
    QVERIFY(is_created);
    QCOMPARE(Entries(d_folder->path()), QStringList({"a.log", "a.log-wal"}));
    for (const QString& name : Entries(d_folder->path()))
        QCOMPARE(Mode(d_folder->filePath(name)), QString("600"));
}

void TestDatabase::a_query_can_be_started_again()
{
    TDatabase database;
    QVERIFY(Create(&database));
    TStatement query(&database, "SELECT ?");
    for (const int value : {1, 2}) {
        QVERIFY(query.Start(value));
        QVERIFY(query.Next());
        QCOMPARE(query.Integer(0), qint64(value));
    }
}

void TestDatabase::a_database_without_a_write_ahead_log_has_a_log_size_of_0()
{
    {
        TDatabase database;
        QVERIFY(Create(&database));
        QVERIFY(database.Checkpoint());
    }
    QVERIFY(QFile::remove(Path() + "-wal"));
    TDatabase database;
    QVERIFY(database.Open(Path()));
    QCOMPARE(database.Log_Size(), qint64(0));
    QVERIFY(database.Sync());
}

void TestDatabase::a_failed_statement_reports_its_reason()
{
    TDatabase database;
    QVERIFY(Create(&database));
    TStatement insert(&database, "INSERT INTO t VALUES(?, ?)");
    QVERIFY(insert.Run(1, nullptr));
    QVERIFY(!insert.Run(1, nullptr));
    QVERIFY2(database.Error().contains("UNIQUE"), qPrintable(database.Error()));
    QVERIFY(insert.Run(2, nullptr));
}

void TestDatabase::a_statement_that_cannot_be_prepared_fails_without_crashing()
{
    TDatabase database;
    QVERIFY(Create(&database));
    TStatement statement(&database, "SELECT nothing FROM nowhere WHERE x=?");
    QVERIFY(statement.Has_Failed());
    QVERIFY(!statement.Start(1));
    QVERIFY(!statement.Next());
    QVERIFY(!statement.Run(1));
}

void TestDatabase::a_transaction_ends_with_its_commit()
{
    TDatabase database;
    QVERIFY(Create(&database));
    QVERIFY(!database.Is_In_Transaction());
    QVERIFY(database.Execute("BEGIN"));
    QVERIFY(database.Is_In_Transaction());
    QVERIFY(database.Execute("COMMIT"));
    QVERIFY(!database.Is_In_Transaction());
}

void TestDatabase::committed_rows_stay_after_a_crash()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        TDatabase database;
        if (!Create(&database) || !database.Execute("INSERT INTO t VALUES(1, NULL)") ||
            !database.Execute("BEGIN; INSERT INTO t VALUES(2, NULL)"))
            return 1;
        kill(getpid(), SIGKILL);
        return 1;
    });
    QCOMPARE(result.signal, SIGKILL);
    TDatabase database;
    QVERIFY(database.Open(Path()));
    TStatement query(&database, "SELECT a FROM t");
    QVERIFY(query.Start());
    QVERIFY(query.Next());
    QCOMPARE(query.Integer(0), qint64(1));
    QVERIFY(!query.Next());
}

void TestDatabase::a_database_in_use_cannot_be_read()
{
    TDatabase database;
    QVERIFY(Create(&database));
    TDatabase other;
    QVERIFY(!other.Open(Path()) || !other.Execute("SELECT * FROM t"));
    QVERIFY2(other.Error().contains("locked"), qPrintable(other.Error()));
}

void TestDatabase::a_file_that_is_no_database_is_refused()
{
    Support::Write_File(Path(), QByteArray(5000, 'x'));
    TDatabase database;
    QVERIFY(!database.Open(Path()) || !database.Execute("SELECT * FROM t"));
    database.Close();
    QVERIFY(!TDatabase().Open(d_folder->filePath("missing")));
    QCOMPARE(Support::Read_File(Path()), QByteArray(5000, 'x'));
    QCOMPARE(Entries(d_folder->path()), QStringList("a.log"));
}

void TestDatabase::closing_leaves_the_write_ahead_log()
{
    TDatabase database;
    QVERIFY(Create(&database));
    QVERIFY(database.Log_Size() > 0);
    database.Close();
    QVERIFY(!Support::Read_File(Path() + "-wal").isEmpty());
}

void TestDatabase::a_checkpoint_empties_the_write_ahead_log()
{
    TDatabase database;
    QVERIFY(Create(&database));
    QVERIFY(database.Checkpoint());
    QCOMPARE(database.Log_Size(), qint64(0));
    QVERIFY(database.Execute("INSERT INTO t VALUES(1, NULL)"));
    QVERIFY(database.Log_Size() > 0);
    QVERIFY(database.Sync());
}

QTEST_MAIN(TestDatabase)
#include "test_database.moc"
