#include "src/safety/database.h"

#include <QFile>

#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Exclusive locking needs no shared memory file. Commits do not sync: the user would wait.
const char* const settings =
    "PRAGMA locking_mode=EXCLUSIVE; PRAGMA synchronous=OFF;"
    "PRAGMA temp_store=MEMORY; PRAGMA mmap_size=0; PRAGMA trusted_schema=0;"
    "PRAGMA cell_size_check=1; PRAGMA wal_autocheckpoint=0;";

bool Sync_File(sqlite3_file* file)
{
    // A write-ahead log without frames may not be open yet.
    return !file || !file->pMethods || file->pMethods->xSync(file, SQLITE_SYNC_NORMAL) == SQLITE_OK;
}

} // namespace

bool TDatabase::Create(const QString& path)
{
    const QByteArray system_path = QFile::encodeName(path);
    const int descriptor =
        open(system_path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return false;
    // The umask may deny even the owner access. SQLite gives the write-ahead log the same mode.
    const bool is_private = fchmod(descriptor, S_IRUSR | S_IWUSR) == 0;
    close(descriptor);
    return is_private && Connect(path) && Execute(settings) &&
           Execute("PRAGMA page_size=" + QByteArray::number(Page_Size)) &&
           // The change to WAL would create a journal file otherwise.
           Execute("PRAGMA journal_mode=MEMORY; PRAGMA journal_mode=WAL");
}

bool TDatabase::Open(const QString& path)
{
    return Connect(path) && Execute(settings);
}

bool TDatabase::Connect(const QString& path)
{
    Close();
    return sqlite3_open_v2(QFile::encodeName(path).constData(), &d_database,
                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) == SQLITE_OK &&
           sqlite3_db_config(d_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr) == SQLITE_OK;
}

void TDatabase::Close()
{
    sqlite3_close(d_database);
    d_database = nullptr;
}

bool TDatabase::Execute(const char* sql)
{
    return sqlite3_exec(d_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool TDatabase::Is_In_Transaction() const
{
    return sqlite3_get_autocommit(d_database) == 0;
}

/// One of SQLite's open files. Opening it a second time would drop its locks.
sqlite3_file* TDatabase::File(int which) const
{
    sqlite3_file* file = nullptr;
    sqlite3_file_control(d_database, "main", which, &file);
    return file;
}

bool TDatabase::Sync()
{
    // The database first: SQLite ignores a log beside an empty database.
    return Sync_File(File(SQLITE_FCNTL_FILE_POINTER)) &&
           Sync_File(File(SQLITE_FCNTL_JOURNAL_POINTER));
}

bool TDatabase::Checkpoint()
{
    const bool is_done = Execute("PRAGMA synchronous=FULL") &&
                         sqlite3_wal_checkpoint_v2(d_database, nullptr, SQLITE_CHECKPOINT_TRUNCATE,
                                                   nullptr, nullptr) == SQLITE_OK;
    // New frames must not follow old ones that a crash of the system brings back.
    return Execute("PRAGMA synchronous=OFF") && is_done && Sync();
}

qint64 TDatabase::Log_Size() const
{
    sqlite3_file* const file = File(SQLITE_FCNTL_JOURNAL_POINTER);
    sqlite3_int64 size = 0;
    if (file && file->pMethods)
        file->pMethods->xFileSize(file, &size);
    return size;
}

qint64 TDatabase::Changed_Rows() const
{
    return sqlite3_total_changes64(d_database);
}

QString TDatabase::Error() const
{
    return QString::fromUtf8(sqlite3_errmsg(d_database));
}

TStatement::TStatement(TDatabase* database, const char* sql)
{
    d_has_failed =
        sqlite3_prepare_v2(database->d_database, sql, -1, &d_statement, nullptr) != SQLITE_OK;
}

TStatement::~TStatement()
{
    sqlite3_finalize(d_statement);
}

bool TStatement::Next()
{
    if (d_has_failed)
        return false;
    const int result = sqlite3_step(d_statement);
    d_has_failed = result != SQLITE_ROW && result != SQLITE_DONE;
    return result == SQLITE_ROW;
}

void TStatement::Reset()
{
    if (!d_statement)
        return;
    sqlite3_reset(d_statement);
    // The values may not live any longer.
    sqlite3_clear_bindings(d_statement);
}

bool TStatement::Is_Null(int column) const
{
    return sqlite3_column_type(d_statement, column) == SQLITE_NULL;
}

qint64 TStatement::Integer(int column) const
{
    return sqlite3_column_int64(d_statement, column);
}

QByteArray TStatement::Bytes(int column) const
{
    const void* const bytes = sqlite3_column_blob(d_statement, column);
    return QByteArray(static_cast<const char*>(bytes), sqlite3_column_bytes(d_statement, column));
}

QString TStatement::Text(int column) const
{
    const QByteArray bytes = Bytes(column);
    QString text(bytes.size() / static_cast<int>(sizeof(QChar)), Qt::Uninitialized);
    std::memcpy(text.data(), bytes.constData(),
                static_cast<std::size_t>(text.size()) * sizeof(QChar));
    return text;
}

bool TStatement::Bind(int parameter, std::nullptr_t)
{
    return sqlite3_bind_null(d_statement, parameter) == SQLITE_OK;
}

bool TStatement::Bind(int parameter, qint64 value)
{
    return sqlite3_bind_int64(d_statement, parameter, value) == SQLITE_OK;
}

bool TStatement::Bind(int parameter, const QByteArray& value)
{
    return Bind_Blob(parameter, value.constData(), value.size());
}

bool TStatement::Bind(int parameter, const QString& value)
{
    return Bind_Blob(parameter, value.constData(),
                     value.size() * static_cast<qint64>(sizeof(QChar)));
}

/// Binds bytes that live until the statement is reset.
bool TStatement::Bind_Blob(int parameter, const void* bytes, qint64 size)
{
    return sqlite3_bind_blob64(d_statement, parameter, bytes, static_cast<sqlite3_uint64>(size),
                               nullptr) == SQLITE_OK;
}
