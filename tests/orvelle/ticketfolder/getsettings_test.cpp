// A run's settings: what is loaded and written back, and what happens without a database or a ticket folder.

#include "orvelle/ticketfolder/getsettings.h"

#include "orvelle/ticketfolder/ticketfolder.h"
#include "platform/scripting/shell.h"
#include "support/session.h"
#include "support/tables.h"

#include <gmock/gmock.h>

namespace {

class GetSettings : public support::Session {
  protected:
    [[nodiscard]] QString languageFile() const { return path("OrvelleSettings"); }
    void writeLanguage(const QByteArray &content) const { writtenFile(languageFile(), content); }
    [[nodiscard]] QByteArray language() const { return contentOf(languageFile()); }
};

TEST_F(GetSettings, LoadsEverythingInOrder) {
    support::fill("tblPersons", "strPersonName", {"Zoë", "Alma Tester"});
    support::fill("tblTypes", "strTypeDescription", {"b", "a"});
    support::fill("tblStatuses", "strStatus", {"Open", "Closed"});
    support::fill("tblCallerCategories", "strCallerCategory", {"VIP"});
    support::fill("tblCallers", "strFullName", {"Cal"});
    setEmailFolders({"\\\\Box\\In", "\\\\Box\\In 2"});
    writeLanguage(" 7 \n ");
    subGetSettings();
    EXPECT_EQ(objSettings->Responsibles->DicList->Keys(), (QStringList{"Alma Tester", "Zoë"}));
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
    EXPECT_EQ(*strCurrentUserName, "Alma Tester");
    EXPECT_TRUE(adoConnection.get().isNothing());
}

TEST_F(GetSettings, ASecondLoadStartsListsAnewButKeepsTheTextLists) {
    support::fill("tblPersons", "strPersonName", {"Ann"});
    objSettings->Responsibles->FromString("Added\t\t0");
    objSettings->Statuses->FromString("Added");
    subGetSettings();
    EXPECT_EQ(objSettings->Responsibles->DicList->Keys(), QStringList{"Ann"});
    EXPECT_EQ(objSettings->Statuses->DicList->Keys(), QStringList{"Added"});
    // A user of no list has the name alone.
    EXPECT_EQ(objSettings->CurrentResponsible->FullName, "Alma Tester");
    EXPECT_EQ(objSettings->CurrentResponsible->ID, 0);
}

TEST_F(GetSettings, WritesEverythingBack) {
    writeLanguage("2");
    objSettings->CurrentSelectedLanguage = 3;
    objSettings->SaveSettings();
    EXPECT_EQ(language(), "2") << "as long as the language has not been read";
    EXPECT_THAT(rows("tblOtherSettings", {"strPropName", "strPropValue"}),
                testing::UnorderedElementsAre("ServiceStart|8:00:00 AM", "ServiceEnd|5:00:00 PM",
                                              "BreakStart|12:00:00 PM", "BreakEnd|1:00:00 PM", "DayServiceStart|0",
                                              "DayServiceEnd|4", "ServiceHours|1", "LunchHours|1", "EmailFolders| "));
    subGetSettings();
    objSettings->Responsibles->FromString("Ann\ta@x\t5");
    objSettings->ProblemTypes->FromString("Printer\tHardware\t15");
    objSettings->CallerCategories->FromString("VIP");
    objSettings->Statuses->FromString("Open");
    objSettings->Callers->FromString("Cal\tc@x\t1\tVIP");
    objSettings->EmailFolders->FromString("\\\\Box\\In");
    objSettings->CurrentSelectedLanguage = 3;
    objSettings->SaveSettings();
    EXPECT_EQ(rows("tblPersons", {"strPersonName", "curRate"}), QStringList{"Ann|5"});
    EXPECT_EQ(rows("tblTypes", {"strTypeDescription"}), QStringList{"Printer"});
    EXPECT_EQ(rows("tblCallerCategories", {"strCallerCategory"}), QStringList{"VIP"});
    EXPECT_EQ(rows("tblStatuses", {"strStatus"}), QStringList{"Open"});
    EXPECT_EQ(rows("tblCallers", {"strFullName"}), QStringList{"Cal"});
    EXPECT_TRUE(rows("tblOtherSettings", {"strPropName", "strPropValue"}).contains("EmailFolders|\\\\Box\\In"));
    EXPECT_EQ(language(), "3");
}

TEST_F(GetSettings, TheRegionOfWorkLogsIsKnownOnceTheSettingsAreRead) {
    const auto readWith = [](const QString &region) {
        objSettings->OtherSettings->SetValue("Region", region);
        objSettings->SaveSettings();
        return support::endsProcess([] { subGetSettings(); });
    };
    EXPECT_FALSE(readWith(" de-CH "));
    EXPECT_EQ(objWorkRegion.get(), std::optional(QLocale("de_CH")));
    EXPECT_FALSE(readWith(""));
    EXPECT_EQ(objWorkRegion.get(), std::nullopt);
    expectReport("cSettings.GetSettings");
    EXPECT_TRUE(readWith("Switzerland"));
    EXPECT_TRUE(answers.asked().last().text.contains("\"Switzerland\", which is no region"));
}

TEST_F(GetSettings, WithNoDatabaseTellsWhatToDoAndEnds) {
    // What the installation uses is a file or a server; without a host its start comes first.
    const std::pair<qint16, QString> cases[] = {{2, LNGERRCONNECTIONFAILED + (strLineEnd + QString()) + strLineEnd},
                                                {3, "To re-install, please remove the DBConnection.txt file."},
                                                {2, "Please start Outlook manually"}};
    strDBPath = path("nowhere");
    for (const auto &[target, told] : cases) {
        objSettings->ReportTo = target;
        if (told.contains("Outlook")) {
            ouaOutlook = host::Application();
            runningHost = nullptr;
        }
        answers.expect(told);
        EXPECT_TRUE(support::endsProcess([] { subGetSettings(); })) << told.toStdString();
    }
    EXPECT_FALSE(answers.asked().first().text.contains("DBConnection"));
}

TEST_F(GetSettings, AskedForAFolderItTakesThePickedOneAndKeepsItsPathOrEnds) {
    const QString picked = "\\\\Public Folders\\Helpdesk";
    const auto questions = std::make_shared<support::Counting::Questions>();
    questions->failing["Explorer.CurrentFolder"] = failures::notFound;
    ouaOutlook = host::Application(support::Counting::of(ouaOutlook->object(), questions));
    oufTickets = nullptr;
    answers.expect("Outlook folder");
    for (const char *button : {"", "cmdOK"}) {
        answers.expect(LNGFAILEDTOFINDCRVFOLDER, window::Yes);
        answers.expectSheet("frmPickFolder", button, {{"treFolders", picked}});
    }
    subGetSettings();
    EXPECT_TRUE(oufTickets == tickets());
    EXPECT_TRUE(rows("tblOtherSettings", {"strPropName", "strPropValue"}).contains("RootFolderPath|" + picked));

    scripting::Shell().RegWrite("HKCU\\Software\\Tessmark\\Orvelle\\Folder Name", "none");
    subCreateSettings();
    oufTickets = nullptr;
    answers.expect("Outlook folder");
    answers.expect(LNGFAILEDTOFINDCRVFOLDER, window::No);
    EXPECT_TRUE(support::endsProcess([] { subGetSettings(); }));
}

} // namespace
