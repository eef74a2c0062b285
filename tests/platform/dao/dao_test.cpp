// A database under definition: what is written, what is refused, and that a file is complete or absent.

#include "platform/dao/dao.h"

#include "platform/ado/command.h"
#include "platform/ado/jet/engine.h"
#include "platform/ado/recordset.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

namespace {

using namespace dao;

class Definition : public ::testing::Test {
  protected:
    [[nodiscard]] QString path() const { return m_directory.filePath("new.mdb"); }
    Ref<Database> create() {
        return DBEngine().CreateDatabase(path(), ";LANGID=0x0409;CP=1252;COUNTRY=0", dbVersion40);
    }
    [[nodiscard]] QStringList files() const { return QDir(m_directory.path()).entryList(QDir::Files | QDir::Hidden); }

    static Ref<TableDef> addTable(const Ref<Database> &database, const QString &name) {
        const Ref<TableDef> table = database->CreateTableDef(name);
        const Ref<Field> id = table->CreateField("intID", dbLong);
        id->Attributes = dbAutoIncrField;
        table->AppendField(id);
        database->AppendTableDef(table);
        return table;
    }

    QTemporaryDir m_directory;
};

TEST_F(Definition, OfAFileIsCompleteOrAbsent) {
    {
        const Ref<Database> database = create();
        addTable(database, "tblOne");
        EXPECT_FALSE(files().contains("new.mdb")) << "a program that dies here leaves no file of that name";
    }
    EXPECT_EQ(files(), QStringList());

    const Ref<Database> database = create();
    addTable(database, "tblOne");
    database->Close();
    EXPECT_EQ(files(), QStringList("new.mdb"));
    EXPECT_EQ(failureOf([&] { create(); }), databaseExists);
    EXPECT_EQ(failureOf([&] { static_cast<void>(database->TableDefs()); }), failures::objectNotSet);
}

TEST_F(Definition, DoesNotTakeTheNameOfAFileThatCameMeanwhile) {
    const Ref<Database> mine = create();
    const Ref<Database> theirs = create();
    addTable(theirs, "tblTheirs");
    theirs->Close();
    EXPECT_EQ(failureOf([&] { mine->Close(); }), cannotCreate);
    EXPECT_EQ(DBEngine().OpenDatabase(path())->TableDefs()[0]->Name, "tblTheirs");
}

TEST_F(Definition, RefusesWhatTheEngineDoesNotHold) {
    const Ref<Database> database = create();
    const Ref<TableDef> table = addTable(database, "tblOne");
    EXPECT_EQ(failureOf([&] { addTable(database, "TBLone"); }), objectExists);
    EXPECT_EQ(failureOf([&] { table->AppendField(table->CreateField("INTid", dbInteger)); }), objectExists);
    EXPECT_EQ(failureOf([&] { table->AppendField(table->CreateField("x", 99)); }), unsupportedOperation);
    EXPECT_EQ(
        failureOf([&] { static_cast<void>(DBEngine().CreateDatabase(m_directory.filePath("no/such/x.mdb"), "", 0)); }),
        failures::unspecified);
}

TEST_F(Definition, AFileMadeHereTakesRowsAndHoldsItsRules) {
    {
        const Ref<Database> database = create();
        const Ref<TableDef> table = addTable(database, "tblOne");
        table->AppendField(table->CreateField("strMemo", dbMemo));
        table->AppendField(table->CreateField("strText", dbText, 5));
        database->Close();
    }
    ado::addJetEngine();
    const auto connection = Ref<ado::Connection>::make();
    connection->SetConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path());
    connection->Open();
    const auto set = Ref<ado::Recordset>::make();
    set->SetActiveConnection(connection);
    set->SetSource("tblOne");
    set->SetLockType(ado::LockType::Optimistic);
    set->Open();
    set->AddNew();
    set->Fields("strMemo").SetValue("");
    EXPECT_EQ(failureOf([&] { set->Update(); }), ado::constraintFailed);
    set->Fields("strMemo").SetValue("x");
    set->Fields("strText").SetValue("abcdef");
    EXPECT_EQ(failureOf([&] { set->Update(); }), ado::constraintFailed);
    set->Fields("strText").SetValue("abcde");
    set->Update();
    EXPECT_EQ(set->Fields("intID").Value(), Value(qint32{1}));

    // The numbers of a table end with 32 bits: the row is refused, not stored under a number that can't be read.
    ado::Command last;
    last.SetActiveConnection(connection);
    last.SetCommandText("UPDATE sqlite_sequence SET seq = 2147483647");
    last.Execute();
    set->AddNew();
    set->Fields("strMemo").SetValue("y");
    EXPECT_EQ(failureOf([&] { set->Update(); }), ado::constraintFailed);
}

} // namespace
