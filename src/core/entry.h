/// The one place through which every call from outside enters the program: an event of the host, a timer, a window.
#pragma once

#include "platform/value/processlocal.h"

#include <functional>
#include <utility>

/// Runs a callback in a program copy. A failure that leaves it is reported, which ends the copy; the end of the process
/// stops here and is passed on to `processHooks->ended`. Nothing is run in a copy that has ended. No exception leaves.
void subEnter(ProgramCopy &copy, const std::function<void()> &callback);

/// Runs a callback in the current copy: the first call of a program.
void enterProgram(const std::function<void()> &callback);

/// Wraps a callback of any arguments so that each call enters the copy in which the wrapper was made.
///
/// `button.connect("Click", Entry([this](ValueList &arguments) { ... }))`
///
/// REQUIRES: the copy outlives the wrapper; results of the callback are dropped.
template <class Callback>
auto Entry(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](auto &&...arguments) mutable {
        subEnter(*copy, [&] { callback(std::forward<decltype(arguments)>(arguments)...); });
    };
}
