#include "orvelle/core/entry.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/steps.h"

#include <QCoreApplication>
#include <QScopeGuard>

#include <new>

namespace {
constexpr char strEntry[] = "the program's entry";

/// What reaches the entry comes out of procedures without a handler: it is reported as any other.
void subRun(const std::function<void()> &callback) {
    try {
        callback();
    } catch (const ProcessEnd &) {
        throw;
    } catch (const Failure &failure) {
        subErrorHandler(failure, strEntry);
    } catch (const std::bad_alloc &) {
        subErrorHandler(Failure(failures::outOfMemory), strEntry);
    } catch (const std::exception &fault) {
        subErrorHandler(Failure(failures::unspecified, QString::fromLocal8Bit(fault.what())), strEntry);
    } catch (...) {
        subErrorHandler(Failure(failures::unspecified), strEntry);
    }
}

/// One step; whatever ends it has asked the run to end by then.
void subStep(const std::function<void()> &callback) {
    try {
        subRun(callback);
    } catch (const ProcessEnd &) {
        subAskEnd();
    }
}

/// What waits and has its turn; empty where nothing does.
std::function<void()> fncTakeNext() {
    RunSteps &now = runSteps;
    auto &colNext = now.colWaitingFirst.empty() ? now.colWaiting : now.colWaitingFirst;
    if (colNext.empty())
        return {};
    auto subNext = std::move(colNext.front());
    colNext.pop_front();
    return subNext;
}

/// What has come in meanwhile. A step may bring more.
void subDoWaiting() {
    while (!fncEndAsked()) {
        const auto subNext = fncTakeNext();
        if (!subNext)
            return;
        subStep(subNext);
    }
}

bool fncIsAtWork() { return runSteps->blnBusy || runSteps->intWhole > 0; }

/// What the event loop keeps for a copy goes with it.
ProcessLocal<std::shared_ptr<QObject>> objLoop;

/// The end, when no step of the run is on the stack any more.
void subFinish() {
    runSteps->blnFinishing = true;
    runSteps->colWaiting.clear();
    runSteps->colWaitingFirst.clear();
    if (const auto subEnd = std::exchange(runSteps->subEnd, nullptr))
        subStep(subEnd);
    subStep(&subReleaseOnce);
    // Taken out, so that it is called once.
    if (const auto ended = std::exchange(processHooks->ended, nullptr))
        ended();
}

/// Whether a new step may begin: what belongs to the work in hand may until the end itself.
bool fncMayEnter() {
    const RunSteps &now = runSteps;
    return !fncIsEnding() && !now.blnFinishing && (!now.blnEndAsked || now.intWhole > 0);
}

/// One piece of work from the event loop. Behind a question about one that must become whole no other begins.
void subDoNext(ProgramCopy &copy) {
    const ProgramCopy::Scope scope(copy);
    runSteps->blnWaitingPosted = false;
    if (fncIsAtWork() || !fncMayEnter())
        return;
    if (const auto subNext = fncTakeNext())
        subEnter(copy, subNext);
}
} // namespace

ProcessLocal<bool> blnOwnLoop;

void subEnter(ProgramCopy &copy, const std::function<void()> &callback) {
    const ProgramCopy::Scope scope(copy);
    if (!fncMayEnter())
        return;
    RunSteps &now = runSteps;
    const bool blnWasBusy = std::exchange(now.blnBusy, true);
    ++now.intDepth;
    const auto leave = qScopeGuard([&] {
        now.blnBusy = blnWasBusy;
        --now.intDepth;
    });
    subStep(callback);
    if (!blnWasBusy && blnOwnLoop)
        subDoWaitingLater();
    else if (!blnWasBusy)
        subDoWaiting();
    if (now.intDepth == 1 && now.blnEndAsked)
        subFinish();
}

void enterProgram(const std::function<void()> &callback) { subEnter(ProgramCopy::current(), callback); }

void subEnterBetween(ProgramCopy &copy, std::function<void()> callback, Turn turn) {
    const ProgramCopy::Scope scope(copy);
    if (fncEndAsked() || fncIsEnding())
        return;
    if (!blnOwnLoop && !fncIsAtWork()) {
        subEnter(copy, callback);
        return;
    }
    RunSteps &now = runSteps;
    (turn == Turn::First ? now.colWaitingFirst : now.colWaiting).push_back(std::move(callback));
    if (blnOwnLoop && !fncIsAtWork())
        subDoWaitingLater();
}

void subEnterBehind(ProgramCopy &copy, std::function<void()> callback) {
    const ProgramCopy::Scope scope(copy);
    if (blnOwnLoop)
        subEnterBetween(copy, std::move(callback), Turn::First);
    else
        subEnter(copy, callback);
}

void subDoWaitingLater() {
    RunSteps &now = runSteps;
    if (now.blnWaitingPosted || (now.colWaiting.empty() && now.colWaitingFirst.empty()) ||
        !QCoreApplication::instance())
        return;
    if (!objLoop.get())
        objLoop = std::make_shared<QObject>();
    now.blnWaitingPosted = true;
    QMetaObject::invokeMethod(
        objLoop.get().get(), [copy = &ProgramCopy::current()] { subDoNext(*copy); }, Qt::QueuedConnection);
}

void subEnterEnd(ProgramCopy &copy, std::function<void()> callback) {
    const ProgramCopy::Scope scope(copy);
    if (runSteps->intDepth > 0)
        subAskEnd(std::move(callback));
    else
        subEnter(copy, callback);
}
