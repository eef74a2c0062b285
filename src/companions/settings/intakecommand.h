/// The command that lists, and finishes, what programs left behind that ended in the middle of their work.
#pragma once

#include <QStringList>

#include <optional>

namespace settings {

/// The exit status when something is left.
inline constexpr int leftoversRemain = 3;
/// The exit status when nothing is left, but items of open tickets are gone.
inline constexpr int ticketsAreGone = 4;

/// Runs the command with the arguments behind its name. Returns the exit status: 0 when nothing is left, 3 when
/// something is, 4 when all that is known is that items of open tickets are gone, 1 for a failure; nothing for wrong
/// usage.
std::optional<int> runIntake(const QStringList &arguments);

} // namespace settings
