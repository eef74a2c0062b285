// The tables of a new database. Their columns' order is part of the format: some are read by ordinal.

#include "orvelle/database/installation.h"
#include "platform/dao/dao.h"

namespace {

/// Each table with its columns, "name:type:caption", in the order of creation.
const std::pair<QString, QString> expectedTables[] = {
    {"tblPersons", "intPersonID:Id:Responsible ID, strPersonName:Text:Name, curRate:Money:Rate, strEmail:Text:E-mail"},
    {"tblTickets", "intTicketID:Id:Ticket ID, strTicketSubject:Text:Subject, strDescription:Memo:Description, "
                   "intTicketType:Short:Problem type ID, strCustomerName:Text:Caller, strCustomerEmail:Text:E-mail, "
                   "intPriority:Short:Priority, dteCreated:Date:Created, dteClosed:Date:Closed Date, "
                   "intAssignedTo:Short:Responsible ID, blnClosed:Flag:Closed, intMinutesWorked:Short:Minutes worked, "
                   "strCustomerPhone:Text:Caller Phone, strCustomerCategory:Text:Caller category, curRate:Money:Rate, "
                   "strMonthName:Text:Month, strWeekdayName:Text:Day, intMinutesOpen:Short:, "
                   "strDescriptionHTML:Memo:Description HTML, strTicketStatus:Text:Status, "
                   "strCustomerComment:Text:Comment, strTicketID:Text:Ticket ID"},
    {"tblTypes", "intTicketType:Id:Problem type ID, strTypeDescription:Text:Problem type, "
                 "strCategory:Text:Problem category, intDefMin:Short:Minutes worked"},
    {"tblCallerCategories", "intCallerCategoryID:Id:Caller category ID, strCallerCategory:Text:Caller category"},
    {"tblStatuses", "intStatusID:Id:Status ID, strStatus:Text:Status"},
    {"tblCallers", "intCallerID:Id:Caller ID, strFullName:Text:Caller, strTelephone:Text:Phone, strEmail:Text:E-mail, "
                   "strComment:Text:Comment, strCategory:Text:Caller category"},
    {"tblOtherSettings", "intSettingID:Id:Configure ID, strPropName:Text:Name, strPropValue:Memo:Value"},
    {"tblWork", "intWorkItemID:Id:Work ID, strPersonName:Text:Name, intMinutesWorked:Short:Minutes worked, "
                "dteWorkedDate:Date:Date, strWorkDescription:Text:Description, intTicketID:Long:Ticket ID"},
};

QString typeName(const Ref<dao::Field> &field) {
    switch (field->Type) {
    case dao::dbLong:
        return field->Attributes == dao::dbAutoIncrField ? "Id" : "Long";
    case dao::dbText:
        return field->Size == 255 && field->AllowZeroLength ? "Text" : "another text";
    case dao::dbMemo:
        return field->AllowZeroLength ? "another memo" : "Memo";
    case dao::dbInteger:
        return "Short";
    case dao::dbCurrency:
        return "Money";
    case dao::dbDate:
        return "Date";
    case dao::dbBoolean:
        return "Flag";
    default:
        return QString::number(field->Type);
    }
}

QString caption(const Ref<dao::Field> &field) {
    const Ref<dao::Property> property = field->FindProperty("Caption");
    return property ? std::get<QString>(property->Value.held()) : QString();
}

class NewDatabase : public Installation {
  protected:
    NewDatabase() { subFindDatabaseFile(); }
    bool create() { return fncCreateAccessDB(fncProgramFolder() + "\\Orvelle.mdb"); }
    Ref<ado::Connection> connectTo(const QString &name) {
        const auto connection = Ref<ado::Connection>::make();
        connection->SetConnectionString(fncFileConnection(at(name)));
        connection->Open();
        return connection;
    }
    Ref<dao::Database> definition() { return dao::DBEngine().OpenDatabase(path("Orvelle.mdb")); }
};

TEST_F(NewDatabase, HasTheEightTablesColumnByColumn) {
    ASSERT_TRUE(create());
    const Ref<dao::Database> database = definition();
    const QList<Ref<dao::TableDef>> tables = database->TableDefs();
    ASSERT_EQ(tables.size(), std::ssize(expectedTables));
    for (std::size_t i = 0; i < std::size(expectedTables); ++i) {
        const Ref<dao::TableDef> &table = tables[static_cast<qsizetype>(i)];
        EXPECT_EQ(table->Name, expectedTables[i].first);
        QStringList columns;
        for (const Ref<dao::Field> &field : table->Fields())
            columns.append(QString("%1:%2:%3").arg(field->Name, typeName(field), caption(field)));
        EXPECT_EQ(columns.join(", "), expectedTables[i].second);
        ASSERT_EQ(table->Indexes().size(), 1);
        EXPECT_EQ(table->Indexes()[0]->Name, "PrimaryKey");
        EXPECT_TRUE(table->Indexes()[0]->Primary);
        EXPECT_EQ(table->Indexes()[0]->Fields()[0]->Name, table->Fields()[0]->Name);
    }
    EXPECT_TRUE(database->Relations().isEmpty());
}

TEST_F(NewDatabase, IsAbsentWhenItCouldNotBeFinished) {
    put("Orvelle.mdb", "in the way");
    answers.expect("fncCreateV7DB", window::No);
    EXPECT_THROW(create(), ProcessEnd);
    EXPECT_EQ(bytes("Orvelle.mdb"), "in the way");
}

/// The later steps go on after a failing statement and say at the end that one failed; what has a handler of its own
/// reports.
TEST_F(NewDatabase, StepsWithoutADatabaseFail) {
    EXPECT_FALSE(fncAddTicketColumns(nullptr));
    answers.expect("subAddOtherSettingsTable", window::No);
    EXPECT_THROW(fncAddReferenceTables(nullptr), ProcessEnd);
}

TEST_F(NewDatabase, WithItsFirstRowsAppearsWholeOrNotAtAll) {
    const auto addStatus = [&](const QString &status) {
        return [&, status](const Ref<ado::Connection> &connection) {
            const auto table = fncOpenRecordset(connection, "tblStatuses", ado::LockType::Optimistic);
            table->AddNew();
            table->Fields("strStatus").SetValue(status);
            table->Update();
        };
    };
    const auto files = [&] { return QDir(m_folder.path()).entryList({"Orvelle*"}, QDir::Files | QDir::Hidden); };
    EXPECT_EQ(failureOf([&] {
                  subCreateFilledDB(at("Orvelle.mdb"), [&](const Ref<ado::Connection> &connection) {
                      addStatus("lost")(connection);
                      throw Failure(failures::noDiskSpace);
                  });
              }),
              failures::noDiskSpace);
    EXPECT_EQ(files(), QStringList());

    // Another program makes one meanwhile.
    subCreateFilledDB(at("Orvelle.mdb"), [&](const Ref<ado::Connection> &) {
        EXPECT_FALSE(exists("Orvelle.mdb")) << "nobody may find it while it is made";
        subCreateFilledDB(at("Orvelle.mdb"), addStatus("theirs"));
    });
    EXPECT_EQ(files(), QStringList{"Orvelle.mdb"});
    EXPECT_TRUE(adoConnection.get().isNothing()) << "the shared connection has no part in it";
    EXPECT_EQ(fncOpenRecordset(connectTo("Orvelle.mdb"), "tblStatuses", ado::LockType::ReadOnly)->RecordCount(), 1);
}

TEST_F(NewDatabase, KeepsWhatWasWrittenWhenTheProgramIsKilled) {
    startOnNewDatabase();
    const Ref<ado::Recordset> set = fncReturnRecordset("tblStatuses", false, true, false);
    for (const char *status : {"Open", "Waiting"}) {
        set->AddNew();
        set->Fields(1).SetValue(status);
        set->Update();
    }
    // What stands on the disk at this moment is what a killed program leaves.
    for (const char *ending : {"", "-wal"})
        ASSERT_TRUE(QFile::copy(path("Orvelle.mdb") + ending, path("Killed.mdb") + ending));
    subCloseConnection();
    strDBFileName = QString("Killed.mdb");
    EXPECT_EQ(fncReturnRecordset("tblStatuses", true, true, false)->RecordCount(), 2);
}

TEST_F(NewDatabase, IsNotMadeOnAServerYet) {
    answers.expect("not supported yet");
    EXPECT_EQ(fncCreateSQLDB("OrvelleSQL"), "");
}

} // namespace
