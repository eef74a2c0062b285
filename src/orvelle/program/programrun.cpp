#include "orvelle/program/programrun.h"

#include "orvelle/core/entry.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/steps.h"
#include "orvelle/mail/temporaryfolder.h"
#include "orvelle/program/main.h"
#include "orvelle/session/forms.h"
#include "orvelle/session/session.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/window/window.h"

namespace {
/// Asks the person as part of a step: meanwhile other work goes on, and an end that came stops the step.
void subAsk(const std::function<void()> &ask) {
    {
        const LetsWorkIn waits;
        // Behind a question about one piece of work no other begins: each might ask its own.
        if (runSteps->intWhole == 0)
            subDoWaitingLater();
        ask();
    }
    subEndIfAsked();
}
} // namespace

ProgramRun::ProgramRun(ProgramSetup setup, std::function<void()> ended)
    : m_setup(std::move(setup)), m_ended(std::move(ended)) {}

ProgramRun::~ProgramRun() {
    m_ended = nullptr;
    quit();
    const ProgramCopy::Scope scope(m_copy);
    m_copy.clear();
}

void ProgramRun::prepare() {
    runningHost = [this] {
        automation::ObjectPtr application = m_setup.host ? m_setup.host() : nullptr;
        m_hostReached = application != nullptr;
        return application;
    };
    strProgramFolderOverride = m_setup.strProgramFolder;
    processHooks->subReleaseAll = &subReleaseObjects;
    processHooks->subStartOutlook = &subStartOutlook;
    processHooks->ended = [this] { finish(); };
    safeobjects::registerComponents([] { return onsMAPI->object(); });
    host::aroundHost = &subEndIfAsked;
    window::aroundQuestion = &subAsk;
    fncEndSignalled = m_setup.endSignalled;
    blnOwnLoop = m_setup.ownLoop;
}

void ProgramRun::start() {
    const ProgramCopy::Scope scope(m_copy);
    prepare();
    TemporaryFolder::subSweep();
    m_alive = true;
    enterProgram([this] {
        // A profile that isn't there has no other instance either; that the host is missing is told later.
        if (!m_setup.instanceFile.isEmpty())
            Attempt([this] {
                FileLock::Joined joined = FileLock::join(m_setup.instanceFile);
                m_lock = std::move(joined.lock);
                blnPreviousInstance = !joined.isFirst;
            });
        Main(m_setup.strCommand);
    });
    // Without a form nothing can come any more, and the process ends by itself.
    if (m_alive && loadedForms->isEmpty())
        finish();
    if (!m_alive)
        m_copy.clear();
}

void ProgramRun::quit() {
    if (!m_alive)
        return;
    subEnterEnd(m_copy, [] { subQuit(); });
}

void ProgramRun::hostGone() {
    if (!m_alive)
        return;
    const ProgramCopy::Scope scope(m_copy);
    // A step that has met it first reports it, and ends the run when the report has been read.
    if (!strErrorReport->isEmpty())
        return;
    enterProgram([] { subErrorHandler(Failure(failures::peerGone), "ProgramRun.hostGone"); });
}

void ProgramRun::finish() {
    m_alive = false;
    m_exitStatus = strErrorReport->isEmpty() && m_hostReached ? 0 : 1;
    m_lock.reset();
    if (m_ended)
        m_ended();
}
