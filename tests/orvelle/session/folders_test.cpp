// Folders as paths, as saved references, and as the ticket folder.

#include "orvelle/session/folderpath.h"
#include "orvelle/session/homepage.h"
#include "orvelle/session/outlookfolder.h"
#include "platform/scripting/shell.h"
#include "support/session.h"

namespace {

using FolderTest = support::Session;

TEST_F(FolderTest, APathNamesTheFolderAndFindsIt) {
    const host::MAPIFolder deep = tickets().Folders().Add("A; B", 6).Folders().Add("C", 6);
    EXPECT_EQ(fncGetFolderPath(tickets(), onsMAPI), "\\\\Public Folders\\Helpdesk");
    EXPECT_EQ(fncGetFolderPath(deep, onsMAPI), "\\\\Public Folders\\Helpdesk\\A; B\\C");
    EXPECT_EQ(fncGetFolderPath(mailbox(), onsMAPI), "Mailbox - Alma Tester") << "a top folder has no top above it";
    EXPECT_EQ(fncGetFolderPath(host::MAPIFolder(), onsMAPI), "");
    EXPECT_TRUE(fncGetFolderFromPath("\\\\Public Folders\\Helpdesk\\A; B\\C") == deep);
}

TEST_F(FolderTest, APathGivesItsFolderOrNothing) {
    const std::pair<const char *, const char *> cases[] = {{"\\\\Public Folders\\Helpdesk", "Helpdesk"},
                                                           {"\\\\Public Folders", "Public Folders"},
                                                           {"\\\\Public Folders\\Missing\\Helpdesk", ""},
                                                           {"\\\\Missing\\Helpdesk", ""},
                                                           {"A\\B", ""},
                                                           {"", ""},
                                                           {"   ", ""},
                                                           {"Alma Tester", "Inbox"},
                                                           {"Nobody Known", ""}};
    for (const auto &[path, name] : cases) {
        const host::MAPIFolder found = fncGetFolderFromPath(path);
        EXPECT_EQ(found ? found.Name() : QString(), name) << path;
    }
}

TEST_F(FolderTest, ASavedReferenceFindsByIdentifierThenByPathAndChecksTheName) {
    const QString id = tickets().EntryID();
    const QString store = tickets().StoreID();
    const QString path = "\\\\Public Folders\\Helpdesk";
    const QString otherPath = "\\\\Mailbox - Alma Tester\\Support";
    struct Case {
        const char *what;
        QString entryID;
        QString storeID;
        QString path;
        QString name;
        const char *found;
    };
    for (const Case &each : {
             Case{"identifiers alone", id, store, "", "", "Helpdesk"},
             Case{"identifiers and name", id, store, "", "Helpdesk", "Helpdesk"},
             Case{"path alone", "", "", path, "", "Helpdesk"},
             Case{"a dead identifier, then the path", "00AA", store, path, "Helpdesk", "Helpdesk"},
             Case{"renamed", id, store, "", "Old name", ""},
             Case{"renamed, with its path", id, store, path, "Old name", ""},
             Case{"name in another case", id, store, path, "helpdesk", ""},
             Case{"the identifier is another folder's", id, store, otherPath, "Support", "Support"},
             Case{"nothing", "", "", "", "", ""},
             Case{"a name alone", "", "", "", "Helpdesk", ""},
         }) {
        cOutlookFolder folder;
        folder.EntryID = each.entryID;
        folder.StoreID = each.storeID;
        folder.Path = each.path;
        folder.Name = each.name;
        const host::MAPIFolder found = folder.GetFolder();
        EXPECT_EQ(found ? found.Name() : QString(), each.found) << each.what;
    }
}

TEST_F(FolderTest, TheHomePageMarksAHelpdeskFolderWhateverItsCase) {
    tickets().WebViewURL("file:C:\\Share\\orvelle.HTM");
    EXPECT_TRUE(fncValidTicketFolder() == tickets());
}

TEST_F(FolderTest, WithoutAHomePageThePersonPicksOrGivesUp) {
    for (const char *url : {"", "file:C:\\Share\\Orvelle.htm?x=1", "file:C:\\Share\\Orvelle.html"}) {
        tickets().WebViewURL(url);
        for (const window::Answer answer : {window::No, window::Yes}) {
            answers.expectSheet("frmPickFolder", "");
            answers.expect("Are you sure you want to exit?", answer);
        }
        EXPECT_TRUE(support::endsProcess([] { static_cast<void>(fncValidTicketFolder()); })) << url;
    }
}

TEST_F(FolderTest, AFolderThatCantBeTheHelpdesksIsRefusedByItsKind) {
    const host::MAPIFolder shown = onsMAPI->GetDefaultFolder(6);
    ouaOutlook->ActiveExplorer().CurrentFolder(shown);
    const auto path = [](qint32 number) { return fncGetFolderPath(onsMAPI->GetDefaultFolder(number), onsMAPI); };
    tickets().WebViewURL("file:C:\\Share\\Orvelle.htm");
    const std::pair<QString, const char *> picks[] = {{path(9), "have has homepage path set to"},
                                                      {path(10), "have has homepage path set to"},
                                                      {path(16), "has its homepage path set to"},
                                                      {"\\\\Public Folders\\Helpdesk", nullptr}};
    for (const auto &[picked, refusal] : picks) {
        answers.expectSheet("frmPickFolder", "cmdOK", {{"treFolders", picked}});
        if (refusal)
            answers.expect(refusal);
    }
    EXPECT_TRUE(fncValidTicketFolder() == tickets());
    EXPECT_TRUE(ouaOutlook->ActiveExplorer().CurrentFolder() == shown);
}

TEST_F(FolderTest, TheReferenceIsLeftInTheRegistry) {
    subWriteReg();
    const std::pair<const char *, QString> values[] = {{"Folder EntryID", tickets().EntryID()},
                                                       {"Folder StoreID", tickets().StoreID()},
                                                       {"Folder Path", "\\\\Public Folders\\Helpdesk"},
                                                       {"Folder Name", "Helpdesk"},
                                                       {"Minutes", LNGMINUTES}};
    for (const auto &[name, value] : values)
        EXPECT_EQ(scripting::Shell().RegRead(QString("HKCU\\Software\\Tessmark\\Orvelle\\") + name), value) << name;
    oufTickets = host::MAPIFolder();
    expectReport("subWriteReg");
    EXPECT_TRUE(support::endsProcess([] { subWriteReg(); }));
}

TEST_F(FolderTest, RefreshingTheHomePageShowsTheParentAndComesBack) {
    QStringList shown;
    const auto subscription =
        explorer().connect("FolderSwitch", [&](ValueList &) { shown << explorer().CurrentFolder().Name(); });
    subRefreshCBHomepage();
    EXPECT_EQ(shown, (QStringList{"Public Folders", "Helpdesk"}));
    EXPECT_TRUE(tickets().WebViewOn());
    EXPECT_TRUE(oufTickets == tickets());
}

} // namespace
