// Entering and ending the program, and its log.

#include "orvelle/core/entry.h"
#include "orvelle/core/steps.h"
#include "orvelle/core/trace.h"
#include "support/environment.h"
#include "support/program.h"

#include <QCoreApplication>

namespace {

using Process = support::Program;

TEST_F(Process, EndsPastEveryTolerantStep) {
    processHooks->subReleaseAll = [this] {
        ++releases;
        throw Failure(failures::peerGone);
    };
    EXPECT_TRUE(support::endsProcess([] { (void)Attempt([] { subQuit(); }); }));
    EXPECT_TRUE(fncIsEnding());
    EXPECT_TRUE(support::endsProcess([] { subReleaseAll(); }));
    EXPECT_EQ(releases, 1);
}

TEST_F(Process, AnEntryBelongsToTheCopyThatMadeIt) {
    ProgramCopy other;
    std::function<void(int)> callback;
    {
        const ProgramCopy::Scope inside(other);
        callback = Entry([](int number) { strCurrentUserName = QString::number(number); });
    }
    strCurrentUserName = "here";
    callback(7);
    EXPECT_EQ(strCurrentUserName.get(), "here");
    const ProgramCopy::Scope inside(other);
    EXPECT_EQ(strCurrentUserName.get(), "7");
}

TEST_F(Process, AFailureThatReachesTheEntryIsReportedAndEndsTheCopy) {
    answers.expect("Type mismatch", window::No);
    int entered = 0;
    auto callback = Entry([&] {
        ++entered;
        (void)toInt32("ticket");
    });
    callback();
    callback();
    EXPECT_EQ(entered, 1);
    EXPECT_EQ(ends, 1);
}

TEST_F(Process, WhateverElseIsThrownIsReportedToo) {
    const std::map<const char *, std::function<void()>> cases = {
        {"#7\r", [] { throw std::bad_alloc(); }},
        {"a fault", [] { throw std::runtime_error("a fault"); }},
        {"#-2147467259\r", [] { throw 5; }}};
    for (const auto &[part, fault] : cases) {
        support::inAnotherCopy([&] {
            support::Answers answered;
            answered.expect(part, window::No);
            int ended = 0;
            processHooks->ended = [&] { ++ended; };
            enterProgram([&] { (void)Attempt(fault); });
            EXPECT_EQ(ended, 1);
        });
    }
}

TEST_F(Process, WorkThatComesWhileAStepIsBusyWaitsForItAndTheEndDropsIt) {
    QStringList order;
    const auto work = EntryBetween([&](const QString &name) { order << name; });
    const auto answered = Entry([&](const QString &name) { order << name; });
    enterProgram([&] {
        work(QString("later"));
        auto now = answered;
        now(QString("now"));
        {
            const LetsWorkIn waits;
            work(QString("while a person is asked"));
        }
        order << "the step's end";
    });
    EXPECT_EQ(order, (QStringList{"now", "while a person is asked", "later", "the step's end"}));
    order.clear();
    const auto end = EntryOfEnd([&] { order << "the end"; });
    enterProgram([&] {
        {
            const WholeStep whole;
            end();
            subEndIfAsked();
            order << "in hand";
        }
        work(QString("dropped"));
        subEndIfAsked();
        ADD_FAILURE() << "the step went on";
    });
    EXPECT_EQ(order, (QStringList{"in hand", "the end"}));
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(ends, 1);
}

TEST_F(Process, TheProgramFolderIsTheOneSetOrTheExecutables) {
    strProgramFolderOverride = QString();
    {
        const support::EnvironmentValue home("ORVELLE_HOME", "/opt/orvelle/");
        EXPECT_EQ(fncProgramFolder(), "\\opt\\orvelle");
    }
    EXPECT_EQ(fncProgramFolder(), scripting::pathText(QCoreApplication::applicationDirPath()));
}

TEST_F(Process, StepsGoToTheLogOnlyWhenTracing) {
    subTrace("quiet");
    EXPECT_EQ(fncLastStep(), "quiet");
    EXPECT_FALSE(QFile::exists(path("TessmarkLog.txt")));
    blnTrace = true;
    subTrace("first\r\nand more");
    subLogLine("");
    subLogLine("Überschrift");
    EXPECT_EQ(QString::fromUtf8(bytes("TessmarkLog.txt")),
              QString("%1\t3/5/2024 12:00:00 PM\tfirst\r\nand more\r\n%1\t3/5/2024 12:00:00 PM\tÜberschrift\r\n")
                  .arg(strProgramTitle));
    // A log that can't be written is ignored.
    strProgramFolderOverride = "\\proc\\nowhere";
    subLogLine("a line");
}

} // namespace
