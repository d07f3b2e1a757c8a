#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>

struct sqlite3;
struct sqlite3_file;
struct sqlite3_stmt;

/// An SQLite database in a file that only this process uses while it is open.
///
/// Commits go to the write-ahead log FILE-wal. They survive a crash of the program, but a crash of
/// the system only after Sync(). Functions return false on failure.
class TDatabase
{
public:
    /// In bytes. Small, since most transactions change one row on each of two or three pages.
    static constexpr int Page_Size = 2048;
    /// First bytes of every database.
    static QByteArray Signature() { return QByteArrayLiteral("SQLite format 3\0"); }

    TDatabase() = default;
    ~TDatabase() { Close(); }
    TDatabase(const TDatabase&) = delete;
    TDatabase& operator=(const TDatabase&) = delete;

    /// Creates a database with mode 0600. Refuses an existing file.
    bool Create(const QString& path);
    /// Opens an existing database, which must be writable.
    bool Open(const QString& path);
    /// Closes the database and leaves the write-ahead log as it is. Statements must not exist.
    void Close();
    bool Is_Open() const { return d_database != nullptr; }

    /// Runs SQL without parameters and results.
    bool Execute(const char* sql);
    /// Whether a transaction has begun and was not ended, also by a failure.
    bool Is_In_Transaction() const;

    /// Syncs database and write-ahead log to the disk.
    bool Sync();
    /// Moves the content of the write-ahead log to the database and empties the log. Syncs both.
    bool Checkpoint();
    /// Size of the write-ahead log in bytes.
    qint64 Log_Size() const;

    /// Number of rows changed since the database was opened.
    qint64 Changed_Rows() const;
    /// Why the last call failed.
    QString Error() const;

private:
    friend class TStatement;

    bool Connect(const QString& path);
    sqlite3_file* File(int which) const;

    sqlite3* d_database = nullptr;
};

/// A prepared SQL statement. Text is stored as a blob of UTF-16, so that every QString survives.
class TStatement
{
public:
    TStatement(TDatabase* database, const char* sql);
    ~TStatement();
    TStatement(const TStatement&) = delete;
    TStatement& operator=(const TStatement&) = delete;

    /// Runs a statement without results. The values replace the parameters in their order.
    template <typename... TValue>
    bool Run(const TValue&... values)
    {
        const bool is_done = Start(values...) && !Next() && !d_has_failed;
        Reset();
        return is_done;
    }

    /// Starts a query; Next() goes to its rows. The values must live until Reset().
    template <typename... TValue>
    bool Start(const TValue&... values)
    {
        Reset();
        int parameter = 0;
        d_has_failed = !d_statement || !(Bind(++parameter, values) && ...);
        return !d_has_failed;
    }

    /// Goes to the next row; false after the last one and on failure.
    bool Next();
    /// Ends a query.
    void Reset();
    /// Whether preparing, starting or reading failed.
    bool Has_Failed() const { return d_has_failed; }

    // Values of the row, by column.
    bool Is_Null(int column) const;
    qint64 Integer(int column) const;
    QByteArray Bytes(int column) const;
    QString Text(int column) const; ///< as stored by this class

private:
    bool Bind(int parameter, std::nullptr_t value);
    bool Bind(int parameter, qint64 value);
    bool Bind(int parameter, int value) { return Bind(parameter, qint64{value}); }
    bool Bind(int parameter, quint64 value) { return Bind(parameter, static_cast<qint64>(value)); }
    bool Bind(int parameter, const QByteArray& value);
    bool Bind(int parameter, const QString& value);
    bool Bind_Blob(int parameter, const void* bytes, qint64 size);

    sqlite3_stmt* d_statement = nullptr;
    bool d_has_failed = false;
};
