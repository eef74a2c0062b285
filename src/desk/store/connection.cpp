#include "desk/store/connection.h"

#include "platform/storage/access.h"
#include "platform/value/failure.h"

#include <sqlite3.h>

namespace desk {

namespace {

/// What keeps the store from being written, in words that say what to do about it.
QString refusedWrite(const QString &path) {
    switch (storage::writeBar(path)) {
    case storage::Bar::ReadOnlyDisk:
        return QStringLiteral("The store %1 is on a disk that is mounted read-only; make the disk writable and try "
                              "again.")
            .arg(path);
    case storage::Bar::Unreadable:
        return QStringLiteral("The store %1 may not be read, and not written either; give its owner both rights (chmod "
                              "u+rw) and try again.")
            .arg(path);
    case storage::Bar::ReadOnlyFile:
        return QStringLiteral("The store %1 is marked read-only; take the mark off the file (chmod u+w) and try again.")
            .arg(path);
    case storage::Bar::NoRight:
        return QStringLiteral("You have no right to write to the store %1 or to its folder; ask its owner or the "
                              "administrator for it.")
            .arg(path);
    case storage::Bar::None:
        break;
    }
    return QStringLiteral("The store %1 cannot be opened for writing; check that its folder exists and that you may "
                          "write to both, and to the files beside it whose names begin with the store's.")
        .arg(path);
}

Failure failureFor(const QString &path, int code, const QString &detail) {
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {failures::unspecified,
                QStringLiteral("The store %1 is locked by another program; close it and try again.").arg(path)};
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_AUTH:
        return {failures::accessDenied, refusedWrite(path)};
    case SQLITE_IOERR:
        if (code == SQLITE_IOERR_READ || code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_CORRUPTFS)
            return {failures::unspecified, QStringLiteral("The store %1 cannot be read (%2); check the disk, or put "
                                                          "a copy of the file from a backup in its place.")
                                               .arg(path, detail)};
        [[fallthrough]];
    case SQLITE_FULL:
        return {failures::noDiskSpace, QStringLiteral("The store %1 cannot be written: its disk is full or takes no "
                                                      "more data; make room and try again. Nothing was changed.")
                                           .arg(path)};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return {failures::unspecified, QStringLiteral("The store %1 is damaged or is no store (%2); it was left as it "
                                                      "is. Put a copy of the file from a backup in its place.")
                                           .arg(path, detail)};
    case SQLITE_NOMEM:
        return Failure(failures::outOfMemory);
    default:
        return {failures::unspecified, QStringLiteral("The store %1 refused a request: %2.").arg(path, detail)};
    }
}

} // namespace

void Connection::Closer::operator()(sqlite3 *database) const { sqlite3_close(database); }

Connection::Connection(const QString &path, std::chrono::milliseconds wait) : m_path(path) {
    sqlite3 *database = nullptr;
    const int code =
        sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_database.reset(database);
    if (code != SQLITE_OK)
        fail(code);
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, static_cast<int>(wait.count()));
}

Connection::~Connection() = default;

void Connection::fail(int code) const {
    throw failureFor(m_path, code, QString::fromUtf8(sqlite3_errmsg(m_database.get())));
}

Statement &Connection::prepare(std::string_view sql) {
    if (const auto known = m_statements.find(sql); known != m_statements.end())
        return known->second;
    Statement statement(m_database.get(), sql);
    if (statement.failed())
        fail(statement.result());
    return m_statements.emplace(std::string(sql), std::move(statement)).first->second;
}

qint64 Connection::run(std::string_view sql, Binds binds) {
    Reading running(*this, sql, binds);
    while (running.next()) {
    }
    return sqlite3_changes64(m_database.get());
}

std::optional<QVariant> Connection::value(std::string_view sql, std::initializer_list<Bind> binds) {
    std::optional<QVariant> found;
    each(sql, binds, [&found](const Row &row) {
        found = row[0];
        return false;
    });
    return found;
}

qint64 Connection::dataVersion() { return value("PRAGMA data_version").value_or(0).toLongLong(); }

qint64 Connection::ownWrites() const { return sqlite3_total_changes64(m_database.get()); }

QVariant Connection::once(std::string_view sql) {
    Statement statement(m_database.get(), sql);
    const QVariant first = !statement.failed() && statement.next() ? statement.row()[0] : QVariant();
    if (statement.failed())
        fail(statement.result());
    return first;
}

Connection::Reading::Reading(Connection &connection, std::string_view sql, Binds binds)
    : m_connection(connection), m_statement(connection.prepare(sql)) {
    m_statement.bind(binds);
    if (!m_statement.failed())
        return;
    const int code = m_statement.result();
    m_statement.finish();
    m_connection.fail(code);
}

Connection::Reading::~Reading() { m_statement.finish(); }

bool Connection::Reading::next() {
    if (m_statement.next())
        return true;
    if (m_statement.failed())
        m_connection.fail(m_statement.result());
    return false;
}

Transaction::Transaction(Connection &connection, Kind kind) : m_connection(connection) {
    m_connection.run(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
    if (m_open)
        // After some failures the engine has rolled back by itself and says so: that is what is wanted.
        Attempt([this] { m_connection.run("ROLLBACK"); });
}

void Transaction::commit() {
    m_connection.run("COMMIT");
    m_open = false;
}

} // namespace desk
