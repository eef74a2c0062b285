/// A selection from the embedded engine, row by row. It goes to the engine without the query class between: reading
/// rows is most of what the system asks of a database, and this takes each text once.
#pragma once

#include "platform/ado/provider.h"

struct sqlite3_stmt;

namespace ado {

class JetDatabase;

class JetSelection {
  public:
    /// Fails as the queries of the database do.
    JetSelection(JetDatabase &database, const QString &statement);
    ~JetSelection();
    JetSelection(const JetSelection &) = delete;
    JetSelection &operator=(const JetSelection &) = delete;

    /// Named and typed as they were declared.
    [[nodiscard]] std::vector<Column> columns() const;
    /// Goes to the next row; false behind the last.
    bool next();
    /// The current row, its values as the types of the columns have them. What another tool stored against a type is
    /// kept as it is, so that it can be seen, and fails where it is used.
    [[nodiscard]] Row row(const std::vector<Column> &columns) const;

  private:
    [[nodiscard]] Value value(int column, ColumnType type) const;
    [[noreturn]] void fail(int code) const;

    JetDatabase &m_database;
    sqlite3_stmt *m_statement = nullptr;
};

} // namespace ado
