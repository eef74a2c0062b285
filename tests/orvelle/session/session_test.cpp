// Finding the host, its user and its folder, and letting go of it.

#include "orvelle/session/session.h"

#include "orvelle/session/clienttools.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/forms.h"
#include "orvelle/session/homepage.h"
#include "orvelle/session/safeutils.h"
#include "platform/scripting/components.h"
#include "support/fakeobject.h"
#include "support/session.h"

namespace {

using SessionTest = support::Session;

TEST_F(SessionTest, AHostWithoutAWindowGetsOneOnTheFolder) {
    explorer().Close();
    subReleaseOutlook();
    ASSERT_EQ(app().Explorers().Count(), 0);
    subStartOutlook(9);
    EXPECT_EQ(app().ActiveExplorer().CurrentFolder().Name(), "Calendar");
}

TEST_F(SessionTest, AHostThatIsThereIsNotLookedForAgain) {
    runningHost = []() -> automation::ObjectPtr { throw Failure(failures::cannotCreateObject); };
    subStartOutlook(6);
    EXPECT_TRUE(ouaOutlook == app());
}

TEST_F(SessionTest, WhatNeedsTheHostStartsIt) {
    const std::vector<std::pair<const char *, std::function<void()>>> operations{
        {"version", [] { EXPECT_GE(fncOutlookVersion(), 9); }},
        {"folder", [] { subSetCurrentFolder(9); }},
        {"name", [] { subGetSafeMailboxName(); }},
        {"picking", [] { static_cast<void>(fncPickFolder(nullptr)); }},
    };
    for (const auto &[name, operation] : operations) {
        support::inAnotherCopy([&] {
            runningHost = [this] { return desk().application(); };
            operation();
            EXPECT_FALSE(ouaOutlook->isNothing()) << name;
        });
    }
}

TEST_F(SessionTest, AComponentOfTheHostsNameIsTheSecondChoice) {
    subReleaseOutlook();
    runningHost = nullptr;
    QStringList asked;
    for (const QString version : {".9", ".10", ".11", ".12", ""}) {
        scripting::components->add("Outlook.Application" + version, [this, version, &asked] {
            asked << version;
            if (asked.size() < 6)
                throw Failure(failures::cannotCreateObject);
            return desk().application();
        });
    }
    subStartOutlook(6);
    EXPECT_EQ(asked, (QStringList{"", ".12", ".11", ".10", ".9", ""}));
    EXPECT_TRUE(ouaOutlook == app());
}

TEST_F(SessionTest, TheCurrentFolderIsTheActiveExplorers) {
    oufTickets = host::MAPIFolder();
    subSetCurrentFolder(9);
    EXPECT_TRUE(oufTickets == tickets());
    explorer().Close();
    subSetCurrentFolder(9);
    EXPECT_EQ(oufTickets->Name(), "Calendar");
}

TEST_F(SessionTest, WhatTheHostRefusesIsToldReportedOrPassedOver) {
    struct Case {
        const char *question;
        QString told;
        bool ends;
        std::function<void()> step;
        /// Picked in the dialog that comes first.
        const char *picked = nullptr;
    };
    const char *const helpdesk = "\\\\Public Folders\\Helpdesk";
    const auto expectValidFolder = [] { EXPECT_EQ(fncValidTicketFolder().Name(), "Helpdesk"); };
    for (const Case &each : {
             Case{"Application.ActiveExplorer()", "Unable to connect to current Outlook folder!", false,
                  [] { subSetCurrentFolder(9); }},
             Case{"Explorer.CurrentFolder", "", false, expectValidFolder, helpdesk},
             Case{"Application.ActiveExplorer()", "", false, expectValidFolder, helpdesk},
             Case{"NameSpace.GetDefaultFolder()", " : subGetSafeMailboxName ", true, [] { (void)fncGetUserName(); }},
             Case{"NameSpace.Folders()", "", false,
                  [] { EXPECT_TRUE(fncGetFolderFromPath("\\\\Public Folders\\Helpdesk").isNothing()); }},
             Case{"NameSpace.PickFolder()", "", false, [] { EXPECT_TRUE(fncPickFolder(nullptr).isNothing()); }},
         }) {
        SCOPED_TRACE(each.question);
        support::inAnotherCopy([&] {
            support::Answers answered;
            const auto questions = std::make_shared<support::Counting::Questions>();
            runningHost = [&] { return support::Counting::of(desk().application(), questions); };
            subStartOutlook(6);
            questions->failing[each.question] = failures::accessDenied;
            if (each.picked)
                answered.expectSheet("frmPickFolder", "cmdOK", {{"treFolders", each.picked}});
            if (!each.told.isEmpty())
                answered.expect(each.told, window::No);
            EXPECT_EQ(support::endsProcess(each.step), each.ends);
        });
    }
}

TEST_F(SessionTest, AHostThatIsTooOldEndsTheProcess) {
    subReleaseOutlook();
    support::inAnotherCopy([] {
        support::Answers answered;
        const auto old = std::make_shared<support::FakeObject>("Application");
        old->properties["Version"] = "8.5.1";
        runningHost = [old] { return automation::ObjectPtr(old); };
        answered.expect(LNGO2KNEEDED + strLineEnd + "8.5.1");
        EXPECT_TRUE(support::endsProcess([] { subStartOutlook(6); }));
    });
}

TEST_F(SessionTest, TheUserIsReadFromTheMailboxRoot) {
    struct Case {
        const char *root;
        const char *before;
        const char *name;
    };
    for (const Case &each : {Case{"Mailbox - Alma Tester", "", "Alma Tester"}, Case{"Box -  A - B ", "", "A - B"},
                             Case{"Tester, Alma", "", "Tester, Alma"}, Case{"Plain", "kept", "kept"}}) {
        mapi().GetDefaultFolder(9).Parent().put("Name", each.root);
        strCurrentUserName = QString(each.before);
        EXPECT_EQ(fncGetUserName(), each.name) << each.root;
    }
    strCurrentUserName = QString();
    EXPECT_FALSE(fncGetUserName().isEmpty()) << "a mailbox without a name leaves it to the machine";
}

class StubbornForm : public LoadableForm {
  public:
    bool stays = false;

  protected:
    void Form_Unload() override {
        if (stays)
            throw Failure(failures::invalidCall);
    }
};

TEST_F(SessionTest, FormsAreUnloadedFromTheLastUntilOneStays) {
    StubbornForm first;
    StubbornForm second;
    StubbornForm third;
    for (StubbornForm *form : {&first, &second, &third})
        form->Load();
    second.stays = true;
    subUnloadForms();
    EXPECT_TRUE(first.isLoaded());
    EXPECT_TRUE(second.isLoaded());
    EXPECT_FALSE(third.isLoaded());
    second.stays = false;
    subReleaseOutlook();
    EXPECT_TRUE(loadedForms->isEmpty());
    EXPECT_TRUE(ouaOutlook->isNothing());
    EXPECT_TRUE(onsMAPI->isNothing());
    EXPECT_TRUE(oufTickets->isNothing());
}

// ---- the client tools and the library that they bring

TEST_F(SessionTest, MissingClientToolsAreOfferedAndTheLibraryOnlyOnce) {
    setClientTools(false);
    answers.expect("Client Tools", window::No);
    subCheckClientTools();
    // Events come in while the question is open; they don't ask it again.
    answers.expectDuring(
        "Client Tools", [] { EXPECT_FALSE(fncSetupSafeUtils()); }, window::No);
    EXPECT_FALSE(fncSetupSafeUtils());
    EXPECT_FALSE(fncSetupSafeUtils());
    setClientTools(true);
    EXPECT_FALSE(fncSetupSafeUtils()) << "not asked for again in this run";
}

TEST_F(SessionTest, ClientToolsThatAreTooOldAreOffered) {
    struct Case {
        std::optional<Value> version;
        bool isOffered;
    };
    for (const Case &each :
         {Case{std::nullopt, true}, Case{92199, true}, Case{92200, false}, Case{"92200", false}, Case{"new", true}}) {
        scripting::components->add("OrvelleClientTools.cButtonHolder", [&] {
            auto addIn = std::make_shared<support::FakeObject>("cButtonHolder");
            if (each.version)
                addIn->properties["FileVersion"] = *each.version;
            return addIn;
        });
        if (each.isOffered)
            answers.expect("Client Tools", window::No);
        subCheckClientTools();
    }
}

TEST_F(SessionTest, AcceptingTheOfferStartsTheSetUpBesideTheHomePageAndEnds) {
    QFile::setPermissions(writtenFile(path("OrvelleClientTools.exe"), {}), QFile::ReadOwner | QFile::ExeOwner);
    const support::Launches launches;
    answers.expect("Client Tools", window::Yes);
    answers.expect(LNGRESTARTOUTLOOK);
    EXPECT_TRUE(support::endsProcess([] { subOfferClientTools(); }));
    EXPECT_EQ(launches.started(), QStringList{path("OrvelleClientTools.exe")});
}

TEST_F(SessionTest, AContactIsFoundByTheIdentifierOrByTheAddress) {
    const host::Item contact = mapi().GetDefaultFolder(10).Items().Add("IPM.Contact");
    contact.put("FullName", "Carla Contact");
    contact.put("Email1Address", "carla@example.org");
    contact.Save();
    const host::Handle list = host::Handle(mapi().call("AddressLists")).call("Item", {1});
    const host::AddressEntry entry(host::Handle(list.call("AddressEntries")).call("Item", {1}));
    EXPECT_EQ(fncFindContact(entry).EntryID(), contact.EntryID());

    deliver({.from = "\"Another Name\" <carla@example.org>"});
    EXPECT_EQ(fncFindContact(fncSafeMailItem(intake().Items().Item(1)).Sender()).FullName(), "Carla Contact");
    deliver({.from = "\"Nobody\" <nobody@example.org>"});
    EXPECT_TRUE(fncFindContact(fncSafeMailItem(intake().Items().Item(2)).Sender()).isNothing());
    EXPECT_EQ(fncGetSenderName(intake().Items().Item(2)), "Nobody");
    EXPECT_EQ(fncGetSenderName(host::Item()), "");
}

// Where an identifier of a contact or a folder stands in those of its entry and its list depends on the list's kind.
TEST_F(SessionTest, EveryCutOfTheIdentifiersIsTriedInEachList) {
    const auto fake = [](const char *type) { return std::make_shared<support::FakeObject>(type); };
    const auto idOf = [](char list, int length) {
        QString id;
        while (id.size() < length)
            id += list + QString::number(id.size());
        return id.left(length);
    };
    const QString entryID = idOf('e', 200);
    const QString byShortCut = entryID.mid(146, 48);
    const QString byLongCut = entryID.mid(54, 140);
    struct Case {
        const char *what;
        /// The identifiers of the lists' folders, and that of the contact.
        QStringList folders;
        QString contact;
        /// The contact, or the number of the list whose folder has the address.
        QString found;
    };
    for (const Case &each :
         {Case{"short", {idOf('1', 150).mid(102)}, byShortCut, "contact"},
          Case{"whole list", {idOf('1', 150)}, byShortCut, "contact"},
          Case{"long", {idOf('1', 150).mid(58)}, byLongCut, "contact"},
          Case{"long in the second list", {idOf('1', 150), idOf('2', 150).mid(58)}, byLongCut, "contact"},
          Case{"long, but a folder of short lists alone", {idOf('1', 150)}, byLongCut, "1"},
          Case{"by address, in the last list", {idOf('1', 150), idOf('2', 150).mid(102)}, "", "2"},
          Case{"no folder", {idOf('1', 150).mid(57)}, byShortCut, ""}}) {
        SCOPED_TRACE(each.what);
        const auto contact = fake("ContactItem");
        contact->properties["FullName"] = "contact";
        const auto session = fake("NameSpace");
        session->calls["GetItemFromID"] = [&](const ValueList &asked) -> Value {
            if (toText(asked[0]) != each.contact || asked.size() == 2)
                throw Failure(failures::notFound);
            return automation::ObjectPtr(contact);
        };
        session->calls["GetFolderFromID"] = [&](const ValueList &asked) -> Value {
            if (!each.folders.contains(toText(asked[0])))
                throw Failure(failures::notFound);
            const auto hit = fake("ContactItem");
            hit->properties["FullName"] = toText(asked[0]).left(1) == "1" ? "1" : "2";
            const auto items = fake("Items");
            items->properties["Find"] = automation::ObjectPtr(hit);
            const auto folder = fake("MAPIFolder");
            folder->properties["Items"] = automation::ObjectPtr(items);
            return automation::ObjectPtr(folder);
        };
        const auto lists = fake("AddressLists");
        lists->properties["Count"] = 2;
        lists->calls["Item"] = [&](const ValueList &index) -> Value {
            const auto list = fake("AddressList");
            list->properties["ID"] = idOf(toText(index[0]).front().toLatin1(), 150);
            return automation::ObjectPtr(list);
        };
        scripting::components->add("SafeTessmark.AddressLists", [&] { return automation::ObjectPtr(lists); });
        onsMAPI = host::NameSpace(automation::ObjectPtr(session));
        const auto entry = fake("AddressEntry");
        entry->properties = {{"ID", entryID}, {"Address", "cal@example.org"}};
        const host::ContactItem found = fncFindContact(host::AddressEntry(automation::ObjectPtr(entry)));
        EXPECT_EQ(found ? found.FullName() : QString(), each.found);
    }
}

} // namespace
