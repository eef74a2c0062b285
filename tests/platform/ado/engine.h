// What tests of data access ask of an engine, whichever it is.
#pragma once

#include "platform/ado/command.h"
#include "platform/ado/recordset.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <memory>

/// One database that lasts as long as the object. Its one table is `tblAll`: a column of every type.
class Engine {
  public:
    virtual ~Engine() = default;
    /// A connection of its own to the database, as another program would open it.
    virtual Ref<ado::Connection> connect() = 0;
};

inline Ref<ado::Recordset> openRecordset(const Ref<ado::Connection> &connection, const QString &source,
                                         ado::LockType lock = ado::LockType::Optimistic) {
    const auto set = Ref<ado::Recordset>::make();
    set->SetActiveConnection(connection);
    set->SetSource(source);
    set->SetLockType(lock);
    set->Open();
    return set;
}

/// The values of one column from the current row to the end, as texts with commas.
inline QString column(const Ref<ado::Recordset> &set, const QString &name) {
    QStringList values;
    for (; !set->IsEOF(); set->MoveNext()) {
        const Value value = set->Fields(name).Value();
        values.append(value.holds<QString>() ? std::get<QString>(value.held()) : value.kindName());
    }
    return values.join(",");
}
