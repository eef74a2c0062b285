// A step's failure as a number, and waiting by condition.
#pragma once

#include "platform/value/failure.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>

/// The number that a step fails with; 0 where it ends well.
template <class Step>
qint32 failureOf(Step &&step) {
    const std::optional<Failure> failure = Attempt(std::forward<Step>(step));
    return failure ? failure->number() : 0;
}

/// Expects that a step fails with that number, in a sentence that holds the parts.
template <class Step>
void expectFailure(Step &&step, qint32 number, const QStringList &parts) {
    const std::optional<Failure> failure = Attempt(std::forward<Step>(step));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->number(), number) << failure->what();
    for (const QString &part : parts)
        EXPECT_TRUE(failure->description().contains(part)) << part.toStdString() << " is not in " << failure->what();
}

/// Runs the event loop until the condition holds; false when it does not in time.
template <class Condition>
bool eventually(Condition condition) {
    const QDeadlineTimer deadline(20'000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}
