#include "platform/registry/registry.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"
#include "platform/scripting/shell.h"
#include "support/answers.h"
#include "support/launches.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <pwd.h>
#include <unistd.h>

namespace {

qint32 failureOf(const std::function<void()> &step) {
    const std::optional<Failure> failure = Attempt(step);
    return failure ? failure->number() : 0;
}

/// A shell on a registry and a folder of its own; programs are noted and not started.
class TheShell : public testing::Test {
  protected:
    void SetUp() override { registry::fileOverride = folder.filePath("registry.ini"); }
    void TearDown() override { registry::fileOverride = QString(); }
    void put(const QString &name) const { QFile(folder.filePath(name)).open(QIODevice::WriteOnly); }

    QTemporaryDir folder;
    scripting::Shell shell;
    support::Launches launches;
    support::Answers answers;
};

TEST_F(TheShell, ReadsWhatWasWrittenAndFailsForAMissingValue) {
    const QString name = "HKCU\\Software\\Tessmark\\Orvelle\\Folder Path";
    EXPECT_EQ(failureOf([&] { (void)shell.RegRead(name); }), failures::automation(0x80070002));
    shell.RegWrite(name, "\\\\Public Folders\\Helpdesk");
    EXPECT_EQ(shell.RegRead(name.toUpper()), "\\\\Public Folders\\Helpdesk");
    EXPECT_EQ(failureOf([&] { shell.RegWrite(name, "1", "REG_DWORD"); }), failures::invalidCall);
}

TEST_F(TheShell, ExpandsTheEnvironment) {
    qputenv("ORVELLE_TEST_NAME", "a b");
    const QString login = QString::fromLocal8Bit(getpwuid(getuid())->pw_name);
    const std::vector<std::pair<QString, QString>> cases = {
        {"%ORVELLE_TEST_NAME%\\x", "a b\\x"},
        {"100% of %NOBODY_SET_THIS%", "100% of %NOBODY_SET_THIS%"},
        {"%USERNAME%", qEnvironmentVariable("USERNAME", login)},
        {"", ""},
    };
    for (const auto &[text, expanded] : cases)
        EXPECT_EQ(shell.ExpandEnvironmentStrings(text), expanded);
    qunsetenv("ORVELLE_TEST_NAME");
}

TEST_F(TheShell, StartsProgramsWithoutAnInterpreter) {
    const std::vector<std::pair<QString, QString>> cases = {
        {"\"\\opt\\or velle\\X.exe\" one \"two three\" C:\\x", "/opt/or velle/X.exe|one|two three|C:\\x"},
        {"regsvr32 scrrun.dll /s", "regsvr32|scrrun.dll|/s"},
        {"\"\\bin\\X.exe\" ; rm -rf $HOME", "/bin/X.exe|;|rm|-rf|$HOME"},
        {"http://orvelle.example/?a=1&b=$(x)", "xdg-open|http://orvelle.example/?a=1&b=$(x)"},
        {"mailto:ann@orvelle.example", "xdg-open|mailto:ann@orvelle.example"},
        {"www.orvelle.example", "xdg-open|www.orvelle.example"},
    };
    QStringList expected;
    for (const auto &[command, started] : cases) {
        shell.Run(command);
        expected << started;
    }
    EXPECT_EQ(launches.started(), expected);
    EXPECT_EQ(failureOf([&] { shell.Run("  "); }), failures::invalidCall);
}

TEST_F(TheShell, ReallyStartsAndFailsByNumber) {
    scripting::launcher = nullptr;
    EXPECT_EQ(failureOf([&] { shell.Run("\"" + scripting::pathText(folder.filePath("none.exe")) + "\""); }),
              failures::automation(0x80070002));
    EXPECT_EQ(failureOf([&] { shell.Run("no-such-program-anywhere"); }), failures::automation(0x80070002));
    EXPECT_EQ(failureOf([&] { shell.Run("true"); }), 0);
}

TEST_F(TheShell, OpensAndPrintsTheFilesOfAFolder) {
    put("Pellucube.exe");
    put("page.htm");
    const scripting::ShellApplication application;
    EXPECT_TRUE(application.NameSpace(folder.filePath("none")).isNothing());
    const auto items = application.NameSpace(scripting::pathText(folder.path()) + "\\")->Items();
    EXPECT_EQ(items.Count(), 2);
    EXPECT_TRUE(items.Item("none.htm").isNothing());
    items.Item("Pellucube.exe")->InvokeVerb();
    items.Item("page.htm")->InvokeVerb();
    items.Item("page.htm")->InvokeVerb("Print");
    EXPECT_EQ(launches.started(),
              (QStringList{folder.filePath("Pellucube.exe"), "xdg-open|" + folder.filePath("page.htm"),
                           "lp|--|" + folder.filePath("page.htm")}));
    EXPECT_EQ(failureOf([&] { items.Item("page.htm")->InvokeVerb("Frobnicate"); }), failures::memberMissing);
    launches.fail();
    answers.expect("It can't be started.");
    items.Item("page.htm")->InvokeVerb("Print");
}

TEST_F(TheShell, MakesTheComponentsThatAreInstalled) {
    struct Thing : automation::Object {
        QString typeName() override { return "Thing"; }
        Value get(const QString &) override { return {}; }
        void put(const QString &, const Value &) override {}
        Value call(const QString &, const ValueList &) override { return {}; }
        automation::SubscriptionPtr connect(const QString &, automation::EventHandler) override { return nullptr; }
    };
    const auto make = [] { return std::make_shared<Thing>(); };
    scripting::Components components;
    components.add("SafeThings.One", make);
    components.add("ClientTools.Two", make, false);
    const auto failing = [&](const QString &name) { return failureOf([&] { (void)components.create(name); }); };
    EXPECT_EQ(failing("safethings.one"), 0);
    EXPECT_EQ(failing("ClientTools.Two"), failures::cannotCreateObject);
    EXPECT_EQ(failing("Nobody.Knows"), failures::cannotCreateObject);
    scripting::Components::setInstalled("SafeThings.One", false);
    scripting::Components::setInstalled("ClientTools.Two", true);
    EXPECT_EQ(failing("SafeThings.One"), failures::cannotCreateObject);
    EXPECT_EQ(failing("ClientTools.Two"), 0);
}

} // namespace
