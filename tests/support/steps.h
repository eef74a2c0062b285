// A step's failure as a number, and waiting by condition.
#pragma once

#include "platform/value/failure.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

/// The number that a step fails with; 0 where it ends well.
template <class Step>
qint32 failureOf(Step &&step) {
    const std::optional<Failure> failure = Attempt(std::forward<Step>(step));
    return failure ? failure->number() : 0;
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
