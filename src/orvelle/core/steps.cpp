#include "orvelle/core/steps.h"

#include "platform/window/window.h"

#include <exception>

ProcessLocal<RunSteps> runSteps;
ProcessLocal<bool (*)()> fncEndSignalled;

bool fncEndAsked() { return runSteps->blnEndAsked; }

void subAskEnd(std::function<void()> subEnd) {
    if (runSteps->blnEndAsked)
        return;
    runSteps->blnEndAsked = true;
    runSteps->subEnd = std::move(subEnd);
    window::closeQuestions();
}

void subEndIfAsked() {
    RunSteps &now = runSteps;
    if (!now.blnEndAsked && now.intDepth > 0 && fncEndSignalled.get() != nullptr && fncEndSignalled.get()())
        subAskEnd();
    // What tidies up while the steps unwind is not to be stopped in its turn.
    if (now.blnEndAsked && !now.blnFinishing && now.intDepth > 0 && now.intWhole == 0 &&
        std::uncaught_exceptions() == 0)
        throw ProcessEnd{};
}
