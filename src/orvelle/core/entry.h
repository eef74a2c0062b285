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

/// Whether the program runs an event loop when its entry is back, from which it does what events bring. Without one,
/// which is how several copies share a process with their host, work is done inside the event.
extern ProcessLocal<bool> blnOwnLoop;

/// The turn of work that waits.
enum class Turn {
    Last, ///< behind all other, as mails in the order in which they came
    First ///< before what is `Last`: a person's click, which means what is selected now
};

/// Runs work that comes between other work. With an event loop of its own the program does it from there, one after the
/// other, so that the host's event is answered first: the host waits for the answer, and the work may ask a person.
/// Without one it runs at once, or when the step that the copy is busy with is done. The end drops what has not begun.
void subEnterBetween(ProgramCopy &copy, std::function<void()> callback, Turn turn = Turn::Last);

/// Runs work that belongs to the step that raised it: inside that step, or, with an event loop of its own, from there
/// before all other work.
void subEnterBehind(ProgramCopy &copy, std::function<void()> callback);

/// Has the event loop do what waits, in case the step that it waits for stays in a question for long.
void subDoWaitingLater();

/// Runs what ends the copy: at once, or, where that comes inside a step, as soon as what is in hand is whole.
void subEnterEnd(ProgramCopy &copy, std::function<void()> callback);

/// Wraps a callback of any arguments so that each call enters the copy in which the wrapper was made, also inside
/// another step: for events that are answered.
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
auto EntryBetween(Callback callback, Turn turn = Turn::Last) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback), turn](const auto &...arguments) {
        subEnterBetween(
            *copy, [callback, arguments...] { callback(arguments...); }, turn);
    };
}

/// The same for work that belongs to the step that raised it.
template <class Callback>
auto EntryBehind(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](const auto &...arguments) {
        subEnterBehind(*copy, [callback, arguments...] { callback(arguments...); });
    };
}

/// The same for events that end the run.
template <class Callback>
auto EntryOfEnd(Callback callback) {
    return [copy = &ProgramCopy::current(), callback = std::move(callback)](const auto &...arguments) {
        subEnterEnd(*copy, [callback, arguments...] { callback(arguments...); });
    };
}
