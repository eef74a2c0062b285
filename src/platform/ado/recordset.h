/// Recordsets: the rows of a table or of a SELECT, all fetched when it opens.
#pragma once

#include "platform/ado/connection.h"

#include <functional>
#include <optional>

namespace ado {

enum class LockType { ReadOnly = 1, Pessimistic = 2, Optimistic = 3, BatchOptimistic = 4 };
enum class CursorType { ForwardOnly = 0, Keyset = 1, Dynamic = 2, Static = 3 };
enum class CursorLocation { Server = 2, Client = 3 };

class Recordset;

/// One column of a recordset, seen at the row the recordset stands on.
class Field {
  public:
    [[nodiscard]] QString Name() const;
    /// The value at the current row, with what was set since. Fails with `noCurrentRecord` where there is none.
    [[nodiscard]] ::Value Value() const;
    /// Changes the value of the current row; `Update` writes it. The value is turned into the column's type: 6 for a
    /// number that the column does not hold, 13 for a value that is none of its kind, `constraintFailed` for a text
    /// that is too long.
    void SetValue(const ::Value &value);

  private:
    friend class Recordset;
    Field(std::shared_ptr<Recordset> recordset, int column) : m_recordset(std::move(recordset)), m_column(column) {}

    std::shared_ptr<Recordset> m_recordset;
    int m_column;
};

/// A client cursor: `RecordCount` is exact, and what other programs write after `Open` is not seen.
///
/// Locks are optimistic: `Update` and `Delete` refuse with `failures::unspecified` when another program has changed or
/// deleted the row since it was read, and leave it as it is. A move away from a changed row updates it first.
///
/// REQUIRES: made by `Ref<Recordset>::make()`.
class Recordset : public std::enable_shared_from_this<Recordset> {
  public:
    void SetActiveConnection(const Ref<Connection> &connection) { m_connection = connection; }
    /// A table's name or a SELECT.
    void SetSource(const QString &source) { m_source = source; }
    [[nodiscard]] const QString &Source() const { return m_source; }
    /// Rows are kept at the client, whatever is asked.
    void SetCursorLocation(CursorLocation) {}
    void SetCursorType(CursorType) {}
    void SetLockType(LockType type) { m_lockType = type; }

    void Open();
    void Close();
    [[nodiscard]] bool IsOpen() const { return m_open; }

    [[nodiscard]] bool IsEOF() const;
    [[nodiscard]] bool IsBOF() const;
    [[nodiscard]] qint32 RecordCount() const;
    /// Fails with `noCurrentRecord` when there are no rows.
    void MoveFirst();
    /// Fails with `noCurrentRecord` when it is at the end already. After `Delete` it goes to the row behind the
    /// deleted.
    void MoveNext();

    /// Goes forward to the first row, the current one included, for which the criterion holds; to the end when none
    /// does. A criterion is a column's name (in brackets or not), "=", and a number or a text in single quotes with a
    /// quote inside doubled. Texts compare without regard to case. Null equals nothing.
    void Find(const QString &criterion);

    /// Starts a new row and stands on it. It exists from `Update` on; a move without one writes it too.
    void AddNew();
    /// Writes the new row, or what was set in the current one, as one durable change. Nothing set means nothing done.
    /// After the update of a new row, its autonumber can be read.
    void Update();
    /// Forgets the new row or what was set since the last `Update`.
    void CancelUpdate();
    /// Deletes the current row.
    void Delete();

    /// Makes many changes with one wait for the disk, at the end. Each is a change of its own all the same: others see
    /// it at once, and it stays when a later one fails.
    void Together(const std::function<void()> &changes);

    /// By name without regard to case, or by ordinal from 0; `itemNotFound` when there is none.
    [[nodiscard]] Field Fields(const QString &name);
    [[nodiscard]] Field Fields(int ordinal);
    [[nodiscard]] int FieldCount() const { return static_cast<int>(m_set.columns.size()); }

  private:
    friend class Field;
    enum class Edit { None, Change, New };

    void requireOpen() const;
    void requireWritable() const;
    [[nodiscard]] const Row &currentRow() const;
    void settle();
    void setValue(int column, const Value &value);
    [[nodiscard]] int columnOf(const QString &name) const;
    void skipToKey(double key);

    Ref<Connection> m_connection;
    QString m_source;
    LockType m_lockType = LockType::ReadOnly;
    bool m_open = false;

    std::shared_ptr<Provider> m_provider;
    RowSet m_set;
    /// The last key as long as the rows stand in the order of their keys, so that a search by key need not walk.
    std::optional<qint32> m_lastKey;
    std::size_t m_position = 0;
    /// The current row was deleted; `m_position` is that of the row behind it.
    bool m_onDeleted = false;

    Edit m_edit = Edit::None;
    Row m_edited;
    std::vector<bool> m_assigned;
};

} // namespace ado
