/// What the three record lists (problem types, responsibles, callers) share: how a list brings its table in line and
/// how an example entry is drawn.
#pragma once

#include "orvelle/core/fieldchange.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/rows.h"
#include "platform/ado/recordset.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"
#include "platform/value/random.h"

template <class Record>
using RecordDic = scripting::Dictionary<Ref<Record>>;

/// How a list's records stand in their table.
template <class Record>
struct RecordTable {
    QString strKeyColumn;
    QString strNameColumn;
    /// What the trace says before the name of a record that is added (empty for no trace) or deleted.
    QString strAdding;
    QString strDeleting;
    /// Every column but the key and the name, in the order of writing, and what a record has for them.
    QStringList strColumns;
    std::function<ValueList(const Record &)> values;
};

/// The current row of a record that the table holds: found by the key that the table gave, never by one in memory.
template <class Record>
void subFindRecord(ado::Recordset &adrRS, const RecordTable<Record> &table, const Record &stored) {
    adrRS.Find(table.strKeyColumn + " = " + QString::number(stored.ID));
}

/// Brings the row of one record in line, adding it when the table does not have it. A row that matches is not written.
/// \param fields  the table's columns, in which a recordset shows its current row.
template <class Record>
void subRecordToRS(ado::Recordset &adrRS, const RecordTable<Record> &table, QList<ado::Field> &fields,
                   const QString &strName, const Record &record, RecordDic<Record> &dicStored) {
    bool blnDirty = false;
    if (adrRS.RecordCount() != 0)
        adrRS.MoveFirst();
    if (dicStored.Exists(strName)) {
        subFindRecord(adrRS, table, *dicStored.Item(strName));
    } else {
        adrRS.AddNew();
        if (!table.strAdding.isEmpty())
            subTrace(table.strAdding.arg(strName));
        adrRS.Fields(table.strNameColumn).SetValue(strName);
        blnDirty = true;
    }
    const ValueList values = table.values(record);
    for (qsizetype at = 0; at < fields.size(); ++at) {
        if (fncValueChanged(fields[at].Value(), values[at])) {
            fields[at].SetValue(values[at]);
            blnDirty = true;
        }
    }
    if (blnDirty)
        adrRS.Update();
}

/// Brings a whole table, open for writing, in line with a list. `dicStored` is what the table held before.
template <class Record>
void subRecordsToRS(ado::Recordset &adrRS, const RecordTable<Record> &table, RecordDic<Record> &dicList,
                    RecordDic<Record> &dicStored) {
    QList<ado::Field> fields;
    for (const QString &column : table.strColumns)
        fields.append(adrRS.Fields(column));
    for (const QString &name : dicList.Keys())
        subRecordToRS(adrRS, table, fields, name, *dicList.Item(name), dicStored);
    if (adrRS.RecordCount() <= dicList.Count())
        return;
    for (const QString &name : dicStored.Keys()) {
        if (dicList.Exists(name))
            continue;
        adrRS.MoveFirst();
        subFindRecord(adrRS, table, *dicStored.Item(name));
        if (!adrRS.IsEOF()) {
            subTrace(table.strDeleting + name);
            adrRS.Delete();
        }
    }
}

/// An entry for example data. Fails with 9 on an empty list.
template <class Record>
Ref<Record> fncRandomRecord(RecordDic<Record> &dicList) {
    const QList<Ref<Record>> &records = dicList.Items();
    if (records.isEmpty())
        throw Failure(failures::subscriptOutOfRange);
    return records[std::max(0, toInt32(Random::next() * static_cast<double>(records.size())) - 1)];
}

/// The row of a two-dimensional array per record, by the columns that `columns` gives. Fails with 9 on an empty list.
template <class Record, class Columns>
ValueRows fncRecordRows(RecordDic<Record> &dicList, Columns &&columns) {
    ValueRows rows;
    for (const Ref<Record> &record : dicList.Items())
        rows.append(columns(*record));
    if (rows.isEmpty())
        throw Failure(failures::subscriptOutOfRange);
    return rows;
}

/// Column `intColumn` of an array's row; fails with 9 when the row is shorter.
const Value &fncColumn(const ValueList &row, int intColumn);
