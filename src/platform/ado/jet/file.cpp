#include "platform/ado/jet/file.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/database.h"
#include "platform/ado/jet/selection.h"
#include "platform/ado/jet/sql.h"
#include "platform/storage/durable.h"

#include <QFile>
#include <QSet>

#include <sqlite3.h>

#include <limits>

namespace ado {

namespace {

QVariant bound(const Value &value) {
    struct Visitor {
        QVariant operator()(bool flag) const { return flag ? -1 : 0; }
        QVariant operator()(qint16 number) const { return static_cast<int>(number); }
        QVariant operator()(qint32 number) const { return number; }
        QVariant operator()(double number) const { return number; }
        QVariant operator()(Currency amount) const { return static_cast<qlonglong>(amount.scaled()); }
        QVariant operator()(DateTime moment) const { return moment.days; }
        // A text of no characters is a text, not Null.
        QVariant operator()(const QString &text) const { return text.isNull() ? QString("") : text; }
        QVariant operator()(std::monostate) const { return {}; }
        QVariant operator()(Value::Null) const { return {}; }
        QVariant operator()(Value::Missing) const { return {}; }
        QVariant operator()(const automation::ObjectPtr &) const { throw Failure(failures::typeMismatch); }
        QVariant operator()(const ValueList &) const { throw Failure(failures::typeMismatch); }
    };
    return std::visit(Visitor{}, value.held());
}

bool hasDatabaseHeader(const QString &path) {
    QFile file(path);
    // One that can't be read shows that when it is opened.
    return !file.open(QFile::ReadOnly) || file.read(16) == QByteArray("SQLite format 3", 16);
}

class JetFile final : public Provider {
  public:
    JetFile(const QString &path, int busySeconds) : m_database(path, JetDatabase::Mode::Write, busySeconds) {}

    RowSet select(const QString &source) override {
        const JetStatement statement = translateJetSource(source, moneyColumns());
        if (!statement.isSelect)
            throw Failure(statementFailed,
                          QString("A recordset needs a table or a SELECT, and this is none: %1").arg(source.left(500)));
        if (!statement.lookup.isEmpty())
            keepLookup(statement.table, statement.lookup);
        JetSelection selection(m_database, statement.text);
        RowSet set;
        set.columns = selection.columns();
        if (!statement.table.isEmpty())
            findKey(statement.table, set);
        while (selection.next())
            set.rows.push_back(selection.row(set.columns));
        return set;
    }

    qint64 execute(const QString &statement) override {
        const JetStatement translated = translateJetStatement(statement, moneyColumns());
        QSqlQuery query = m_database.query();
        m_database.prepare(query, translated.text);
        m_database.run(query);
        // It may have changed the schema.
        m_haveMoney = false;
        m_keys.clear();
        const qint64 affected = query.numRowsAffected();
        query.finish();
        m_database.markLog();
        return affected;
    }

    qint32 insert(const RowSet &set, const Row &row, const std::vector<bool> &assigned) override {
        QStringList names;
        QStringList marks;
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (assigned[column]) {
                names.append(quotedName(set.columns[column].name));
                marks.append("?");
            }
        }
        const QString table = quotedName(set.table);
        QSqlQuery &query =
            prepared(names.isEmpty()
                         ? QString("INSERT INTO %1 DEFAULT VALUES").arg(table)
                         : QString("INSERT INTO %1 (%2) VALUES (%3)").arg(table, names.join(", "), marks.join(", ")));
        int place = 0;
        for (std::size_t column = 0; column < row.size(); ++column)
            if (assigned[column])
                query.bindValue(place++, bound(row[column]));
        return static_cast<qint32>(write(query).key);
    }

    void update(const RowSet &set, const Row &original, const Row &row, const std::vector<bool> &assigned) override {
        QStringList changes;
        for (std::size_t column = 0; column < row.size(); ++column)
            if (assigned[column])
                changes.append(quotedName(set.columns[column].name) + " = ?");
        QSqlQuery &query =
            prepared(QString("UPDATE %1 SET %2 WHERE %3").arg(quotedName(set.table), changes.join(", "), asRead(set)));
        int place = 0;
        for (std::size_t column = 0; column < row.size(); ++column)
            if (assigned[column])
                query.bindValue(place++, bound(row[column]));
        runOnOriginal(query, place, original);
    }

    void remove(const RowSet &set, const Row &original) override {
        QSqlQuery &query = prepared(QString("DELETE FROM %1 WHERE %2").arg(quotedName(set.table), asRead(set)));
        runOnOriginal(query, 0, original);
    }

    qint32 lastNumber(const QString &table) override {
        QSqlQuery query = m_database.query();
        m_database.prepare(query, "SELECT seq FROM sqlite_sequence WHERE name = ? COLLATE NOCASE");
        query.bindValue(0, table);
        m_database.run(query);
        return query.next() ? static_cast<qint32>(query.value(0).toLongLong()) : 0;
    }

    bool raiseLastNumber(const QString &table, qint32 number) override {
        if (number >= std::numeric_limits<qint32>::max())
            throw Failure(failures::overflow);
        // In one go: another program may give numbers, or raise them, at the same moment.
        begin();
        bool isRaised = false;
        const auto failure = Attempt([&] {
            isRaised = lastNumber(table) < number;
            if (isRaised && writeLastNumber("UPDATE sqlite_sequence SET seq = ?1 WHERE name = ?2 COLLATE NOCASE", table,
                                            number) == 0)
                writeLastNumber("INSERT INTO sqlite_sequence (seq, name) SELECT ?1, name FROM sqlite_master WHERE "
                                "type = 'table' AND name = ?2 COLLATE NOCASE",
                                table, number);
            commit();
        });
        if (!failure)
            return isRaised;
        rollback();
        throw Failure(*failure);
    }

    void beginRun() override {
        QSqlQuery mode = m_database.query();
        m_database.prepare(mode, "PRAGMA journal_mode");
        m_database.run(mode);
        // Only with a log of its own the file stays whole without a wait for each change; in a transaction there is one
        // wait anyway.
        if (!mode.next() || mode.value(0).toString() != "wal" || m_database.isReadOnly() ||
            sqlite3_get_autocommit(m_database.handle()) == 0)
            return;
        mode.finish();
        m_database.run("PRAGMA synchronous=NORMAL");
        m_changesBeforeRun = sqlite3_total_changes(m_database.handle());
    }

    void endRun() override {
        if (!m_changesBeforeRun)
            return;
        m_database.run("PRAGMA synchronous=FULL");
        if (std::exchange(m_changesBeforeRun, std::nullopt) != sqlite3_total_changes(m_database.handle()))
            syncLog();
    }

    void begin() override { m_database.begin(); }
    void beginReading() override { m_database.beginReading(); }
    void commit() override { m_database.commit(); }
    void rollback() override { m_database.rollback(); }

  private:
    qint64 writeLastNumber(const QString &statement, const QString &table, qint32 number) {
        QSqlQuery &query = prepared(statement);
        query.bindValue(0, number);
        query.bindValue(1, table);
        return write(query).rows;
    }

    void syncLog() {
        sqlite3_file *log = nullptr;
        sqlite3_file_control(m_database.handle(), "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
        if (log == nullptr || log->pMethods == nullptr)
            return;
        if (const int code = log->pMethods->xSync(log, SQLITE_SYNC_NORMAL); code != SQLITE_OK)
            m_database.fail(code, sqlite3_errstr(code));
    }

    /// The condition of the optimistic lock: the row is as it was read, in every column that was.
    static QString asRead(const RowSet &set) {
        QStringList conditions;
        for (const Column &column : set.columns)
            conditions.append(quotedName(column.name) + " IS ?");
        return conditions.join(" AND ");
    }

    void runOnOriginal(QSqlQuery &query, int place, const Row &original) {
        for (const Value &value : original)
            query.bindValue(place++, bound(value));
        if (write(query).rows == 0)
            throw Failure(failures::unspecified, "The row was changed or deleted by another program since it was read. "
                                                 "It was left as it is; read it again and repeat the change.");
    }

    struct Written {
        qint64 rows;
        qint64 key;
    };

    /// Runs a prepared change. It is committed when this returns, and the statement keeps no lock, done or failed.
    Written write(QSqlQuery &query) {
        if (sqlite3_get_autocommit(m_database.handle()) != 0)
            m_database.requirePlace();
        struct Finish {
            QSqlQuery &query;
            ~Finish() { query.finish(); }
        };
        Written written{};
        {
            const Finish finish{query};
            m_database.run(query);
            written = {query.numRowsAffected(), query.lastInsertId().toLongLong()};
        }
        m_database.markLog();
        return written;
    }

    /// Writing statements come again and again, with other values.
    QSqlQuery &prepared(const QString &statement) {
        constexpr std::size_t most = 64;
        const auto found = m_prepared.find(statement);
        if (found != m_prepared.end())
            return *found->second;
        if (m_prepared.size() >= most)
            m_prepared.clear();
        auto query = std::make_unique<QSqlQuery>(m_database.query());
        m_database.prepare(*query, statement);
        return *(m_prepared[statement] = std::move(query));
    }

    const QSet<QString> &moneyColumns() {
        if (!m_haveMoney) {
            QSqlQuery query = m_database.query();
            m_database.prepare(query, "SELECT DISTINCT c.name FROM sqlite_master t, pragma_table_info(t.name) c "
                                      "WHERE t.type = 'table' AND upper(c.type) = 'CURRENCY'");
            m_database.run(query);
            m_money.clear();
            while (query.next())
                m_money.insert(query.value(0).toString().toCaseFolded());
            m_haveMoney = true;
        }
        return m_money;
    }

    /// The column that numbers a table's rows; empty for a table without one.
    const QString &keyOf(const QString &table) {
        const auto found = m_keys.constFind(table);
        if (found != m_keys.constEnd())
            return *found;
        QSqlQuery query = m_database.query();
        m_database.prepare(query, "SELECT name FROM pragma_table_info(?) WHERE pk = 1 AND upper(type) = 'INTEGER'");
        query.bindValue(0, table);
        m_database.run(query);
        return *m_keys.insert(table, query.next() ? query.value(0).toString() : QString());
    }

    /// Makes the set writable when it holds the key of its table.
    void findKey(const QString &table, RowSet &set) {
        const QString &key = keyOf(table);
        for (std::size_t at = 0; at < set.columns.size(); ++at) {
            if (!key.isEmpty() && set.columns[at].name.compare(key, Qt::CaseInsensitive) == 0) {
                set.table = table;
                set.key = static_cast<int>(at);
                set.columns[at].type = ColumnType::AutoNumber;
            }
        }
    }

    /// Sees to it that a look-up by the column is one. Where no index can be made (a read-only file, another writer),
    /// the rows are searched through.
    void keepLookup(const QString &table, const QString &column) {
        const QString name = QString("lookup %1 %2").arg(table, column).toLower();
        if (m_lookups.contains(name) || m_database.isReadOnly())
            return;
        QSqlQuery query = m_database.query();
        m_database.prepare(query,
                           "SELECT (SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name = ?1), "
                           "(SELECT count(*) FROM pragma_table_info(?2) WHERE name = ?3 COLLATE NOCASE AND pk = 0)");
        query.bindValue(0, name);
        query.bindValue(1, table);
        query.bindValue(2, column);
        m_database.run(query);
        const bool wanted = query.next() && query.value(0).toInt() == 0 && query.value(1).toInt() == 1;
        query.finish();
        if (wanted && Attempt([&] {
                m_database.run(QString("CREATE INDEX IF NOT EXISTS %1 ON %2 (%3)")
                                   .arg(quotedName(name), quotedName(table), quotedName(column)));
            }))
            return;
        m_lookups.insert(name);
    }

    JetDatabase m_database;
    std::map<QString, std::unique_ptr<QSqlQuery>> m_prepared;
    QHash<QString, QString> m_keys;
    QSet<QString> m_lookups;
    QSet<QString> m_money;
    bool m_haveMoney = false;
    std::optional<int> m_changesBeforeRun;
};

} // namespace

std::shared_ptr<Provider> openJetFile(const QString &path, int busySeconds) {
    return std::make_shared<JetFile>(path, busySeconds);
}

void removeJetFile(const QString &path) {
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(machinePath(path) + suffix);
}

void moveJetFile(const QString &from, const QString &to) {
    if (!QFile::exists(machinePath(from)))
        throw Failure(failures::fileNotFound);
    if (QFile::exists(machinePath(to)))
        throw Failure(failures::fileExists);
    const auto rename = [&] {
        // Whoever takes the name at the same moment keeps it.
        const auto failure = Attempt([&] { storage::renameNew(machinePath(from), machinePath(to)); });
        if (failure)
            throw Failure(failure->number() == failures::fileExists ? failures::fileExists
                                                                    : failures::permissionDenied);
    };
    std::unique_ptr<JetDatabase> database;
    // What was committed stands partly in a second file beside the database, which is named after it. Leaving that mode
    // takes it in, and works only while nobody else has the database open; the lock keeps others out until it is moved.
    const auto failure = Attempt([&] {
        database = std::make_unique<JetDatabase>(from, JetDatabase::Mode::Write, 0);
        database->run("PRAGMA locking_mode=EXCLUSIVE");
        database->run("PRAGMA journal_mode=DELETE");
        database->run("BEGIN EXCLUSIVE");
    });
    // What is no database of ours, nobody has open as one.
    if (failure ? hasDatabaseHeader(machinePath(from)) : database->isReadOnly())
        throw Failure(failures::permissionDenied);
    rename();
}

} // namespace ado
