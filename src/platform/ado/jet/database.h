/// One SQLite connection, prepared to serve the embedded engine.
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

struct sqlite3;

namespace ado {

class TextOrder;

/// Opens a file and closes it at the end. The failures of its queries come as `Failure`s that say what to do.
class JetDatabase {
  public:
    enum class Mode { Write, ReadOnly, Create };

    /// Fails as `openJetFile` does. `Create` makes a new, empty file.
    JetDatabase(const QString &path, Mode mode, int busySeconds);
    ~JetDatabase();
    JetDatabase(const JetDatabase &) = delete;
    JetDatabase &operator=(const JetDatabase &) = delete;

    [[nodiscard]] bool isReadOnly() const { return m_readOnly; }

    /// The engine's own handle. Lasts as long as the object.
    [[nodiscard]] sqlite3 *handle() const;
    /// A query for statements of the caller's.
    [[nodiscard]] QSqlQuery query() const;
    /// Runs a statement that gives nothing.
    void run(const QString &statement);
    /// Runs a prepared query.
    void run(QSqlQuery &query);
    void prepare(QSqlQuery &query, const QString &statement);

    /// Fails where the file no longer has the name that it was opened by: what is written then would go with it.
    void requirePlace() const;
    /// A transaction with the right to write; fails as `requirePlace` does. One inside of another is a part of it.
    void begin();
    /// One for reading alone, which keeps nobody from writing.
    void beginReading();
    void commit();
    void rollback();
    /// To be called after what was committed without a transaction: says in the database which log it uses, so that the
    /// log is not played into another file.
    void markLog();

    /// Throws what a query or the database says went wrong. `sqliteText` is the engine's own account.
    [[noreturn]] void fail(int sqliteCode, const QString &sqliteText) const;

  private:
    bool tryOpen(const QString &options, const QString &parameters);
    [[noreturn]] void failQuery(const QSqlQuery &query) const;
    void addFunctions(sqlite3 *handle);

    QString m_path;
    QString m_name;
    int m_busySeconds;
    bool m_readOnly = false;
    /// By `platform/dao`.
    bool m_madeHere = false;
    quint32 m_markedLog = 0;
    /// Transactions that are open, one inside of the other.
    int m_depth = 0;
    std::unique_ptr<TextOrder> m_order;
    QSqlDatabase m_database;
};

} // namespace ado
