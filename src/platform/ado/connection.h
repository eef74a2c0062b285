/// Data access: connections, recordsets, fields and commands over databases of any engine, under the member names of
/// the data access component that programs of this kind are written against.
///
/// The connection string's `Provider` picks the engine among those of `engines.h`. Failures carry the numbers of
/// `errors.h`.
#pragma once

#include "platform/ado/errors.h"
#include "platform/ado/provider.h"
#include "platform/value/ref.h"

namespace ado {

/// A connection to one database.
class Connection {
  public:
    [[nodiscard]] const QString &ConnectionString() const { return m_connectionString; }
    void SetConnectionString(const QString &text) { m_connectionString = text; }

    /// How long a statement waits for another program's write, in seconds; the default is 10.
    [[nodiscard]] int CommandTimeout() const { return m_commandTimeout; }
    /// REQUIRES: set before `Open`.
    void SetCommandTimeout(int seconds) { m_commandTimeout = seconds; }

    /// Opens the database, which must exist. Fails with a sentence that says what to do when it is missing, damaged, no
    /// database, or of a provider that is not there.
    void Open();
    /// Fails when it is not open. Recordsets keep the rows they have and can no longer be changed.
    void Close();
    [[nodiscard]] bool IsOpen() const { return m_provider != nullptr; }

    /// What is written until `CommitTrans` is done as a whole, or not at all. A connection that is closed before it
    /// rolls it back. One inside of another is a part of it.
    void BeginTrans() { provider()->begin(); }
    void CommitTrans() { provider()->commit(); }
    void RollbackTrans() { provider()->rollback(); }
    /// A transaction for reading alone, until `RollbackTrans`: everything that is read in it is of one moment.
    void BeginReading() { provider()->beginReading(); }

    /// Fails with `objectClosed` when it is not open.
    [[nodiscard]] const std::shared_ptr<Provider> &provider() const;

  private:
    QString m_connectionString;
    int m_commandTimeout = 10;
    std::shared_ptr<Provider> m_provider;
};

/// A transaction for the time of a scope: rolled back unless it was committed. REQUIRES: the connection outlives it.
class Transaction {
  public:
    explicit Transaction(Connection &connection) : m_connection(connection) { m_connection.BeginTrans(); }
    ~Transaction() {
        if (m_isOpen)
            Attempt([this] { m_connection.RollbackTrans(); });
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    /// What fails to be committed is rolled back.
    void commit() {
        m_connection.CommitTrans();
        m_isOpen = false;
    }

  private:
    Connection &m_connection;
    bool m_isOpen = true;
};

/// Everything that is read while it lives is of one moment, whatever others write, also from a database that can't be
/// written. REQUIRES: the connection outlives it, and has no transaction.
class Moment {
  public:
    explicit Moment(Connection &connection) : m_connection(connection) { m_connection.BeginReading(); }
    ~Moment() {
        Attempt([this] { m_connection.RollbackTrans(); });
    }
    Moment(const Moment &) = delete;
    Moment &operator=(const Moment &) = delete;

  private:
    Connection &m_connection;
};

} // namespace ado
