// What an Explorer and an Inspector ask of the windows that people see.

#include "deskfixture.h"
#include "recordingwindows.h"

#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace {

class ShownWindowsTest : public DeskTest {
  protected:
    void SetUp() override { m_desk->session().setWindowFactory(std::make_unique<RecordingWindows>(m_log)); }
    [[nodiscard]] QStringList asked() { return std::exchange(*m_log, {}); }

    std::shared_ptr<QStringList> m_log = std::make_shared<QStringList>();
};

TEST_F(ShownWindowsTest, AnExplorerShowsItselfOnceAndFollowsItsObject) {
    const Handle explorer = application().of("Explorers").of("Add", {folder(6), 0});
    explorer.put("WindowState", 0);
    explorer.put("CurrentFolder", folder(3));
    EXPECT_EQ(asked(), QStringList()) << "it is not displayed yet";
    explorer.call("Display");
    explorer.call("Activate");
    explorer.put("WindowState", 1);
    explorer.put("WindowState", 1);
    explorer.put("CurrentFolder", folder(16));
    explorer.call("Close");
    EXPECT_EQ(asked(), QStringList({"Explorer 1 shown as Deleted Items, state 0", "Explorer 1 to front",
                                    "Explorer 1 state 1", "Explorer 1 captioned Drafts", "Explorer 1 closed"}));
    explorer.put("WindowState", 2);
    explorer.call("Close");
    EXPECT_EQ(failureOf([&] { explorer.call("Activate"); }), failures::disconnected);
    EXPECT_EQ(asked(), QStringList());
}

TEST_F(ShownWindowsTest, AnInspectorShowsItselfOnceAndFollowsItsItem) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Printer");
    const Handle inspector = item.of("GetInspector");
    inspector.call("Activate");
    EXPECT_EQ(asked(), QStringList()) << "it is not displayed yet";
    item.call("Display");
    item.call("Display");
    item.put("Body", "text");
    item.put("Subject", "Paper");
    item.call("Close", {0});
    EXPECT_EQ(asked(), QStringList({"Inspector 1 shown as Printer, state 2", "Inspector 1 to front",
                                    "Inspector 1 captioned Paper", "Inspector 1 closed"}));
}

/// A handler may end what is being shown, and what can't be ended stays.
TEST_F(ShownWindowsTest, WhatHandlersDoIsFollowed) {
    const Handle item = savedItem(folder(6), "IPM.Post", "Printer");
    {
        const auto open = item.on("Open", [](ValueList &arguments) { arguments[0] = true; });
        item.call("Display");
        EXPECT_EQ(asked(), QStringList());
    }
    {
        const auto read = item.on("Read", [&](ValueList &) { item.call("Close", {1}); });
        item.call("Display");
        EXPECT_EQ(asked(), QStringList({"Inspector 1 shown as Printer, state 2", "Inspector 1 closed"}));
    }
    item.call("Display");
    const auto close = item.on("Close", [](ValueList &arguments) { arguments[0] = true; });
    item.call("Close", {1});
    EXPECT_EQ(asked(), QStringList("Inspector 2 shown as Printer, state 2"));
    // The desk ends, whatever the handler says.
    m_desk.reset();
    EXPECT_EQ(asked(), QStringList("Inspector 2 closed"));
}

/// A window that has its object end while it is shown or closed, as a person does by a click.
TEST_F(ShownWindowsTest, AnEndAmidARequestOfTheWindowsIsOneEnd) {
    class Closing : public desk::ShownWindow {
      public:
        Closing(desk::objects::Explorer &explorer, QStringList &log) : m_explorer(explorer), m_log(log) {}
        void show(const QString & /*caption*/, int /*state*/) override { m_explorer.Close(); }
        void bringToFront() override { m_log << "front"; }
        void setCaption(const QString & /*caption*/) override { m_log << "caption"; }
        void setState(int /*state*/) override { m_log << "state"; }
        void close() override {
            m_log << "close";
            m_explorer.Close();
        }

      private:
        desk::objects::Explorer &m_explorer;
        QStringList &m_log;
    };
    class Factory : public desk::WindowFactory {
      public:
        explicit Factory(QStringList &log) : m_log(log) {}
        std::optional<desk::FolderPlace> pickFolder(desk::Session & /*session*/) override { return {}; }
        std::unique_ptr<desk::ShownWindow> makeWindow(desk::objects::Explorer &explorer) override {
            return std::make_unique<Closing>(explorer, m_log);
        }

      private:
        QStringList &m_log;
    };
    m_desk->session().setWindowFactory(std::make_unique<Factory>(*m_log));
    int shown = 0;
    m_desk->session().folderShown = [&](const desk::FolderRecord &) { ++shown; };
    const Handle explorer = application().of("Explorers").of("Add", {folder(6), 0});
    const Recorder closes(explorer, "Close");
    explorer.call("Display");
    EXPECT_EQ(asked(), QStringList("close"));
    EXPECT_EQ(closes.count(), 1);
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(application().of("Explorers").number("Count"), 0);
    // No window for items: nothing is shown, and nothing else is different.
    const Handle item = savedItem(folder(6), "IPM.Post", "Printer");
    item.call("Display");
    EXPECT_EQ(application().of("Inspectors").number("Count"), 1);
    item.call("Close", {1});
    EXPECT_EQ(application().of("Inspectors").number("Count"), 0);
}

} // namespace
