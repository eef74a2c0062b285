// What a client hears of: saves about to be written, changes, new items, windows.

#include "deskfixture.h"
#include "recordingwindows.h"

#include "desk/content/folderpath.h"
#include "desk/objects/session.h"
#include "desk/transport/delivery.h"

namespace {

/// The objects behave the same with windows and without.
enum class WindowsOf { Nobody, Recording };

class EventsTest : public DeskTest, public ::testing::WithParamInterface<WindowsOf> {
  protected:
    void SetUp() override { m_desk->session().setWindowFactory(factory()); }
    [[nodiscard]] static std::unique_ptr<desk::WindowFactory> factory() {
        if (GetParam() == WindowsOf::Nobody)
            return nullptr;
        return std::make_unique<RecordingWindows>(std::make_shared<QStringList>());
    }
    /// Another process on the same profile puts mail into the Inbox.
    void deliverFromElsewhere(const QString &subject) const {
        const auto other = desk::Session::open(desk::Profile(options()));
        const desk::FolderRecord inbox = other->specialFolder(desk::SpecialFolder::Inbox);
        desk::deliver(*other, {&other->mailbox(), inbox}, "Subject: " + subject.toUtf8() + "\r\n\r\nText\r\n");
    }
};

TEST_P(EventsTest, ASaveMadeWhileASaveIsToldIsWrittenOnce) {
    const Handle item = newItem(folder(6), "IPM.Post", "Outer");
    int depth = 0;
    QStringList order;
    const auto write = item.on("Write", [&](ValueList &) {
        order.append(QStringLiteral("write at %1").arg(depth));
        if (++depth == 1) {
            item.put("Subject", "Inner");
            item.call("Save");
            EXPECT_TRUE(toBool(item.get("Saved")));
            item.put("BillingInformation", "after");
        }
        --depth;
    });
    item.call("Save");
    EXPECT_EQ(order, (QStringList{"write at 0", "write at 1"}));
    const Handle stored = folder(6).of("Items").of("Item", {1});
    EXPECT_EQ(stored.text("Subject"), "Inner");
    EXPECT_EQ(stored.text("BillingInformation"), "after");
    EXPECT_EQ(folder(6).of("Items").number("Count"), 1);
}

TEST_P(EventsTest, ACancelledWriteWritesNothing) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Before");
    const auto write = item.on("Write", [](ValueList &arguments) { arguments[0] = true; });
    item.put("Subject", "After");
    item.call("Save");
    EXPECT_FALSE(toBool(item.get("Saved")));
    EXPECT_EQ(subjects(folder(6)), QStringList{"Before"});
    for (const Handle &target : {folder(3), publicFolder("Helpdesk"), folder(6)}) {
        EXPECT_NE(failureOf([&] { item.call("Move", {target}); }), 0) << target.text("Name").toStdString();
        EXPECT_EQ(item.text("Subject"), "After") << "the edits are still there";
        EXPECT_TRUE(item.of("Parent") == folder(6));
    }
    EXPECT_EQ(subjects(folder(6)), QStringList{"Before"});
}

TEST_P(EventsTest, ChangesAreToldByNameAndOnlyWhenTheyChange) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Same");
    const Recorder standard(item, "PropertyChange");
    const Recorder custom(item, "CustomPropertyChange");
    item.put("Subject", "Same");
    item.put("Subject", "Other");
    item.put("Importance", 2);
    item.put("HTMLBody", "<p>x</p>");
    const Handle property = item.of("UserProperties").of("Add", {"Number", 1});
    property.put("Value", "1");
    property.put("Value", "1");
    EXPECT_EQ(standard.calls(), (QStringList{"Subject", "Importance", "HTMLBody"}));
    EXPECT_EQ(custom.calls(), (QStringList{"Number", "Number"}));
}

TEST_P(EventsTest, AnUnchangedItemIsNotWrittenAgain) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Once");
    const Handle other = folder(6).of("Items").of("Item", {1});
    const Recorder writes(item, "Write");
    item.call("Close", {0});
    EXPECT_EQ(writes.count(), 0);
    item.call("Save");
    EXPECT_EQ(writes.count(), 1);
    other.put("Subject", "Still fresh");
    EXPECT_EQ(failureOf([&] { other.call("Save"); }), 0) << "no version was used up";
}

TEST_P(EventsTest, OwnAdditionsAreToldAtOnceAndOncePerWatcher) {
    const Handle items = folder(6).of("Items");
    const Handle others = folder(6).of("Items");
    const Recorder one(items, "ItemAdd");
    static_cast<void>(savedItem(folder(6), "IPM.Post", "First"));
    const Recorder two(others, "ItemAdd");
    const Handle second = savedItem(folder(6), "IPM.Post", "Second");
    second.put("Subject", "Second, changed");
    second.call("Save");
    second.call("Copy");
    savedItem(folder(16), "IPM.Note", "Moved in").call("Move", {folder(6)});
    EXPECT_EQ(one.count(), 4);
    EXPECT_EQ(two.count(), 3);
    EXPECT_EQ(two.objects().last().text("Subject"), "Moved in");
    m_desk->lookAround();
    EXPECT_EQ(one.count(), 4) << "the look at the store tells nothing twice";
}

TEST_P(EventsTest, WhatAnotherProcessBringsIsToldOnce) {
    const Handle items = folder(6).of("Items");
    const Recorder added(items, "ItemAdd");
    deliverFromElsewhere("One");
    deliverFromElsewhere("Two");
    ASSERT_TRUE(eventually([&] { return added.count() == 2; }));
    EXPECT_EQ(added.objects().first().text("Subject"), "One");
    EXPECT_EQ(added.objects().last().text("Subject"), "Two");
    static_cast<void>(savedItem(folder(6), "IPM.Post", "Own"));
    EXPECT_EQ(added.count(), 3);
}

TEST_P(EventsTest, AWatcherIsNotEnteredWhileItIsBusy) {
    const Handle items = folder(6).of("Items");
    int depth = 0;
    QStringList told;
    const auto watch = items.on("ItemAdd", [&](ValueList &arguments) {
        EXPECT_EQ(++depth, 1);
        const Handle item(arguments[0]);
        told.append(item.text("Subject"));
        if (told.size() < 4)
            static_cast<void>(savedItem(folder(6), "IPM.Post", QString::number(told.size())));
        --depth;
    });
    static_cast<void>(savedItem(folder(6), "IPM.Post", "0"));
    EXPECT_EQ(told, (QStringList{"0", "1", "2", "3"}));
}

TEST_P(EventsTest, AnItemThatHasLeftIsNoAddition) {
    const Handle items = folder(6).of("Items");
    const Handle others = folder(6).of("Items");
    const auto mover =
        items.on("ItemAdd", [&](ValueList &arguments) { Handle(arguments[0]).call("Move", {folder(16)}); });
    const Recorder late(others, "ItemAdd");
    static_cast<void>(savedItem(folder(6), "IPM.Post", "Quick"));
    EXPECT_EQ(late.count(), 0);
    EXPECT_EQ(subjects(folder(16)), QStringList{"Quick"});
}

TEST_P(EventsTest, TheWindowsOfItemsComeAndGo) {
    const Handle inspectors = application().of("Inspectors");
    const Recorder opened(inspectors, "NewInspector");
    const Handle item = savedItem(folder(6), "IPM.Note", "Shown");
    item.call("Display");
    item.call("Display");
    folder(6).of("Items").of("Item", {1}).call("Display");
    ASSERT_EQ(opened.count(), 1) << "an item has one window";
    const Handle window = opened.objects().first();
    EXPECT_TRUE(window.of("CurrentItem") == item);
    EXPECT_TRUE(application().of("ActiveInspector") == window);
    EXPECT_TRUE(item.of("GetInspector") == window);
    EXPECT_TRUE(window.text("Caption").contains("Shown"));

    const Recorder closed(window, "Close");
    const Recorder closing(item, "Close");
    item.put("Subject", "Changed");
    window.call("Close", {0});
    EXPECT_EQ(closed.count(), 1);
    EXPECT_EQ(closing.count(), 1);
    EXPECT_EQ(inspectors.number("Count"), 0);
    EXPECT_TRUE(application().of("ActiveWindow").isNothing());
    EXPECT_EQ(subjects(folder(6)), QStringList{"Changed"});
}

TEST_P(EventsTest, ClosingAWindow) {
    const struct {
        const char *what;
        int mode;
        bool cancelled;
        QString stored;
        int windows;
    } cases[] = {{"saving", 0, false, "After", 0},
                 {"discarding", 1, false, "Before", 0},
                 {"asking, with nobody to ask", 2, false, "After", 0},
                 {"cancelled", 0, true, "Before", 1}};
    for (const auto &each : cases) {
        const Handle item = savedItem(folder(16), "IPM.Note", "Before");
        item.call("Display");
        item.put("Subject", "After");
        const auto close = item.on("Close", [&](ValueList &arguments) { arguments[0] = each.cancelled; });
        item.call("Close", {each.mode});
        EXPECT_EQ(subjects(folder(16)), QStringList{each.stored}) << each.what;
        EXPECT_EQ(application().of("Inspectors").number("Count"), each.windows) << each.what;
        item.call("Delete");
        EXPECT_EQ(application().of("Inspectors").number("Count"), 0) << each.what;
    }
}

TEST_P(EventsTest, AHandlerOfTheWindowsCloseMaySaveTheItem) {
    const Handle item = newItem(folder(6), "IPM.Post", "Kept");
    item.call("Display");
    bool wasSaved = true;
    const auto close = item.of("GetInspector").on("Close", [&](ValueList &) {
        wasSaved = toBool(item.get("Saved"));
        item.call("Close", {0});
    });
    item.of("GetInspector").call("Close", {2});
    EXPECT_FALSE(wasSaved) << "it is asked before anything is saved";
    EXPECT_EQ(subjects(folder(6)), QStringList{"Kept"});
}

TEST_P(EventsTest, MovingAnOpenItemClosesItsWindow) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Moved");
    item.call("Display");
    const Recorder closed(item.of("GetInspector"), "Close");
    item.call("Move", {folder(3)});
    EXPECT_EQ(closed.count(), 1);
    EXPECT_EQ(application().of("Inspectors").number("Count"), 0);
}

TEST_P(EventsTest, TheWindowsOfFoldersComeAndGo) {
    EXPECT_TRUE(Handle(application().call("ActiveExplorer")).isNothing());
    const Handle explorers = application().of("Explorers");
    const Handle explorer = explorers.of("Add", {folder(6), 0});
    EXPECT_TRUE(application().of("ActiveExplorer") == explorer);
    EXPECT_EQ(application().of("ActiveWindow").typeName(), "Explorer");
    const Recorder switched(explorer, "FolderSwitch");
    const Recorder closed(explorer, "Close");
    explorer.put("CurrentFolder", folder(6));
    EXPECT_EQ(switched.count(), 0);
    explorer.put("CurrentFolder", folder(9));
    EXPECT_EQ(switched.count(), 1);
    EXPECT_TRUE(explorer.of("CurrentFolder") == folder(9));
    EXPECT_EQ(explorer.text("Caption"), "Calendar");

    const Handle second = explorers.of("Add", {folder(6), 0});
    explorers.of("Item", {1}).call("Activate");
    EXPECT_TRUE(application().of("ActiveExplorer") == explorer);
    explorer.call("Close");
    EXPECT_EQ(closed.count(), 1);
    EXPECT_TRUE(application().of("ActiveExplorer") == second);
    EXPECT_EQ(explorers.number("Count"), 1);
    EXPECT_EQ(failureOf([&] { explorer.call("Activate"); }), failures::disconnected);
}

TEST_P(EventsTest, TheSelectionIsOfTheFolderShown) {
    const Handle explorer = application().of("Explorers").of("Add", {folder(6), 0});
    const Handle item = savedItem(folder(6), "IPM.Note", "Selected");
    explorer.call("AddToSelection", {item});
    explorer.call("AddToSelection", {item});
    ASSERT_EQ(explorer.of("Selection").number("Count"), 1);
    EXPECT_EQ(explorer.of("Selection").of("Item", {1}).text("Subject"), "Selected");
    const Handle elsewhere = savedItem(folder(16), "IPM.Note", "Elsewhere");
    EXPECT_EQ(failureOf([&] { explorer.call("AddToSelection", {elsewhere}); }), failures::invalidCall);
    explorer.put("CurrentFolder", folder(16));
    EXPECT_EQ(explorer.of("Selection").number("Count"), 0);
}

TEST_P(EventsTest, BarsAndButtons) {
    const Handle bars = application().of("Explorers").of("Add", {folder(6), 0}).of("CommandBars");
    const Handle bar = bars.of("Add", {"Helpdesk", 2, false, true});
    bar.put("Visible", true);
    const Handle button = bar.of("Controls").of("Add", {1, 1, Value::Missing{}, Value::Missing{}, true});
    button.put("Caption", "Copy");
    EXPECT_EQ(button.text("Caption"), "Copy");
    const Recorder clicks(button, "Click");
    bars.of("Item", {"helpdesk"}).of("Controls").of("Item", {1}).call("Execute");
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_TRUE(clicks.objects().first() == button);
    button.call("Delete");
    EXPECT_EQ(bar.of("Controls").number("Count"), 0);
    EXPECT_EQ(failureOf([&] { button.call("Delete"); }), failures::disconnected);
    bar.call("Delete");
    EXPECT_EQ(bars.number("Count"), 0);
    EXPECT_EQ(failureOf([&] { bars.call("Item", {"Helpdesk"}); }), failures::invalidCall);
}

TEST_P(EventsTest, AHostsOwnCommandCanBeTakenOver) {
    const Handle item = newItem(folder(6), "IPM.Post", "Own save");
    item.call("Display");
    const Handle bars = item.of("GetInspector").of("CommandBars");
    EXPECT_TRUE(bars.of("FindControl", {Value::Missing{}, 99}).isNothing());
    const Handle save = bars.of("FindControl", {Value::Missing{}, 3});
    bool isCancelled = true;
    const auto click = save.on("Click", [&](ValueList &arguments) { arguments[1] = isCancelled; });
    save.call("Execute");
    EXPECT_FALSE(toBool(item.get("Saved")));
    isCancelled = false;
    save.call("Execute");
    EXPECT_TRUE(toBool(item.get("Saved")));
}

TEST_P(EventsTest, QuitIsToldAndOpenChangesAreSaved) {
    const Recorder quit(application(), "Quit");
    const Handle item = savedItem(folder(6), "IPM.Post", "Before");
    item.call("Display");
    item.put("Subject", "After");
    m_desk.reset();
    EXPECT_EQ(quit.count(), 1);
    m_desk = std::make_unique<desk::Desk>(options());
    EXPECT_EQ(subjects(folder(6)), QStringList{"After"});
}

INSTANTIATE_TEST_SUITE_P(Windows, EventsTest, ::testing::Values(WindowsOf::Nobody, WindowsOf::Recording),
                         [](const auto &each) { return each.param == WindowsOf::Nobody ? "Nobody" : "Recording"; });

} // namespace
