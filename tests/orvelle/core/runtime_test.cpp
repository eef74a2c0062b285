#include "orvelle/core/components.h"
#include "orvelle/core/fieldchange.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/sorting.h"
#include "orvelle/core/starting.h"
#include "orvelle/core/textfiles.h"
#include "orvelle/core/texthelpers.h"
#include "platform/scripting/filesystem.h"

#include "orvelle/core/trace.h"
#include "platform/scripting/components.h"
#include "support/program.h"

namespace {

using Runtime = support::Program;

TEST_F(Runtime, AMissingComponentIsHealedOnceAndThenReported) {
    struct Case {
        const char *component;
        const char *report;
        std::function<void()> need;
    };
    const std::vector<Case> cases = {
        {"Scripting.Dictionary", "modScriptingDic.fncCreateDic", [] { fncCreateDic<QString>(); }},
        {"Scripting.FileSystemObject", "subSetupFS", [] { subSetupFS(); }},
    };
    for (const Case &c : cases) {
        ProgramCopy other;
        const ProgramCopy::Scope inside(other);
        registry::fileOverride = path("registry.ini");
        LoadLanguages(1);
        support::Answers answered;
        const support::Launches launched;
        scripting::Components::setInstalled(c.component, false);
        answered.expect(QString("Sub routine : %1 ").arg(c.report), window::No);
        EXPECT_TRUE(support::endsProcess(c.need)) << c.component;
        EXPECT_TRUE(support::endsProcess(c.need)) << c.component;
        EXPECT_EQ(launched.started(), QStringList{"regsvr32|scrrun.dll|/s"}) << c.component;
        EXPECT_TRUE(answered.asked().first().text.contains(c.component));
    }
}

TEST_F(Runtime, AMachineWithoutTheShellIsToldAndTheProcessEnds) {
    scripting::Components::setInstalled("Wscript.Shell", false);
    answers.expect("ERROR\r\nThis component is usually installed");
    EXPECT_TRUE(support::endsProcess([] { fncGetShell(); }));
    EXPECT_EQ(launches.started(), QStringList{"regsvr32|wshom.ocx|/s"});
    EXPECT_EQ(answers.asked().first().icon, window::Icon::Critical);
}

TEST_F(Runtime, CompanionsAndLinksAreStarted) {
    QDir(m_folder.path()).mkdir("other");
    put("X.exe");
    put("Y.exe");
    put("other/Y.exe");
    const QString here = m_folder.path();
    struct Case {
        QString file;
        QString arguments;
        QString path;
        QString started;
    };
    const std::vector<Case> cases = {
        {"X", "", "", here + "/X.exe"},
        {"X", "one two", at("other"), here + "/X.exe|one|two"},
        {"Y", "", at("other\\"), here + "/other/Y.exe"},
        {"https://orvelle.example", "", "", "xdg-open|https://orvelle.example"},
        {"MailTo:ann@orvelle.example", "", "", "xdg-open|MailTo:ann@orvelle.example"},
    };
    QStringList expected;
    for (const Case &c : cases) {
        subExecute(c.file, c.arguments, c.path);
        expected << c.started;
    }
    EXPECT_EQ(launches.started(), expected);
}

TEST_F(Runtime, ACompanionThatCannotBeStartedIsToldAndTheRunGoesOn) {
    put("X.exe");
    launches.fail();
    answers.expect("Error trying to run the file at " + at("Z.exe") + "\r\nFile not found");
    answers.expect("Error trying to run the file at " + at("X.exe") + "\r\nIt can't be started.");
    subExecute("Z", "", at("none"));
    subExecute("X", "", "");
    EXPECT_EQ(answers.asked().last().icon, window::Icon::Critical);
    EXPECT_EQ(fncLastStep(), "Attempting to execute the path '" + at("X.exe") + "'");
}

TEST_F(Runtime, FilesAreOpenedWhereTheyAre) {
    put("page.txt");
    subInvokeShellVerb(at("none"), "page.txt");
    subInvokeShellVerb(at(""), "none.txt");
    subInvokeShellVerb(at(""), "page.txt");
    EXPECT_EQ(launches.started(), QStringList{"xdg-open|" + path("page.txt")});
}

TEST_F(Runtime, BodiesAreCutOutOfTheirPages) {
    const std::vector<std::pair<QString, QString>> cases = {
        {"<html><body>text</body></html>", "text"},
        {"<HTML><BoDy bgcolor='red'><b>Text</b></bOdY>", "<b>Text</b>"},
        {"<body>a</body><body>b</body>", "a"},
        {"<body></body>", ""},
        {"<body>no end", "<body>no end"},
        {"no body at all", ""},
        {"<b", ""},
        {"", ""},
        {"ßßß<body>ß</body>", "ß"},
    };
    for (const auto &[page, body] : cases)
        EXPECT_EQ(fncGetBody(page), body) << page.toStdString();
    EXPECT_EQ(fncLastStep(), "Attempting to analyze a 17 long body of html text");
    answers.expect("Sub routine : fncGetBody ", window::No);
    EXPECT_TRUE(support::endsProcess([] { fncGetBody("<html><body"); }));
}

TEST_F(Runtime, TextsAreSafeForNull) {
    const std::vector<std::pair<Value, QString>> cases = {
        {Value::Null(), ""}, {Value(), ""}, {"text", "text"},    {"-1", "'-1"},
        {"+x", "'+x"},       {"'-", "'-"},  {qint32{-5}, "'-5"}, {" -", " -"},
    };
    for (const auto &[value, text] : cases)
        EXPECT_EQ(fncNullSafeText(value), text);
}

TEST_F(Runtime, PathsLoseTheirLastSeparator) {
    const std::vector<std::pair<QString, QString>> cases = {{"a\\", "a"}, {"a/", "a"}, {"a\\\\", "a\\"},
                                                            {"a", "a"},   {"", ""},    {"\\", ""}};
    for (const auto &[path, cut] : cases)
        EXPECT_EQ(fncNoTrailingSlash(path), cut) << path.toStdString();
}

TEST_F(Runtime, AFieldChangesByItsValue) {
    struct Case {
        Value stored;
        Value value;
        bool changed;
    };
    const std::vector<Case> cases = {
        {"a", "a", false},
        {"a", "A", true},
        {"a", Value::Null(), false},
        {Value::Null(), "", true},
        {Value::Null(), Value::Null(), false},
        {"", Value(), false},
        {qint16{5}, qint32{5}, false},
        {Currency::fromDouble(1.5), 1.5, false},
        {Currency::fromDouble(1.5), Currency::fromDouble(1.5001), true},
        {qint32{5}, "5", false},
        {qint32{5}, "five", true},
    };
    for (const Case &c : cases)
        EXPECT_EQ(fncValueChanged(c.stored, c.value), c.changed)
            << c.stored.kindName().toStdString() << " " << c.value.kindName().toStdString();
}

} // namespace
