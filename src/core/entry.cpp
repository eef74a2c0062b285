#include "core/entry.h"

#include "core/errorhandler.h"
#include "core/process.h"

namespace {

/// A failure that reaches the entry comes out of procedures without a handler: it is reported as any other.
void subRun(const std::function<void()> &callback) try { callback(); } catch (const Failure &failure) {
    subErrorHandler(failure, "the program's entry");
}

} // namespace

void subEnter(ProgramCopy &copy, const std::function<void()> &callback) {
    const ProgramCopy::Scope scope(copy);
    if (fncIsEnding())
        return;
    try {
        subRun(callback);
    } catch (const ProcessEnd &) {
        // Taken out, so that it is called once when the end came up through several entries.
        if (const auto ended = std::exchange(processHooks->ended, nullptr))
            ended();
    }
}

void enterProgram(const std::function<void()> &callback) { subEnter(ProgramCopy::current(), callback); }
