/// A prepared statement of the engine and the row it stands on.
///
/// The engine's own interface and not QtSql's: that one describes the columns of each result anew at every run and
/// turns every text from one kind of Unicode to the other twice, which took longer than the statements themselves.
#pragma once

#include <QVariant>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace desk {

/// A value for the parameter `:name` of a statement.
struct Bind {
    std::string_view name;
    QVariant value;
};
using Binds = std::span<const Bind>;

/// The row that a reading statement stands on, its columns counted from 0. Good until the statement goes on.
class Row {
  public:
    explicit Row(sqlite3_stmt *statement) : m_statement(statement) {}
    /// A number, a text, bytes, or invalid for Null.
    [[nodiscard]] QVariant operator[](int column) const;
    [[nodiscard]] qint64 number(int column) const;
    /// A text as storedText wrote it.
    [[nodiscard]] QString text(int column) const;

  private:
    sqlite3_stmt *m_statement;
};

class Statement {
  public:
    Statement() = default;
    /// Asks the engine to compile; `result()` says whether it did.
    Statement(sqlite3 *database, std::string_view sql);

    /// The engine's code for what was done last.
    [[nodiscard]] int result() const { return m_result; }

    /// Gives the parameters their values; those not named are Null. Fails when a value is too large for the engine.
    void bind(Binds binds);
    /// Goes to the next row; false at the end and on a failure, which `result()` tells apart.
    [[nodiscard]] bool next();
    /// Lets go of the row, of the parameters and of the hold on the file.
    void finish();

    [[nodiscard]] Row row() const { return Row(m_statement.get()); }
    [[nodiscard]] bool failed() const;

  private:
    struct Finalizer {
        void operator()(sqlite3_stmt *statement) const;
    };

    [[nodiscard]] int indexOf(std::string_view name);
    void bindValue(int index, const QVariant &value);

    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
    std::vector<std::string> m_parameters;
    std::size_t m_lastParameter = 0;
    /// What the parameters of the present run point into.
    std::vector<QByteArray> m_held;
    int m_result = 0;
};

} // namespace desk
