/// What a database engine offers to data access. One provider stands behind one open connection.
#pragma once

#include "platform/value/value.h"

#include <QString>

#include <memory>
#include <vector>

namespace ado {

/// The types that a column's values are held to.
enum class ColumnType {
    Unknown,    ///< an expression, or a column of a foreign file: values as they are stored
    Text,       ///< up to `longestText` characters
    Memo,       ///< long text; takes no empty text where the schema says so
    Short,      ///< 16 bits; overflows with 6
    Long,       ///< 32 bits; overflows with 6
    AutoNumber, ///< 32 bits, numbers itself, never gives a number twice
    Money,      ///< four exact decimals
    Date,       ///< days
    Flag,       ///< true is -1
    Double,
};

/// What a text column takes, in UTF-16 units.
constexpr qsizetype longestText = 255;

struct Column {
    QString name;
    ColumnType type = ColumnType::Unknown;
};

using Row = std::vector<Value>;

/// A selection with all its rows. Invariant: every row has one value a column.
struct RowSet {
    std::vector<Column> columns;
    std::vector<Row> rows;
    /// The one table that the rows are rows of, and the column that tells them apart; empty and -1 when the selection
    /// can't be written to.
    QString table;
    int key = -1;

    [[nodiscard]] bool isUpdatable() const { return key >= 0; }
};

/// An open database. Everything but `select` is one durable transaction a call: done completely and on the disk when
/// the call returns, or not at all when it fails. A write that can't be done now (busy, read-only, full, or the row is
/// no longer as it was read) fails with `failures::unspecified` and leaves the row as it stands.
class Provider {
  public:
    virtual ~Provider() = default;
    Provider() = default;
    Provider(const Provider &) = delete;
    Provider &operator=(const Provider &) = delete;

    /// The rows of a table (`source` is its name) or of a SELECT.
    virtual RowSet select(const QString &source) = 0;
    /// Runs a statement that is no selection; the number of rows it touched.
    virtual qint64 execute(const QString &statement) = 0;

    /// Adds a row with the values of the columns in `assigned`; the others become Null. Gives the new row's key.
    virtual qint32 insert(const RowSet &set, const Row &row, const std::vector<bool> &assigned) = 0;
    /// Writes the values of the columns in `assigned` to the row that still has all values of `original`.
    virtual void update(const RowSet &set, const Row &original, const Row &row, const std::vector<bool> &assigned) = 0;
    /// Deletes the row that still has all values of `original`.
    virtual void remove(const RowSet &set, const Row &original) = 0;

    /// The last number that the table's autonumber has given; 0 where it gave none.
    virtual qint32 lastNumber(const QString &table) = 0;
    /// Makes the autonumber go on behind a number, unless it is behind it already. Returns whether it was raised. Fails
    /// with 6 for a number that leaves no room behind it.
    virtual bool raiseLastNumber(const QString &table, qint32 number) = 0;

    /// Between the two, a change is done and seen by everybody when its call returns, as ever, but the disk is waited
    /// for once, in `endRun`: a program that dies in between loses nothing, a machine that does may lose the last of
    /// it. Not nested.
    virtual void beginRun() = 0;
    virtual void endRun() = 0;

    /// Starts a transaction, with the right to write.
    virtual void begin() = 0;
    /// Starts one that is for reading alone: what is read in it is of one moment, whatever others write, and it keeps
    /// nobody from writing. Offered where nothing can be written, too. REQUIRES: no transaction is open.
    virtual void beginReading() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;
};

/// A value as a column of the type holds it. Null stays Null, and Empty becomes it. Fails with 6 and 13 as the
/// conversions do.
Value columnValue(ColumnType type, const Value &value);

} // namespace ado
