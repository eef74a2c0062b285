// Which database an installation uses, by the files that stand in its folder.

#include "database/installation.h"
#include "platform/value/convert.h"

namespace {

using FindDatabase = Installation;

TEST_F(FindDatabase, TheFileWinsOverTheServer) {
    put("Orvelle.mdb", "x");
    put("DBConnection.txt", "Provider=SQLOLEDB.1;Data Source=s");
    start(true);
    EXPECT_EQ(fncGetConnection(), fileConnection());
    EXPECT_EQ(reportTarget->ReportTo, 2);
    EXPECT_EQ(reportTarget->ReportToValue, fncProgramFolder() + "\\Orvelle.mdb");
    EXPECT_EQ(content("DBConnection.txt"), "Provider=SQLOLEDB.1;Data Source=s");
}

TEST_F(FindDatabase, TheServersTextIsTakenAsItStands) {
    const QByteArray text = " Provider=SQLOLEDB.1;Password=p\xE4ss ;Data Source=s \r\n";
    put("DBConnection.txt", text);
    start(false);
    EXPECT_EQ(fncGetConnection(), QString::fromLatin1(text));
    EXPECT_EQ(reportTarget->ReportTo, 3);
    EXPECT_EQ(reportTarget->ReportToValue, QString::fromLatin1(text));
}

TEST_F(FindDatabase, NoDatabaseIsNoFailureWhereNobodyMayBeAsked) {
    start(false);
    EXPECT_EQ(fncGetConnection(), "");
    EXPECT_TRUE(fncReturnRecordset("tblTickets", false, true, false).isNothing());
    EXPECT_TRUE(fncCreateCommand().isNothing());
    EXPECT_FALSE(exists("Orvelle.mdb"));
}

TEST_F(FindDatabase, AnEmptyServersTextIsDeletedAndTheSearchGoesOn) {
    put("DBConnection.txt", "");
    start(false);
    EXPECT_EQ(fncGetConnection(), "");
    EXPECT_FALSE(exists("DBConnection.txt"));

    put("DBConnection.txt", "");
    blnAllowDBCreation = true;
    m_answers.expectSheet("frmChooseConnection", "cmdOK");
    EXPECT_EQ(fncGetConnection(), fileConnection());
    EXPECT_TRUE(exists("Orvelle.mdb"));
    EXPECT_EQ(frmChooseConnection.get().strSQLScriptFileName, "ORVLDB.sql");
}

TEST_F(FindDatabase, TheDataFolderLosesItsLastSeparator) {
    const QString folder = fncProgramFolder();
    start(false);
    put("Orvelle.mdb", "x");
    for (const char *ending : {"", "\\", "/"}) {
        strDBPath = folder + ending;
        EXPECT_EQ(fncGetConnection(), fileConnection());
        EXPECT_EQ(*strDBPath, folder);
    }
    strDBPath = QString();
    EXPECT_EQ(fncGetConnection(), fileConnection()) << "the program folder is the data folder";
}

TEST_F(FindDatabase, AServersTextThatCannotBeReadIsReportedAndStays) {
    // A file that opens and then gives nothing but errors.
    ASSERT_TRUE(QFile::link("/proc/self/mem", path("DBConnection.txt")));
    start(true);
    m_answers.expect(" : fncGetConnection ", window::No);
    EXPECT_THROW(fncGetConnection(), ProcessEnd);
    EXPECT_TRUE(exists("DBConnection.txt"));
}

TEST_F(FindDatabase, ClosingTheChoiceLeavesNoDatabase) {
    start(true);
    m_answers.expectSheet("frmChooseConnection", "");
    EXPECT_EQ(fncGetConnection(), "");
    EXPECT_FALSE(exists("Orvelle.mdb"));
    EXPECT_EQ(frmChooseConnection.get().intConnectionOption, 0);
}

TEST_F(FindDatabase, ExampleDataIsOfferedOnce) {
    start(true);
    m_answers.expectSheet("frmChooseConnection", "", {{"chkExampleData", "1"}});
    fncGetConnection();
    EXPECT_FALSE(frmChooseConnection.get().blnLoadExampleData) << "the dialog was not confirmed";
    m_answers.expectSheet("frmChooseConnection", "cmdOK");
    fncGetConnection();
    EXPECT_EQ(m_answers.shown()[1].field("chkExampleData"), nullptr);
}

TEST_F(FindDatabase, ExampleDataIsLoadedWhenTicked) {
    start(true);
    m_answers.expectSheet("frmChooseConnection", "cmdOK", {{"chkExampleData", "1"}});
    fncGetConnection();
    EXPECT_TRUE(frmChooseConnection.get().blnLoadExampleData);
}

using SharedConnection = Installation;

TEST_F(SharedConnection, IsOneAndOpensAgainAfterItWasClosed) {
    startOnNewDatabase();
    const Ref<ado::Recordset> one = fncReturnRecordset("tblStatuses", false, true, false);
    const Ref<ado::Connection> first = *adoConnection;
    const Ref<ado::Recordset> two = fncReturnRecordset("Select * from tblStatuses", true, true, false);
    EXPECT_EQ(*adoConnection, first);
    one->AddNew();
    one->Fields(1).SetValue("Open");
    one->Update();

    subCloseConnection();
    EXPECT_TRUE(adoConnection.get().isNothing());
    EXPECT_FALSE(first->IsOpen());
    subCloseConnection();

    EXPECT_EQ(fncReturnRecordset("tblStatuses", true, true, false)->RecordCount(), 1);
}

TEST_F(SharedConnection, ReadOnlyRecordsetsTakeNoChanges) {
    startOnNewDatabase();
    const Ref<ado::Recordset> set = fncReturnRecordset("tblStatuses", true, true, false);
    const auto failure = Attempt([&] { set->AddNew(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->number(), ado::notUpdatable);
}

TEST_F(SharedConnection, RunsCommands) {
    startOnNewDatabase();
    const Ref<ado::Command> command = fncCreateCommand();
    command->SetCommandText("INSERT INTO tblStatuses (strStatus) VALUES ('Open')");
    EXPECT_EQ(command->Execute(), 1);
}

TEST_F(SharedConnection, AFailingSelectionIsReportedOrGivesNothing) {
    startOnNewDatabase();
    EXPECT_TRUE(fncReturnRecordset("tblNone", false, false, false).isNothing());
    m_answers.expect("fncReturnRecordset", window::No);
    EXPECT_THROW(fncReturnRecordset("tblNone", false, true, false), ProcessEnd);
}

TEST_F(SharedConnection, ADatabaseThatCannotBeOpenedIsReported) {
    put("Orvelle.mdb", "this is no database");
    start(true);
    m_answers.expect("damaged", window::No);
    EXPECT_THROW(subSetupConnection(), ProcessEnd);
    EXPECT_TRUE(adoConnection.get().isNothing());
}

TEST_F(SharedConnection, AServerIsRefusedInWords) {
    put("DBConnection.txt", "Provider=SQLOLEDB.1;Data Source=s;Initial Catalog=OrvelleSQL");
    start(true);
    m_answers.expect("not supported yet", window::No);
    EXPECT_THROW(subSetupConnection(), ProcessEnd);
}

TEST_F(SharedConnection, AKnownServerIsNotLookedUpAgain) {
    start(true);
    reportTarget = Ref<ReportTarget>::make(ReportTarget{3, "Provider=Nobody.1"});
    m_answers.expect("Nobody.1", window::No);
    EXPECT_THROW(subSetupConnection(), ProcessEnd);
    EXPECT_FALSE(exists("Orvelle.mdb"));
}

using OlderFile = Installation;

TEST_F(OlderFile, IsBroughtUnderThePresentName) {
    start(false);
    EXPECT_EQ(*strDBFileName, "Orvelle.mdb");
    EXPECT_FALSE(exists("Orvelle.mdb")) << "nothing is created here";

    ASSERT_TRUE(fncCreateAccessDB(fncProgramFolder() + "\\Corvane.mdb"));
    start(false);
    EXPECT_EQ(*strDBFileName, "Orvelle.mdb");
    EXPECT_FALSE(exists("Corvane.mdb"));
    EXPECT_EQ(fncReturnRecordset("tblTickets", true, true, false)->RecordCount(), 0);
}

TEST_F(OlderFile, IsLeftAloneBesideThePresentOne) {
    put("Orvelle.mdb", "new");
    put("Corvane.mdb", "old");
    start(false);
    EXPECT_EQ(*strDBFileName, "Orvelle.mdb");
    EXPECT_EQ(content("Orvelle.mdb"), "new");
    EXPECT_EQ(content("Corvane.mdb"), "old");
}

TEST_F(OlderFile, IsUsedUnderItsNameWhileAnotherProgramHasIt) {
    ASSERT_TRUE(fncCreateAccessDB(fncProgramFolder() + "\\Corvane.mdb"));
    const auto other = Ref<ado::Connection>::make();
    other->SetConnectionString(fileConnection("Corvane.mdb"));
    other->Open();
    start(false);
    EXPECT_EQ(*strDBFileName, "Corvane.mdb");
    EXPECT_EQ(fncGetConnection(), fileConnection("Corvane.mdb"));
    EXPECT_EQ(fncReturnRecordset("tblTickets", true, true, false)->RecordCount(), 0);

    subCloseConnection();
    other->Close();
    start(false);
    EXPECT_EQ(*strDBFileName, "Orvelle.mdb") << "the next start tries again";
}

} // namespace
