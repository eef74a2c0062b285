#include "platform/print/printhtml.h"
#include "platform/registry/registry.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"
#include "platform/scripting/shell.h"
#include "support/answers.h"
#include "support/environment.h"
#include "support/fakeobject.h"
#include "support/files.h"
#include "support/launches.h"
#include "support/steps.h"

#include <QTemporaryDir>

#include <csignal>

#include <pwd.h>
#include <unistd.h>

namespace {

/// A shell on a registry and a folder of its own; programs are noted and not started.
class TheShell : public testing::Test {
  protected:
    void SetUp() override { registry::fileOverride = folder.filePath("registry.ini"); }
    void TearDown() override { registry::fileOverride = QString(); }
    QString put(const QString &name, const QByteArray &content = {}) const {
        return writtenFile(folder.filePath(name), content);
    }

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
    const support::EnvironmentValue name("ORVELLE_TEST_NAME", "a b");
    const QString login = QString::fromLocal8Bit(getpwuid(getuid())->pw_name);
    const std::vector<std::pair<QString, QString>> cases = {
        {"%ORVELLE_TEST_NAME%\\x", "a b\\x"},
        {"100% of %NOBODY_SET_THIS%", "100% of %NOBODY_SET_THIS%"},
        {"%USERNAME%", qEnvironmentVariable("USERNAME", login)},
        {"", ""},
    };
    for (const auto &[text, expanded] : cases)
        EXPECT_EQ(shell.ExpandEnvironmentStrings(text), expanded);
}

TEST_F(TheShell, StartsProgramsWithoutAnInterpreter) {
    const std::vector<std::pair<QString, QString>> cases = {
        {"\"\\opt\\or velle\\X.exe\" one \"two three\" C:\\x", "/opt/or velle/X.exe|one|two three|C:\\x"},
        {"regsvr32 scrrun.dll /s", "regsvr32|scrrun.dll|/s"},
        {"\"\\bin\\X.exe\" ; rm -rf $HOME", "/bin/X.exe|;|rm|-rf|$HOME"},
        {"http://orvelle.example/?a=1&b=$(x)", "xdg-open|http://orvelle.example/?a=1&b=$(x)"},
        {"mailto:ann@orvelle.example", "xdg-open|mailto:ann@orvelle.example"},
        {"www.orvelle.example", "xdg-open|http://www.orvelle.example"},
        {"\\\\server\\share\\a b", "xdg-open|smb://server/share/a b"},
        {"file:\\a.txt", "xdg-open|file:///a.txt"},
        {"file:///a%20b.txt", "xdg-open|file:///a%20b.txt"},
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
    launch::launcher = nullptr;
    EXPECT_EQ(failureOf([&] { shell.Run("\"" + scripting::pathText(folder.filePath("none.exe")) + "\""); }),
              failures::automation(0x80070002));
    EXPECT_EQ(failureOf([&] { shell.Run("no-such-program-anywhere"); }), failures::automation(0x80070002));
    EXPECT_EQ(failureOf([&] { shell.Run("true"); }), 0);
}

TEST_F(TheShell, OpensAndPrintsTheFilesOfAFolder) {
    put("Pellucube.exe");
    put("page.txt");
    const scripting::ShellApplication application;
    EXPECT_TRUE(application.NameSpace(folder.filePath("none")).isNothing());
    const auto items = application.NameSpace(scripting::pathText(folder.path()) + "\\")->Items();
    EXPECT_EQ(items.Count(), 2);
    EXPECT_TRUE(items.Item("none.htm").isNothing());
    items.Item("Pellucube.exe")->InvokeVerb();
    items.Item("page.txt")->InvokeVerb();
    items.Item("page.txt")->InvokeVerb("Print");
    EXPECT_EQ(launches.started(),
              (QStringList{folder.filePath("Pellucube.exe"), "xdg-open|" + folder.filePath("page.txt"),
                           "lp|--|" + folder.filePath("page.txt")}));
    EXPECT_EQ(failureOf([&] { items.Item("page.txt")->InvokeVerb("Frobnicate"); }), failures::memberMissing);
    launches.fail();
    answers.expect("It can't be started.");
    items.Item("page.txt")->InvokeVerb("Print");
}

/// A machine with programs of its own on its path, and none of the real ones.
class ADesktop : public TheShell {
  protected:
    void SetUp() override {
        TheShell::SetUp();
        launch::launcher = nullptr;
    }
    /// \param script  lines of a shell script.
    void install(const QString &name, const QByteArray &script) const {
        QFile::setPermissions(put("bin/" + name, "#!/bin/sh\n" + script + "\n"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QByteArray bytes(const QString &name) const { return contentOf(folder.filePath(name)); }
    QStringList printouts() const { return QDir(print::printoutFolder()).entryList(QDir::Files); }

  private:
    const support::EnvironmentValue m_path{"PATH", folder.filePath("bin").toLocal8Bit()};
    const support::EnvironmentValue m_profile{"ORVELLE_PROFILE", folder.path().toLocal8Bit()};
};

TEST_F(ADesktop, IsToldWhenNothingOpensALinkOrAFile) {
    const qint32 notThere = failures::automation(0x80070002);
    put("page.txt");
    const auto item = scripting::ShellApplication().NameSpace(folder.path())->Items().Item("page.txt");
    EXPECT_EQ(failureOf([&] { shell.Run("http://orvelle.example"); }), notThere);
    answers.expect("The program xdg-open can't be started");
    item->InvokeVerb();
    install("xdg-open", "echo nothing fits >&2; exit 3");
    EXPECT_EQ(failureOf([&] { shell.Run("http://orvelle.example"); }), notThere);
    answers.expect("(status 3). nothing fits");
    item->InvokeVerb();
    install("xdg-open", "exit 0");
    EXPECT_EQ(failureOf([&] { shell.Run("http://orvelle.example"); }), 0);
    // One that goes on is taken for the browser itself.
    install("xdg-open", "echo $$ > '" + folder.filePath("pid").toLocal8Bit() + "'; exec 2>&1 /bin/sleep 3.5");
    EXPECT_EQ(failureOf([&] { shell.Run("http://orvelle.example"); }), 0);
    answers.expect("The program lp can't be started");
    item->InvokeVerb("Print");
    install("lp", "echo 'no default destination' >&2; exit 1");
    answers.expect("no default destination");
    item->InvokeVerb("Print");
    // Its end is noticed, whenever it comes.
    const pid_t browser = bytes("pid").trimmed().toInt();
    ASSERT_GT(browser, 0);
    EXPECT_TRUE(eventually([&] { return ::kill(browser, 0) != 0; }));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(ADesktop, PrintsAPageAsAReaderSeesItOrKeepsIt) {
    const QString html = "<style>p{margin-bottom: -20}</style><p>Πρόβλημα</p><img src='/dev/zero'>";
    install("lp", "shift 3; /bin/cp \"$1\" '" + folder.filePath("printed").toLocal8Bit() + "'");
    print::printHtml(html, "Ticket 7");
    EXPECT_TRUE(bytes("printed").startsWith("%PDF-"));
    EXPECT_TRUE(printouts().isEmpty());

    install("lp", "echo 'no default destination' >&2; exit 1");
    answers.expect("No printer took \"../Ticket\t7\".\r\n");
    answers.expect("no default destination\r\nIt is kept as " + print::printoutFolder() + "/page.._Ticket_7 (2).pdf");
    for (int i = 0; i < 2; ++i)
        print::printHtml(html, "../Ticket\t7");
    EXPECT_EQ(printouts(), (QStringList{"page.._Ticket_7 (2).pdf", "page.._Ticket_7.pdf"}));

    // The verb prints the page and not its source.
    put("ticket.HTM", html.toUtf8());
    answers.expect("printouts/ticket.pdf");
    scripting::ShellApplication().NameSpace(folder.path())->Items().Item("ticket.HTM")->InvokeVerb("Print");
    EXPECT_TRUE(bytes("printouts/ticket.pdf").startsWith("%PDF-"));

    QDir(folder.filePath("printouts")).removeRecursively();
    put("printouts");
    answers.expect("It can't be kept in " + print::printoutFolder());
    print::printHtml(html, "Ticket 7");
}

TEST_F(TheShell, MakesTheComponentsThatAreInstalled) {
    const auto make = [] { return std::make_shared<support::FakeObject>("Thing"); };
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
