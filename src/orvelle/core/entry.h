/// The one place through which every call from outside enters the program: an event of the host, a timer, a window.
#pragma once

#include "platform/value/processlocal.h"

#include <functional>
#include <utility>

/// Runs a callback in a program copy as one of its steps. Whatever leaves it is reported, which ends the copy; the end
/// of the process stops here. When the outermost step of a copy is to end, everything is released and
/// `processHooks->ended` is told. Nothing is run in a copy that has ended, and nothing is begun in one that is about
/// to. No exception leaves.
void subEnter(ProgramCopy &copy, const std::function<void()> &callback);

/// Runs a callback in the current copy: the first call of a program.
void enterProgram(const std::function<void()> &callback);

/// Runs work that comes between other work: at once, or when the step that the copy is busy with is done.
void subEnterBetween(ProgramCopy &copy, std::function<void()> callback);

/// Has the event loop do what waits, in case the step that it waits for stays in a question for long.
void subDoWaitingLater();

/// Runs what ends the copy: at once, or, where that comes inside a step, as soon as what is in hand is whole.
void subEnterEnd(ProgramCopy &copy, std::function<void()> callback);

/// Wraps a callback of any arguments so that each call enters the copy in which the wrapper was made, also inside
/// another step: for events that are answered, and for what belongs to the step that raised them.
///
/// `item.connect("Write", Entry([this](ValueList &arguments) { ... }))`
///
/// REQUIRES: the copy outlives the wrapper; results of the callback are dropped.
template <class Callback>
auto Entry(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](auto &&...arguments) mutable {
        subEnter(*copy, [&] { callback(std::forward<decltype(arguments)>(arguments)...); });
    };
}

/// The same for work that comes between other work. The arguments are kept until then.
template <class Callback>
auto EntryBetween(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](const auto &...arguments) {
        subEnterBetween(*copy, [callback, arguments...] { callback(arguments...); });
    };
}

/// The same for events that end the run.
template <class Callback>
auto EntryOfEnd(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](const auto &...arguments) {
        subEnterEnd(*copy, [callback, arguments...] { callback(arguments...); });
    };
}
