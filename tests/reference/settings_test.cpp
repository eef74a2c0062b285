// The settings object: what it loads, what it writes back, and the language file beside the home page.

#include "reference/fakehost.h"
#include "reference/program.h"
#include "reference/ticketfolder.h"

#include "outlook/outlookfolder.h"

namespace {

class SettingsTest : public DatabaseTest {
  protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        m_host = std::make_unique<FakeHost>();
        m_host->tickets->members["webviewurl"] = "file:" + folder() + "/Orvelle.htm";
    }

    FakeHost &fakeHost() { return *m_host; }
    [[nodiscard]] QString languageFile() const { return folder() + "/OrvelleSettings"; }
    void writeLanguage(const QByteArray &content) const {
        QFile file(languageFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    [[nodiscard]] QByteArray language() const {
        QFile file(languageFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

  private:
    std::unique_ptr<FakeHost> m_host;
};

TEST_F(SettingsTest, StartsWithDefaultsAndEmptyLists) {
    EXPECT_EQ(objSettings->Statuses->ListName, LNGSTATUS.text());
    EXPECT_EQ(objSettings->CallerCategories->ListName, LNGCALLERCATEGORY.text());
    EXPECT_EQ(objSettings->ReportTo, 0);
    EXPECT_EQ(objSettings->OtherSettings->DicList->Keys(),
              (QStringList{"ServiceStart", "ServiceEnd", "BreakStart", "BreakEnd", "DayServiceStart", "DayServiceEnd",
                           "ServiceHours", "LunchHours"}));
}

TEST_F(SettingsTest, LoadsEverythingInOrder) {
    fill("tblPersons", "strPersonName", {"Zoë", "Ann Other"});
    fill("tblTypes", "strTypeDescription", {"b", "a"});
    fill("tblStatuses", "strStatus", {"Open", "Closed"});
    fill("tblCallerCategories", "strCallerCategory", {"VIP"});
    fill("tblCallers", "strFullName", {"Cal"});
    addRow("tblOtherSettings", {{"strPropName", "EmailFolders"}, {"strPropValue", "\\\\Box\\In\r\n\\\\Box\\In 2"}});
    writeLanguage(" 7 \n ");
    objSettings->GetSettings(false);
    EXPECT_EQ(objSettings->Responsibles->DicList->Keys(), (QStringList{"Ann Other", "Zoë"}));
    EXPECT_EQ(objSettings->ProblemTypes->GetProblemTypes(), "a*b");
    EXPECT_EQ(objSettings->Statuses->ToString(), "Closed\r\nOpen");
    EXPECT_EQ(objSettings->CallerCategories->ToString(), "VIP");
    EXPECT_EQ(objSettings->Callers->DicList->Keys(), QStringList{"Cal"});
    EXPECT_EQ(objSettings->EmailFolders->DicList->Keys(), (QStringList{"\\\\Box\\In", "\\\\Box\\In 2"}));
    EXPECT_EQ(objSettings->CurrentSelectedLanguage, 7);
    EXPECT_EQ(objSettings->ReportTo, 2);
    EXPECT_EQ(objSettings->ReportToValue, strDBPath + "\\Orvelle.mdb");
    // The user is the list's own person, found by the mailbox's name.
    EXPECT_EQ(objSettings->CurrentResponsible->ID, 2);
    EXPECT_EQ(*strCurrentUserName, "Ann Other");
    EXPECT_TRUE(adoConnection.get().isNothing());
}

TEST_F(SettingsTest, AUserOfNoListHasTheNameAlone) {
    objSettings->GetSettings(false);
    EXPECT_EQ(objSettings->CurrentResponsible->FullName, "Ann Other");
    EXPECT_EQ(objSettings->CurrentResponsible->ID, 0);
    EXPECT_FALSE(objSettings->OtherSettings->DicList->Exists("ServiceStart"));
}

TEST_F(SettingsTest, ASecondLoadStartsListsAnewButKeepsTheTextLists) {
    fill("tblPersons", "strPersonName", {"Ann"});
    objSettings->Responsibles->FromString("Added\t\t0");
    objSettings->Statuses->FromString("Added");
    objSettings->GetSettings(false);
    EXPECT_EQ(objSettings->Responsibles->DicList->Keys(), QStringList{"Ann"});
    EXPECT_EQ(objSettings->Statuses->DicList->Keys(), QStringList{"Added"});
}

TEST_F(SettingsTest, WritesEverythingBack) {
    writeLanguage("2");
    objSettings->GetSettings(false);
    objSettings->Responsibles->FromString("Ann\ta@x\t5");
    objSettings->ProblemTypes->FromString("Printer\tHardware\t15");
    objSettings->CallerCategories->FromString("VIP");
    objSettings->Statuses->FromString("Open");
    objSettings->Callers->FromString("Cal\tc@x\t1\tVIP");
    objSettings->EmailFolders->FromString("\\\\Box\\In");
    objSettings->CurrentSelectedLanguage = 3;
    objSettings->SaveSettings();
    EXPECT_EQ(rows("tblPersons", {"strPersonName", "curRate"}), QStringList{"Ann 5"});
    EXPECT_EQ(rows("tblTypes", {"strTypeDescription"}), QStringList{"Printer"});
    EXPECT_EQ(rows("tblCallerCategories", {"strCallerCategory"}), QStringList{"VIP"});
    EXPECT_EQ(rows("tblStatuses", {"strStatus"}), QStringList{"Open"});
    EXPECT_EQ(rows("tblCallers", {"strFullName"}), QStringList{"Cal"});
    EXPECT_EQ(rows("tblOtherSettings", {"strPropName", "strPropValue"}), QStringList{"EmailFolders \\\\Box\\In"});
    EXPECT_EQ(language(), "3");
}

TEST_F(SettingsTest, BeforeTheLanguageIsReadTheLanguageFileStays) {
    writeLanguage("2");
    objSettings->CurrentSelectedLanguage = 3;
    objSettings->SaveSettings();
    EXPECT_EQ(language(), "2");
    EXPECT_EQ(rows("tblOtherSettings", {"strPropName"}).size(), 9);
}

TEST_F(SettingsTest, WithNoDatabaseTellsWhyAndEnds) {
    strDBPath = folder() + "\\nowhere";
    expectQuestion(LNGERRCONNECTIONFAILED + (strLineEnd + QString()) + strLineEnd);
    EXPECT_TRUE(endsProcess([] { objSettings->GetSettings(false); }));
    EXPECT_FALSE(questions().first().contains("DBConnection"));
    EXPECT_TRUE(fakeHost().explorer->stored("CurrentFolder").object() == fakeHost().calendar);
}

TEST_F(SettingsTest, WithNoServerTellsHowToReinstallAndEnds) {
    strDBPath = folder() + "\\nowhere";
    objSettings->ReportTo = 3;
    expectQuestion("To re-install, please remove the DBConnection.txt file.");
    EXPECT_TRUE(endsProcess([] { objSettings->GetSettings(false); }));
}

TEST_F(SettingsTest, WithNoDatabaseAndNoHostAsksForTheHostFirst) {
    strDBPath = folder() + "\\nowhere";
    ouaOutlook = host::Application();
    expectQuestion("Please start Outlook manually");
    EXPECT_TRUE(endsProcess([] { objSettings->GetSettings(false); }));
}

struct LanguageCase {
    const char *content;
    qint16 language;
};

TEST_F(SettingsTest, ReadsTheLanguage) {
    for (const LanguageCase &one : QList<LanguageCase>{{"7", 7}, {"  12 ", 12}, {"", 1}, {"   ", 1}}) {
        writeLanguage(one.content);
        EXPECT_EQ(objSettings->fncReadLanguage(), one.language) << one.content;
        EXPECT_EQ(objSettings->CurrentSelectedLanguage, one.language);
    }
    writeLanguage("Swedish");
    EXPECT_EQ(failureOf([] { objSettings->fncReadLanguage(); }), failures::typeMismatch);
}

TEST_F(SettingsTest, ALanguageThatIsNoNumberIsReportedAndLeft) {
    writeLanguage("Swedish");
    expectReport("cSettings.GetSettings");
    EXPECT_TRUE(endsProcess([] { objSettings->GetSettings(false); }));
    EXPECT_TRUE(questions().first().contains(languageFile() + " holds \"Swedish\"")) << qPrintable(questions().first());
    EXPECT_EQ(language(), "Swedish");
}

TEST_F(SettingsTest, ALanguageFileThatCannotBeUsedCountsAsTheFirst) {
    QDir(folder()).mkdir("OrvelleSettings");
    objSettings->CurrentSelectedLanguage = 4;
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    objSettings->fncSetSettingFile(languageFile(), 3);
    EXPECT_TRUE(QFileInfo(languageFile()).isDir());
}

TEST_F(SettingsTest, TheFirstReadMakesTheLanguageFile) {
    objSettings->CurrentSelectedLanguage = 4;
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    EXPECT_EQ(language(), "1");
}

TEST_F(SettingsTest, WithoutAFolderTheLanguageIsTheFirst) {
    oufTickets = nullptr;
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    EXPECT_EQ(language(), "no file");
}

struct PathCase {
    const char *url, *path;
};

TEST_F(SettingsTest, FindsTheFolderOfTheHomePage) {
    const QList<PathCase> cases{
        {"file://C:\\Data\\page.htm", "C:\\Data\\"},
        {"file:C:\\Data\\page.htm", "C:\\Data\\"},
        {"file:///srv/help desk/Orvelle.htm", "/srv/help desk/"},
        {"file:C:\\x/y.htm", "C:\\x/"},
        {"page.htm", "page.htm"},
        {"", ""},
    };
    for (const PathCase &one : cases) {
        fakeHost().tickets->members["webviewurl"] = one.url;
        EXPECT_EQ(objSettings->fncGetFilePath(), one.path) << one.url;
    }
    EXPECT_EQ(objSettings->fncGetFileName("C:\\x/y.htm"), "y.htm");
    EXPECT_EQ(objSettings->fncGetFileName("y.htm"), "");
}

TEST_F(SettingsTest, LaysOutANewTicket) {
    const QString page = objSettings->NewTicketHTML("It <b>burns</b>");
    EXPECT_TRUE(page.startsWith("<html><head><style>p{ margin-bottom: -20 }</style></head>"));
    EXPECT_TRUE(page.contains("size='4'>" + LNGPROBLEM + "</font></p><p>It <b>burns</b>&nbsp;</p>"));
    EXPECT_TRUE(page.endsWith(LNGSOLUTION + "</font></p><p>&nbsp;</p></body></html>"));
    EXPECT_TRUE(objSettings->NewTicketHTML("").contains("<p>&nbsp;</p><p>&nbsp;</p>"));
}

TEST_F(SettingsTest, RemembersTheTicketFolderForTheNextRun) {
    objSettings->GetSettings(false);
    subCreateSettings();
    objSettings->objFolder->StoreID = "kept";
    subReadFolderFromRegistry();
    EXPECT_EQ(objSettings->objFolder->EntryID, "E1");
    EXPECT_EQ(objSettings->objFolder->StoreID, "S1");
    EXPECT_EQ(objSettings->objFolder->Name, "Tickets");
}

TEST_F(SettingsTest, AskedForAFolderItTakesThePickedOneAndKeepsItsPath) {
    const host::MAPIFolder tickets = oufTickets;
    int picks = 0;
    fakeHost().session->functions["pickfolder"] = [&](const ValueList &) -> Value {
        return ++picks < 2 ? Value::nothing() : Value(tickets.object());
    };
    oufTickets = nullptr;
    fakeHost().explorer->failing["CurrentFolder"] = failures::notFound;
    expectQuestion("Outlook folder");
    for (int times = 0; times < 2; ++times)
        expectQuestion(LNGFAILEDTOFINDCRVFOLDER.text(), window::Yes);
    objSettings->GetSettings(false);
    EXPECT_TRUE(oufTickets->object() == tickets.object());
    const QString path = toText(objSettings->OtherSettings->GetValue("RootFolderPath", settingtype::text));
    EXPECT_TRUE(path.endsWith("Tickets")) << qPrintable(path);
    EXPECT_EQ(rows("tblOtherSettings", {"strPropName", "strPropValue"}).last(), "EmailFolders  ");
    EXPECT_TRUE(rows("tblOtherSettings", {"strPropName", "strPropValue"}).contains("RootFolderPath " + path));
}

TEST_F(SettingsTest, AskedForAFolderAndGivenNoneItEnds) {
    oufTickets = nullptr;
    fakeHost().explorer->members["currentfolder"] = Value::nothing();
    fakeHost().explorer->failing["CurrentFolder"] = failures::notFound;
    expectQuestion("Outlook folder");
    expectQuestion(LNGFAILEDTOFINDCRVFOLDER.text(), window::No);
    EXPECT_TRUE(endsProcess([] { objSettings->GetSettings(false); }));
}

} // namespace
