// The engines that the contract is run over. An engine gives an empty database on request; a server joins by another
// entry in `engines()`.
#pragma once

#include "platform/ado/command.h"
#include "platform/ado/recordset.h"
#include "support/plaintool.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>

/// One database that lasts as long as the object. Its one table is `tblAll`: a column of every type.
class Engine {
  public:
    virtual ~Engine() = default;
    /// A connection of its own to the database, as another program would open it.
    virtual Ref<ado::Connection> connect() = 0;
};

class FileEngine : public Engine {
  public:
    FileEngine() {
        plainTool(file(), {"CREATE TABLE jet_properties (name TEXT)",
                           "CREATE TABLE tblAll (intID INTEGER PRIMARY KEY AUTOINCREMENT CHECK (intID < 2147483648), "
                           "strText VARCHAR(255), strMemo LONGTEXT CHECK (strMemo <> ''), intShort SMALLINT, "
                           "intLong INTEGER, curMoney CURRENCY, dteDate DATETIME, blnFlag BOOLEAN)"});
    }
    Ref<ado::Connection> connect() override { return connectTo(file()); }

    static Ref<ado::Connection> connectTo(const QString &path) {
        const auto connection = Ref<ado::Connection>::make();
        connection->SetCommandTimeout(1);
        connection->SetConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path);
        connection->Open();
        return connection;
    }
    [[nodiscard]] QString file() const { return m_directory.filePath("contract.mdb"); }

  private:
    QTemporaryDir m_directory;
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
