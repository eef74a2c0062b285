// The tables of the current copy's database, filled and read as a test needs it.
#pragma once

#include "orvelle/database/connection.h"
#include "platform/value/convert.h"

namespace support {

inline Ref<ado::Recordset> open(const QString &strSource) { return fncReturnRecordset(strSource, false, true, false); }

inline void addRow(const QString &strTable, const QList<std::pair<QString, Value>> &values) {
    const auto table = open(strTable);
    table->AddNew();
    for (const auto &[column, value] : values)
        table->Fields(column).SetValue(value);
    table->Update();
}

inline void fill(const QString &strTable, const QString &strColumn, const QStringList &texts) {
    for (const QString &text : texts)
        addRow(strTable, {{strColumn, text}});
}

/// Each row as a text: the columns parted by blanks, "Null" for Null.
inline QStringList rows(const QString &strSource, const QStringList &columns, const QString &separator = " ") {
    QStringList texts;
    for (const auto found = open(strSource); !found->IsEOF(); found->MoveNext()) {
        QStringList values;
        for (const QString &column : columns) {
            const Value value = found->Fields(column).Value();
            values << (value.isNull() ? QString("Null") : toText(value));
        }
        texts << values.join(separator);
    }
    return texts;
}

} // namespace support
