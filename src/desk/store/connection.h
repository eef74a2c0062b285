/// One connection to a store's file: statements prepared once, transactions, and the file's failures as sentences.
///
/// REQUIRES: used by one thread; a statement is not run again while its rows are being read.
#pragma once

#include "desk/store/statement.h"

#include <chrono>
#include <optional>
#include <unordered_map>

namespace desk {

class Connection {
  public:
    /// \param path  a file that is there; an empty one becomes a database.
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
        Reading reading(*this, sql, binds);
        while (reading.next()) {
            if constexpr (std::is_void_v<std::invoke_result_t<Reader, Row>>)
                reader(reading.row());
            else if (!reader(reading.row()))
                return;
        }
    }

    /// The first column of the first row, or nothing when there is no row.
    std::optional<QVariant> value(std::string_view sql, std::initializer_list<Bind> binds = {});

    /// A number that differs from the last one given when another connection has committed since.
    qint64 dataVersion();

    /// A number that differs from the last one given when this connection has written since, whether it committed or
    /// not.
    [[nodiscard]] qint64 ownWrites() const;

    /// A statement that is run once and not kept, such as a pragma of the opening.
    QVariant once(std::string_view sql);

  private:
    struct Closer {
        void operator()(sqlite3 *database) const;
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
        [[nodiscard]] bool next();
        [[nodiscard]] Row row() const { return m_statement.row(); }

      private:
        Connection &m_connection;
        Statement &m_statement;
    };

    static Binds asSpan(std::initializer_list<Bind> binds) { return {binds.begin(), binds.size()}; }
    [[nodiscard]] Statement &prepare(std::string_view sql);
    [[noreturn]] void fail(int code) const;

    QString m_path;
    std::unique_ptr<sqlite3, Closer> m_database;
    std::unordered_map<std::string, Statement, TextHash, std::equal_to<>> m_statements;
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
