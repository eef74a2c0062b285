/// One connection to a store's file: statements prepared once, transactions, and the file's failures as sentences.
///
/// REQUIRES: used by one thread; a statement is not run again while its rows are being read.
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

class QSqlError;

namespace desk {

/// A value for the parameter `:name` of a statement.
struct Bind {
    std::string_view name;
    QVariant value;
};
using Binds = std::span<const Bind>;

/// The row that a reading statement stands on, its columns counted from 0.
class Row {
  public:
    explicit Row(const QSqlQuery &query) : m_query(query) {}
    [[nodiscard]] QVariant operator[](int column) const { return m_query.value(column); }
    [[nodiscard]] qint64 number(int column) const { return m_query.value(column).toLongLong(); }
    [[nodiscard]] QString text(int column) const;

  private:
    const QSqlQuery &m_query;
};

class Connection {
  public:
    Connection(const QString &path, std::chrono::milliseconds wait);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }

    /// Runs a writing statement; gives the number of rows it changed.
    qint64 run(std::string_view sql, std::initializer_list<Bind> binds = {}) { return run(sql, asSpan(binds)); }
    qint64 run(std::string_view sql, Binds binds);

    /// Hands each row to the reader until that answers false or the rows end.
    template <class Reader>
    void each(std::string_view sql, std::initializer_list<Bind> binds, Reader &&reader) {
        each(sql, asSpan(binds), std::forward<Reader>(reader));
    }
    template <class Reader>
    void each(std::string_view sql, Binds binds, Reader &&reader) {
        const Reading reading(*this, sql, binds);
        while (reading.next()) {
            if constexpr (std::is_void_v<std::invoke_result_t<Reader, Row>>)
                reader(Row(reading.query()));
            else if (!reader(Row(reading.query())))
                return;
        }
    }

    /// The first column of the first row, or nothing when there is no row.
    std::optional<QVariant> value(std::string_view sql, std::initializer_list<Bind> binds = {});

    /// A number that differs from the last one given when another connection has committed since.
    qint64 dataVersion();

    /// A statement that is run once and not kept, such as a pragma of the opening.
    QVariant once(const QString &sql);

    [[noreturn]] void fail(const QSqlError &error) const;

  private:
    struct Parameter {
        std::string name;
        QString placeholder;
    };
    struct Prepared {
        QSqlQuery query;
        std::vector<Parameter> parameters;
    };
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    /// The rows of one run of a statement; ends the run, and with it the reader's hold on the file, when it goes.
    class Reading {
      public:
        Reading(Connection &connection, std::string_view sql, Binds binds);
        ~Reading();
        Reading(const Reading &) = delete;
        Reading &operator=(const Reading &) = delete;
        [[nodiscard]] bool next() const;
        [[nodiscard]] const QSqlQuery &query() const { return m_prepared.query; }

      private:
        Connection &m_connection;
        Prepared &m_prepared;
    };

    static Binds asSpan(std::initializer_list<Bind> binds) { return {binds.begin(), binds.size()}; }
    Prepared &prepare(std::string_view sql);
    void execute(Prepared &prepared, Binds binds);

    QString m_path;
    QString m_name;
    QSqlDatabase m_database;
    std::unordered_map<std::string, Prepared, TextHash, std::equal_to<>> m_prepared;
};

/// A transaction: what was run since is undone unless it is committed.
class Transaction {
  public:
    enum class Kind { Read, Write };
    /// A writer waits its turn here, so that what it reads afterwards is what stands.
    explicit Transaction(Connection &connection, Kind kind = Kind::Write);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    /// Durable when it returns.
    void commit();

  private:
    Connection &m_connection;
    bool m_open = true;
};

} // namespace desk
