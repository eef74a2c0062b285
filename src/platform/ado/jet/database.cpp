#include "platform/ado/jet/database.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/file.h"
#include "platform/ado/jet/sql.h"
#include "platform/ado/jet/text.h"
#include "platform/storage/access.h"
#include "platform/storage/logowner.h"

#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QUrl>
#include <QUuid>

#include <sqlite3.h>

namespace ado {

namespace {

QStringView textOf(sqlite3_value *value) {
    const void *text = sqlite3_value_text16(value);
    return {static_cast<const char16_t *>(text), sqlite3_value_bytes16(value) / 2};
}

/// like(pattern, text): SQLite calls it for `text Like pattern`.
void sqlLike(sqlite3_context *context, int, sqlite3_value **arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL || sqlite3_value_type(arguments[1]) == SQLITE_NULL)
        return sqlite3_result_null(context);
    // Getting one value as UTF-16 never moves the other's text.
    sqlite3_result_int(context, likeText(textOf(arguments[1]), textOf(arguments[0])) ? 1 : 0);
}

/// Int(number): the largest whole number that is not above it.
void sqlInt(sqlite3_context *context, int, sqlite3_value **arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return sqlite3_result_null(context);
    sqlite3_result_double(context, std::floor(sqlite3_value_double(arguments[0])));
}

/// A sort compares each text many times: the usual ones are widened without memory of their own.
class WideText {
  public:
    WideText(const void *utf8, int bytes) {
        const auto *text = static_cast<const char *>(utf8);
        if (bytes <= most && std::all_of(text, text + bytes, [](char each) { return each >= 0; })) {
            std::copy(text, text + bytes, m_short);
            m_view = QStringView(m_short, bytes);
        } else {
            m_view = m_long = QString::fromUtf8(text, bytes);
        }
    }
    WideText(const WideText &) = delete;
    WideText &operator=(const WideText &) = delete;

    [[nodiscard]] QStringView view() const { return m_view; }

  private:
    static constexpr int most = 128;
    char16_t m_short[most];
    QString m_long;
    QStringView m_view;
};

int sqlCompare(void *order, int leftBytes, const void *left, int rightBytes, const void *right) {
    return static_cast<const TextOrder *>(order)->compare(WideText(left, leftBytes).view(),
                                                          WideText(right, rightBytes).view());
}

/// What keeps the file from being written, in words that say what to do about it.
const char *refusedWrite(const QString &path) {
    switch (storage::writeBar(path)) {
    case storage::Bar::ReadOnlyDisk:
        return "The database %1 is on a disk that is mounted read-only. Make the disk writable and try again. (%2)";
    case storage::Bar::NoRight:
        return "You have no right to write the database %1 or its folder. Ask its owner or the administrator for it. "
               "(%2)";
    case storage::Bar::Unreadable:
        return "The database %1 may not be read, and not written either. Give its owner both rights (chmod u+rw) and "
               "try "
               "again. (%2)";
    case storage::Bar::ReadOnlyFile:
    case storage::Bar::None:
        break;
    }
    return "The database %1 is read-only. Remove the read-only attribute of the file, or give yourself the right to "
           "write it, its folder and the files beside it. (%2)";
}

/// A disk that is full, or a limit that is reached, shows in these as well.
bool isRefusedRoom(int code) {
    return code == SQLITE_IOERR_WRITE || code == SQLITE_IOERR_TRUNCATE || code == SQLITE_IOERR_FSYNC ||
           code == SQLITE_IOERR_SHMSIZE || code == SQLITE_IOERR_SHMMAP;
}

} // namespace

QString machinePath(const QString &path) {
    QString result = path;
    return result.replace(u'\\', u'/');
}

JetDatabase::JetDatabase(const QString &path, Mode mode, int busySeconds)
    : m_path(machinePath(path)), m_name(QUuid::createUuid().toString()), m_busySeconds(busySeconds),
      m_order(std::make_unique<TextOrder>()) {
    const QFileInfo file(m_path);
    storage::refuseLoneLog(m_path);
    if (mode != Mode::Create) {
        if (!file.isFile())
            throw Failure(failures::unspecified, QString("Could not find the database file %1. Put it back, or restore "
                                                         "it from a backup.")
                                                     .arg(m_path));
        // The engine would take a file that is shorter than any database for an empty one, and write over it. The file
        // is not looked into: closing it would let go of the locks that this process holds on it by another connection.
        constexpr qint64 shortest = 512;
        if (file.size() < shortest)
            fail(SQLITE_NOTADB, "it is too short");
        storage::refuseForeignLog(m_path);
        // The read-only mark of a file holds for everybody, also for those whom the system would let write.
        constexpr auto anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
        m_readOnly = mode == Mode::ReadOnly || !(file.permissions() & anyWrite) || !file.isWritable();
    }

    m_database = QSqlDatabase::addDatabase("QSQLITE", m_name);
    try {
        const QString timeout = QString("QSQLITE_BUSY_TIMEOUT=%1;QSQLITE_OPEN_URI").arg(busySeconds * 1000);
        const QString access = mode == Mode::Create ? "mode=rwc" : m_readOnly ? "mode=ro" : "mode=rw";
        // Where not even the engine's own files can be written, nobody else writes either.
        if (!tryOpen(timeout, access) && !(m_readOnly && tryOpen(timeout, "mode=ro&immutable=1")))
            fail(m_database.lastError().nativeErrorCode().toInt(), m_database.lastError().databaseText());
        // A file that was not made here is opened as it is: whatever it lacks, it is found unchanged afterwards.
        if (mode == Mode::Create || (m_madeHere && !m_readOnly))
            run("PRAGMA journal_mode=WAL");
        run("PRAGMA synchronous=FULL");
    } catch (const Failure &) {
        m_database = {};
        QSqlDatabase::removeDatabase(m_name);
        throw;
    }
}

JetDatabase::~JetDatabase() {
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_name);
}

bool JetDatabase::tryOpen(const QString &options, const QString &parameters) {
    const QByteArray path = QUrl::toPercentEncoding(QFileInfo(m_path).absoluteFilePath(), "/");
    m_database.close();
    m_database.setConnectOptions(options);
    m_database.setDatabaseName(QString("file:%1?%2").arg(QString::fromLatin1(path), parameters));
    if (!m_database.open())
        return false;
    addFunctions(handle());
    // Opening reads nothing; this is where a file that is no database shows.
    QSqlQuery look = query();
    if (look.exec("SELECT count(*) FROM sqlite_master WHERE name = 'jet_properties'") && look.next()) {
        m_madeHere = look.value(0).toInt() != 0;
        return true;
    }
    const int code = look.lastError().nativeErrorCode().toInt() & 0xff;
    if (code == SQLITE_CANTOPEN && m_readOnly)
        return false;
    fail(code, look.lastError().databaseText());
}

sqlite3 *JetDatabase::handle() const {
    const QVariant handle = m_database.driver()->handle();
    return *static_cast<sqlite3 *const *>(handle.constData());
}

void JetDatabase::addFunctions(sqlite3 *handle) {
    // A name in quotes that is no column is a mistake, never a text.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    // The file may come from anywhere: its schema calls no functions, and damage is noticed early.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    constexpr int pure = SQLITE_UTF16 | SQLITE_DETERMINISTIC;
    sqlite3_create_function_v2(handle, "like", 2, pure, nullptr, sqlLike, nullptr, nullptr, nullptr);
    sqlite3_create_function_v2(handle, "int", 1, pure, nullptr, sqlInt, nullptr, nullptr, nullptr);
    sqlite3_create_collation_v2(handle, jetCollation, SQLITE_UTF8, m_order.get(), sqlCompare, nullptr);
}

QSqlQuery JetDatabase::query() const {
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    return query;
}

void JetDatabase::run(const QString &statement) {
    QSqlQuery step = query();
    if (!step.exec(statement))
        failQuery(step);
}

void JetDatabase::run(QSqlQuery &query) {
    if (!query.exec())
        failQuery(query);
}

void JetDatabase::prepare(QSqlQuery &query, const QString &statement) {
    if (!query.prepare(statement))
        failQuery(query);
}

void JetDatabase::markLog() {
    if (!m_madeHere || m_readOnly)
        return;
    // What was to be written is; nobody waits for the mark.
    sqlite3_busy_timeout(handle(), 0);
    storage::markLog(handle(), m_markedLog);
    constexpr int milliseconds = 1000;
    sqlite3_busy_timeout(handle(), m_busySeconds * milliseconds);
}

void JetDatabase::requirePlace() const {
    int hasMoved = 0;
    if (sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved) != SQLITE_OK || hasMoved == 0)
        return;
    throw Failure(failures::unspecified,
                  QString("The database %1 was removed, renamed or replaced while this program had it open. Nothing "
                          "more is written, for it would be lost. End this program, put the database or a backup of it "
                          "back, and start again.")
                      .arg(m_path));
}

void JetDatabase::begin() {
    if (m_depth == 0)
        requirePlace();
    run(m_depth == 0 ? "BEGIN IMMEDIATE" : "SAVEPOINT inner");
    ++m_depth;
}

void JetDatabase::beginReading() {
    run("BEGIN DEFERRED");
    ++m_depth;
}

void JetDatabase::commit() {
    run(m_depth <= 1 ? "COMMIT" : "RELEASE inner");
    --m_depth;
    markLog();
}

void JetDatabase::rollback() {
    m_depth = std::max(m_depth - 1, 0);
    run(m_depth == 0 ? "ROLLBACK" : "ROLLBACK TO inner");
    if (m_depth > 0)
        run("RELEASE inner");
}

void JetDatabase::failQuery(const QSqlQuery &query) const {
    const QSqlError error = query.lastError();
    fail(error.nativeErrorCode().toInt(), error.databaseText().isEmpty() ? error.text() : error.databaseText());
}

void JetDatabase::fail(int sqliteCode, const QString &sqliteText) const {
    const auto refused = [&](const char *text) {
        return Failure(failures::unspecified, QString(text).arg(m_path, sqliteText));
    };
    switch (sqliteCode & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        throw refused("The database %1 is being written by another program and did not become free in time. Please try "
                      "again. (%2)");
    case SQLITE_READONLY:
    case SQLITE_PERM:
        throw refused(refusedWrite(m_path));
    case SQLITE_FULL:
        throw refused("The database %1 could not be written: the disk is full. Make room on it and try again. (%2)");
    case SQLITE_IOERR:
        if (isRefusedRoom(sqliteCode))
            throw refused("The database %1 could not be written: its disk is full or takes no more data. Make room on "
                          "it, or have the limit raised, and try again. (%2)");
        throw refused("The database %1 could not be read or written. Check its disk and try again. (%2)");
    case SQLITE_CANTOPEN:
        throw refused("The database %1 could not be opened. Check the rights to the file and its folder. (%2)");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        throw refused("The file %1 is damaged or no database of this kind. Restore it from a backup. (%2)");
    case SQLITE_CONSTRAINT:
        throw Failure(constraintFailed, QString("A value breaks a rule of its column and was not stored: %1. Text "
                                                "columns without empty texts take a blank instead.")
                                            .arg(sqliteText));
    default:
        if (sqliteText.startsWith("no such table") || sqliteText.contains("no such column"))
            throw Failure(statementFailed,
                          QString("The database %1 has not all that this version needs: %2. It was made by an older "
                                  "version or another program, and was left as it is. Put the right file in its place, "
                                  "or take it away and start again to make a new one.")
                              .arg(m_path, sqliteText));
        throw Failure(statementFailed, QString("The database refused the statement: %1.").arg(sqliteText));
    }
}

} // namespace ado
