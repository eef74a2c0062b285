#include "desk/store/connection.h"

#include "desk/store/storedtext.h"
#include "platform/value/failure.h"

#include <QSqlError>

#include <atomic>

namespace desk {

namespace {

/// A parameter of this many bytes is not worth keeping in memory with its statement.
constexpr qsizetype largeParameter = 65536;

/// Result codes of the engine; the low byte is the primary code.
enum Code {
    Permission = 3,
    Busy = 5,
    Locked = 6,
    NoMemory = 7,
    ReadOnly = 8,
    InputOutput = 10,
    Corrupt = 11,
    Full = 13,
    CannotOpen = 14,
    Authorization = 23,
    NoDatabase = 26
};
constexpr int readFailed = InputOutput | (1 << 8);
constexpr int shortRead = InputOutput | (2 << 8);
constexpr int corruptPages = InputOutput | (33 << 8);

Failure failureFor(const QString &path, int code, const QString &detail) {
    switch (code & 0xFF) {
    case Busy:
    case Locked:
        return {failures::unspecified,
                QStringLiteral("The store %1 is locked by another program; close it and try again.").arg(path)};
    case Permission:
    case ReadOnly:
    case CannotOpen:
    case Authorization:
        return {failures::accessDenied, QStringLiteral("The store %1 cannot be opened for writing; check that its "
                                                       "folder exists and that you may write to both.")
                                            .arg(path)};
    case InputOutput:
        if (code == readFailed || code == shortRead || code == corruptPages)
            return {failures::unspecified, QStringLiteral("The store %1 cannot be read (%2); check the disk, or put "
                                                          "a copy of the file from a backup in its place.")
                                               .arg(path, detail)};
        [[fallthrough]];
    case Full:
        return {failures::noDiskSpace, QStringLiteral("The store %1 cannot be written: its disk is full or takes no "
                                                      "more data; make room and try again. Nothing was changed.")
                                           .arg(path)};
    case Corrupt:
    case NoDatabase:
        return {failures::unspecified, QStringLiteral("The store %1 is damaged or is no store (%2); it was left as it "
                                                      "is. Put a copy of the file from a backup in its place.")
                                           .arg(path, detail)};
    case NoMemory:
        return Failure(failures::outOfMemory);
    default:
        return {failures::unspecified, QStringLiteral("The store %1 refused a request: %2.").arg(path, detail)};
    }
}

QString newConnectionName() {
    static std::atomic<quint64> last{0};
    return QStringLiteral("desk-store-%1").arg(++last);
}

/// The names of a statement's parameters in the order of their first appearance.
///
/// REQUIRES: no colon in the statement but before a parameter; the statements are this folder's own.
std::vector<std::string> parametersOf(std::string_view sql) {
    std::vector<std::string> names;
    for (std::size_t at = sql.find(':'); at != std::string_view::npos; at = sql.find(':', at + 1)) {
        std::size_t end = at + 1;
        while (end < sql.size() && (std::isalnum(static_cast<unsigned char>(sql[end])) || sql[end] == '_'))
            ++end;
        std::string name(sql.substr(at + 1, end - at - 1));
        if (std::ranges::find(names, name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

} // namespace

QString Row::text(int column) const { return textOf(m_query.value(column)); }

Connection::Connection(const QString &path, std::chrono::milliseconds wait)
    : m_path(path), m_name(newConnectionName()),
      m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name)) {
    m_database.setDatabaseName(path);
    m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(wait.count()));
    if (!m_database.open()) {
        const QSqlError error = m_database.lastError();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
        fail(error);
    }
}

Connection::~Connection() {
    m_prepared.clear();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

void Connection::fail(const QSqlError &error) const {
    throw failureFor(m_path, error.nativeErrorCode().toInt(), error.databaseText());
}

Connection::Prepared &Connection::prepare(std::string_view sql) {
    if (const auto known = m_prepared.find(sql); known != m_prepared.end())
        return known->second;
    Prepared prepared{.query = QSqlQuery(m_database), .parameters = {}};
    for (std::string &name : parametersOf(sql)) {
        QString placeholder = u':' + QString::fromStdString(name);
        prepared.parameters.push_back({.name = std::move(name), .placeholder = std::move(placeholder)});
    }
    prepared.query.setForwardOnly(true);
    if (!prepared.query.prepare(QString::fromLatin1(sql.data(), static_cast<qsizetype>(sql.size()))))
        fail(prepared.query.lastError());
    return m_prepared.emplace(std::string(sql), std::move(prepared)).first->second;
}

void Connection::execute(Prepared &prepared, Binds binds) {
    for (const Bind &bind : binds) {
        const auto at = std::ranges::find(prepared.parameters, bind.name, &Parameter::name);
        Q_ASSERT(at != prepared.parameters.end());
        prepared.query.bindValue(at->placeholder, bind.value);
    }
    if (!prepared.query.exec()) {
        const QSqlError error = prepared.query.lastError();
        prepared.query.finish();
        fail(error);
    }
}

qint64 Connection::run(std::string_view sql, Binds binds) {
    Prepared &prepared = prepare(sql);
    execute(prepared, binds);
    const qint64 changed = prepared.query.numRowsAffected();
    const bool large = std::ranges::any_of(binds, [](const Bind &bind) {
        return bind.value.typeId() == QMetaType::QByteArray && bind.value.toByteArray().size() >= largeParameter;
    });
    if (large)
        m_prepared.erase(m_prepared.find(sql));
    else
        prepared.query.finish();
    return changed;
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

QVariant Connection::once(const QString &sql) {
    QSqlQuery query(m_database);
    if (!query.exec(sql))
        fail(query.lastError());
    return query.next() ? query.value(0) : QVariant();
}

Connection::Reading::Reading(Connection &connection, std::string_view sql, Binds binds)
    : m_connection(connection), m_prepared(connection.prepare(sql)) {
    m_connection.execute(m_prepared, binds);
}

Connection::Reading::~Reading() { m_prepared.query.finish(); }

bool Connection::Reading::next() const {
    if (m_prepared.query.next())
        return true;
    if (m_prepared.query.lastError().isValid())
        m_connection.fail(m_prepared.query.lastError());
    return false;
}

Transaction::Transaction(Connection &connection, Kind kind) : m_connection(connection) {
    m_connection.run(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
    if (m_open)
        // After some failures the engine has rolled back by itself and says so: that is what is wanted.
        static_cast<void>(Attempt([this] { m_connection.run("ROLLBACK"); }));
}

void Transaction::commit() {
    m_connection.run("COMMIT");
    m_open = false;
}

} // namespace desk
