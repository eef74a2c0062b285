/// What a program copy is doing, and how it comes to its end.
///
/// Everything that enters a copy from outside is a step of it. Events come in while a step waits for its host or for a
/// person; what they may do then is decided here. An end that comes inside a step is kept until the piece of work in
/// hand is whole. Then nothing of the run is executed any more: all steps unwind, and what the process owns is released
/// when none of its methods runs.
#pragma once

#include "platform/value/processlocal.h"

#include <deque>
#include <functional>

/// Unwinds to the entry from outside when the process is to end. It is no `Failure`, so no tolerant step takes it.
struct ProcessEnd {};

/// The steps of one copy.
struct RunSteps {
    /// How many entries are on the stack.
    int intDepth = 0;
    /// False where the innermost of them is waiting for a person, which lets other work in.
    bool blnBusy = false;
    /// How many pieces of work in hand must not be cut in two.
    int intWhole = 0;
    /// The run is to end as soon as that can be.
    bool blnEndAsked = false;
    /// The end is being carried out.
    bool blnFinishing = false;
    /// What the ending event does; empty where the end came from inside.
    std::function<void()> subEnd;
    /// Work that waits until no step is busy, in order.
    std::deque<std::function<void()>> colWaiting;
    /// Work that goes before it, in order.
    std::deque<std::function<void()>> colWaitingFirst;
    /// The event loop has been asked to do what waits.
    bool blnWaitingPosted = false;
};
extern ProcessLocal<RunSteps> runSteps;

/// Whether the run has been asked to end.
bool fncEndAsked();

/// Asks the run to end when its steps allow it, and closes the questions that wait for a person. The first ending
/// event counts.
/// \param subEnd  what it does then, such as removing its toolbar; may be empty.
void subAskEnd(std::function<void()> subEnd = {});

/// Unwinds where the run has been asked to end and nothing is in hand that must become whole. Every question to the
/// host passes here, and every question to the person.
void subEndIfAsked();

/// Tells whether the process has been asked to end from outside, by a signal. Asked at every question to the host, so
/// it must be quick.
extern ProcessLocal<bool (*)()> fncEndSignalled;

/// A piece of work that is finished before the run ends: a message on its way to a ticket, a mark and what it stands
/// for.
class WholeStep {
  public:
    WholeStep() { ++runSteps->intWhole; }
    ~WholeStep() { --runSteps->intWhole; }
    WholeStep(const WholeStep &) = delete;
    WholeStep &operator=(const WholeStep &) = delete;
};

/// While it lives the step waits for a person, and other work may come in.
class LetsWorkIn {
  public:
    LetsWorkIn() : m_blnBusy(runSteps->blnBusy) { runSteps->blnBusy = false; }
    ~LetsWorkIn() { runSteps->blnBusy = m_blnBusy; }
    LetsWorkIn(const LetsWorkIn &) = delete;
    LetsWorkIn &operator=(const LetsWorkIn &) = delete;

  private:
    bool m_blnBusy;
};
