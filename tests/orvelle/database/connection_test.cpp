// Which database an installation uses, by the files that stand in its folder.

#include "orvelle/database/installation.h"
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
    EXPECT_EQ(bytes("DBConnection.txt"), "Provider=SQLOLEDB.1;Data Source=s");
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
    answers.expectSheet("frmChooseConnection", "cmdOK", {{"chkExampleData", "1"}});
    EXPECT_EQ(fncGetConnection(), fileConnection());
    EXPECT_TRUE(exists("Orvelle.mdb"));
    EXPECT_TRUE(frmChooseConnection.get().blnLoadExampleData);
    EXPECT_EQ(frmChooseConnection.get().strSQLScriptFileName, "ORVLDB.sql");
}

TEST_F(FindDatabase, TheDataFolderLosesItsLastSeparator) {
    const QString folder = fncProgramFolder();
    start(false);
    put("Orvelle.mdb", "x");
    QDir(m_folder.path()).mkdir("one;two\"3");
    for (const char *ending : {"", "\\", "/"}) {
        strDBPath = folder + ending;
        EXPECT_EQ(fncGetConnection(), fileConnection());
        EXPECT_EQ(*strDBPath, folder);
    }
    strDBPath = QString();
    EXPECT_EQ(fncGetConnection(), fileConnection()) << "the program folder is the data folder";

    ASSERT_TRUE(fncCreateAccessDB(folder + "\\one;two\"3\\Orvelle.mdb"));
    strDBPath = folder + "\\one;two\"3";
    subSetupConnection();
    EXPECT_TRUE(adoConnection.get()) << "signs of the connection string";
}

TEST_F(FindDatabase, AServersTextThatCannotBeReadIsReportedAndStays) {
    // A file that opens and then gives nothing but errors.
    ASSERT_TRUE(QFile::link("/proc/self/mem", path("DBConnection.txt")));
    start(true);
    answers.expect(" : fncGetConnection ", window::No);
    EXPECT_THROW(fncGetConnection(), ProcessEnd);
    EXPECT_TRUE(exists("DBConnection.txt"));
}

TEST_F(FindDatabase, ClosingTheChoiceLeavesNoDatabaseAndExampleDataIsOfferedOnce) {
    start(true);
    answers.expectSheet("frmChooseConnection", "", {{"chkExampleData", "1"}});
    EXPECT_EQ(fncGetConnection(), "");
    EXPECT_FALSE(exists("Orvelle.mdb"));
    EXPECT_EQ(frmChooseConnection.get().intConnectionOption, 0);
    EXPECT_FALSE(frmChooseConnection.get().blnLoadExampleData) << "the dialog was not confirmed";
    answers.expectSheet("frmChooseConnection", "cmdOK");
    fncGetConnection();
    EXPECT_EQ(answers.shown()[1].field("chkExampleData"), nullptr);
}

TEST_F(FindDatabase, TheLogOfALostDatabaseIsNoReasonToMakeANewOne) {
    put("Orvelle.mdb-wal", "what was committed last");
    start(true);
    answers.expect("is missing, but the log of its last changes is still there", window::No);
    EXPECT_THROW(fncGetConnection(), ProcessEnd);
    EXPECT_FALSE(exists("Orvelle.mdb"));
    EXPECT_EQ(bytes("Orvelle.mdb-wal"), "what was committed last");
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

TEST_F(SharedConnection, AFailingSelectionIsReportedOrGivesNothing) {
    startOnNewDatabase();
    EXPECT_TRUE(fncReturnRecordset("tblNone", false, false, false).isNothing());
    answers.expect("fncReturnRecordset", window::No);
    EXPECT_THROW(fncReturnRecordset("tblNone", false, true, false), ProcessEnd);
}

/// A file, what is in it, and the words.
using Refusal = std::array<const char *, 3>;
class RefusedConnection : public Installation, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedConnection, IsReportedInWords) {
    const auto &[file, content, words] = GetParam();
    if (file)
        put(file, content);
    else
        reportTarget = Ref<ReportTarget>::make(ReportTarget{3, content});
    start(true);
    answers.expect(words, window::No);
    EXPECT_THROW(subSetupConnection(), ProcessEnd);
    EXPECT_TRUE(adoConnection.get().isNothing());
    EXPECT_EQ(exists("Orvelle.mdb"), QString(words) == "damaged");
}

// The last is a server that is known already and not looked up again.
INSTANTIATE_TEST_SUITE_P(Databases, RefusedConnection,
                         testing::Values(Refusal{"Orvelle.mdb", "this is no database", "damaged"},
                                         Refusal{"DBConnection.txt",
                                                 "Provider=SQLOLEDB.1;Data Source=s;Initial Catalog=OrvelleSQL",
                                                 "not supported yet"},
                                         Refusal{nullptr, "Provider=Nobody.1", "Nobody.1"}));

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
    EXPECT_EQ(bytes("Orvelle.mdb"), "new");
    EXPECT_EQ(bytes("Corvane.mdb"), "old");
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
    support::inAnotherCopy([folder = fncProgramFolder()] {
        strProgramFolderOverride = folder;
        start(false);
        EXPECT_EQ(*strDBFileName, "Orvelle.mdb") << "the next start tries again";
    });
    EXPECT_EQ(fncGetConnection(), fileConnection()) << "and who runs goes along";
}

} // namespace
