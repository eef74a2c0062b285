// What windows of this process are told of bars, buttons and other windows, beside the events that clients hear.

#include "deskfixture.h"

#include "desk/objects/commandbar.h"
#include "desk/objects/commandbarbutton.h"
#include "desk/objects/commandbars.h"
#include "desk/objects/explorer.h"
#include "desk/objects/explorers.h"
#include "desk/objects/inspector.h"
#include "desk/objects/item.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace {

using namespace desk;

class NoticesTest : public DeskTest {
  protected:
    [[nodiscard]] Windows &windows() const { return m_desk->session().windows(); }
    [[nodiscard]] QStringList told() { return std::exchange(m_told, {}); }
    void follow(const BarNotices &notices) {
        const auto note = [this](const QString &what) { m_told << what; };
        QObject::connect(&notices, &BarNotices::barAdded, [note](const auto &bar) { note("bar+ " + bar->name()); });
        QObject::connect(&notices, &BarNotices::barChanged, [note](const objects::CommandBar &bar) {
            note(QStringLiteral("bar %1 %2").arg(bar.name()).arg(bar.isVisible()));
        });
        QObject::connect(&notices, &BarNotices::barRemoved,
                         [note](const objects::CommandBar &bar) { note("bar- " + bar.name()); });
        QObject::connect(&notices, &BarNotices::buttonAdded,
                         [note](const objects::CommandBar &bar, const auto &button, qsizetype place) {
                             note(QStringLiteral("button+ %1 %2 %3").arg(bar.name()).arg(button->id()).arg(place));
                         });
        QObject::connect(&notices, &BarNotices::buttonChanged,
                         [note](const objects::CommandBarButton &button) { note("button " + button.caption()); });
        QObject::connect(&notices, &BarNotices::buttonRemoved,
                         [note](const objects::CommandBarButton &button) { note("button- " + button.caption()); });
    }

  private:
    QStringList m_told;
};

TEST_F(NoticesTest, BarsAndButtonsAreToldAsTheyChange) {
    const Handle bars = application().of("Explorers").of("Add", {folder(6), 0}).of("CommandBars");
    follow(*windows().frontExplorer()->bars().notices());
    const Handle bar = bars.of("Add", {"Helpdesk"});
    bar.put("Visible", true);
    bar.put("Visible", true);
    EXPECT_EQ(told(), QStringList({"bar+ Helpdesk", "bar Helpdesk 1"}));
    const Handle controls = bar.of("Controls");
    const Handle copy = controls.of("Add", {1, 7});
    const Handle before = controls.of("Add", {1, 8, Value::Missing{}, 1});
    EXPECT_EQ(told(), QStringList({"button+ Helpdesk 7 0", "button+ Helpdesk 8 0"}));
    const std::pair<const char *, Value> properties[] = {
        {"Caption", "Copy"}, {"TooltipText", "t"}, {"Tag", "x"},         {"FaceId", 5},      {"Width", 40},
        {"Height", 30},      {"Style", 3},         {"BeginGroup", true}, {"Visible", false}, {"Enabled", false}};
    for (const auto &[name, value] : properties) {
        copy.put(name, value);
        copy.put(name, value);
        EXPECT_EQ(told(), QStringList("button Copy")) << name;
        EXPECT_EQ(toText(copy.get(name)), toText(value)) << name;
    }
    before.call("Delete");
    EXPECT_EQ(told(), QStringList("button- "));
    before.put("Caption", "gone");
    EXPECT_EQ(told(), QStringList());
    bar.call("Delete");
    EXPECT_EQ(told(), QStringList("bar- Helpdesk"));
    bar.put("Visible", false);
    copy.put("Caption", "gone");
    controls.call("Add");
    EXPECT_EQ(told(), QStringList());
}

TEST_F(NoticesTest, WhatAClientMadeIsToldAsItGoes) {
    const Handle bars = application().of("Explorers").of("Add", {folder(6), 0}).of("CommandBars");
    const Handle bar = bars.of("Add", {"Helpdesk"});
    bar.of("Controls").of("Add").put("Caption", "Copy");
    follow(*windows().frontExplorer()->bars().notices());
    constexpr automation::ClientNumber other = 12345;
    windows().clientGone(other);
    EXPECT_EQ(told(), QStringList());
    windows().clientGone(automation::currentClient());
    EXPECT_EQ(told(), QStringList("bar- Helpdesk"));
    EXPECT_EQ(bars.number("Count"), 0);
}

TEST_F(NoticesTest, WindowsAreToldAsTheyComeAndGo) {
    QStringList log;
    const auto captionOf = [](const objects::SessionObject &window) { return window.property("Caption").toString(); };
    const WindowNotices &notices = windows().notices();
    QObject::connect(&notices, &WindowNotices::explorerOpened,
                     [&](const auto &each) { log << "+ " + captionOf(*each); });
    QObject::connect(&notices, &WindowNotices::inspectorOpened,
                     [&](const auto &each) { log << "+ " + captionOf(*each); });
    QObject::connect(&notices, &WindowNotices::cameToFront,
                     [&](const objects::SessionObject &each) { log << "front " + captionOf(each); });
    QObject::connect(&notices, &WindowNotices::folderChanged,
                     [&](const objects::Explorer &each) { log << "folder " + each.caption(); });
    QObject::connect(&notices, &WindowNotices::itemChanged,
                     [&](const objects::Inspector &each) { log << "item " + each.caption(); });
    QObject::connect(&notices, &WindowNotices::closed,
                     [&](const objects::SessionObject &each) { log << "- " + captionOf(each); });
    const Handle explorer = application().of("Explorers").of("Add", {folder(6), 0});
    const Handle item = savedItem(folder(6), "IPM.Post", "Printer");
    item.call("Display");
    explorer.call("Activate");
    explorer.call("Activate");
    explorer.put("CurrentFolder", folder(16));
    explorer.put("CurrentFolder", folder(16));
    item.put("Subject", "Paper");
    item.call("Close", {1});
    explorer.call("Close");
    item.put("Subject", "Nobody sees it");
    EXPECT_EQ(log, QStringList(
                       {"+ Inbox", "+ Printer", "front Inbox", "folder Drafts", "item Paper", "- Paper", "- Drafts"}));
}

/// What is told in this process is nothing that a client could connect to.
TEST_F(NoticesTest, NoticesAreNoEvents) {
    const Handle explorer = application().of("Explorers").of("Add", {folder(6), 0});
    const Handle bars = explorer.of("CommandBars");
    const Handle bar = bars.of("Add");
    const Handle button = bar.of("Controls").of("Add");
    for (const Handle &object : {application(), application().of("Explorers"), explorer, bars, bar, button})
        for (const char *name :
             {"barAdded", "barChanged", "barRemoved", "buttonAdded", "buttonChanged", "buttonRemoved", "explorerOpened",
              "cameToFront", "folderChanged", "itemChanged", "closed", "changed"})
            EXPECT_EQ(failureOf([&] { static_cast<void>(object.on(name, [](ValueList &) {})); }),
                      failures::memberMissing)
                << object.typeName().toStdString() << "." << name;
}

} // namespace
