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

/// What has come in meanwhile, in its order. A step may bring more.
void subDoWaiting() {
    auto &colWaiting = runSteps->colWaiting;
    while (!colWaiting.empty() && !fncEndAsked()) {
        const auto subNext = std::move(colWaiting.front());
        colWaiting.pop_front();
        subStep(subNext);
    }
}

/// What the event loop keeps for a copy goes with it.
ProcessLocal<std::shared_ptr<QObject>> objLoop;

/// The end, when no step of the run is on the stack any more.
void subFinish() {
    runSteps->blnFinishing = true;
    runSteps->colWaiting.clear();
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
} // namespace

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
    if (!blnWasBusy)
        subDoWaiting();
    if (now.intDepth == 1 && now.blnEndAsked)
        subFinish();
}

void enterProgram(const std::function<void()> &callback) { subEnter(ProgramCopy::current(), callback); }

void subEnterBetween(ProgramCopy &copy, std::function<void()> callback) {
    const ProgramCopy::Scope scope(copy);
    if (fncEndAsked())
        return;
    if (runSteps->blnBusy || runSteps->intWhole > 0)
        runSteps->colWaiting.push_back(std::move(callback));
    else
        subEnter(copy, callback);
}

void subDoWaitingLater() {
    if (runSteps->colWaiting.empty() || !QCoreApplication::instance())
        return;
    if (!objLoop.get())
        objLoop = std::make_shared<QObject>();
    // A step that does nothing: what waits is done behind it.
    QMetaObject::invokeMethod(
        objLoop.get().get(), [copy = &ProgramCopy::current()] { subEnterBetween(*copy, [] {}); }, Qt::QueuedConnection);
}

void subEnterEnd(ProgramCopy &copy, std::function<void()> callback) {
    const ProgramCopy::Scope scope(copy);
    if (runSteps->intDepth > 0)
        subAskEnd(std::move(callback));
    else
        subEnter(copy, callback);
}
