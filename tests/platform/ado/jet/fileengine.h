// The embedded engine's databases.
#pragma once

#include "platform/ado/engine.h"
#include "platform/ado/jet/engine.h"
#include "support/plaintool.h"

#include <QTemporaryDir>

class FileEngine : public Engine {
  public:
    FileEngine() {
        ado::addJetEngine();
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
