/// The command line of the settings program.
#pragma once

#include <QStringList>

namespace settings {

/// Runs one command. Output goes to standard output, messages to standard error.
/// Returns the exit status: 0, 1 for a failure, 2 for wrong usage.
int run(const QStringList &arguments);

} // namespace settings
