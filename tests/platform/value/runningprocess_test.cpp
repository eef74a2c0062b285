// Whether a process that has left its name still runs: no wrong answer in either direction.

#include "platform/value/runningprocess.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QStringList>

#include <csignal>
#include <unistd.h>

namespace {
using State = RunningProcess::State;

enum Part { Machine, Boot, Namespace, Number, Started, Host };

/// The state of this process under a name in which some parts are others.
State stateWith(std::initializer_list<std::pair<Part, QString>> changes) {
    QStringList parts = RunningProcess::own().toText().split(u'/');
    for (const auto &[part, text] : changes)
        parts[part] = text;
    const auto process = RunningProcess::fromText(parts.join(u'/'));
    return process ? process->state() : State::Unknown;
}

TEST(RunningProcess, IsKnownByMoreThanItsNumber) {
    EXPECT_EQ(stateWith({}), State::Running);
    EXPECT_EQ(stateWith({{Started, "1"}}), State::Ended) << "its number was given to another one";
    EXPECT_EQ(stateWith({{Number, "2147483646"}}), State::Ended);
    EXPECT_EQ(stateWith({{Namespace, "pid%3A%5B1%5D"}}), State::Unknown) << "of another container";
    EXPECT_EQ(stateWith({{Namespace, "pid%3A%5B1%5D"}, {Number, "2147483646"}}), State::Unknown);
    EXPECT_EQ(stateWith({{Boot, "another"}, {Machine, "other"}}), State::Unknown) << "of another machine";
    EXPECT_EQ(stateWith({{Boot, "another"}, {Host, "other"}}), State::Unknown);
    EXPECT_EQ(stateWith({{Boot, "another"}, {Machine, ""}}), State::Unknown);
    EXPECT_EQ(stateWith({{Boot, ""}}), State::Unknown);
    EXPECT_EQ(stateWith({{Boot, "another"}, {Machine, "m"}}), State::Unknown);
}

TEST(RunningProcess, IsNoTextThatIsNone) {
    for (const char *text : {"", "/////", "a/b/c/d/e/f", "a/b/c/0/1/f", "a/b/c/-1/1/f", "a/b/c/99999999999/1/f", "a/b"})
        EXPECT_FALSE(RunningProcess::fromText(text)) << text;
}

// A killed child is there until its parent asks for it; it does nothing any more.
TEST(RunningProcess, HasEndedWhenItWasKilled) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // The name holds the numbers of the process that made it, so the child has to make its own.
        char byte = 0;
        static_cast<void>(::read(ends[0], &byte, 1));
        ::_exit(0);
    }
    QStringList parts = RunningProcess::own().toText().split(u'/');
    parts[Number] = QString::number(child);
    QProcess stat;
    stat.start("cat", {QStringLiteral("/proc/%1/stat").arg(child)});
    ASSERT_TRUE(stat.waitForFinished());
    parts[Started] = QString::fromLatin1(stat.readAllStandardOutput()).section(u')', -1).split(u' ')[20];
    const auto process = RunningProcess::fromText(parts.join(u'/'));
    ASSERT_TRUE(process);
    EXPECT_EQ(process->state(), State::Running);
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    while (process->state() == State::Running) {
    }
    EXPECT_EQ(process->state(), State::Ended);
}

} // namespace
