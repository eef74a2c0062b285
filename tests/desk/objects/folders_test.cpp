// A person's folders: the mailbox with its default folders, and the public folders.

#include "deskfixture.h"

namespace {

using FoldersTest = DeskTest;

TEST_F(FoldersTest, TopFoldersAreTheMailboxAndThePublicFolders) {
    const Handle top = session().of("Folders");
    ASSERT_EQ(top.number("Count"), 2);
    EXPECT_EQ(top.of("Item", {1}).text("Name"), "Mailbox - Alma Tester");
    EXPECT_EQ(top.of("Item", {"Public Folders"}).text("FolderPath"), "\\\\Public Folders");
    EXPECT_EQ(top.of("Item", {1}).of("Parent").typeName(), "NameSpace");
    EXPECT_EQ(failureOf([&] { top.call("Add", {"Another"}); }), failures::accessDenied);
}

TEST_F(FoldersTest, DefaultFoldersComeByNumberAndByName) {
    const struct {
        int number;
        QString name;
        int itemType;
    } cases[] = {{3, "Deleted Items", 0}, {4, "Outbox", 0},    {5, "Sent Items", 0}, {6, "Inbox", 0},
                 {9, "Calendar", 1},      {10, "Contacts", 2}, {13, "Tasks", 3},     {16, "Drafts", 0}};
    const Handle mailbox = session().of("Folders", {1});
    for (const auto &each : cases) {
        // By name first: a fresh mailbox has them before anybody asks by number.
        const Handle byName = mailbox.of("Folders", {each.name});
        const Handle byNumber = folder(each.number);
        EXPECT_TRUE(byName == byNumber) << each.number;
        EXPECT_EQ(byNumber.number("DefaultItemType"), each.itemType) << each.number;
        EXPECT_TRUE(byNumber.of("Parent") == mailbox) << each.number;
    }
    EXPECT_EQ(failureOf([&] { session().call("GetDefaultFolder", {7}); }), failures::notFound);
    reopen();
    EXPECT_EQ(session().of("Folders", {1}).of("Folders").number("Count"), 8);
}

TEST_F(FoldersTest, AFolderIsFoundByItsExactNameAlone) {
    const Handle folders = session().of("Folders", {2}).of("Folders");
    const Handle made = folders.of("Add", {"Helpdesk", 6});
    EXPECT_TRUE(folders.of("Item", {"Helpdesk"}) == made);
    EXPECT_TRUE(folders.of("Item", {1}) == made);
    EXPECT_EQ(failureOf([&] { folders.call("Item", {"helpdesk"}); }), failures::notFound);
    EXPECT_EQ(failureOf([&] { folders.call("Item", {2}); }), failures::subscriptOutOfRange);
    EXPECT_EQ(failureOf([&] { folders.call("Add", {"Helpdesk"}); }), failures::keyExists);
    made.put("Name", "Support");
    EXPECT_EQ(folders.of("Item", {"Support"}).text("FolderPath"), "\\\\Public Folders\\Support");
}

TEST_F(FoldersTest, AreFoundByNumbersInTheirNamesAndWalkedAsTheyWereAtFirst) {
    const Handle folders = session().of("Folders", {2}).of("Folders");
    for (const char *name : {"9", "Customers", "12", "100", "12.5", "7 8", "1e2x"})
        folders.call("Add", {name});
    const std::pair<const char *, const char *> cases[] = {
        {"[Name] > 9", "12"},        {"[Name] >= 9", "9"},      {"[name] > 12 and [Name] < 100", "12.5"},
        {"[Name] > 100", ""},        {"[Name] = '7 8'", "7 8"}, {"[Name] < 5", ""},
        {"[Name] <> 9", "Customers"}};
    for (const auto &[filter, expected] : cases) {
        const Handle found = folders.of("Find", {filter});
        EXPECT_EQ(found.isNothing() ? QString() : found.text("Name"), expected) << filter;
    }
    EXPECT_EQ(folders.of("Find", {"[Name] > 9"}).text("Name"), "12");
    EXPECT_EQ(folders.of("FindNext").text("Name"), "100");
    EXPECT_EQ(folders.of("FindNext").text("Name"), "12.5");
    EXPECT_TRUE(folders.of("FindNext").isNothing());
    EXPECT_EQ(failureOf([&] { folders.call("Find", {"[Subject] = 'x'"}); }), failures::automation(0x80020009));
    QStringList names;
    for (Handle each = folders.of("GetFirst"); !each.isNothing(); each = folders.of("GetNext")) {
        names << each.text("Name");
        each.call("Delete");
    }
    EXPECT_EQ(names, (QStringList{"9", "Customers", "12", "100", "12.5", "7 8", "1e2x"}));
}

TEST_F(FoldersTest, IdentifiersLeadBackToTheFolder) {
    const Handle made = publicFolder("Helpdesk");
    const QString entryId = made.text("EntryID");
    EXPECT_EQ(entryId.size(), 48);
    EXPECT_TRUE(session().of("GetFolderFromID", {entryId}) == made);
    EXPECT_TRUE(session().of("GetFolderFromID", {entryId.toLower(), made.text("StoreID")}) == made);
    const QString mailboxId = folder(6).text("StoreID");
    for (const ValueList &wrong : {ValueList{entryId, mailboxId}, ValueList{"00"}, ValueList{""},
                                   ValueList{folder(6).text("EntryID").replace(40, 8, "00FFFFFF")}})
        EXPECT_EQ(failureOf([&] { session().call("GetFolderFromID", wrong); }), failures::notFound);
}

TEST_F(FoldersTest, ADeletedFolderGoesToTheDeletedItemsAndThenForEver) {
    const Handle made = folder(6).of("Folders").of("Add", {"Old"});
    made.call("Delete");
    EXPECT_TRUE(made.of("Parent") == folder(3));
    made.call("Delete");
    EXPECT_EQ(failureOf([&] { static_cast<void>(made.get("Name")); }), failures::notFound);
    EXPECT_EQ(failureOf([&] { folder(6).call("Delete"); }), failures::accessDenied);
}

TEST_F(FoldersTest, ObjectsThatOutliveTheDeskFailInsteadOfCrashing) {
    const Handle app = application();
    const Handle inbox = folder(6);
    const Handle items = inbox.of("Items");
    const Handle item = savedItem(inbox, "IPM.Note", "Left");
    m_desk.reset();
    for (const auto &[object, member] : {std::pair{app, "ActiveExplorer"},
                                         {inbox, "Name"},
                                         {items, "Count"},
                                         {item, "Subject"},
                                         {item, "Attachments"}}) {
        const qint32 number = failureOf([&] { static_cast<void>(Handle(object.get(member)).get("Count")); });
        EXPECT_EQ(number, failures::disconnected) << member;
    }
}

} // namespace
